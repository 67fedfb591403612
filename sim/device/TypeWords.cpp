// The words for data types in gateway commands and in the log ("u8", "d", ...): texts of values to bytes and back.
// SPDX-License-Identifier: MIT
#include "device/TypeWords.h"

#include <algorithm>
#include <iterator>

namespace
{

std::optional<QByteArray> encodeNumber(const QByteArray& text, tValueType type)
{
    const auto number = readNumber(QString::fromLatin1(text));
    if (!number || !fits(*number, type))
        return std::nullopt;
    return littleEndian(number->bits, type.width);
}

QByteArray decodeUnsigned(const QByteArray& bytes, tValueType type)
{
    return hexadecimal(numberOf(bytes, type), 2 * type.width);
}

QByteArray decodeSigned(const QByteArray& bytes, tValueType type)
{
    return QByteArray::number(static_cast<qint64>(numberOf(bytes, type)));
}

QByteArray decodeBoolean(const QByteArray& bytes, tValueType type)
{
    return QByteArray::number(numberOf(bytes, type));
}

std::optional<QByteArray> encodeReal(const QByteArray& text, tValueType type)
{
    return realFromText(QString::fromLatin1(text), type.width);
}

QByteArray decodeReal(const QByteArray& bytes, tValueType type)
{
    return QByteArray::number(realOf(bytes), 'g', type.width == 4 ? 9 : 17);
}

std::optional<QByteArray> encodeBase64(const QByteArray& text, tValueType)
{
    const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return *decoded;
}

// An answer needs a value: no data are written as one padding character.
QByteArray decodeBase64(const QByteArray& bytes, tValueType)
{
    return bytes.isEmpty() ? QByteArray("=") : bytes.toBase64();
}

// text = word | '"' { character | '""' } '"'
std::optional<QByteArray> encodeText(const QByteArray& text, tValueType)
{
    if (!text.startsWith('"'))
        return text.isEmpty() || text.contains(' ') ? std::nullopt : std::optional(text);
    QByteArray inner = text.size() < 2 || !text.endsWith('"') ? QByteArray("\"") : text.mid(1, text.size() - 2);
    inner.replace("\"\"", "\n"); // a line holds no line feed, so it can stand for the doubled quotes
    if (inner.contains('"'))
        return std::nullopt;
    return inner.replace('\n', '"');
}

// An answer is one line: what would end it, and all else below a blank, is a question mark.
QByteArray decodeText(const QByteArray& bytes, tValueType)
{
    QByteArray text = bytes;
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '?');
    return quoted(text);
}

constexpr tTypeWord types[] = {
    { "b", { kindBoolean, 1 }, encodeNumber, decodeBoolean },
    { "d", { kindOctets, 0 }, encodeBase64, decodeBase64 },
    { "i8", { kindSigned, 1 }, encodeNumber, decodeSigned },
    { "i16", { kindSigned, 2 }, encodeNumber, decodeSigned },
    { "i24", { kindSigned, 3 }, encodeNumber, decodeSigned },
    { "i32", { kindSigned, 4 }, encodeNumber, decodeSigned },
    { "i40", { kindSigned, 5 }, encodeNumber, decodeSigned },
    { "i48", { kindSigned, 6 }, encodeNumber, decodeSigned },
    { "i56", { kindSigned, 7 }, encodeNumber, decodeSigned },
    { "i64", { kindSigned, 8 }, encodeNumber, decodeSigned },
    { "os", { kindOctets, 0 }, nullptr, nullptr },
    { "r32", { kindReal, 4 }, encodeReal, decodeReal },
    { "r64", { kindReal, 8 }, encodeReal, decodeReal },
    { "t", { kindTimeOfDay, 6 }, nullptr, nullptr },
    { "td", { kindTimeOfDay, 6 }, nullptr, nullptr },
    { "u8", { kindUnsigned, 1 }, encodeNumber, decodeUnsigned },
    { "u16", { kindUnsigned, 2 }, encodeNumber, decodeUnsigned },
    { "u24", { kindUnsigned, 3 }, encodeNumber, decodeUnsigned },
    { "u32", { kindUnsigned, 4 }, encodeNumber, decodeUnsigned },
    { "u40", { kindUnsigned, 5 }, encodeNumber, decodeUnsigned },
    { "u48", { kindUnsigned, 6 }, encodeNumber, decodeUnsigned },
    { "u56", { kindUnsigned, 7 }, encodeNumber, decodeUnsigned },
    { "u64", { kindUnsigned, 8 }, encodeNumber, decodeUnsigned },
    { "us", { kindText, 0 }, nullptr, nullptr },
    { "vs", { kindText, 0 }, encodeText, decodeText },
};

} // namespace

const tTypeWord* findTypeWord(const QByteArray& word)
{
    const auto row = std::find_if(std::begin(types), std::end(types), [&word](const tTypeWord& each) {
        return word.compare(each.word, Qt::CaseInsensitive) == 0;
    });
    return row == std::end(types) ? nullptr : row;
}

const tTypeWord& typeWordFor(std::optional<tValueType> type)
{
    const bool number = type && type->width != 0 && type->kind != kindDate && type->kind != kindTimeOfDay;
    const tValueType wanted = number ? *type : tValueType{ kindOctets, 0 };
    return *std::find_if(std::begin(types), std::end(types), [wanted](const tTypeWord& each) {
        return each.encode != nullptr && each.type.kind == wanted.kind && each.type.width == wanted.width;
    });
}

QByteArray shownValue(const tTypeWord& type, const QByteArray& bytes)
{
    return type.type.kind == kindOctets ? readable(bytes) : type.decode(bytes, type.type);
}

QByteArray hexadecimal(quint64 value, int digits)
{
    return "0x" + QByteArray::number(value, 16).toUpper().rightJustified(digits, '0');
}

QByteArray quoted(const QByteArray& text)
{
    QByteArray doubled = text;
    return '"' + doubled.replace('"', "\"\"") + '"';
}

QByteArray readable(const QByteArray& bytes)
{
    const bool printable = std::all_of(bytes.cbegin(), bytes.cend(),
                                       [](char c) { return c >= 0x20 && static_cast<unsigned char>(c) < 0x7F; });
    return printable ? quoted(bytes) : bytes.toHex(' ').toUpper();
}
