// A fake bus with the master started on it, its exchanges with the SDO server of node 5, and results of transfers.
// One file, although long: the tests of the SDO client share all of it.
// SPDX-License-Identifier: MIT
#pragma once

#include "FakeBus.h"
#include "cop/cop_api.h"
#include "cop/cop_sdo.h"

#include <QTest>

// The message objects that the SDO client uses.
constexpr short transmitObject = 0;
constexpr short receiveObject = 1;

/// The master is started, its queue is empty and the SDO time-out is 500 ms. All transfers here are about the object
/// 2008, sub-index 1, of node 5: multiplexor 08 20 01.
struct CSdoBus : CFakeBus {
    CSdoBus()
    {
        cop_init(-1, &param, 0);
        can_queue_disable();
        can_queue_enable();
        sdo_timeout(500);
    }

    /// Expects the client's next frame and gives the server's answer, if there is one.
    CFakeBusRequest& talk(const char* request, const char* answer = nullptr)
    {
        CFakeBusRequest& sent = expect(0x605, request);
        return answer != nullptr ? sent.answer(0x585, answer) : sent;
    }

    /// The segments of a download of `data`, without its initiate.
    void talkDownloadSegments(const QByteArray& data)
    {
        BYTE toggle = 0;
        for (qsizetype at = 0; at < data.size(); at += 7, toggle ^= 0x10)
            talk(segment(data, at, toggle), toggle != 0 ? "30 00 00 00 00 00 00 00" : "20 00 00 00 00 00 00 00");
    }

    /// The segments of an upload of `data`, without its initiate: one empty segment when there are no data.
    void talkUploadSegments(const QByteArray& data)
    {
        BYTE toggle = 0;
        for (qsizetype at = 0; at == 0 || at < data.size(); at += 7, toggle ^= 0x10)
            talk(toggle != 0 ? "70 00 00 00 00 00 00 00" : "60 00 00 00 00 00 00 00", segment(data, at, toggle));
    }

    // The segment with the seven bytes of `data` from `at` on, fewer and marked if it is the last; in hexadecimal.
    static QByteArray segment(const QByteArray& data, qsizetype at, BYTE toggle)
    {
        const QByteArray bytes = data.mid(at, 7);
        const bool last = at + 7 >= data.size();
        QByteArray frame(1, char(toggle | (7 - bytes.size()) << 1 | (last ? 1 : 0)));
        return (frame + bytes).leftJustified(8, '\0').toHex(' ');
    }
};

/// Bytes 01 02 03 and so on, 00 after FF.
inline QByteArray sampleBytes(int count)
{
    QByteArray bytes;
    for (int at = 1; at <= count; ++at)
        bytes += char(at);
    return bytes;
}

inline QString hexText(const QByteArray& bytes)
{
    return bytes.toHex(' ').toUpper();
}

/// A result as "0", "-50" or, for an abort code, "06010002". Adds what is wrong after the transfer: cop_error must hold
/// the result, and the two message objects must be free.
inline QString ended(int32_t result)
{
    QString text = result > 0 ? QString::asprintf("%08X", unsigned(result)) : QString::number(result);
    if (cop_error != result)
        text += QString(", cop_error %1").arg(cop_error);
    CAN_STATE state = can_state;
    short length = 0;
    BYTE data[8];
    if (state.b.can_stopped == 0) {
        const short transmitter = can_transmit(transmitObject, 0, nullptr);
        const short receiver = can_receive(receiveObject, &length, data);
        if (transmitter != -93 || receiver != -93)
            text += QString(", objects %1 %2").arg(transmitter).arg(receiver);
    }
    return text;
}

/// Writes the first `count` bytes of the sample.
inline QString written(int count)
{
    const QByteArray data = sampleBytes(count);
    return ended(sdo_write(5, 0x2008, 1, short(count), reinterpret_cast<const BYTE*>(data.constData())));
}

/// Reads into a buffer of `size` bytes: "0: 01 02 03", with " | 00" when a zero byte has been stored after the data. A
/// failure is its result alone: "-50". Adds the length after a failure if it is not 0, and bytes changed elsewhere.
inline QString readInto(int size)
{
    constexpr int guard = 32;
    const int room = qMax(size, 0);
    QByteArray memory(guard + room + guard, char(0xA5));
    short length = 77;
    BYTE* data = reinterpret_cast<BYTE*>(memory.data()) + guard;
    const int32_t result = sdo_read(5, 0x2008, 1, &length, data, short(size));
    QString text = ended(result);
    if (result == 0 && length >= 0 && length <= room) {
        text += length > 0 ? ": " + hexText(memory.mid(guard, length)) : QString(":");
        if (length < room && data[length] == 0) {
            text += " | 00";
            data[length] = 0xA5;
        }
        if (memory.mid(guard + length, room - length).count(char(0xA5)) != room - length)
            text += ", bytes after the data changed";
    } else if (length != 0) {
        text += QString(", length %1").arg(length);
    }
    if (memory.first(guard).count(char(0xA5)) != guard || memory.last(guard).count(char(0xA5)) != guard)
        text += ", bytes outside changed";
    return text;
}

/// Rows of node, index and sub-index for a call, and the bytes of index and sub-index in its frames.
inline void addPlaces()
{
    QTest::addColumn<int>("node");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("subindex");
    QTest::addColumn<QByteArray>("multiplexor");
    QTest::newRow("node 1") << 1 << 0x1017 << 0 << QByteArray("17 10 00");
    QTest::newRow("node 127") << 127 << 0x2008 << 1 << QByteArray("08 20 01");
    QTest::newRow("index 0000") << 5 << 0 << 0 << QByteArray("00 00 00");
    QTest::newRow("index FFFF") << 5 << 0xFFFF << 0xFF << QByteArray("FF FF FF");
    QTest::newRow("index 80FE") << 64 << 0x80FE << 0x80 << QByteArray("FE 80 80");
}
