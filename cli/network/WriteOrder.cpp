// The order in which parameters can be written.
// SPDX-License-Identifier: MIT
#include "network/WriteOrder.h"

#include "base/NodeId.h"
#include "dic/ValueTypes.h"
#include "sheets/EntryAccess.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>

namespace
{

// Communication and mapping parameters of receive and transmit PDOs (CiA 301): 512 each.
constexpr unsigned firstReceivePdo = 0x1400;
constexpr unsigned firstTransmitPdo = 0x1800;
constexpr unsigned pdoCount = 0x200;
constexpr unsigned mappingOffset = 0x200; // from the communication to the mapping parameter
constexpr unsigned pdoEnd = 0x1C00;
constexpr unsigned cobIdSub = 1; // of a communication parameter
constexpr int cobIdWidth = 4;

// The sync counter must not change while the period is not 0.
constexpr unsigned syncPeriod = 0x1006;
constexpr unsigned syncCounter = 0x1019;

// COB-IDs whose identifier must not change while they are in use: what their highest bits are when they are not.
struct tCobId {
    unsigned firstIndex;
    unsigned lastIndex;
    unsigned firstSub;
    unsigned lastSub;
    quint64 mask;
    quint64 off;
};
constexpr quint64 invalid = 0x80000000;
constexpr tCobId cobIds[] = {
    { 0x1005, 0x1005, 0, 0, 0x40000000, 0 },                // SYNC: produced
    { 0x1012, 0x1012, 0, 0, 0xC0000000, 0 },                // time stamp: consumed, produced
    { 0x1014, 0x1014, 0, 0, invalid, invalid },             // emergency
    { 0x1028, 0x1028, 1, highestNodeId, invalid, invalid }, // emergencies of other nodes
    { 0x1201, 0x12FF, 1, 2, invalid, invalid },             // SDO servers and clients, but not the SDO server in use
};
constexpr tCobId pdoCobId = { firstReceivePdo, pdoEnd - 1, cobIdSub, cobIdSub, invalid, invalid };

const tCobId* cobIdRow(const tSnapshotEntry& entry)
{
    const auto* row = std::find_if(std::begin(cobIds), std::end(cobIds), [&entry](const tCobId& each) {
        return entry.index >= each.firstIndex && entry.index <= each.lastIndex && entry.subIndex >= each.firstSub &&
               entry.subIndex <= each.lastSub;
    });
    return row != std::end(cobIds) && entry.value->size() == cobIdWidth ? row : nullptr;
}

// The index of the communication parameter of the PDO that the parameter belongs to.
unsigned pdoOf(unsigned index)
{
    return index & ~mappingOffset;
}

using tEntries = std::vector<const tSnapshotEntry*>;
using tAllowed = std::function<bool(const tSnapshotEntry&)>;

bool isWanted(const tEntries& wanted, unsigned index)
{
    return std::any_of(wanted.cbegin(), wanted.cend(), [index](const auto* entry) { return entry->index == index; });
}

bool isSyncCounter(const tSnapshotEntry* entry)
{
    return entry->index == syncCounter && entry->subIndex == 0;
}

class CWriteOrder
{
public:
    CWriteOrder(const tEntries& wanted, const tSnapshot& file, const tSnapshot& device, const tAllowed& isAllowed)
        : m_wanted(wanted), m_file(writableOf(file, isAllowed)), m_device(writableOf(device)), m_nodeId(device.nodeId)
    {
    }

    std::vector<tWrite> writes()
    {
        const bool isCounted = std::any_of(m_wanted.cbegin(), m_wanted.cend(), isSyncCounter);
        for (const tSnapshotEntry* entry : m_wanted) {
            ++m_unit;
            if (isPdoParameter(entry->index))
                addPdo(pdoOf(entry->index));
            else if (isSyncCounter(entry))
                addSyncCounter(*entry);
            else if (entry->index != syncPeriod || !isCounted)
                addOne(*entry);
        }
        return m_writes;
    }

private:
    using tKnown = std::map<unsigned, const tSnapshotEntry*>;

    static unsigned keyOf(unsigned index, unsigned subIndex) { return index << 8 | subIndex; }

    static tKnown writableOf(const tSnapshot& snapshot, const tAllowed& isAllowed = {})
    {
        tKnown entries;
        for (const tSnapshotEntry& entry : snapshot.entries)
            if (entry.value && isWritable(entry.access) && (!isAllowed || isAllowed(entry)))
                entries.emplace(keyOf(entry.index, entry.subIndex), &entry);
        return entries;
    }

    static const tSnapshotEntry* find(const tKnown& entries, unsigned index, unsigned subIndex)
    {
        const auto place = entries.find(keyOf(index, subIndex));
        return place != entries.end() ? place->second : nullptr;
    }

    // What the entry is to have: the value of the file, else that of the device. Null where neither is known.
    const tSnapshotEntry* known(unsigned index, unsigned subIndex) const
    {
        const tSnapshotEntry* ofFile = find(m_file, index, subIndex);
        return ofFile != nullptr ? ofFile : find(m_device, index, subIndex);
    }

