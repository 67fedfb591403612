// Reading many entries of a device.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/Network.h"
#include "sheets/Snapshot.h"

#include <functional>

/// A device of which entries are read, one after the other.
struct tDevice {
    CNetwork& network;
    int node;
    CConsole& console;
};

/// Reads the value of the entry into it, as it is held. Without an answer the command ends with `exitNetwork`. An abort
/// (kept in the entry) and a cut answer are told, and the entry has no value afterwards. A value that has not the size
/// of its type is told and kept.
/// @return the exit status for this entry
int readEntry(const tDevice& device, tSnapshotEntry& entry);

/// Reads all entries for which `wanted` holds, with progress; the others lose their value. Whatever ends the command
/// says how many were read.
/// @return the worst exit status of an entry
int readEntries(const tDevice& device, tSnapshot& snapshot, const std::function<bool(const tSnapshotEntry&)>& wanted);

/// Warns of a value of another size than its type has.
void warnOfSize(CConsole& console, const QString& name, int type, qsizetype size);

/// "1018:1, 1018:2": not more than ten of them, and how many more there are.
QString namesOf(const std::vector<const tSnapshotEntry*>& entries);

/// Tells something of these entries, unless there are none: "WHAT1018:1, 1018:2".
void tellEntries(CConsole& console, const char* what, const std::vector<const tSnapshotEntry*>& entries);

/// Whether an entry can be read at all.
bool isReadable(const tSnapshotEntry& entry);

/// The graver one of two exit statuses: no answer, then an abort, then a difference.
int graver(int status, int other);
