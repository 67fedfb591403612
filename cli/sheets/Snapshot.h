// The values of a device or a file: what commands save, compare and restore.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SheetFile.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

class CDataSheet;

struct tSnapshotEntry {
    unsigned index = 0;
    unsigned subIndex = 0;
    QString name;
    int type = 0; ///< as `CCANopenObjectEntry::getDataType`
    int access = 0;
    /// The default value in the sheet is a number that depends on the node-id ("$NODEID+0x180").
    bool relative = false;
    /// The bytes as on the bus, of relative entries minus the node-id; none when the value is not known.
    std::optional<QByteArray> value;
    /// Why the device did not give the value; 0 otherwise.
    std::uint32_t abortCode = 0;
};

/// In the order of the sheet. An index and sub-index that is described twice is there once: the first one counts, as in
/// a simulated device.
struct tSnapshot {
    unsigned nodeId = 0; ///< 0: not known
    QString sheet;       ///< the name of the file with the descriptions; empty when not known
    std::vector<tSnapshotEntry> entries;
};

/// "1018:1", as `parameterText` writes it.
QString nameOf(const tSnapshotEntry& entry);

/// A value of the entry as it is on the bus of the node. Relative numbers are cut to their width.
QByteArray valueOfNode(const tSnapshotEntry& entry, const QByteArray& held, unsigned nodeId);
/// The reverse: what the entry holds for a value of the node.
QByteArray valueToHold(const tSnapshotEntry& entry, const QByteArray& onBus, unsigned nodeId);

/// The entries of a sheet that was loaded, with its default values, or with the values of a configuration file. A text
/// that is no value of its type gives none, and so does one that depends on a node-id which is not known (0).
tSnapshot snapshotOf(const CDataSheet& sheet, unsigned nodeId);

/// Reads a data sheet (.eds), a device configuration file (.dcf) or a dump (.csv, .json), by the end of the name in any
/// case. Ends the command with `exitUsage` when the file cannot be read or is none of these.
tSnapshot loadSnapshot(const QString& fileName);
