// The data types of dictionary entries as bytes: their widths, the values in data sheets, and comparison with limits.
// SPDX-License-Identifier: MIT
#include "dic/ValueTypes.h"

#include "dic/CANopenObjectEntry.h"

#include <QDateTime>
#include <QTimeZone>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>

namespace
{

using tEntryType = CCANopenObjectEntry;

struct tTypeRow {
    int dataType;
    tValueType type;
};

constexpr tTypeRow typeRows[] = {
    { tEntryType::typeBoolean, { kindBoolean, 1 } },
    { tEntryType::typeInteger8, { kindSigned, 1 } },
    { tEntryType::typeInteger16, { kindSigned, 2 } },
    { tEntryType::typeInteger32, { kindSigned, 4 } },
    { tEntryType::typeUnsigned8, { kindUnsigned, 1 } },
    { tEntryType::typeUnsigned16, { kindUnsigned, 2 } },
    { tEntryType::typeUnsigned32, { kindUnsigned, 4 } },
    { tEntryType::typeReal32, { kindReal, 4 } },
    { tEntryType::typeVisibleString, { kindText, 0 } },
    { tEntryType::typeOctetString, { kindOctets, 0 } },
    { tEntryType::typeDate, { kindDate, 7 } },
    { tEntryType::typeTimeOfDay, { kindTimeOfDay, 6 } },
    { tEntryType::typeTimeDifference, { kindTimeOfDay, 6 } },
    { tEntryType::typeDomain, { kindOctets, 0 } },
    { tEntryType::typeInteger24, { kindSigned, 3 } },
    { tEntryType::typeReal64, { kindReal, 8 } },
    { tEntryType::typeInteger40, { kindSigned, 5 } },
    { tEntryType::typeInteger48, { kindSigned, 6 } },
    { tEntryType::typeInteger56, { kindSigned, 7 } },
    { tEntryType::typeInteger64, { kindSigned, 8 } },
    { tEntryType::typeUnsigned24, { kindUnsigned, 3 } },
    { tEntryType::typeUnsigned40, { kindUnsigned, 5 } },
    { tEntryType::typeUnsigned48, { kindUnsigned, 6 } },
    { tEntryType::typeUnsigned56, { kindUnsigned, 7 } },
    { tEntryType::typeUnsigned64, { kindUnsigned, 8 } },
};

std::optional<QByteArray> charactersOf(const QString& text)
{
    const QByteArray characters = text.toLatin1();
    return QString::fromLatin1(characters) == text ? std::optional(characters) : std::nullopt;
}

// octets = pairs of hexadecimal digits, blanks anywhere
std::optional<QByteArray> octetsFromText(const QString& text)
{
    QByteArray digits = text.toLatin1();
    digits.replace(' ', "");
    const bool pairs = digits.size() % 2 == 0 && std::all_of(digits.cbegin(), digits.cend(), [](char c) {
                           return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
                       });
    if (!pairs)
        return std::nullopt;
    return QByteArray::fromHex(digits);
}

// A number in hexadecimal, with all digits of its width in bytes.
QString textFromNumber(quint64 bits, int width)
{
    return hexadecimalText(bits, 2 * width);
}

QByteArray dateBytes(const QDateTime& moment)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    const auto byte = [](int value) { return static_cast<quint64>(value) & 0xFF; };
    const int milliseconds = time.second() * 1000 + time.msec();
    return littleEndian(static_cast<quint64>(milliseconds), 2) + littleEndian(byte(time.minute()), 1) +
           littleEndian(byte(time.hour()), 1) + littleEndian(byte(date.day() | date.dayOfWeek() << 5), 1) +
           littleEndian(byte(date.month()), 1) + littleEndian(byte(date.year() % 100), 1);
}

QByteArray timeOfDayBytes(const QDateTime& moment)
{
    const QDateTime epoch(QDate(1984, 1, 1), QTime(0, 0), QTimeZone::utc());
    const qint64 milliseconds = std::max<qint64>(0, epoch.msecsTo(moment));
    constexpr qint64 day = 86400000;
    return littleEndian(static_cast<quint64>(milliseconds % day), 4) +
           littleEndian(static_cast<quint64>(milliseconds / day), 2);
}

