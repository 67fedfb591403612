// What becomes of the SDO answers on CAN under a fault.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/CanFrame.h"
#include "Faults.h"
#include "can/SdoServer.h"

/// The right answer, and where in its transfer it stands.
struct tSdoStep {
    tCanFrame answer;
    quint32 number;         // 1: answers the initiate
    QByteArray multiplexor; // of the transfer, 3 bytes
};

/// The side of a kind of fault on CAN. Null pointers change nothing.
struct tCanFault {
    int (*delay)(quint32 argument);                               // milliseconds before the answer
    void (*defects)(quint32 argument, tSdoDefects& defects);      // of the server, from the initiate on
    tCanFrames (*frames)(quint32 argument, const tSdoStep& step); // what is sent in place of the right answer
};

namespace canFaults
{
extern const tCanFault silence, delay, twice, abort, stall, toggle, command, shortFrame, foreign, flood, segment, last,
    filler, empty, surplus, endless;
}

/// How the server behaves in a transfer; `fault` may be null.
tSdoDefects sdoDefects(const tFault* fault);

/// Milliseconds until an answer is sent; `fault` may be null.
int answerDelay(const tFault* fault);

/// The frames to send for an answer; `fault` may be null.
tCanFrames answerFrames(const tFault* fault, const tSdoStep& step);
