// The frames of SDO transfers with node 5 by CiA 301: requests of the client and answers of the server, alternately.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QStringList>

/// Transfers of one entry, as texts of frames: CSdoTranscript(0x1000).request(0x40) is "605#4000100000000000".
class CSdoTranscript
{
public:
    explicit CSdoTranscript(unsigned index, unsigned subIndex = 0)
        : m_multiplexor(QByteArray(1, char(index & 0xFF)) + char(index >> 8) + char(subIndex))
    {
    }

    QString request(int command, const QByteArray& data = QByteArray()) const
    {
        return text("605#", byte(command) + m_multiplexor + data);
    }
    QString answer(int command, const QByteArray& data = QByteArray()) const
    {
        return text("585#", byte(command) + m_multiplexor + data);
    }
    static QString requestSegment(int command, const QByteArray& data = QByteArray())
    {
        return text("605#", byte(command) + data);
    }
    static QString answerSegment(int command, const QByteArray& data = QByteArray())
    {
        return text("585#", byte(command) + data);
    }
    QString abort(unsigned code) const { return request(0x80, number(code, 4)); }
    QString abortByServer(unsigned code) const { return answer(0x80, number(code, 4)); }

    /// A whole read: in one answer up to 4 bytes, else in segments of 7; no data at all are one empty segment.
    QStringList upload(const QByteArray& data) const
    {
        const int size = static_cast<int>(data.size());
        if (size >= 1 && size <= 4)
            return { request(0x40), answer(0x43 | (4 - size) << 2, data) };
        QStringList frames = { request(0x40), answer(0x41, number(static_cast<unsigned>(size), 4)) };
        int toggle = 0;
        for (int at = 0; at == 0 || at < size; at += 7, toggle ^= 0x10) {
            const QByteArray part = data.mid(at, 7);
            const int unused = 7 - static_cast<int>(part.size());
            frames += requestSegment(0x60 | toggle);
            frames += answerSegment(toggle | unused << 1 | (at + 7 >= size ? 1 : 0), part);
        }
        return frames;
    }
    /// A whole write: in one request up to 4 bytes, else in segments of 7.
    QStringList download(const QByteArray& data) const
    {
        const int size = static_cast<int>(data.size());
        if (size <= 4)
            return { request(0x23 | (4 - size) << 2, data), answer(0x60) };
        QStringList frames = { request(0x21, number(static_cast<unsigned>(size), 2)), answer(0x60) };
        int toggle = 0;
        for (int at = 0; at < size; at += 7, toggle ^= 0x10) {
            const QByteArray part = data.mid(at, 7);
            const int unused = 7 - static_cast<int>(part.size());
            frames += requestSegment(toggle | unused << 1 | (at + 7 >= size ? 1 : 0), part);
            frames += answerSegment(0x20 | toggle);
        }
        return frames;
    }

    /// The bytes of a number, the lowest first.
    static QByteArray number(quint64 value, int width)
    {
        QByteArray bytes;
        for (int i = 0; i < width; ++i)
            bytes += char(value >> (8 * i));
        return bytes;
    }

private:
    static QByteArray byte(int value) { return QByteArray(1, static_cast<char>(value)); }
    static QString text(const char* id, const QByteArray& bytes)
    {
        return QLatin1String(id) + QString::fromLatin1(bytes.leftJustified(8, '\0').toHex().toUpper());
    }

    QByteArray m_multiplexor;
};
