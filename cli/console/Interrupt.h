// Ctrl-C.
// SPDX-License-Identifier: MIT
#pragma once

/// From now on, SIGINT and SIGTERM end waiting system calls and are only noted. The signal is repeated to the process
/// every second until it ends, so that a wait that begins just after the first one ends, too.
void noteInterrupts();

/// Whether a signal was noted.
bool isInterrupted();

/// Ends the command with `exitInterrupted` when a signal was noted.
void endWhenInterrupted();
