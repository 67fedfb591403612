// The facade's operations as rows.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"
#include "GatewayLink.h"

#include <QTest>

inline constexpr int gatewayLibrary = 700;
inline constexpr long readOnly = 0x06010002;

/// How the result of an operation is stored.
enum tEnding { transfer, plain };

struct tOperation {
    const char* name;
    const char* line;   // the command sent; null: none
    const char* answer; // with which it succeeds
    tEnding ending;
    bool (*run)(CCANopenAccess&);
};

template <typename Value>
bool readValue(CCANopenAccess& access, bool (CCANopenAccess::*read)(BYTE, WORD, BYTE, Value*))
{
    Value value = 0;
    return (access.*read)(5, 0x2000, 1, &value);
}

inline bool readDomain(CCANopenAccess& access)
{
    short length = 0;
    BYTE data[8];
    return access.read(5, 0x2000, 1, &length, data, sizeof data);
}

inline bool readQueue(CCANopenAccess& access)
{
    uint32_t id = 0;
    short length = 0;
    BYTE data[8];
    return access.readQueue(reinterpret_cast<WORD*>(&id), &length, data);
}

inline bool readVersion(CCANopenAccess& access, bool (CCANopenAccess::*version)(char*, short))
{
    char text[100];
    return (access.*version)(text, sizeof text);
}

inline constexpr BYTE sample[] = { 'A', 'B', 'C', 0 };
using tAccess = CCANopenAccess;

inline const tOperation operations[] = {
    { "reset", "[#] init 6\r\n", "[#] OK\r\n", plain, [](tAccess& access) { return access.reset(6); } },
    { "write", "[#] 5 write 0x2000 0x1 d QUJD\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.write(5, 0x2000, 1, 3, sample); } },
    { "read", "[#] 5 read 0x2000 0x1 d\r\n", "[#] QUJD\r\n", transfer, &readDomain },
    { "writeUnsigned8", "[#] 5 write 0x2000 0x1 u8 0xFF\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.writeUnsigned8(5, 0x2000, 1, 255); } },
    { "writeUnsigned16", "[#] 5 write 0x2000 0x1 u16 0xFFFF\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.writeUnsigned16(5, 0x2000, 1, 65535); } },
    { "writeUnsigned32", "[#] 5 write 0x2000 0x1 u32 0xFFFFFFFF\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.writeUnsigned32(5, 0x2000, 1, 4294967295); } },
    { "readUnsigned8", "[#] 5 read 0x2000 0x1 u8\r\n", "[#] 5\r\n", transfer,
      [](tAccess& access) { return readValue(access, &tAccess::readUnsigned8); } },
    { "readUnsigned16", "[#] 5 read 0x2000 0x1 u16\r\n", "[#] 5\r\n", transfer,
      [](tAccess& access) { return readValue(access, &tAccess::readUnsigned16); } },
    { "readUnsigned32", "[#] 5 read 0x2000 0x1 u32\r\n", "[#] 5\r\n", transfer,
      [](tAccess& access) { return readValue(access, &tAccess::readUnsigned32); } },
    { "writeInteger8", "[#] 5 write 0x2000 0x1 u8 0xFF\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.writeInteger8(5, 0x2000, 1, -1); } },
    { "writeInteger16", "[#] 5 write 0x2000 0x1 u16 0xFFFE\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.writeInteger16(5, 0x2000, 1, -2); } },
    { "writeInteger32", "[#] 5 write 0x2000 0x1 u32 0x80000000\r\n", "[#] OK\r\n", transfer,
      [](tAccess& access) { return access.writeInteger32(5, 0x2000, 1, INT32_MIN); } },
    { "readInteger8", "[#] 5 read 0x2000 0x1 u8\r\n", "[#] 5\r\n", transfer,
      [](tAccess& access) { return readValue(access, &tAccess::readInteger8); } },
    { "readInteger16", "[#] 5 read 0x2000 0x1 u16\r\n", "[#] 5\r\n", transfer,
      [](tAccess& access) { return readValue(access, &tAccess::readInteger16); } },
    { "readInteger32", "[#] 5 read 0x2000 0x1 u32\r\n", "[#] 5\r\n", transfer,
      [](tAccess& access) { return readValue(access, &tAccess::readInteger32); } },
    { "setSDOTimeout", "[#] set sdo_timeout 500\r\n", "[#] OK\r\n", plain,
      [](tAccess& access) { return access.setSDOTimeout(500, nullptr); } },
    { "startRemoteNode", "[#] 5 start\r\n", "[#] OK\r\n", plain,
      [](tAccess& access) { return access.startRemoteNode(5); } },
    { "stopRemoteNode", "[#] 5 stop\r\n", "[#] OK\r\n", plain,
      [](tAccess& access) { return access.stopRemoteNode(5); } },
    { "enterPreOperationalState", "[#] 5 preoperational\r\n", "[#] OK\r\n", plain,
      [](tAccess& access) { return access.enterPreOperationalState(5); } },
    { "resetNode", "[#] 5 reset node\r\n", "[#] OK\r\n", plain, [](tAccess& access) { return access.resetNode(5); } },
    { "resetCommunication", "[#] 5 reset communication\r\n", "[#] OK\r\n", plain,
      [](tAccess& access) { return access.resetCommunication(5); } },
    { "transmitMessage", "[#] send 0x181 3\r\n 0x41 0x42 0x43\r\n", "[#] OK\r\n", plain,
      [](tAccess& access) { return access.transmitMessage(0x181, 3, sample); } },
    { "readQueue", "[#] receive\r\n", "[#] 0x181 1 0x41\r\n", plain, &readQueue },
    { "getHardwareVersion", "[#] info hardware\r\n", "[#] text\r\n", plain,
      [](tAccess& access) { return readVersion(access, &tAccess::getHardwareVersion); } },
    { "getFirmwareVersion", "[#] info software\r\n", "[#] text\r\n", plain,
      [](tAccess& access) { return readVersion(access, &tAccess::getFirmwareVersion); } },
};

/// A test's rows: one for each operation.
inline void addOperations()
{
    QTest::addColumn<int>("place");
    for (const tOperation& operation : operations)
        QTest::newRow(operation.name) << static_cast<int>(&operation - operations);
}

/// The operation of the row that is being tested.
inline const tOperation& fetched()
{
    QFETCH(int, place);
    return operations[place];
}
