// Values of a data sheet against their data type and their limits.
// SPDX-License-Identifier: MIT
#include "sheets/ValueChecks.h"

#include "dic/EdsGrammar.h"
#include "dic/Utf8Text.h"
#include "dic/ValueTypes.h"
#include "sheets/EntryText.h"

#include "base/Digits.h"

#include <algorithm>
#include <optional>

namespace
{

constexpr unsigned lastNodeId = 127; // with which a sum is largest
constexpr quint64 signBit = quint64{ 1 } << 63;

constexpr tObjectKey valueKeys[] = { keyLowLimit, keyHighLimit, keyDefaultValue, keyParameterValue };

/// A value of a type, so that it can be compared with others of this type.
struct tValue {
    quint64 order = 0; ///< of an integer: with the sign bit inverted, two's complement compares as unsigned
    double real = 0;
    bool isRelative = false; ///< it depends on the node-id and compares with nothing

    bool operator==(const tValue&) const = default;
};
using tMaybeValue = std::optional<tValue>;

bool isBelowValue(const tValue& a, const tValue& b, tValueType type)
{
    return type.kind == kindReal ? a.real < b.real : a.order < b.order;
}

// Most numbers are short: these need no text of Qt.
std::optional<tNumber> plainNumber(const std::string& text)
{
    unsigned long number = 0;
    const bool isNegative = text.front() == '-';
    const char* const digits = text.c_str() + (isNegative ? 1 : 0);
    const bool isPattern = digits[0] == '0' && digits[1] != '\0';
    if (digitOf(digits[0]) > 9 || digitOf(text.back()) > 15 || (isNegative && digits[0] == '0') ||
        !Ascii2Unsigned32(digits, &number))
        return std::nullopt;
    return tNumber{ isNegative ? ~quint64{ number } + 1 : number, isNegative, isPattern };
}

std::optional<tNumber> numberOfText(const std::string& text)
{
    if (const auto plain = plainNumber(text))
        return plain;
    return readTerms(textFromUtf8(text), lastNodeId);
}

tMaybeValue integerOf(const std::string& text, tValueType type)
{
    const auto number = numberOfText(text);
    if (!number || !fits(*number, type) || (type.kind == kindBoolean && number->bits > 1))
        return std::nullopt;
    const bool isNegativePattern =
        type.kind == kindSigned && number->pattern && number->bits >> (8 * type.width - 1) != 0;
    const quint64 bits = isNegativePattern ? numberOf(littleEndian(number->bits, type.width), type) : number->bits;
    return tValue{ type.kind == kindSigned ? bits ^ signBit : bits, 0, text.find('$') != std::string::npos };
}

tMaybeValue valueOf(const std::string& text, tValueType type)
{
    if (type.kind != kindReal)
        return integerOf(text, type);
    const auto bytes = realFromText(textFromUtf8(text), type.width);
    return bytes ? tMaybeValue(tValue{ 0, realOf(*bytes), false }) : std::nullopt;
}

QString textOf(const tValue& value, tValueType type)
{
    if (type.kind == kindReal)
        return QString::number(value.real);
    return type.kind == kindSigned ? QString::number(static_cast<qint64>(value.order ^ signBit))
                                   : QString::number(value.order);
}

// Why a text is no value of a type that is no number.
QString faultOfBytes(tValueType type)
{
    return type.kind == kindText || type.kind == kindOctets
               ? QStringLiteral("this has a character that Latin-1 does not have")
               : QStringLiteral("this is no date and time");
}

QString formOfBytes(tValueType type)
{
    return type.width > 0 ? QStringLiteral("2026-01-31 12:00:00.000, or its %1 bytes: 01 2A ...").arg(type.width)
                          : QString();
}

// Whether a text is a value of a type that is no number.
bool isBytes(const std::string& text, tValueType type)
{
    const bool isAscii = std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return (type.width == 0 && isAscii) || valueFromText(textFromUtf8(text), type, 0);
}

// Why a text is no value of the type.
QString faultOf(const std::string& text, tValueType type)
{
    if (type.kind != kindReal && numberOfText(text))
        return QStringLiteral("this does not fit the data type");
    const bool isOctal = type.kind != kindReal && text.size() > 1 && text.front() == '0' &&
                         std::ranges::all_of(text, [](char c) { return digitOf(c) < 10; });
    return isOctal ? QStringLiteral("a number that begins with 0 is octal, without the digits 8 and 9")
                   : QStringLiteral("this is no number");
}

QString rangeOf(tValueType type)
{
    if (type.kind == kindBoolean)
        return QStringLiteral("0 or 1");
    const quint64 largest = type.kind == kindReal ? 0 : ~quint64{ 0 } >> (64 - 8 * type.width);
    if (type.kind == kindUnsigned)
        return QStringLiteral("0 to %1").arg(largest);
    if (type.kind == kindSigned)
        return QStringLiteral("-%1 to %2").arg((largest >> 1) + 1).arg(largest >> 1);
    return QString();
}

class CValueChecks
{
public:
    CValueChecks(const tSection& section, int dataType, CFindings& findings)
        : m_section(section), m_dataType(dataType), m_type(valueType(dataType)), m_findings(findings)
    {
    }

