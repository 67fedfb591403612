// The order in which parameters can be written.
// SPDX-License-Identifier: MIT
#include "network/WriteOrder.h"

#include "dic/CANopenObjectEntry.h"
#include "dic/ValueTypes.h"

#include <algorithm>
#include <map>
#include <set>

namespace
{

// Communication and mapping parameters of receive and transmit PDOs (CiA 301): 512 each.
constexpr unsigned firstReceivePdo = 0x1400;
constexpr unsigned firstTransmitPdo = 0x1800;
constexpr unsigned pdoCount = 0x200;
constexpr unsigned mappingOffset = 0x200; // from the communication to the mapping parameter
constexpr unsigned pdoEnd = 0x1C00;
constexpr unsigned emergencyCobId = 0x1014;
constexpr unsigned cobIdSub = 1; // of a communication parameter
constexpr quint64 switchedOff = 0x80000000;
constexpr int cobIdWidth = 4;

// The index of the communication parameter of the PDO that the parameter belongs to.
unsigned pdoOf(unsigned index)
{
    return index & ~mappingOffset;
}

using tEntries = std::vector<const tSnapshotEntry*>;

class CWriteOrder
{
public:
    CWriteOrder(const tEntries& wanted, const tSnapshot& file, const tSnapshot& device)
        : m_wanted(wanted), m_file(writableOf(file)), m_device(writableOf(device)), m_nodeId(device.nodeId)
    {
    }

    std::vector<tWrite> writes()
    {
        for (const tSnapshotEntry* entry : m_wanted) {
            if (isPdoParameter(entry->index))
                addPdo(pdoOf(entry->index));
            else if (entry->index == emergencyCobId && entry->subIndex == 0)
                addCobId(*entry);
            else
                add(*entry);
        }
        return m_writes;
    }

private:
    using tKnown = std::map<unsigned, const tSnapshotEntry*>;

    static unsigned keyOf(unsigned index, unsigned subIndex) { return index << 8 | subIndex; }

    static tKnown writableOf(const tSnapshot& snapshot)
    {
        tKnown entries;
        for (const tSnapshotEntry& entry : snapshot.entries)
            if (entry.value && isWritable(entry))
                entries.emplace(keyOf(entry.index, entry.subIndex), &entry);
        return entries;
    }

    // Null where the value is not known.
    static const tSnapshotEntry* find(const tKnown& entries, unsigned index, unsigned subIndex)
    {
        const auto place = entries.find(keyOf(index, subIndex));
        return place != entries.end() ? place->second : nullptr;
    }

    const tSnapshotEntry* known(unsigned index, unsigned subIndex) const { return find(m_file, index, subIndex); }

    QByteArray bytesOf(const tSnapshotEntry& entry) const { return valueOfNode(entry, *entry.value, m_nodeId); }

    void add(const tSnapshotEntry& entry) { m_writes.push_back({ &entry, bytesOf(entry), false }); }

    // The COB-ID that the device has, but not in use: while it is in use, its other bits must not change.
    void switchOff(const tSnapshotEntry& cobId)
    {
        const tSnapshotEntry* present = find(m_device, cobId.index, cobId.subIndex);
        const bool isKnown = present != nullptr && present->value->size() == cobIdWidth;
        const quint64 bits = numberOf(bytesOf(isKnown ? *present : cobId), { kindUnsigned, cobIdWidth });
        m_writes.push_back({ &cobId, littleEndian(bits | switchedOff, cobIdWidth), true });
    }

    void addCobId(const tSnapshotEntry& entry)
    {
        if (entry.value->size() == cobIdWidth)
            switchOff(entry);
        add(entry);
    }

    void addPdo(unsigned pdo)
    {
        if (!m_pdos.insert(pdo).second)
            return;
        const tSnapshotEntry* cobId = known(pdo, cobIdSub);
        if (cobId != nullptr && cobId->value->size() == cobIdWidth)
            switchOff(*cobId);
        addMapping(pdo + mappingOffset);
        for (const tSnapshotEntry* entry : m_wanted)
            if (entry->index == pdo && entry->subIndex != cobIdSub)
                add(*entry);
        if (cobId != nullptr)
            add(*cobId);
    }

    // All mapped objects, also those that are the same: they cannot be changed one by one.
    void addMapping(unsigned mapping)
    {
        const bool isWanted = std::any_of(m_wanted.cbegin(), m_wanted.cend(),
                                          [mapping](const auto* entry) { return entry->index == mapping; });
        const tSnapshotEntry* count = known(mapping, 0);
        if (!isWanted)
            return;
        if (count != nullptr)
            m_writes.push_back({ count, QByteArray(count->value->size(), '\0'), true });
        const quint64 mapped = count != nullptr ? numberOf(*count->value, { kindUnsigned, 1 }) : 0xFF;
        for (unsigned subIndex = 1; subIndex <= std::min<quint64>(mapped, 0xFF); ++subIndex)
            if (const tSnapshotEntry* entry = known(mapping, subIndex))
                add(*entry);
        if (count != nullptr)
            add(*count);
    }

    const tEntries& m_wanted;
    const tKnown m_file;
    const tKnown m_device;
    const unsigned m_nodeId;
    std::set<unsigned> m_pdos; // that were added
    std::vector<tWrite> m_writes;
};

} // namespace

bool isPdoParameter(unsigned index)
{
    static_assert(firstReceivePdo + 2 * pdoCount == firstTransmitPdo && firstTransmitPdo + 2 * pdoCount == pdoEnd);
    return index >= firstReceivePdo && index < pdoEnd;
}

bool isWritable(const tSnapshotEntry& entry)
{
    return entry.access != CCANopenObjectEntry::accessRO && entry.access != CCANopenObjectEntry::accessCONST;
}

std::vector<tWrite> orderOfWrites(const std::vector<const tSnapshotEntry*>& wanted, const tSnapshot& file,
                                  const tSnapshot& device)
{
    return CWriteOrder(wanted, file, device).writes();
}
