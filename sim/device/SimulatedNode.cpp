// One simulated CANopen device: the values of its objects and its NMT state.
// SPDX-License-Identifier: MIT
#include "device/SimulatedNode.h"

#include "dic/CANopen.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace
{

using tAccess = CCANopenObjectEntry;

constexpr unsigned firstCommunicationIndex = 0x1000;
constexpr unsigned lastCommunicationIndex = 0x1FFF;
constexpr unsigned lastIndex = 0xFFFF;

unsigned keyOf(unsigned index, unsigned subIndex)
{
    return index << 8 | subIndex;
}

// Objects that store or restore values when this signature is written to a sub-index (1 and above).
struct tSignature {
    unsigned index;
    quint32 signature;
    bool stores;
};

constexpr tSignature signatures[] = {
    { 0x1010, 0x65766173, true },  // "save": the values survive a reset
    { 0x1011, 0x64616F6C, false }, // "load": the next reset brings the defaults back
};

// The indexes that a sub-index of 0x1010 and 0x1011 covers. Other sub-indexes accept the signature without effect.
struct tParameterRange {
    unsigned subIndex;
    unsigned first;
    unsigned last;
};

constexpr tParameterRange parameterRanges[] = {
    { 1, 0x0000, lastIndex },                               // all parameters
    { 2, firstCommunicationIndex, lastCommunicationIndex }, // communication
    { 3, 0x6000, 0x9FFF },                                  // device profile
    { 4, 0x2000, 0x5FFF },                                  // manufacturer
};

struct tNmtRow {
    tNmtCommand command;
    tNmtState state;
    tNodeEvent event;
    unsigned firstReset; // the values of these indexes are reset; none when first is above last
    unsigned lastReset;
};

constexpr tNmtRow nmtRows[] = {
    { nmtStart, stateOperational, nodeChanged, 1, 0 },
    { nmtStop, stateStopped, nodeChanged, 1, 0 },
    { nmtPreOperational, statePreOperational, nodeChanged, 1, 0 },
    { nmtResetNode, statePreOperational, nodeRestarted, 0, lastIndex },
    { nmtResetCommunication, statePreOperational, nodeRestarted, firstCommunicationIndex, lastCommunicationIndex },
};

} // namespace

CSimulatedNode::CSimulatedNode(unsigned nodeId, const CCANopen& dictionary, const tParameterValues& configuration)
{
    for (const auto& object : dictionary.m_objectArray) {
        if (!m_objects.insert(object->getIndex()).second)
            continue;
        for (const auto& source : object->m_objectEntryArray) {
            tEntry entry = describe(*source, nodeId);
            if (const auto value = configuration.find(source.get()); value != configuration.end())
                entry.storedValue = entry.value = defaultFromText(value->second, entry.type, nodeId);
            m_entries.emplace(keyOf(object->getIndex(), source->getSubindex()), std::move(entry));
        }
    }
}

CSimulatedNode::tEntry CSimulatedNode::describe(const CCANopenObjectEntry& source, unsigned nodeId)
{
    const int access = source.getAccess();
    tEntry entry;
    entry.type = valueType(source.getDataType());
    entry.readable = access != tAccess::accessWO;
    entry.writable = access != tAccess::accessRO && access != tAccess::accessCONST;
    entry.defaultValue = defaultFromText(source.getDefaultValue(), entry.type, nodeId);
    entry.value = entry.defaultValue;
    entry.lowLimit = limitFromText(source.getLowLimit(), entry.type, nodeId);
    entry.highLimit = limitFromText(source.getHighLimit(), entry.type, nodeId);
    if (entry.type.kind == kindBoolean && entry.highLimit.isEmpty())
        entry.highLimit = QByteArray(1, '\1');
    return entry;
}

tSdoData CSimulatedNode::read(unsigned index, unsigned subIndex) const
{
    if (const tAbortCode missing = findEntry(index, subIndex))
        return { missing, {} };
    const tEntry& entry = m_entries.at(keyOf(index, subIndex));
    if (!entry.readable)
        return { abortWriteOnly, {} };
    return { abortNone, entry.value };
}

