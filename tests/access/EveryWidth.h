// Integers of every width through the facade.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"

#include <QTest>

/// Reads an entry of 0xFE, 0xFEDC and 0xFEDCBA98 in each width, unsigned and then signed.
inline void checkEveryWidth(CCANopenAccess& access)
{
    uint8_t unsigned8 = 0;
    uint16_t unsigned16 = 0;
    uint32_t unsigned32 = 0;
    int8_t integer8 = 0;
    int16_t integer16 = 0;
    int32_t integer32 = 0;
    QVERIFY(access.readUnsigned8(5, 0x2000, 1, &unsigned8));
    QVERIFY(access.readUnsigned16(5, 0x2000, 1, &unsigned16));
    QVERIFY(access.readUnsigned32(5, 0x2000, 1, &unsigned32));
    QVERIFY(access.readInteger8(5, 0x2000, 1, &integer8));
    QVERIFY(access.readInteger16(5, 0x2000, 1, &integer16));
    QVERIFY(access.readInteger32(5, 0x2000, 1, &integer32));
    QCOMPARE(unsigned8, uint8_t(0xFE));
    QCOMPARE(unsigned16, uint16_t(0xFEDC));
    QCOMPARE(unsigned32, uint32_t(0xFEDCBA98));
    QCOMPARE(integer8, int8_t(-2));
    QCOMPARE(integer16, int16_t(-292));
    QCOMPARE(integer32, int32_t(-19088744));
}
