// The values of a data sheet as bytes on the bus, by the tables of CiA 301 and not by the project's own converters.
// SPDX-License-Identifier: MIT
#pragma once

#include "SdoTranscript.h"

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QTimeZone>

#include <algorithm>
#include <bit>
#include <limits>

/// Works on the keys of an entry's section. Types are given by their number, such as 0x07 for UNSIGNED32.
class CSheetBytes
{
public:
    using tKeys = QMap<QString, QString>;

    /// The default value, for node 5.
    static QByteArray value(int type, const tKeys& keys)
    {
        const QString text = keys.value(QStringLiteral("DefaultValue"));
        if (width(type) != 0)
            return bytes(static_cast<quint64>(number(text)), width(type));
        if (isReal(type))
            return realBytes(type, text.toDouble());
        if (isText(type))
            return text.toLatin1();
        if (type == 0x0B) // 2026-02-28 12:30:15.250, a Saturday
            return QByteArray::fromHex("923B 1E 0C DC 02 1A");
        if (type == 0x0C) // a local time
            return timeOfDay(QDateTime(QDate(2026, 11, 21), QTime(6, 0)));
        return QByteArray::fromHex(text.toLatin1());
    }

    /// Another value within the limits; the same where they leave none.
    static QByteArray otherValue(int type, const tKeys& keys)
    {
        const QByteArray present = value(type, keys);
        if (width(type) != 0)
            return bytes(otherNumber(type, keys), width(type));
        if (isReal(type))
            return realBytes(type, keys.value(QStringLiteral("DefaultValue")).toDouble() + 1);
        if (isText(type))
            return QStringLiteral("Kesselhaus S\u00FCd, \"Tor 3\"").toLatin1();
        if (type == 0x0F) // a domain
            return QByteArray::fromHex("00 FF 0A 0D 80").repeated(50) + present;
        QByteArray turned = present;
        std::reverse(turned.begin(), turned.end());
        return type == 0x0A ? turned + turned : turned;
    }

private:
    static QByteArray bytes(quint64 bits, int count) { return CSdoTranscript::number(bits, count); }

    // Bytes of an integer type; 0 for the others.
    static int width(int type)
    {
        static const QMap<int, int> widths = { { 0x01, 1 }, { 0x02, 1 }, { 0x03, 2 }, { 0x04, 4 }, { 0x05, 1 },
                                               { 0x06, 2 }, { 0x07, 4 }, { 0x10, 3 }, { 0x12, 5 }, { 0x13, 6 },
                                               { 0x14, 7 }, { 0x15, 8 }, { 0x16, 3 }, { 0x18, 5 }, { 0x19, 6 },
                                               { 0x1A, 7 }, { 0x1B, 8 } };
        return widths.value(type, 0);
    }
    static bool isSigned(int type) { return (type >= 0x02 && type <= 0x04) || (type >= 0x10 && type <= 0x15); }

    // number = term { "+" term }, with the node-id for "$NODEID"
    static qint64 number(QString text)
    {
        text.replace(QStringLiteral("$NODEID"), QStringLiteral("5"));
        qint64 sum = 0;
        for (const QString& term : text.split(u'+'))
            sum +=
                term.startsWith(u'-') ? term.toLongLong(nullptr, 0) : static_cast<qint64>(term.toULongLong(nullptr, 0));
        return sum;
    }
    static QByteArray realBytes(int type, double real)
    {
        return type == 0x08 ? bytes(std::bit_cast<quint32>(static_cast<float>(real)), 4)
                            : bytes(std::bit_cast<quint64>(real), 8);
    }
    // Milliseconds of the day and days, by universal time.
    static QByteArray timeOfDay(const QDateTime& moment)
    {
        const qint64 milliseconds = QDateTime(QDate(1984, 1, 1), QTime(0, 0), QTimeZone::utc()).msecsTo(moment);
        return bytes(static_cast<quint64>(milliseconds % 86400000), 4) +
               bytes(static_cast<quint64>(milliseconds / 86400000), 2);
    }
    static bool isReal(int type) { return type == 0x08 || type == 0x11; }
    static bool isText(int type) { return type == 0x09; }

    // One more, or one less at the limit.
    static quint64 otherNumber(int type, const tKeys& keys)
    {
        const qint64 present = number(keys.value(QStringLiteral("DefaultValue")));
        const QString low = keys.value(QStringLiteral("LowLimit")), high = keys.value(QStringLiteral("HighLimit"));
        if (!low.isEmpty() && number(low) == number(high))
            return static_cast<quint64>(present);
        const bool patterns = isSigned(type) && high.startsWith(QLatin1String("0x")); // limits as bit patterns
        const qint64 most = !high.isEmpty() && !patterns ? number(high)
                            : type == 0x01               ? 1
                            : isSigned(type)             ? std::numeric_limits<qint64>::max()
                                                         : (qint64{ 1 } << (std::min(8 * width(type), 62))) - 1;
        return static_cast<quint64>(present < most ? present + 1 : present - 1);
    }
};
