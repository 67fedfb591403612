// The values of parameters as texts of the command line.
// SPDX-License-Identifier: MIT
#include "network/TypedValue.h"

#include "CANopenTypes.h"
#include "dic/CANopenObjectEntry.h"
#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"

#include <QStringList>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

using entry = CCANopenObjectEntry;
using types = CCANopenTypes;
using valueFormats::TDisplayMode;

struct tWord {
    const char* word;
    int type;
};

constexpr tWord typeWords[] = {
    { "bool", entry::typeBoolean },   { "i8", entry::typeInteger8 },      { "i16", entry::typeInteger16 },
    { "i24", entry::typeInteger24 },  { "i32", entry::typeInteger32 },    { "i40", entry::typeInteger40 },
    { "i48", entry::typeInteger48 },  { "i56", entry::typeInteger56 },    { "i64", entry::typeInteger64 },
    { "u8", entry::typeUnsigned8 },   { "u16", entry::typeUnsigned16 },   { "u24", entry::typeUnsigned24 },
    { "u32", entry::typeUnsigned32 }, { "u40", entry::typeUnsigned40 },   { "u48", entry::typeUnsigned48 },
    { "u56", entry::typeUnsigned56 }, { "u64", entry::typeUnsigned64 },   { "r32", entry::typeReal32 },
    { "r64", entry::typeReal64 },     { "vs", entry::typeVisibleString }, { "os", entry::typeOctetString },
    { "d", entry::typeDomain },       { "date", entry::typeDate },        { "time", entry::typeTimeOfDay },
};

template <typename Value>
std::optional<QByteArray> raw(bool isValue, const Value& value)
{
    if (!isValue)
        return std::nullopt;
    return QByteArray(reinterpret_cast<const char*>(&value), sizeof value); // the processor's order is that of the bus
}

template <typename Value, bool (*convert)(const char*, Value*)>
std::optional<QByteArray> converted(const QString& text)
{
    if (!readNumber(text)) // the window takes "0x" and "+ " for 0
        return std::nullopt;
    Value value{};
    const QByteArray characters = text.toLatin1();
    return raw(convert(characters.constData(), &value), value);
}

// The types that the window reads: by the same functions.
struct tReader {
    int type;
    std::optional<QByteArray> (*read)(const QString& text);
};

constexpr tReader windowTypes[] = {
    { entry::typeInteger8, converted<SDO_t_INTEGER8, types::ascii2integer8> },
    { entry::typeInteger16, converted<SDO_t_INTEGER16, types::ascii2integer16> },
    { entry::typeInteger32, converted<SDO_t_INTEGER32, types::ascii2integer32> },
    { entry::typeUnsigned8, converted<SDO_t_UNSIGNED8, types::ascii2unsigned8> },
    { entry::typeUnsigned16, converted<SDO_t_UNSIGNED16, types::ascii2unsigned16> },
    { entry::typeUnsigned32, converted<SDO_t_UNSIGNED32, types::ascii2unsigned32> },
};

// "01 2A FF", "0x01 0x2A" or "012AFF".
std::optional<QByteArray> bytesOfOctets(const QString& text)
{
    QByteArray bytes;
    const auto words = text.split(u' ', Qt::SkipEmptyParts);
    for (const QString& word : words) {
        const QString digits = word.startsWith(QLatin1String("0x"), Qt::CaseInsensitive) ? word.mid(2) : word;
        const QByteArray octets = QByteArray::fromHex(digits.toLatin1());
        if (octets.isEmpty() || octets.size() * 2 != digits.size() || octets.toHex() != digits.toLatin1().toLower())
            return std::nullopt;
        bytes += octets;
    }
    return bytes;
}

std::optional<QByteArray> bytesOfInteger(const QString& text, tValueType layout)
{
    const auto number = readNumber(text);
    const bool hasSign = text.contains(u'-') && layout.kind != kindSigned; // "-0", as with the types of the window
    const quint64 most = layout.kind == kindBoolean ? 1 : ~quint64{ 0 };
    if (!number || hasSign || !fits(*number, layout) || number->bits > most)
        return std::nullopt;
    return littleEndian(number->bits, layout.width);
}

// "010" would be the bit pattern of an octal number, and one with fewer digits than the type has that of another type.
std::optional<QByteArray> bytesOfReal(const QString& text, tValueType layout)
{
    const auto number = readNumber(text);
    const bool octal = number && number->pattern && !text.contains(u'x', Qt::CaseInsensitive);
    const bool shortened = number && number->pattern && text.trimmed().size() != 2 + 2 * qsizetype{ layout.width };
    return octal || shortened ? std::nullopt : valueFromText(text, layout, 0);
}

QString wideInteger(tValueType type, const QByteArray& bytes, TDisplayMode mode)
{
    const quint64 bits = numberOf(bytes, { kindUnsigned, type.width });
    const int width = 8 * type.width;
    if (mode == valueFormats::modeOct)
        return QString::number(bits, 8).rightJustified((width + 2) / 3, u'0');
    if (mode != valueFormats::modeDec)
        return hexadecimalText(bits, width / 4);
    if (type.kind != kindSigned)
        return QString::number(bits);
    const auto value = static_cast<qint64>(numberOf(bytes, type));
    return (value < 0 ? QString() : QStringLiteral("+")) + QString::number(value);
}

template <typename Moment>
Moment momentOf(const QByteArray& bytes)
{
    Moment moment{};
    std::memcpy(&moment, bytes.constData(), sizeof moment);
    return moment;
}

// No text for a moment that is none: the window shows another one for it, or a part.
QString dateText(const QByteArray& bytes)
{
    constexpr qsizetype whole = 23; // "2026-01-31 12:00:00.000"
    QString text;
    types::date2ascii(momentOf<SDO_t_DATE>(bytes), text);
    return text.size() == whole ? text : QString();
}

