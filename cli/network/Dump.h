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
    std::optional<tDumpFormat> format; ///< not given: by the end of the file's name, else a table
};

/// Reads all entries of the sheet that can be read, and writes them. Aborts are listed on standard error and do not end
/// it. Without an answer nothing is written.
/// @return the exit status: `exitAborted` when the device aborted any of the transfers
int dumpDevice(const tDumpOptions& options, CConsole& console);
