// Saving the values of a device.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/Network.h"

#include <QString>

enum tDumpFormat { dumpTable, dumpCsv, dumpJson, dumpDcf };

struct tDumpOptions {
    tNetworkOptions network;
    int node = 0;
    QString sheet;
    QString output;                    ///< a file; empty: standard output
    std::optional<tDumpFormat> format; ///< not given: by the end of the file's name; a table on standard output
};

/// Reads all entries of the sheet that can be read, and writes them. Aborts are listed on standard error and do not end
/// it, and entries that have brought no value are named at the end. Without an answer nothing is written. A file that
/// is the sheet, or whose name tells no format, ends the command with `exitUsage` before anything is read; but the
/// configuration that is the sheet is renewed.
/// @return the exit status: `exitAborted` when the device aborted any of the transfers
int dumpDevice(const tDumpOptions& options, CConsole& console);
