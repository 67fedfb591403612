// How velmora-cli ends.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The exit statuses of the program, the same for all commands.
enum tExitStatus : int {
    exitDone = 0,
    exitDifference = 1,    ///< a difference or a finding
    exitUsage = 2,         ///< wrong usage, or a file that cannot be read or written
    exitNetwork = 3,       ///< no interface, or no answer
    exitAborted = 4,       ///< the device aborted a transfer
    exitInterrupted = 130, ///< Ctrl-C
};

/// Thrown where a command cannot go on. `message`, unless it is empty, goes to standard error.
struct tEnd {
    tExitStatus status;
    QString message;
};
