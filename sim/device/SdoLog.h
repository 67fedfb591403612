// One SDO transfer as a line of the log, alike on every front-end.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/SdoServer.h"

#include <QByteArray>
#include <QtGlobal>

/// The items of a line. `value` is what was written; empty for a read.
struct tSdoLine {
    unsigned node;
    const char* verb;
    unsigned index;
    unsigned subIndex;
    const char* type;
    QByteArray value;
    QByteArray result;
};

/// `node 5 read 0x2000 0x01 u16 = 0x1234`, `node 5 write 0x2010 0x00 d "text" = OK`.
QByteArray sdoLine(const tSdoLine& line);

/// A transfer on the bus, where values carry no type: that of the entry is taken, or "d" where the bytes are no value
/// of it. What was aborted ends as `= ERROR: 0x06020000`.
QByteArray describeTransfer(unsigned nodeId, const CSimulatedNode& node, const tSdoTransfer& transfer);
