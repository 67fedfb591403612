// System calls that fail, for code that calls them from inside Qt: a library that stands before the C library, linked
// by a test or preloaded into a program.
// SPDX-License-Identifier: MIT
#pragma once

// Counted, and failed, are calls about files below one folder: by path, or by a descriptor opened there. All others
// reach the system unseen. A program that has the library preloaded takes its fault from the environment:
//   VELMORA_FAIL_BELOW=FOLDER   files below it
//   VELMORA_FAIL_NTH=N          the first call is 1; 0, or without it: none fails
//   VELMORA_FAIL_ERROR=NUMBER   errno
//   VELMORA_FAIL_HOW=NUMBER     a tFailure
//   VELMORA_FAIL_REPORT=FILE    where its end writes the number of descriptors left open and of calls that failed, then
//                               the names of all calls, a line each

enum tFailure : int {
    failOnce,    ///< the call alone
    failForEver, ///< this call and all later ones of its name
    failShort    ///< a read or write transfers one byte; other calls succeed
};

extern "C" {
/// Watches that folder from now on and counts from 0.
void failing_calls_watch(const char* folder);
/// Makes the `nth` call from now on fail and counts from 0; with `nth` 0, none fails.
void failing_calls_arm(int nth, int error, int how);
int failing_calls_count();             ///< calls since then
int failing_calls_failed();            ///< those of them that failed
int failing_calls_open();              ///< descriptors of files below the folder that are open
const char* failing_calls_name(int n); ///< of the n-th call, from 1
}
