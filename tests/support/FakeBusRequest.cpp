// Frames of the fake CAN bus as bytes and as text.
// SPDX-License-Identifier: MIT
#include "FakeBusRequest.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <linux/can.h>

namespace
{
QString hex(const __u8* data, int count)
{
    return QString(QByteArray(reinterpret_cast<const char*>(data), count).toHex(' ').toUpper());
}
} // namespace

CFakeBusRequest& CFakeBusRequest::answer(uint32_t id, const char* data)
{
    m_answers.push_back({ m_delay, fakeBusFrame(id, -1, data) });
    return *this;
}

CFakeBusRequest& CFakeBusRequest::after(int milliseconds)
{
    m_delay += milliseconds * qint64(1000);
    return *this;
}

QByteArray fakeBusFrame(uint32_t id, int length, const char* data)
{
    can_frame frame = {};
    const QByteArray bytes = QByteArray::fromHex(data);
    std::memset(frame.data, 0xEE, sizeof frame.data);
    std::memcpy(frame.data, bytes.constData(), size_t(qMin<qsizetype>(bytes.size(), sizeof frame.data)));
    frame.can_id = id;
    frame.len = __u8(length < 0 ? bytes.size() : length);
    return QByteArray(reinterpret_cast<const char*>(&frame), sizeof frame);
}

QString fakeBusText(const void* bytes, size_t size)
{
    can_frame frame;
    if (size != sizeof frame)
        return QString("%1 bytes").arg(size);
    std::memcpy(&frame, bytes, sizeof frame);
    const int length = qMin<int>(frame.len, CAN_MAX_DLEN);
    QString text = QString::number(frame.can_id, 16).toUpper().rightJustified(frame.can_id > CAN_SFF_MASK ? 8 : 3, '0');
    text += length > 0 ? ": " + hex(frame.data, length) : QString(":");
    const auto used = [](__u8 byte) { return byte != 0; };
    if (std::any_of(frame.data + length, std::end(frame.data), used))
        text += " | " + hex(frame.data + length, CAN_MAX_DLEN - length);
    const __u8 head[] = { __u8(frame.len - length), frame.__pad, frame.__res0, frame.len8_dlc };
    if (std::any_of(std::begin(head), std::end(head), used))
        text += " || " + hex(head, sizeof head);
    return text;
}
