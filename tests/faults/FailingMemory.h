// Memory that runs out: a library before the C library's heap, linked by a test or preloaded into a program.
// SPDX-License-Identifier: MIT
#pragma once

// A program that has the library preloaded takes its fault from the environment:
//   VELMORA_MEMORY_WHILE=FILE    counts while this file is open
//   VELMORA_MEMORY_NTH=N         the allocation that fails; 0, or without it: none
//   VELMORA_MEMORY_ALL=1         all later ones fail, too, also those that are not counted
//   VELMORA_MEMORY_REPORT=FILE   where its end writes the number of allocations

extern "C" {
/// Counts from now on; the `nth` allocation fails, and all later ones if `all` is not 0. 0: none fails, nothing counts.
void failing_memory_arm(long nth, int all);
long failing_memory_count(); ///< allocations since then
}
