// A fake bus with the controller started on it, and texts of received messages for comparison.
// SPDX-License-Identifier: MIT
#pragma once

#include "FakeBus.h"

/// The controller is open, started with index 0, its queue enabled and empty without an error.
struct CStartedBus : CFakeBus {
    CStartedBus()
    {
        can_init(-1, &param);
        can_start(0);
        can_queue_disable();
        can_queue_enable();
    }
};

/// The result of a read from the controller, with the data after success: "0: 11 22", "-30". Adds " touched" when a
/// failed read has changed length or data, or a good one the bytes after the data.
struct CReceived {
    short length = 77;
    BYTE data[10] = { 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5, 0xA5 };

    QString text(int result) const
    {
        const bool filled = result == 0;
        const int count = filled ? qBound(0, int(length), 8) : 0;
        QString text = QString::number(result);
        if (filled)
            text += ":";
        for (int at = 0; at < count; ++at)
            text += QString::asprintf(" %02X", unsigned(data[at]));
        bool touched = filled ? length != count : length != 77;
        for (int at = count; at < int(sizeof data); ++at)
            touched = touched || data[at] != 0xA5;
        return touched ? text + " touched" : text;
    }
};

inline QString received(short object)
{
    CReceived read;
    return read.text(can_receive(object, &read.length, read.data));
}

/// The same with the identifier: "123 0: 11 22"; without one when it has not been stored: "-30".
inline QString queued()
{
    CReceived read;
    uint32_t id = 0xFFFFFFFF;
    const QString text = read.text(can_queue_get_message(&id, &read.length, read.data));
    return id == 0xFFFFFFFF ? text : QString::asprintf("%03X ", id) + text;
}
inline QString receivedId(short object)
{
    CReceived read;
    uint32_t id = 0xFFFFFFFF;
    const QString text = read.text(can_receive_id(object, &read.length, read.data, &id));
    return id == 0xFFFFFFFF ? text : QString::asprintf("%03X ", id) + text;
}

/// So many messages, numbered in their data.
inline void fill(CFakeBus& bus, int count)
{
    for (int message = 0; message < count; ++message)
        bus.inject(0x100, qPrintable(QString::asprintf("%02X %02X", unsigned(message) >> 8, unsigned(message) & 0xFF)));
}
/// Such a message as queued() shows it.
inline QString numbered(int message)
{
    return QString::asprintf("100 0: %02X %02X", unsigned(message) >> 8, unsigned(message) & 0xFF);
}
