// A data frame on the simulated CAN bus.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QtGlobal>

/// `cobId` has 11 bits, `data` up to 8 bytes.
struct tCanFrame {
    quint32 cobId = 0;
    QByteArray data;

    friend bool operator==(const tCanFrame&, const tCanFrame&) = default;
};

using tCanFrames = QList<tCanFrame>;
