// How commands write indexes, sub-indexes and values of entries.
// SPDX-License-Identifier: MIT
#include "sheets/EntryText.h"

#include "dic/CANopenObjectEntry.h"
#include "dic/ValueTypes.h"

namespace
{

QString hexadecimal(unsigned number)
{
    return QString::number(number, 16).toUpper();
}

QString octets(const QByteArray& value)
{
    return QString::fromLatin1(value.toHex(' ').toUpper());
}

bool hasLength(qsizetype size, tValueType type)
{
    return type.width == 0 || type.width == size;
}

QByteArray plusOne(const QByteArray& value, tValueType type)
{
    return littleEndian(numberOf(value, type) + 1, type.width);
}

} // namespace

QString indexText(unsigned index)
{
    return hexadecimalText(index, 4);
}

QString subIndexText(unsigned subIndex)
{
    return subIndex < 10 ? QString::number(subIndex) : hexadecimalText(subIndex, 1);
}

QString entryText(unsigned index, unsigned subIndex)
{
    return hexadecimal(index).rightJustified(4, u'0') + u':' + hexadecimal(subIndex);
}

QString parameterText(unsigned index, unsigned subIndex)
{
    return subIndex == 0 ? hexadecimal(index).rightJustified(4, u'0') : entryText(index, subIndex);
}

QString dataTypeName(int dataType)
{
    return CCANopenObjectEntry::getDataTypeByIndex(static_cast<CCANopenObjectEntry::TEntryType>(dataType));
}

std::optional<unsigned> numberIn(const QString& text, unsigned most)
{
    const auto number = readNumber(text);
    if (!number || number->negative || number->bits > most)
        return std::nullopt;
    return static_cast<unsigned>(number->bits);
}

std::optional<QByteArray> relativeValue(const QString& text, int dataType)
{
    const tValueType type = valueType(dataType);
    if (!isNumeric(type) || !isRelative(text))
        return std::nullopt;
    const auto ofNode0 = valueFromText(text, type, 0);
    const auto ofNode1 = valueFromText(text, type, 1);
    return ofNode0 && ofNode1 == plusOne(*ofNode0, type) ? ofNode0 : std::nullopt;
}

std::optional<QString> sheetText(const QByteArray& value, int dataType, bool relative)
{
    const tValueType type = valueType(dataType);
    if (!relative || !isNumeric(type) || value.size() != type.width)
        return textFromValue(value, type);
    return textFromValue(plusOne(value, type), type, 1); // the value of node 1, relative to it
}

QString dumpedText(const QByteArray& value, int dataType, bool relative)
{
    const tValueType type = valueType(dataType);
    if (type.kind == kindText)
        return QString::fromLatin1(value);
    if (!hasLength(value.size(), type))
        return octets(value);
    return sheetText(value, dataType, relative).value_or(QString());
}

std::optional<QByteArray> dumpedValue(const QString& text, int dataType, qsizetype size)
{
    const tValueType type = valueType(dataType);
    if (size == 0)
        return text.isEmpty() ? std::optional(QByteArray()) : std::nullopt;
    const tValueType written = hasLength(size, type) ? type : tValueType{ kindOctets, 0 };
    const bool relative = isNumeric(written) && isRelative(text);
    auto value = relative ? relativeValue(text, dataType) : valueFromText(text, written, 0);
    if (!value || value->size() != size)
        return std::nullopt;
    // Only octets may stand for a value of a wrong length: no characters.
    if (!hasLength(size, type) && octets(*value) != text)
        return std::nullopt;
    return value;
}
