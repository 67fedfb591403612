// One simulated CANopen device: the values of its objects and its NMT state.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/AbortCodes.h"
#include "dic/ValueTypes.h"
#include "dic/EdsLoad.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <optional>
#include <set>

/// Devices have node-ids from 1 to this. The simulator has its own constant on purpose, as it has its own abort codes.
constexpr unsigned lastNodeId = 127;

enum tNmtCommand { nmtStart, nmtStop, nmtPreOperational, nmtResetNode, nmtResetCommunication };
enum tNmtState { statePreOperational, stateOperational, stateStopped };

/// What a listener is told. `nodeRestarted`: the node or its communication was reset. `nodeChanged`: its state or a
/// value was set, by any front-end.
enum tNodeEvent { nodeRestarted, nodeChanged };

/// The outcome of an upload: `data` is valid when `abortCode` is `abortNone`.
struct tSdoData {
    tAbortCode abortCode = abortNone;
    QByteArray data;
};

/// Serves the dictionary of a data sheet to all front-ends. Values start as the data sheet's defaults or as configured,
/// and each device has its own; their bytes are in the order of the bus (little-endian).
class CSimulatedNode
{
public:
    /// Copies what it needs from `dictionary`, with `nodeId` (1 to 127) in place of "$NODEID". Where the data sheet
    /// describes an index or a sub-index twice, the first description counts. Entries with a value among
    /// `configuration` start with it, as if it had been stored (0x1010).
    CSimulatedNode(unsigned nodeId, const CCANopen& dictionary, const tParameterValues& configuration = {});

    /// SDO upload of one entry.
    tSdoData read(unsigned index, unsigned subIndex) const;

    /// SDO download of one entry. Checks, in this order: object, sub-index, access, length, signature (0x1010, 0x1011),
    /// limits. A refused write leaves the value as it was.
    tAbortCode write(unsigned index, unsigned subIndex, const QByteArray& data);

    /// What `write` checks before it knows the data: object, sub-index, access and, when it is given, the length.
    tAbortCode checkWrite(unsigned index, unsigned subIndex, std::optional<qsizetype> length) const;

    /// The value of an entry as the device itself sees it, whatever the access; empty when there is no such entry.
    QByteArray value(unsigned index, unsigned subIndex) const;

    /// The layout of an entry; none when there is no such entry.
    std::optional<tValueType> typeOf(unsigned index, unsigned subIndex) const;

    /// Carries out an NMT command. A reset of the node resets all values, a reset of the communication those of 0x1000
    /// to 0x1FFF: to the stored value (0x1010), otherwise to the default. Both lead to pre-operational.
    void command(tNmtCommand command);

    /// `listener` is called after each event. One listener at a time; an empty function for none.
    void setListener(const std::function<void(tNodeEvent)>& listener) { m_listener = listener; }

    tNmtState state() const { return m_state; }

    /// False in the stopped state: no SDO is answered then, which its client sees as a time-out.
    bool answersSdo() const { return m_state != stateStopped; }

    /// The number of objects, each index counted once.
    int objectCount() const { return static_cast<int>(m_objects.size()); }

private:
    struct tEntry {
        tValueType type{ kindOctets, 0 };
        bool readable = false;
        bool writable = false;
        QByteArray value;
        QByteArray defaultValue;
        QByteArray lowLimit;  // empty: no limit
        QByteArray highLimit; // empty: no limit
        std::optional<QByteArray> storedValue;
    };
    using tKey = unsigned; // index * 256 + sub-index

    static tEntry describe(const CCANopenObjectEntry& source, unsigned nodeId);
    tAbortCode findEntry(unsigned index, unsigned subIndex) const;
    tAbortCode checkLimits(const tEntry& entry, const QByteArray& data) const;
    bool storeOrRestore(unsigned index, unsigned subIndex, const QByteArray& data, tAbortCode* result);
    void resetValues(unsigned firstIndex, unsigned lastIndex);
    void notify(tNodeEvent event) const;

    std::set<unsigned> m_objects;
    std::map<tKey, tEntry> m_entries;
    tNmtState m_state = statePreOperational;
    std::function<void(tNodeEvent)> m_listener;
};
