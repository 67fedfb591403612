// Ctrl-C.
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

/// From now on, SIGINT and SIGTERM end waiting system calls and are only noted. The signal is repeated to the process
/// every second until it ends, so that a wait that begins just after the first one ends, too.
void noteInterrupts();

/// Whether a signal was noted.
bool isInterrupted();

/// Sleeps until then; ends as `endWhenInterrupted` does when a signal is noted before.
void sleepUntil(std::chrono::steady_clock::time_point moment);

/// Ends the command with `exitInterrupted` when a signal was noted.
void endWhenInterrupted();
