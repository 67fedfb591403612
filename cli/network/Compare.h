// The differences between two sets of values: devices, dumps, configuration files, data sheets.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/Network.h"
#include "sheets/Snapshot.h"

#include <QStringList>

#include <vector>

/// An entry whose values differ.
struct tDifference {
    const tSnapshotEntry* first; ///< of the first snapshot
    QString firstValue;          ///< as text
    QString secondValue;         ///< as text; "-" when the second one has no such entry
    bool byItself;               ///< the device changes it by itself: it is read-only, or 1001 or 1003
};

/// Compares the entries whose value both know, in the order of the first; an entry that only one of them describes is a
/// difference, too, when its value is known. A text that is no value differs from everything but itself. Values that
/// depend on the node-id are compared relative to it.
/// The result points into `first` and `second`.
std::vector<tDifference> compareSnapshots(const tSnapshot& first, const tSnapshot& second);

enum tCompareFormat { compareTable, compareCsv, compareJson };

struct tCompareOptions {
    tNetworkOptions network; ///< no interface: only files are compared
    int node = 0;
    QString sheet;     ///< with the descriptions of the device's entries; empty: the file that it is compared with
    QStringList files; ///< one, with a device; two, without
    tCompareFormat format = compareTable;
    bool all = false; ///< count what the device changes by itself
};

/// Compares and prints the differences. @return the exit status: `exitDifference` when there are any that count
int compare(const tCompareOptions& options, CConsole& console);