    void run();

private:
    tMaybeValue read(tObjectKey key);
    void checkBytes(tObjectKey key);
    void addNoValue(tObjectKey key, const QString& fault, const QString& mend);
    void checkLimits(tObjectKey key, const tMaybeValue& value, const tMaybeValue& low, const tMaybeValue& high)
    {
        if (!isOutside(key, value, keyLowLimit, low))
            isOutside(key, value, keyHighLimit, high);
    }
    bool isOutside(tObjectKey key, const tMaybeValue& value, tObjectKey limitKey, const tMaybeValue& limit);

    const tSection& m_section;
    const int m_dataType;
    const tValueType m_type;
    CFindings& m_findings;
};

void CValueChecks::run()
{
    if (!isNumeric(m_type) && m_type.kind != kindReal) {
        checkBytes(keyDefaultValue);
        checkBytes(keyParameterValue);
        return;
    }
    const tMaybeValue low = read(keyLowLimit);
    const tMaybeValue high = read(keyHighLimit);
    const tMaybeValue standard = read(keyDefaultValue);
    const tMaybeValue parameter = read(keyParameterValue);
    if (isOutside(keyHighLimit, high, keyLowLimit, low))
        return;
    checkLimits(keyDefaultValue, standard, low, high);
    if (parameter != standard) // which has the finding, if any
        checkLimits(keyParameterValue, parameter, low, high);
}

void CValueChecks::checkBytes(tObjectKey key)
{
    const tField& field = m_section.fields[key];
    if (field.isGiven() && !isBytes(field.text, m_type))
        addNoValue(key, faultOfBytes(m_type), formOfBytes(m_type));
}

void CValueChecks::addNoValue(tObjectKey key, const QString& fault, const QString& mend)
{
    m_findings.add(ruleValueType, m_section.fields[key].place(), [&] {
        return tAdvice{ QStringLiteral("%1, %2").arg(fault, dataTypeName(m_dataType)), mend };
    });
}

// The value of a key; nothing where there is none, or a wrong one.
tMaybeValue CValueChecks::read(tObjectKey key)
{
    const tField& field = m_section.fields[key];
    if (!field.isGiven())
        return std::nullopt;
    const tMaybeValue value = valueOf(field.text, m_type);
    if (!value)
        addNoValue(key, faultOf(field.text, m_type), rangeOf(m_type));
    return value;
}

// Reports a value that is on the wrong side of a limit, where both are there.
bool CValueChecks::isOutside(tObjectKey key, const tMaybeValue& value, tObjectKey limitKey, const tMaybeValue& limit)
{
    const bool isLow = limitKey == keyLowLimit;
    if (!value || !limit || value->isRelative || limit->isRelative)
        return false;
    if (!(isLow ? isBelowValue(*value, *limit, m_type) : isBelowValue(*limit, *value, m_type)))
        return false;
    m_findings.add(ruleLimits, m_section.fields[key].place(), [&] {
        return tAdvice{ QStringLiteral("this is %1, %2 %3")
                            .arg(textOf(*value, m_type),
                                 isLow ? QStringLiteral("below LowLimit, which is")
                                       : QStringLiteral("above HighLimit, which is"),
                                 textOf(*limit, m_type)),
                        {} };
    });
    return true;
}

} // namespace

void checkValues(const tSection& section, int dataType, CFindings& findings)
{
    const auto isGiven = [&](tObjectKey key) { return section.fields[key].isGiven(); };
    if (std::ranges::any_of(valueKeys, isGiven))
        CValueChecks(section, dataType, findings).run();
}
