// An SDO transfer on CAN that has ended, and its line in the log.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/AbortCodes.h"

#include <QByteArray>

class CSimulatedNode;

/// `data` is what was written, as far as it got, or the whole value that was to be read.
struct tSdoTransfer {
    bool writes = false;
    unsigned index = 0;
    unsigned subIndex = 0;
    QByteArray data;
    tAbortCode abortCode = abortNone;
};

/// `node 5 read 0x2000 0x01 u16 = 0x1234`, `node 5 read 0x5FFF 0x00 d = ERROR: 0x06020000`. Values on CAN carry no data
/// type: that of the entry is shown, or "d" (any bytes) where the length is not that of the type.
QByteArray describeTransfer(unsigned nodeId, const CSimulatedNode& node, const tSdoTransfer& transfer);
