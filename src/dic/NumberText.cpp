// Numbers in texts: of data sheets, gateway commands and command lines.
// SPDX-License-Identifier: MIT
#include "dic/NumberText.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <bit>
#include <charconv>

namespace
{

// digits = one or more digits of the base, nothing else
std::optional<quint64> readDigits(const QByteArray& digits, int base)
{
    quint64 value = 0;
    const char* end = digits.constData() + digits.size();
    const auto [stop, error] = std::from_chars(digits.constData(), end, value, base);
    if (digits.isEmpty() || stop != end || error != std::errc())
        return std::nullopt;
    return value;
}

// decimal = [ "+" | "-" ] digits
std::optional<tNumber> readDecimal(const QByteArray& text)
{
    const bool negative = text.startsWith('-');
    const auto magnitude = readDigits(negative || text.startsWith('+') ? text.mid(1) : text, 10);
    const quint64 limit = negative ? quint64{ 1 } << 63 : ~quint64{ 0 };
    if (!magnitude || *magnitude > limit)
        return std::nullopt;
    return tNumber{ negative ? ~*magnitude + 1 : *magnitude, negative && *magnitude != 0, false };
}

// pattern = "0x" digits | "0" digits
std::optional<tNumber> readPattern(const QByteArray& text)
{
    const bool hexadecimal = text[1] == 'x' || text[1] == 'X';
    const auto bits = hexadecimal ? readDigits(text.mid(2), 16) : readDigits(text.mid(1), 8);
    if (!bits)
        return std::nullopt;
    return tNumber{ *bits, false, true };
}

} // namespace

std::optional<tNumber> readNumber(QStringView text)
{
    const QByteArray plain = text.trimmed().toLatin1();
    return plain.size() > 1 && plain[0] == '0' ? readPattern(plain) : readDecimal(plain);
}

std::optional<tNumber> readTerms(QStringView text, unsigned nodeId)
{
    if (const auto number = readNumber(text))
        return number;
    tNumber sum{ 0, false, true };
    const auto terms = text.split(u'+');
    for (QStringView term : terms) {
        const bool node = term.trimmed().compare(u"$NODEID", Qt::CaseInsensitive) == 0;
        const auto number = node ? tNumber{ nodeId, false, true } : readNumber(term);
        if (!number || number->negative)
            return std::nullopt;
        sum.bits += number->bits;
    }
    return sum;
}

QString hexadecimalText(quint64 number, int digits)
{
    constexpr int prefix = 2;
    constexpr int bitsOfDigit = 4;
    const int needed = (static_cast<int>(std::bit_width(number)) + bitsOfDigit - 1) / bitsOfDigit;
    QString text(prefix + std::max({ digits, needed, 1 }), u'0');
    text[1] = u'x';
    for (qsizetype place = text.size() - 1; number != 0; --place, number >>= bitsOfDigit)
        text[place] = u"0123456789ABCDEF"[number & 0xF];
    return text;
}
