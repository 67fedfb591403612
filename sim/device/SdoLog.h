// One SDO transfer as a line of the log, the same for every front-end.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// The parts of a line. `value` is what was written; empty for a read. `result` is the outcome or the value read.
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