std::optional<QByteArray> momentFromText(const QString& text, tValueType type)
{
    auto octets = octetsFromText(text);
    if (octets && octets->size() == type.width)
        return octets;
    const QDateTime moment = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
    if (!moment.isValid())
        return std::nullopt;
    return type.kind == kindDate ? dateBytes(moment) : timeOfDayBytes(moment);
}

std::optional<QByteArray> realWithin(const QString& text, int width)
{
    const auto pattern = readNumber(text);
    const bool tooWide = pattern && pattern->pattern && !fits(*pattern, { kindUnsigned, width });
    return tooWide ? std::nullopt : realFromText(text, width);
}

std::optional<QByteArray> numberFromText(const QString& text, tValueType type, unsigned nodeId)
{
    const auto number = readTerms(text, nodeId);
    if (!number || !(isRelative(text) || fits(*number, type)))
        return std::nullopt;
    return littleEndian(number->bits, type.width);
}

// The shortest decimal number that reads as these bytes; as a bit pattern where there is none, for example for
// infinity.
QString textFromReal(const QByteArray& bytes)
{
    std::array<char, 32> digits{};
    const double value = realOf(bytes);
    const auto end = bytes.size() == 4 ? std::to_chars(digits.begin(), digits.end(), static_cast<float>(value)).ptr
                                       : std::to_chars(digits.begin(), digits.end(), value).ptr;
    QString text = QString::fromLatin1(digits.data(), end - digits.data());
    if (std::isfinite(value) && realFromText(text, static_cast<int>(bytes.size())) == bytes)
        return text;
    return textFromNumber(numberOf(bytes, { kindUnsigned, 0 }), static_cast<int>(bytes.size()));
}

// The float nearest to a decimal number that Qt reads as `value`. Qt reads a double first, and rounds some twice.
float nearestFloat(const QString& text, float value)
{
    const QByteArray digits = text.toLatin1();
    const char* begin = digits.constData() + (digits.startsWith('+') ? 1 : 0);
    if (std::isfinite(value))
        std::from_chars(begin, digits.constData() + digits.size(), value);
    return value;
}

// Whether a line of a data sheet can hold the text as a value.
bool fitsIntoLine(const QString& text)
{
    return text.trimmed() == text && !text.contains(u';') &&
           std::all_of(text.cbegin(), text.cend(), [](QChar character) { return character.isPrint(); });
}

} // namespace

tValueType valueType(int dataType)
{
    const auto row = std::find_if(std::begin(typeRows), std::end(typeRows),
                                  [dataType](const tTypeRow& each) { return each.dataType == dataType; });
    return row == std::end(typeRows) ? tValueType{ kindOctets, 0 } : row->type;
}

bool isNumeric(tValueType type)
{
    return type.kind == kindBoolean || type.kind == kindSigned || type.kind == kindUnsigned;
}

bool isRelative(const QString& text)
{
    return text.contains(QLatin1String("$NODEID"), Qt::CaseInsensitive);
}

bool fits(const tNumber& number, tValueType type)
{
    const quint64 mask = ~quint64{ 0 } >> (64 - 8 * type.width);
    if (type.kind != kindSigned)
        return !number.negative && number.bits <= mask;
    if (number.negative)
        return ~number.bits <= mask >> 1;
    return number.bits <= (number.pattern ? mask : mask >> 1);
}

QByteArray littleEndian(quint64 bits, int width)
{
    QByteArray bytes;
    for (int i = 0; i < width; ++i)
        bytes.append(static_cast<char>(bits >> (8 * i) & 0xFF));
    return bytes;
}

quint64 numberOf(const QByteArray& bytes, tValueType type)
{
    const qsizetype width = std::min<qsizetype>(bytes.size(), 8);
    quint64 bits = 0;
    for (qsizetype i = 0; i < width; ++i)
        bits |= static_cast<quint64>(static_cast<unsigned char>(bytes[i])) << (8 * i);
    const bool negative = type.kind == kindSigned && width > 0 && (bits >> (8 * width - 1) & 1) != 0;
    return negative && width < 8 ? bits | ~quint64{ 0 } << (8 * width) : bits;
}

