// The grammars of section names and numbers.
// SPDX-License-Identifier: MIT
//
//     object      = index                                    1 to 4 digits
//     entry       = index "sub" subindex                     4 digits; 1 or 2 digits or "0"
//     number      = space ( decimal | hexadecimal | octal ) space
//     decimal     = digit { digit }                          the first digit is not 0
//                 | "+" { digit }                            not at the end of the text
//     hexadecimal = "0" ( "x" | "X" ) { digit }
//     octal       = "0" { digit }
//     space       = { blank | tab }
#include "dic/EdsGrammar.h"

#include "base/Assertion.h"
#include "base/Digits.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

namespace
{

// Warns of a null pointer, with the source line of the caller unless another one is given.
bool isNull(const void* argument, const char* name, int line = __builtin_LINE())
{
    return !assertion(argument != nullptr, name, "dic/CANopenReader", line);
}

constexpr bool startsWithDigit(std::string_view text, unsigned base)
{
    return !text.empty() && digitOf(text.front()) < base;
}

// The take... and skip... functions remove what they accept from the front of `text`.

constexpr bool takeOneOf(std::string_view& text, std::string_view characters)
{
    for (const char each : characters) // not by find: the characters are few
        if (text.starts_with(each)) {
            text.remove_prefix(1);
            return true;
        }
    return false;
}

// Takes up to `most` hexadecimal digits. False if there are fewer than `least` or more than `most`, or after a prefix
// "0", "0x" or "00".
template <typename Number>
constexpr bool takeIndex(std::string_view& text, std::size_t least, std::size_t most, Number& value)
{
    // Kept: the number after a prefix is stored, but the name refused: such a section is skipped as an unknown one.
    const bool prefixed = takeOneOf(text, "0");
    if (prefixed)
        takeOneOf(text, "xX0");
    std::size_t digits = 0;
    for (; digits < most && startsWithDigit(text, 16); ++digits) {
        value = static_cast<Number>(value * 16U + digitOf(text.front()));
        text.remove_prefix(1);
    }
    return !prefixed && digits >= least && !startsWithDigit(text, 16);
}

constexpr bool takeSubIndex(std::string_view& text, unsigned char& subIndex)
{
    if (text == "0") {
        text.remove_prefix(1);
        return true;
    }
    return takeIndex(text, 1, 2, subIndex);
}

constexpr bool isObject(std::string_view name, unsigned short& index)
{
    return takeIndex(name, 1, 4, index) && name.empty();
}

constexpr bool isObjectEntry(std::string_view name, unsigned short& index, unsigned char& subIndex)
{
    const bool indexed = takeIndex(name, 4, 4, index);
    const bool sub = takeOneOf(name, "sS") && takeOneOf(name, "uU") && takeOneOf(name, "bB");
    return sub && takeSubIndex(name, subIndex) && indexed && name.empty();
}

// Takes all digits at the front; false when the number does not fit in its type.
template <typename Number>
constexpr bool takeDigits(std::string_view& text, unsigned base, Number& value)
{
    static_assert(sizeof value < sizeof(std::uint64_t), "one digit more must fit");
    for (; startsWithDigit(text, base); text.remove_prefix(1)) {
        const std::uint64_t longer = std::uint64_t{ value } * base + digitOf(text.front());
        if (longer > std::numeric_limits<Number>::max())
            return false;
        value = static_cast<Number>(longer);
    }
    return true;
}

template <typename Number>
constexpr bool takeNumber(std::string_view& text, Number& value)
{
    if (takeOneOf(text, "0"))
        return takeDigits(text, takeOneOf(text, "xX") ? 16 : 8, value);
    if (takeOneOf(text, "+")) // Kept: needs a character after it, which may be a blank; "+ " is 0: compatible behaviour
        return !text.empty() && takeDigits(text, 10, value);
    return startsWithDigit(text, 10) && takeDigits(text, 10, value);
}

constexpr void skipSpace(std::string_view& text)
{
    while (takeOneOf(text, " \t")) {
    }
}

template <typename Number>
constexpr bool isNumber(std::string_view text, Number& value)
{
    skipSpace(text);
    const bool taken = takeNumber(text, value);
    skipSpace(text);
    return taken && text.empty();
}

template <typename Number>
constexpr long long numberOf(std::string_view text)
{
    Number value = 0;
    return isNumber(text, value) ? static_cast<long long>(value) : -1;
}
static_assert(numberOf<std::uint8_t>("255") == 255 && numberOf<std::uint8_t>("256") == -1);
static_assert(numberOf<std::uint16_t>("0177777") == 0xFFFF && numberOf<std::uint16_t>("0200000") == -1);
static_assert(numberOf<std::uint32_t>("0xFFFFFFFF") == 0xFFFFFFFF && numberOf<std::uint32_t>("0x100000000") == -1);

// What the three Ascii2Unsigned functions share: checks the arguments, reads a `Number` and stores it as a `Value`.
template <typename Number, typename Value>
bool asciiToNumber(const char* text, Value* value, int line = __builtin_LINE())
{
    const bool noText = isNull(text, "lpszAscii", line);
    const bool noValue = isNull(value, "pValue", line);
    Number number = 0;
    const bool converted = isNumber(noText ? "" : text, number);
    if (!noValue)
        *value = number;
    return converted;
}

} // namespace

bool IsObject(const char* name, unsigned short* index)
{
    const bool noName = isNull(name, "lpszAscii");
    const bool noIndex = isNull(index, "puiIndex");
    unsigned short found = 0;
    const bool object = isObject(noName ? "" : name, found);
    if (!noIndex)
        *index = found;
    return object;
}

bool IsObjectEntry(const char* name, unsigned short* index, unsigned char* subIndex)
{
    const bool noName = isNull(name, "lpszAscii");
    const bool noIndex = isNull(index, "puiIndex");
    const bool noSubIndex = isNull(subIndex, "pucSubIndex");
    unsigned short found = 0;
    unsigned char foundSub = 0;
    const bool entry = isObjectEntry(noName ? "" : name, found, foundSub);
    if (!noIndex)
        *index = found;
    if (!noSubIndex)
        *subIndex = foundSub;
    return entry;
}

bool Ascii2Unsigned8(const char* text, unsigned char* value)
{
    return asciiToNumber<std::uint8_t>(text, value);
}

bool Ascii2Unsigned16(const char* text, unsigned short* value)
{
    return asciiToNumber<std::uint16_t>(text, value);
}

bool Ascii2Unsigned32(const char* text, unsigned long* value)
{
    return asciiToNumber<std::uint32_t>(text, value);
}
