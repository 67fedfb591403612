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
    /// The value is held minus the node-id, since it depends on it.
    bool relative = false;
    /// The bytes as on the bus, of relative values minus the node-id; none when the value is not known.
    std::optional<QByteArray> value;
    /// Why the device did not give the value; none otherwise.
    std::optional<std::uint32_t> abortCode;
    /// What the file adds to the node-id: 0x180 for "$NODEID+0x180"; none where the entry does not depend on it.
    std::optional<quint64> offset;
    /// The text that the file has in place of a value, where it is no value of the type; empty otherwise.
    QString wrongText;
    /// In a configuration file what the sheet gives, for an entry without a value of its own.
    std::optional<QByteArray> defaultValue;
};

/// In the order of the sheet. An index and sub-index that is described twice is there once: the first one counts, as in
/// a simulated device.
struct tSnapshot {
    unsigned nodeId = 0; ///< 0: not known
    QString sheet;       ///< the name of the file with the descriptions; empty when not known
    std::vector<tSnapshotEntry> entries;
    bool isDump = false; ///< a device was asked for the values: one that is missing could not be read
};

/// "1018:1", as `parameterText` writes it.
QString nameOf(const tSnapshotEntry& entry);

/// The value of the entry, which is known, as it is on the bus of the node. Relative numbers are cut to their width.
QByteArray valueOfNode(const tSnapshotEntry& entry, unsigned nodeId);
/// The reverse: gives the entry a value of the node. It is held relative where it is made of the node-id as the value
/// of the file is: their low seven bits, which hold the node-id in a COB-ID, are the same. So an identifier follows the
/// node, and so does one with other flags or another function code, but neither 0 nor the identifier of another node.
void holdValue(tSnapshotEntry& entry, const QByteArray& onBus, unsigned nodeId);

/// The entries of a sheet that was loaded, with its default values, or with the values of a configuration file. A text
/// that is no value of its type is kept as such, and so is one that is no sum with the node-id where that is not known
/// (0).
tSnapshot snapshotOf(const CDataSheet& sheet, unsigned nodeId);

/// Reads a data sheet (.eds), a device configuration file (.dcf) or a dump (.csv, .json), by the end of the name in any
/// case. Ends the command with `exitUsage` when the file cannot be read or is none of these.
tSnapshot loadSnapshot(const QString& fileName);