double realOf(const QByteArray& bytes)
{
    const quint64 bits = numberOf(bytes, { kindUnsigned, 0 });
    if (bytes.size() == 4)
        return static_cast<double>(std::bit_cast<float>(static_cast<quint32>(bits)));
    return std::bit_cast<double>(bits);
}

std::optional<QByteArray> realFromText(const QString& text, int width)
{
    const auto number = readNumber(text);
    if (number && number->pattern)
        return littleEndian(number->bits, width);
    bool ok = false;
    const QString plain = text.trimmed();
    const quint64 bits = width == 4 ? std::bit_cast<quint32>(nearestFloat(plain, plain.toFloat(&ok)))
                                    : std::bit_cast<quint64>(plain.toDouble(&ok));
    if (!ok)
        return std::nullopt;
    return littleEndian(bits, width);
}

QByteArray defaultFromText(const QString& text, tValueType type, unsigned nodeId)
{
    if (type.kind == kindText)
        return text.toLatin1();
    if (type.kind == kindOctets)
        return octetsFromText(text).value_or(text.toLatin1());
    if (type.kind == kindDate || type.kind == kindTimeOfDay)
        return momentFromText(text, type).value_or(QByteArray(type.width, '\0'));
    if (type.kind == kindReal)
        return realFromText(text, type.width).value_or(QByteArray(type.width, '\0'));
    return littleEndian(readTerms(text, nodeId).value_or(tNumber()).bits, type.width);
}

std::optional<QByteArray> valueFromText(const QString& text, tValueType type, unsigned nodeId)
{
    if (text.isEmpty())
        return std::nullopt;
    switch (type.kind) {
    case kindText:
        return charactersOf(text);
    case kindOctets: {
        auto octets = octetsFromText(text);
        return octets ? octets : charactersOf(text);
    }
    case kindDate:
    case kindTimeOfDay:
        return momentFromText(text, type);
    case kindReal:
        return realWithin(text, type.width);
    default:
        return numberFromText(text, type, nodeId);
    }
}

std::optional<QString> textFromValue(const QByteArray& bytes, tValueType type, unsigned nodeId)
{
    if (bytes.isEmpty() || (type.width != 0 && bytes.size() != type.width))
        return std::nullopt;
    if (type.kind == kindText) {
        const QString text = QString::fromLatin1(bytes);
        return fitsIntoLine(text) ? std::optional(text) : std::nullopt;
    }
    if (type.kind == kindReal)
        return textFromReal(bytes);
    if (!isNumeric(type))
        return QString::fromLatin1(bytes.toHex(' ').toUpper());
    const quint64 bits = numberOf(bytes, { kindUnsigned, 0 });
    if (nodeId == 0)
        return textFromNumber(bits, type.width);
    const quint64 cut = numberOf(littleEndian(bits - nodeId, type.width), { kindUnsigned, 0 });
    return QStringLiteral("$NODEID+") + textFromNumber(cut, type.width);
}

QByteArray limitFromText(const QString& text, tValueType type, unsigned nodeId)
{
    if (type.kind == kindReal)
        return realFromText(text, type.width).value_or(QByteArray());
    if (!isNumeric(type))
        return QByteArray();
    const auto number = readTerms(text, nodeId);
    return number && fits(*number, type) ? littleEndian(number->bits, type.width) : QByteArray();
}

bool isBelow(const QByteArray& a, const QByteArray& b, tValueType type)
{
    if (type.kind == kindReal)
        return realOf(a) < realOf(b);
    // With the sign bit inverted, two's complement numbers compare as unsigned ones.
    const quint64 bias = type.kind == kindSigned ? quint64{ 1 } << 63 : 0;
    return (numberOf(a, type) ^ bias) < (numberOf(b, type) ^ bias);
}
