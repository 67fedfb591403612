// Writing the saved values of a device back.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/Network.h"

#include <QString>
#include <QStringList>

#include <set>

struct tRestoreOptions {
    tNetworkOptions network;
    int node = 0;
    QString file;               ///< a configuration file or a dump
    bool dryRun = false;        ///< only list what would be written
    bool store = false;         ///< let the device store its parameters (1010) at the end
    bool force = false;         ///< also to a device that is another one
    bool keepGoing = false;     ///< go on after a parameter that could not be written
    bool start = true;          ///< start a node again whose state before is not known
    std::set<unsigned> include; ///< indexes that are left out otherwise
    std::set<unsigned> exclude; ///< indexes to leave out
};

/// Writes the values of the file that the device has otherwise, and reads them back. Refuses another device (1000 and
/// the first two entries of 1018) unless forced, and a file with texts that are no values. Read-only entries are left
/// out, and unless they are included so are write-only ones, 1003, 1010, 1011 and 1F50 to 1F5F. When PDO parameters are
/// among them, the node is brought into pre-operational for the time. What belongs together (a PDO, SYNC) is written as
/// a whole: when a part of it is refused, it gets the values again that the device had.
/// @return the exit status
int restore(const tRestoreOptions& options, CConsole& console);
