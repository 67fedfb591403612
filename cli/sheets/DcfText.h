// The text of a device configuration file.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Snapshot.h"

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <vector>

struct tDcfText {
    QByteArray text;
    /// Places in the snapshot of the values that are not in the text: a line of a sheet cannot hold them, or the sheet
    /// has no such entry.
    std::vector<std::size_t> unwritten;
};

/// The bytes of the sheet with the values of the snapshot as "ParameterValue", and with its node-id, if known, in the
/// section of the device's commissioning. Nothing else changes: line ends, character set and comments are the sheet's.
///
/// A "ParameterValue" is put in place of the entry's last one, else after its last key. A configuration file as the
/// sheet loses the values of entries for which the snapshot has none, or none that can be written: the new file says
/// what is known of the device, not what was known of another one. An entry that the reader of sheets does not take,
/// such as the second description of a sub-index, stays as it is.
///
/// Ends the command with `exitUsage` when the sheet does not load.
tDcfText dcfText(const QString& sheetName, const tSnapshot& snapshot);
