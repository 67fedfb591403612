// The grammar of a data sheet's lines.
// SPDX-License-Identifier: MIT
//
//     line    = [ header | item | comment ]            ended by LF or CR LF
//     header  = "[" name "]" rest
//     item    = name "=" value [ ";" anything ]        value: up to the semicolon, trimmed
//     comment = rest                                   begins with a blank, a tab or a semicolon
//     rest    = { blank | tab } [ ";" anything ]
//     name    = char { char }                          but not "_" alone
//     char    = letter | number | "_"                  of one UTF-16 unit
#pragma once

#include "dic/Utf8Text.h"

#include <QChar>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

/// Whole in one header: its functions are inlined into a load, which takes most of its time in them.
namespace iniGrammar
{

// The grammar above in words, for whoever has to mend a file.
inline constexpr char ruleOfComments[] = "after blanks a line holds nothing, or a comment that begins with \";\"";
inline constexpr char ruleOfSections[] =
    "a section is [NAME] of letters, digits and \"_\", followed by nothing or a comment that begins with \";\"";
inline constexpr char ruleOfTheFirstKey[] = "a section comes before the first key";
inline constexpr char ruleOfKeys[] =
    "a key is NAME=VALUE, the name of letters, digits and \"_\" only; a comment begins with \";\"";

// A character of UTF-8 and the number of its bytes. Bytes that are no UTF-8 give U+FFFD.
struct tCharacter {
    char32_t code;
    std::size_t size;
};

constexpr tCharacter characterAt(std::string_view text)
{
    const auto byte = [text](std::size_t place) { return static_cast<unsigned char>(text[place]); };
    const unsigned first = byte(0);
    const std::size_t size = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (size == 1)
        return { first, 1 };
    if (first < 0xC2 || text.size() < size)
        return { 0xFFFD, 1 };
    char32_t code = first & (0x7FU >> size);
    for (std::size_t place = 1; place < size; ++place)
        code = code << 6 | (byte(place) & 0x3FU);
    return { code, size };
}

// The letters, digits and "_" of ASCII; false for all bytes of other characters.
inline constexpr std::array<bool, 0x100> wordBytes = [] {
    std::array<bool, 0x100> belongs{};
    for (unsigned byte = 0; byte < 0x80; ++byte)
        belongs[byte] =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '_';
    return belongs;
}();

inline bool isName(std::string_view text)
{
    return text.size() > 1 || (text.size() == 1 && text.front() != '_');
}

// What is called for each line of a load is expanded in place there: a call each would cost 5 % of its instructions.

// Bytes of a word character beyond ASCII at the start of `text`, else 0.
[[gnu::always_inline]] inline std::size_t wideWordCharacter(std::string_view text)
{
    if (static_cast<unsigned char>(text.front()) < 0x80)
        return 0;
    const auto [code, size] = characterAt(text);
    return code <= 0xFFFF && QChar(static_cast<char16_t>(code)).isLetterOrNumber() ? size : 0;
}

// The longest name at the start of `line`, perhaps empty.
[[gnu::always_inline]] inline std::string_view nameAt(std::string_view line)
{
    const char* const start = line.data();
    const char* const end = start + line.size();
    const char* next = start;
    while (true) {
        next = std::find_if_not(next, end, [](char byte) { return wordBytes[static_cast<unsigned char>(byte)]; });
        const std::size_t size = next != end ? wideWordCharacter({ next, end }) : 0;
        if (size == 0)
            break;
        next += size;
    }
    return { start, next };
}

[[gnu::always_inline]] inline bool takeCharacter(std::string_view& line, char c)
{
    if (!line.starts_with(c))
        return false;
    line.remove_prefix(1);
    return true;
}

[[gnu::always_inline]] inline bool isRest(std::string_view line)
{
    for (const char c : line) {
        if (c == ';')
            return true;
        if (c != ' ' && c != '\t')
            return false;
    }
    return true;
}

[[gnu::always_inline]] inline std::string_view withoutLineEnd(std::span<const char> bytes)
{
    std::string_view line(bytes.data(), bytes.size());
    if (line.ends_with('\n'))
        line.remove_suffix(1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

inline bool isCommentStart(char c)
{
    return c == ';' || c == ' ' || c == '\t';
}

// True for the visible characters of ASCII, where nothing is to be trimmed.
constexpr bool isVisibleAscii(char byte)
{
    return byte > ' ' && byte < 0x7F;
}

// Without white space, as Unicode has it, at both ends.
[[gnu::always_inline]] inline std::string_view trimmed(std::string_view text)
{
    if (!text.empty() && isVisibleAscii(text.front()) && isVisibleAscii(text.back()))
        return text;
    while (!text.empty()) {
        const tCharacter first = characterAt(text);
        if (!QChar::isSpace(first.code))
            break;
        text.remove_prefix(first.size);
    }
    while (!text.empty()) {
        std::size_t start = text.size() - 1;
        while (start > 0 && isContinuation(text[start]))
            --start;
        if (!QChar::isSpace(characterAt(text.substr(start)).code))
            break;
        text.remove_suffix(text.size() - start);
    }
    return text;
}

} // namespace iniGrammar