QString timeOfDayText(const QByteArray& bytes)
{
    constexpr int firstDayOf2038 = 19724;
    constexpr std::uint32_t millisecondsPerDay = 86400000;
    constexpr int digits = 3; // of the milliseconds, which the window leaves out
    const auto moment = momentOf<SDO_t_TIME_OF_DAY>(bytes);
    if (moment.member.days >= firstDayOf2038 || moment.member.msec >= millisecondsPerDay)
        return QString();
    QString text;
    types::timeOfDay2ascii(moment, text);
    return text.chopped(digits) + QString::number(moment.member.msec % 1000).rightJustified(digits, u'0');
}

QString momentText(int type, const QByteArray& bytes)
{
    return type == entry::typeDate ? dateText(bytes) : timeOfDayText(bytes);
}

// No bytes for a moment that the type cannot hold, such as one of 1983 or 2126, or an hour that summer time skips: they
// would be another one.
std::optional<QByteArray> bytesOfMoment(int type, const QString& text)
{
    auto octets = bytesOfOctets(text);
    if (octets && octets->size() == valueType(type).width)
        return octets;
    if (!text.contains(u'-'))
        return std::nullopt;
    const auto bytes = valueFromText(text, valueType(type), 0);
    return bytes && momentText(type, *bytes) == text ? bytes : std::nullopt;
}

QByteArray withoutDayOfWeek(int type, QByteArray bytes)
{
    constexpr int place = 4;
    constexpr int dayOfMonth = 0x1F;
    if (type == entry::typeDate)
        bytes[place] = static_cast<char>(bytes[place] & dayOfMonth);
    return bytes;
}

// A moment that reads as these bytes: none where the text does not tell all of it, such as the mark of summer time. The
// day of the week follows from the date.
QString exactMomentText(int type, const QByteArray& bytes)
{
    const QString text = momentText(type, bytes);
    const auto again = bytesOfMoment(type, text);
    return again && withoutDayOfWeek(type, *again) == withoutDayOfWeek(type, bytes) ? text : QString();
}

bool isMoment(int type)
{
    return type == entry::typeDate || type == entry::typeTimeOfDay;
}

QString integerText(int dataType, tValueType type, const QByteArray& bytes, TDisplayMode mode)
{
    const auto bits = static_cast<std::uint32_t>(numberOf(bytes, type));
    QString text = valueFormats::integer(dataType, valueFormats::sent, bits, mode);
    if (text.isEmpty())
        text = wideInteger(type, bytes, mode);
    // With all its digits an octal number has no 0 at its head, by which it is known: "100" is no 64.
    const bool needsZero = mode == valueFormats::modeOct && !text.startsWith(u'0');
    return needsZero ? u'0' + text : text;
}

} // namespace

std::optional<int> typedValue::typeOfWord(const QString& word)
{
    const auto* row = std::find_if(std::begin(typeWords), std::end(typeWords), [&word](const tWord& each) {
        return word.compare(QLatin1String(each.word), Qt::CaseInsensitive) == 0;
    });
    return row == std::end(typeWords) ? std::nullopt : std::optional(row->type);
}

QString typedValue::words()
{
    QStringList texts;
    for (const tWord& row : typeWords)
        texts += QLatin1String(row.word);
    return texts.join(QStringLiteral(", "));
}

std::optional<QByteArray> typedValue::bytesOf(int type, const QString& text)
{
    if (QString::fromLatin1(text.toLatin1()) != text)
        return std::nullopt;
    const auto* row = std::find_if(std::begin(windowTypes), std::end(windowTypes),
                                   [type](const tReader& each) { return each.type == type; });
    if (row != std::end(windowTypes))
        return row->read(text);
    if (type == entry::typeVisibleString)
        return text.toLatin1();
    const tValueType layout = valueType(type);
    if (isNumeric(layout))
        return bytesOfInteger(text, layout);
    if (layout.kind == kindReal)
        return bytesOfReal(text, layout);
    // Not as the window: of a date it sends a part of the milliseconds only, and a time of the summer an hour late.
    if (isMoment(type))
        return bytesOfMoment(type, text);
    const auto bytes = bytesOfOctets(text);
    return bytes && !sizeDiffers(type, bytes->size()) ? bytes : std::nullopt;
}

QString typedValue::textOf(int type, const QByteArray& bytes, TDisplayMode mode)
{
    if (valueType(type).kind == kindText)
        return visibleText(QString::fromLatin1(bytes.constData())); // to the first zero byte
    return exactTextOf(type, bytes, mode);
}

QString typedValue::exactTextOf(int type, const QByteArray& bytes, TDisplayMode mode)
{
    const tValueType layout = valueType(type);
    QString text;
    if (layout.kind == kindText)
        return QString::fromLatin1(bytes);
    if (!sizeDiffers(type, bytes.size())) {
        if (layout.kind == kindReal)
            text = textFromValue(bytes, layout).value_or(QString());
        else if (isNumeric(layout))
            text = integerText(type, layout, bytes, mode);
        else if (mode == valueFormats::modeDec && isMoment(type))
            text = exactMomentText(type, bytes);
    }
    if (!text.isEmpty())
        return text;
    // Not in another mode: bytes are read as hexadecimal ones.
    return valueFormats::bytes(reinterpret_cast<const std::uint8_t*>(bytes.constData()), static_cast<int>(bytes.size()),
                               valueFormats::modeHex)
        .trimmed();
}

bool typedValue::sizeDiffers(int type, qsizetype size)
{
    const int width = valueType(type).width;
    return width != 0 && size != width;
}
