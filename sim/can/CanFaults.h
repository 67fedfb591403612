// The faults on CAN: their kinds, and what each does to the answers of an SDO transfer.
// SPDX-License-Identifier: MIT
#pragma once

#include "Faults.h"
#include "can/CanFrame.h"
#include "can/SdoServer.h"

/// The right answer, and its place in the transfer.
struct tSdoStep {
    tCanFrame answer;
    quint32 number;         // 1: answers the initiate
    QByteArray multiplexor; // of the transfer, 3 bytes
};

/// The kinds that the devices on CAN know. Faults of other kinds hit no transfer.
tFaultKinds canFaultKinds();

/// The defects of the server in a transfer; `fault` may be null.
tSdoDefects sdoDefects(const tFault* fault);

/// Milliseconds until an answer is sent; `fault` may be null.
int frameDelay(const tFault* fault);

/// The frames to send for an answer; `fault` may be null.
tCanFrames answerFrames(const tFault* fault, const tSdoStep& step);
