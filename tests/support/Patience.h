// How long the tests wait for what is sure to come.
// SPDX-License-Identifier: MIT
#pragma once

#include <QTest>

/// Milliseconds. No test that passes takes so long, on the busiest machine: it only ends one that would otherwise hang.
/// The macros below wait for three times as long before they fail, to tell how much would have been enough: all that is
/// less than the 5 minutes after which the test library ends a function without saying what it has waited for.
inline constexpr int patience = 90'000;

/// The same as an SDO time-out, where an answer is sure to come.
inline constexpr unsigned short sdoPatience = 60'000;

/// QTRY_VERIFY and QTRY_COMPARE, which would give up after 5 s.
#define AWAIT_VERIFY(expression) QTRY_VERIFY_WITH_TIMEOUT((expression), patience)
#define AWAIT_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT((actual), (expected), patience)
