// A facade bound to the SocketCAN master on a fake bus, and the frames of the facade's operations as rows.
// SPDX-License-Identifier: MIT
#pragma once

#include "AccessOperations.h"
#include "FakeBus.h"

#include <algorithm>
#include <string_view>

/// A facade that is bound to the master on a fake bus. The queue is empty.
struct tBoundMaster {
    CFakeBus bus;
    CCANopenAccess access;
    bool bound = false;

    tBoundMaster()
    {
        bound = access.initialize(0, -1, &bus.param, 0);
        can_queue_disable();
        can_queue_enable();
    }
    // A read that the node aborts: error 4 and the last abort.
    void abortOnce()
    {
        bus.expect(0x605, "40 00 20 01 00 00 00 00").answer(0x585, "80 00 20 01 02 00 01 06");
        readDomain(access);
    }
};

/// The frames of the operation of the same name.
struct tFrames {
    const char* name;
    uint32_t id;
    const char* request;
    const char* answer; // of node 5; null: none is expected
};

inline constexpr tFrames exchanges[] = {
    { "write", 0x605, "27 00 20 01 41 42 43 00", "60 00 20 01 00 00 00 00" },
    { "read", 0x605, "40 00 20 01 00 00 00 00", "47 00 20 01 41 42 43 00" },
    { "writeUnsigned8", 0x605, "2F 00 20 01 FF 00 00 00", "60 00 20 01 00 00 00 00" },
    { "writeUnsigned16", 0x605, "2B 00 20 01 FF FF 00 00", "60 00 20 01 00 00 00 00" },
    { "writeUnsigned32", 0x605, "23 00 20 01 FF FF FF FF", "60 00 20 01 00 00 00 00" },
    { "readUnsigned8", 0x605, "40 00 20 01 00 00 00 00", "4F 00 20 01 05 00 00 00" },
    { "readUnsigned16", 0x605, "40 00 20 01 00 00 00 00", "4B 00 20 01 05 00 00 00" },
    { "readUnsigned32", 0x605, "40 00 20 01 00 00 00 00", "43 00 20 01 05 00 00 00" },
    { "writeInteger8", 0x605, "2F 00 20 01 FF 00 00 00", "60 00 20 01 00 00 00 00" },
    { "writeInteger16", 0x605, "2B 00 20 01 FE FF 00 00", "60 00 20 01 00 00 00 00" },
    { "writeInteger32", 0x605, "23 00 20 01 00 00 00 80", "60 00 20 01 00 00 00 00" },
    { "readInteger8", 0x605, "40 00 20 01 00 00 00 00", "4F 00 20 01 05 00 00 00" },
    { "readInteger16", 0x605, "40 00 20 01 00 00 00 00", "4B 00 20 01 05 00 00 00" },
    { "readInteger32", 0x605, "40 00 20 01 00 00 00 00", "43 00 20 01 05 00 00 00" },
    { "startRemoteNode", 0x000, "01 05", nullptr },
    { "stopRemoteNode", 0x000, "02 05", nullptr },
    { "enterPreOperationalState", 0x000, "80 05", nullptr },
    { "resetNode", 0x000, "81 05", nullptr },
    { "resetCommunication", 0x000, "82 05", nullptr },
    { "transmitMessage", 0x181, "41 42 43", nullptr },
};

/// A test's rows: one for each operation, or for each that expects an answer.
inline void addExchanges(bool answeredOnly = false)
{
    QTest::addColumn<int>("place");
    for (const tFrames& frames : exchanges)
        if (frames.answer != nullptr || !answeredOnly)
            QTest::newRow(frames.name) << int(&frames - exchanges);
}

/// The exchange of the row that is being tested.
inline const tFrames& fetchedFrames()
{
    QFETCH(int, place);
    return exchanges[place];
}

inline const tOperation& operationNamed(std::string_view name)
{
    return *std::find_if(std::begin(operations), std::end(operations),
                         [name](const tOperation& operation) { return operation.name == name; });
}