tAbortCode CSimulatedNode::write(unsigned index, unsigned subIndex, const QByteArray& data)
{
    tAbortCode result = checkWrite(index, subIndex, data.size());
    if (result != abortNone || storeOrRestore(index, subIndex, data, &result))
        return result;
    tEntry& entry = m_entries.at(keyOf(index, subIndex));
    result = checkLimits(entry, data);
    if (result != abortNone)
        return result;
    entry.value = data;
    notify(nodeChanged);
    return abortNone;
}

tAbortCode CSimulatedNode::checkWrite(unsigned index, unsigned subIndex, std::optional<qsizetype> length) const
{
    if (const tAbortCode missing = findEntry(index, subIndex))
        return missing;
    const tEntry& entry = m_entries.at(keyOf(index, subIndex));
    if (!entry.writable)
        return abortReadOnly;
    if (length && entry.type.width != 0 && *length != entry.type.width)
        return *length > entry.type.width ? abortLengthHigh : abortLengthLow;
    return abortNone;
}

QByteArray CSimulatedNode::value(unsigned index, unsigned subIndex) const
{
    const auto found = m_entries.find(keyOf(index, subIndex));
    return found == m_entries.end() ? QByteArray() : found->second.value;
}

std::optional<tValueType> CSimulatedNode::typeOf(unsigned index, unsigned subIndex) const
{
    const auto found = m_entries.find(keyOf(index, subIndex));
    return found == m_entries.end() ? std::nullopt : std::optional(found->second.type);
}

void CSimulatedNode::command(tNmtCommand command)
{
    const auto row = std::find_if(std::begin(nmtRows), std::end(nmtRows),
                                  [command](const tNmtRow& each) { return each.command == command; });
    resetValues(row->firstReset, row->lastReset);
    m_state = row->state;
    notify(row->event);
}

tAbortCode CSimulatedNode::findEntry(unsigned index, unsigned subIndex) const
{
    if (!m_objects.contains(index))
        return abortNoObject;
    return m_entries.contains(keyOf(index, subIndex)) ? abortNone : abortNoSubIndex;
}

tAbortCode CSimulatedNode::checkLimits(const tEntry& entry, const QByteArray& data) const
{
    if (!entry.highLimit.isEmpty() && isBelow(entry.highLimit, data, entry.type))
        return abortValueHigh;
    if (!entry.lowLimit.isEmpty() && isBelow(data, entry.lowLimit, entry.type))
        return abortValueLow;
    return abortNone;
}

// Carries out a write to 0x1010 or 0x1011, sub-index 1 and above. @return false for other entries, `result` unchanged
bool CSimulatedNode::storeOrRestore(unsigned index, unsigned subIndex, const QByteArray& data, tAbortCode* result)
{
    const auto signature = std::find_if(std::begin(signatures), std::end(signatures),
                                        [index](const tSignature& each) { return each.index == index; });
    if (signature == std::end(signatures) || subIndex == 0)
        return false;
    const bool signatureMatches = numberOf(data, { kindUnsigned, 4 }) == signature->signature;
    *result = signatureMatches ? abortNone : abortNotStored;
    for (const tParameterRange& range : parameterRanges) {
        if (!signatureMatches || range.subIndex != subIndex)
            continue;
        for (auto& [key, entry] : m_entries)
            if (entry.writable && key >> 8 >= range.first && key >> 8 <= range.last)
                entry.storedValue = signature->stores ? std::optional(entry.value) : std::nullopt;
    }
    return true;
}

void CSimulatedNode::resetValues(unsigned first, unsigned last)
{
    for (auto& [key, entry] : m_entries)
        if (key >> 8 >= first && key >> 8 <= last)
            entry.value = entry.storedValue.value_or(entry.defaultValue);
}

void CSimulatedNode::notify(tNodeEvent event) const
{
    if (m_listener)
        m_listener(event);
}
