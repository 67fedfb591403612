// Values of a data sheet against their data type and their limits.
// SPDX-License-Identifier: MIT
#include "sheets/ValueChecks.h"

#include "dic/CANopenObjectEntry.h"
#include "dic/Utf8Text.h"
#include "dic/ValueTypes.h"

#include <QByteArray>

#include <algorithm>
#include <optional>

namespace
{

constexpr unsigned lastNodeId = 127; // with which a sum is largest

constexpr tObjectKey valueKeys[] = { keyLowLimit, keyHighLimit, keyDefaultValue, keyParameterValue };

// A value as bytes; nothing where there is none, or a wrong one.
using tBytes = std::optional<QByteArray>;

bool isRelativeField(const tField& field)
{
    return field.text.find('$') != std::string::npos;
}

// Most values are "0", "0x00" or the like: any type has these.
bool isPlainZero(const tField& field)
{
    return field.text == "0" || field.text == "0x0" || field.text == "0x00" || field.text == "0x0000" ||
           field.text == "0x00000000";
}

// Beside the numbers of its width, a BOOLEAN is 0 or 1 only. A sum must fit without being cut.
bool isOfType(const QString& text, const QByteArray& bytes, tValueType type)
{
    if (type.kind == kindBoolean)
        return bytes == QByteArray(1, '\0') || bytes == QByteArray(1, '\1');
    if (!isNumeric(type) || !isRelative(text))
        return true;
    const auto sum = readTerms(text, lastNodeId);
    return sum && fits(*sum, type);
}

// Why a text is no value of the type.
QString faultOf(const QString& text, tValueType type)
{
    if (type.kind == kindReal)
        return QStringLiteral("this is no number");
    if (readTerms(text, lastNodeId))
        return QStringLiteral("this does not fit the data type");
    const QString plain = text.trimmed();
    const bool octal = plain.size() > 1 && plain.startsWith(u'0') &&
                       std::ranges::all_of(plain, [](QChar c) { return c >= u'0' && c <= u'9'; });
    return octal ? QStringLiteral("a number that begins with 0 is octal, without the digits 8 and 9")
                 : QStringLiteral("this is no number");
}

QString rangeOf(tValueType type)
{
    const quint64 largest = ~quint64{ 0 } >> (64 - 8 * type.width);
    if (type.kind == kindBoolean)
        return QStringLiteral("0 or 1");
    if (type.kind == kindUnsigned)
        return QStringLiteral("0 to %1").arg(largest);
    if (type.kind == kindSigned)
        return QStringLiteral("-%1 to %2").arg((largest >> 1) + 1).arg(largest >> 1);
    return QString();
}

tBytes bytesOf(const tField& field, int dataType, CFindings& findings)
{
    const tValueType type = valueType(dataType);
    if (!field.isGiven())
        return std::nullopt;
    if (isPlainZero(field))
        return QByteArray(type.width, '\0');
    const QString text = textFromUtf8(field.text);
    tBytes bytes = valueFromText(text, type, lastNodeId);
    if (bytes && isOfType(text, *bytes, type))
        return bytes;
    findings.add(ruleValueType, field.place(), [&] {
        return tAdvice{ QStringLiteral("%1, %2").arg(faultOf(text, type),
                                                     CCANopenObjectEntry::getDataTypeByIndex(
                                                         static_cast<CCANopenObjectEntry::TEntryType>(dataType))),
                        rangeOf(type) };
    });
    return std::nullopt;
}

void reportLimit(const tPlace& place, const char* text, CFindings& findings)
{
    findings.add(ruleLimits, place, [text] { return tAdvice{ QString::fromLatin1(text), {} }; });
}

} // namespace

void checkValues(const tSection& section, int dataType, CFindings& findings)
{
    const auto isGiven = [&](tObjectKey key) { return section.fields[key].isGiven(); };
    if (std::ranges::none_of(valueKeys, isGiven))
        return;
    const tValueType type = valueType(dataType);
    if (!isNumeric(type) && type.kind != kindReal)
        return;
    tBytes bytes[std::size(valueKeys)];
    for (std::size_t n = 0; n < std::size(valueKeys); ++n) {
        const tField& field = section.fields[valueKeys[n]];
        bytes[n] = bytesOf(field, dataType, findings);
        if (bytes[n] && isRelativeField(field))
            bytes[n].reset(); // compares with nothing, since it depends on the node-id
    }
    const auto& [low, high, standard, parameter] = bytes;
    if (low && high && isBelow(*high, *low, type)) {
        reportLimit(section.fields[keyHighLimit].place(), "HighLimit is below LowLimit", findings);
        return;
    }
    for (std::size_t n = 2; n < std::size(valueKeys); ++n) {
        if (bytes[n] && low && isBelow(*bytes[n], *low, type))
            reportLimit(section.fields[valueKeys[n]].place(), "the value is below LowLimit", findings);
        if (bytes[n] && high && isBelow(*high, *bytes[n], type))
            reportLimit(section.fields[valueKeys[n]].place(), "the value is above HighLimit", findings);
    }
}
