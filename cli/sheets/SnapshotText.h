// Snapshots as text.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Snapshot.h"

#include <QByteArray>
#include <QStringList>

/// The columns of a dump, which are also the keys of its entries in JSON.
QStringList dumpColumns();

/// A line for each entry, after one with the names of the columns. The value is `dumpedText` and "size" the number of
/// its bytes, empty when the value is not known; "abort" is the abort code or empty.
QByteArray snapshotAsCsv(const tSnapshot& snapshot);

/// {"nodeId":5,"sheet":"FILE","entries":[{...},...]}: the columns of the CSV file; sub-index and size as numbers, null
/// for what is empty there.
QByteArray snapshotAsJson(const tSnapshot& snapshot);

/// The columns of the CSV file for people: columns of text, foreign characters made visible and long texts cut.
QByteArray snapshotAsTable(const tSnapshot& snapshot);
