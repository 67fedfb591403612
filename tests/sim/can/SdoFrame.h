// CAN frames as tests write and read them.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/CanFrame.h"

#include <QByteArray>
#include <QByteArrayList>

/// "40 08 10 00" to bytes.
inline QByteArray bytes(const QByteArray& hex)
{
    return QByteArray::fromHex(hex);
}

/// Bytes to "40 08 10 00".
inline QByteArray hex(const QByteArray& bytes)
{
    return bytes.toHex(' ').toUpper();
}

/// "585 40 08 10 00".
inline QByteArray frameText(const tCanFrame& frame)
{
    return (QByteArray::number(frame.cobId, 16).toUpper().rightJustified(3, '0') + ' ' + hex(frame.data)).trimmed();
}
