// CAN frames as texts in the format of candump's log, for transcripts.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstring>

#include <linux/can.h>

// Frames read as in the log of candump: "605#4008100000000000", "605#R" for a remote frame, with its length as in
// "605#R8", and eight digits for an extended identifier.

inline QString frameText(const can_frame& frame)
{
    const bool extended = (frame.can_id & CAN_EFF_FLAG) != 0;
    const canid_t id = frame.can_id & (extended ? CAN_EFF_MASK : CAN_SFF_MASK);
    const QString text = QStringLiteral("%1#").arg(id, extended ? 8 : 3, 16, QLatin1Char('0')).toUpper();
    if ((frame.can_id & CAN_RTR_FLAG) != 0)
        return text + (frame.len == 0 ? QStringLiteral("R") : QStringLiteral("R%1").arg(frame.len));
    const QByteArray data(reinterpret_cast<const char*>(frame.data), frame.len);
    return text + QString::fromLatin1(data.toHex().toUpper());
}

inline can_frame frameFromText(const QString& text)
{
    const QString id = text.section(u'#', 0, 0);
    const QString rest = text.section(u'#', 1);
    can_frame frame = {};
    frame.can_id = id.toUInt(nullptr, 16) | (id.size() > 3 ? CAN_EFF_FLAG : 0);
    if (rest.startsWith(u'R')) {
        frame.can_id |= CAN_RTR_FLAG;
        frame.len = static_cast<__u8>(rest.mid(1).toUInt());
        return frame;
    }
    const QByteArray data = QByteArray::fromHex(rest.toLatin1());
    frame.len = static_cast<__u8>(data.size());
    std::memcpy(frame.data, data.constData(), static_cast<std::size_t>(data.size()));
    return frame;
}
