// How long tests wait for an event that is sure to come.
// SPDX-License-Identifier: MIT
#pragma once

#include <QTest>

/// Milliseconds. No test that passes takes so long, on the busiest machine: it only ends one that would otherwise hang.
/// Less than the 5 minutes after which the test library ends a function without saying what it has waited for, when the
/// program is started by hand.
inline constexpr int patience = 120'000;

/// The same as an SDO time-out, where an answer is sure to come.
inline constexpr unsigned short sdoPatience = 60'000;

/// QTRY_VERIFY and QTRY_COMPARE, with patience. Those of Qt 6.8 count milliseconds in 64 bits and narrow them to
/// an int, inside the test.
#define AWAIT_VERIFY(expression) QVERIFY(QTest::qWaitFor([&] { return static_cast<bool>(expression); }, patience))
#define AWAIT_COMPARE(actual, expected)                                                                                \
    do {                                                                                                               \
        (void)QTest::qWaitFor([&] { return (actual) == (expected); }, patience);                                       \
        QCOMPARE(actual, expected);                                                                                    \
    } while (false)
