// Ctrl-C.
// SPDX-License-Identifier: MIT
#pragma once

#include "console/ExitStatus.h"

#include <chrono>

/// From now on, SIGINT and SIGTERM end the program at once with `exitInterrupted`: for work that can be given up
/// anywhere.
void endAtInterrupts();

/// From now on, SIGINT and SIGTERM end waiting system calls and are only noted. The signal is repeated to the process
/// every second until it ends, so that a wait that begins just after the first one ends, too. Some waits do not end by
/// a signal, such as those for a file system: the program ends at once when another one comes after a second, and
/// after three seconds.
void noteInterrupts();

/// Whether a signal was noted.
bool isInterrupted();

/// Sleeps until then; ends as `endWhenInterrupted` does when a signal is noted before.
void sleepUntil(std::chrono::steady_clock::time_point moment);

/// Ends the command with `exitInterrupted` when a signal was noted.
void endWhenInterrupted();

/// Does the work. When Ctrl-C ends it, `whatIsDone` is called, whose text goes into the message.
template <typename Work, typename WhatIsDone>
void tellWhenInterrupted(Work work, WhatIsDone whatIsDone)
{
    try {
        work();
    } catch (const tEnd& end) {
        if (end.status != exitInterrupted)
            throw;
        throw tEnd{ exitInterrupted, QStringLiteral("interrupted: ") + whatIsDone() };
    }
}