    QByteArray bytesOf(const tSnapshotEntry& entry) const { return valueOfNode(entry, m_nodeId); }

    void add(const tSnapshotEntry& entry, bool isApart = false)
    {
        m_writes.push_back({ &entry, bytesOf(entry), false, m_unit, isApart });
    }
    void addStep(const tSnapshotEntry& entry, const QByteArray& bytes)
    {
        m_writes.push_back({ &entry, bytes, true, m_unit, false });
    }
    void addZero(const tSnapshotEntry& entry) { addStep(entry, QByteArray(entry.value->size(), '\0')); }

    // The number that the device has; none when it is not known, or is none of four bytes.
    std::optional<quint64> presentCobId(const tSnapshotEntry& cobId) const
    {
        const tSnapshotEntry* present = find(m_device, cobId.index, cobId.subIndex);
        if (present == nullptr || present->value->size() != cobIdWidth)
            return std::nullopt;
        return numberOf(bytesOf(*present), { kindUnsigned, cobIdWidth });
    }

    // The COB-ID that the device has, but not in use: while it is in use, its other bits must not change.
    void switchOff(const tSnapshotEntry& cobId, const tCobId& row)
    {
        const quint64 bits = presentCobId(cobId).value_or(numberOf(bytesOf(cobId), { kindUnsigned, cobIdWidth }));
        addStep(cobId, littleEndian((bits & ~row.mask) | row.off, cobIdWidth));
    }

    void addOne(const tSnapshotEntry& entry)
    {
        if (const tCobId* row = cobIdRow(entry)) {
            const auto present = presentCobId(entry);
            if (!present || (*present & row->mask) != row->off)
                switchOff(entry, *row);
        }
        add(entry);
    }

    void addSyncCounter(const tSnapshotEntry& counter)
    {
        const tSnapshotEntry* period = known(syncPeriod, 0);
        if (period != nullptr)
            addZero(*period);
        add(counter);
        if (period != nullptr)
            add(*period);
    }

    void addPdo(unsigned pdo)
    {
        if (!m_pdos.insert(pdo).second)
            return;
        const tSnapshotEntry* cobId = known(pdo, cobIdSub);
        if (cobId != nullptr && cobId->value->size() == cobIdWidth)
            switchOff(*cobId, pdoCobId);
        addMapping(pdo + mappingOffset);
        for (const tSnapshotEntry* entry : m_wanted)
            if (entry->index == pdo && entry->subIndex != cobIdSub)
                add(*entry, true);
        if (cobId != nullptr)
            add(*cobId);
    }

    // All mapped objects, also those that are the same: they cannot be changed one by one. What stands behind them only
    // where it is another one.
    void addMapping(unsigned mapping)
    {
        if (!isWanted(m_wanted, mapping))
            return;
        const tSnapshotEntry* count = known(mapping, 0);
        if (count != nullptr)
            addZero(*count);
        const quint64 mapped = count != nullptr ? numberOf(*count->value, { kindUnsigned, 1 }) : lastSub;
        for (unsigned subIndex = 1; subIndex <= lastSub; ++subIndex) {
            const tSnapshotEntry* entry = known(mapping, subIndex);
            if (entry != nullptr && (subIndex <= mapped || std::count(m_wanted.cbegin(), m_wanted.cend(), entry) > 0))
                add(*entry);
        }
        if (count != nullptr)
            add(*count);
    }

    static constexpr unsigned lastSub = 0xFF;

    const tEntries& m_wanted;
    const tKnown m_file;
    const tKnown m_device;
    const unsigned m_nodeId;
    std::set<unsigned> m_pdos; // that were added
    unsigned m_unit = 0;
    std::vector<tWrite> m_writes;
};

} // namespace

bool isPdoParameter(unsigned index)
{
    static_assert(firstReceivePdo + 2 * pdoCount == firstTransmitPdo && firstTransmitPdo + 2 * pdoCount == pdoEnd);
    return index >= firstReceivePdo && index < pdoEnd;
}

std::vector<tWrite> orderOfWrites(const std::vector<const tSnapshotEntry*>& wanted, const tSnapshot& file,
                                  const tSnapshot& device, const tAllowed& isAllowed)
{
    return CWriteOrder(wanted, file, device, isAllowed).writes();
}

std::vector<std::size_t> neededForOrder(const std::vector<const tSnapshotEntry*>& wanted, const tSnapshot& device)
{
    const auto isNeeded = [&wanted](const tSnapshotEntry& entry) {
        if (entry.index == syncPeriod)
            return isWanted(wanted, syncCounter);
        const unsigned pdo = pdoOf(entry.index);
        if (!isPdoParameter(entry.index) || (entry.index == pdo && entry.subIndex != cobIdSub))
            return false;
        return isWanted(wanted, pdo + mappingOffset) || (entry.index == pdo && isWanted(wanted, pdo));
    };
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < device.entries.size(); ++place)
        if (const tSnapshotEntry& entry = device.entries[place];
            !entry.value && isWritable(entry.access) && isNeeded(entry))
            places.push_back(place);
    return places;
}
