// Scanner of the gateway's response lines: keywords, numbers and texts at a cursor.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_scan.h"

#include "base/Digits.h"
#include "tcp/base64.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <limits>
#include <type_traits>

// The grammar of the items:
//
//   blanks    = { " " | TAB }
//   number    = hex | octal | decimal
//   hex       = "0" ( "x" | "X" ) { "0"-"9" | "a"-"f" | "A"-"F" }
//   octal     = "0" { "0"-"7" }
//   decimal   = [ "+" | "-" ] digit { digit }          a sign only in signed numbers
//   domain    = { alphabet } { "=" }                   base64
//   string    = { 33-127 } | quote { 32-127 but quote | quote quote } quote
//
// Bytes of 128 and above are negative here and end every item.

struct tcp_scan_keyword {
    const char* word;
    int token;
};

// Searched from top to bottom: "communication" stands before "comm", with which it begins, and so on.
static constexpr tcp_scan_keyword tcp_scan_keywords[] = {
    { "b", 0 },
    { "communication", 1 },
    { "comm", 1 },
    { "copyright", 2 },
    { "disable", 3 },
    { "d", 4 },
    { "emcy", 5 },
    { "enable", 6 },
    { "error", tcp_token_error },
    { "event", 8 },
    { "execute", 9 },
    { "exec", 9 },
    { "exit", 10 },
    { "e", tcp_token_error },
    { "firmware", 11 },
    { "guarding", 12 },
    { "hardware", 13 },
    { "heartbeat", 14 },
    { "i8", 18 },
    { "i16", 19 },
    { "i24", 20 },
    { "i32", 21 },
    { "i40", 22 },
    { "i48", 23 },
    { "i56", 24 },
    { "i64", 25 },
    { "id", 15 },
    { "info", 16 },
    { "init", 17 },
    { "network", 26 },
    { "node", 27 },
    { "ok", tcp_token_ok },
    { "os", 28 },
    { "pdo", 30 },
    { "preoperational", 31 },
    { "preop", 31 },
    { "p", 30 },
    { "r32", 33 },
    { "r64", 34 },
    { "read", 32 },
    { "receive", 35 },
    { "recv", 35 },
    { "restore", 37 },
    { "reset", 36 },
    { "rpdo", 38 },
    { "rtr", 39 },
    { "r", 32 },
    { "sdo_timeout", 40 },
    { "set", 42 },
    { "send", 41 },
    { "software", 43 },
    { "start", 44 },
    { "stop", 45 },
    { "store", 46 },
    { "sync", 47 },
    { "td", 49 },
    { "tpdo", 50 },
    { "t", 48 },
    { "u8", 52 },
    { "u16", 53 },
    { "u24", 54 },
    { "u32", 55 },
    { "u40", 56 },
    { "u48", 57 },
    { "u56", 58 },
    { "u64", 59 },
    { "user", 60 },
    { "us", 51 },
    { "version", 61 },
    { "vs", 62 },
    { "wait", 63 },
    { "write", 64 },
    { "w", 64 },
};

static constexpr tcp_scan_keyword tcp_scan_no_keyword = { "", -1 };

static constexpr char tcp_scan_lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

static constexpr bool tcp_scan_begins(const char* text, const char* keyword)
{
    while (*keyword != '\0' && tcp_scan_lower(*text) == tcp_scan_lower(*keyword)) {
        ++text;
        ++keyword;
    }
    return *keyword == '\0';
}

static constexpr const tcp_scan_keyword& tcp_scan_find(const char* text)
{
    for (const tcp_scan_keyword& row : tcp_scan_keywords)
        if (tcp_scan_begins(text, row.word))
            return row;
    return tcp_scan_no_keyword;
}

/// No row may be hidden by a row above it.
static constexpr bool tcp_scan_all_found()
{
    return std::all_of(std::begin(tcp_scan_keywords), std::end(tcp_scan_keywords),
                       [](const tcp_scan_keyword& row) { return &tcp_scan_find(row.word) == &row; });
}

static_assert(std::size(tcp_scan_keywords) == 73 && tcp_scan_all_found());
static_assert(tcp_scan_find("Okay").token == tcp_token_ok && tcp_scan_find("ERR").token == tcp_token_error);

static void tcp_scan_skip_blanks(const char* text, uint32_t* cursor)
{
    while (text[*cursor] == ' ' || text[*cursor] == '\t')
        ++*cursor;
}

int lookahead(const char* text, uint32_t* cursor)
{
    if (text == nullptr || cursor == nullptr)
        return -1;
    tcp_scan_skip_blanks(text, cursor);
    return text[*cursor] == '\0' ? -1 : static_cast<signed char>(text[*cursor]);
}

int character(const char* text, uint32_t* cursor)
{
    if (text == nullptr || cursor == nullptr || text[*cursor] == '\0')
        return -1;
    return static_cast<signed char>(text[(*cursor)++]);
}

int token(const char* text, uint32_t* cursor)
{
    if (lookahead(text, cursor) == -1)
        return -1;
    const tcp_scan_keyword& row = tcp_scan_find(text + *cursor);
    *cursor += static_cast<uint32_t>(std::strlen(row.word));
    return row.token;
}

int compare(const char* text, const char* keyword)
{
    return text != nullptr && keyword != nullptr && tcp_scan_begins(text, keyword) ? 1 : 0;
}

/// The value of the digits modulo 2^32, and whether it is within the limit.
struct tcp_scan_digits {
    uint32_t value;
    bool fits;
};

static tcp_scan_digits tcp_scan_take_digits(const char* text, uint32_t* cursor, uint32_t base, uint32_t limit)
{
    tcp_scan_digits taken = { 0, true };
    for (uint32_t digit = digitOf(text[*cursor]); digit < base; digit = digitOf(text[*cursor])) {
        taken.fits = taken.fits && taken.value <= (limit - digit) / base;
        taken.value = taken.value * base + digit;
        ++*cursor;
    }
    return taken;
}

/// The rest of a number after its first "0": hexadecimal or octal, a bit pattern of the width.
static tcp_scan_digits tcp_scan_take_pattern(const char* text, uint32_t* cursor, uint32_t limit)
{
    if (tcp_scan_lower(text[*cursor]) != 'x')
        return tcp_scan_take_digits(text, cursor, 8, limit);
    ++*cursor;
    return tcp_scan_take_digits(text, cursor, 16, limit);
}

static tcp_scan_digits tcp_scan_take_decimal(const char* text, uint32_t* cursor, uint32_t limit)
{
    if (digitOf(text[*cursor]) >= 10)
        return { 0, false };
    return tcp_scan_take_digits(text, cursor, 10, limit);
}

/// A minus sign is taken only before a digit.
static tcp_scan_digits tcp_scan_take_signed(const char* text, uint32_t* cursor, uint32_t limit)
{
    if (text[*cursor] == '-' && digitOf(text[*cursor + 1]) < 10) {
        ++*cursor;
        const tcp_scan_digits magnitude = tcp_scan_take_decimal(text, cursor, limit + 1);
        return { 0U - magnitude.value, magnitude.fits };
    }
    if (text[*cursor] == '+')
        ++*cursor;
    return tcp_scan_take_decimal(text, cursor, limit);
}

template <typename Number>
static int tcp_scan_number(const char* text, uint32_t* cursor, Number* result)
{
    constexpr uint32_t bits = std::numeric_limits<std::make_unsigned_t<Number>>::max();
    constexpr uint32_t limit = std::numeric_limits<Number>::max();
    if (result != nullptr)
        *result = 0;
    if (text == nullptr || cursor == nullptr)
        return 0;
    tcp_scan_skip_blanks(text, cursor);

    tcp_scan_digits taken = {};
    if (text[*cursor] == '0')
        taken = tcp_scan_take_pattern(text, &++*cursor, bits);
    else if constexpr (std::is_signed_v<Number>)
        taken = tcp_scan_take_signed(text, cursor, limit);
    else
        taken = tcp_scan_take_decimal(text, cursor, limit);

    if (result != nullptr)
        *result = static_cast<Number>(taken.value);
    return taken.fits ? 1 : 0;
}

int ascii2unsigned8(const char* text, uint32_t* cursor, uint8_t* result)
{
    return tcp_scan_number(text, cursor, result);
}

int ascii2unsigned16(const char* text, uint32_t* cursor, uint16_t* result)
{
    return tcp_scan_number(text, cursor, result);
}

int ascii2unsigned32(const char* text, uint32_t* cursor, uint32_t* result)
{
    return tcp_scan_number(text, cursor, result);
}

int ascii2integer8(const char* text, uint32_t* cursor, int8_t* result)
{
    return tcp_scan_number(text, cursor, result);
}

int ascii2integer16(const char* text, uint32_t* cursor, int16_t* result)
{
    return tcp_scan_number(text, cursor, result);
}

int ascii2integer32(const char* text, uint32_t* cursor, int32_t* result)
{
    return tcp_scan_number(text, cursor, result);
}

static void tcp_scan_decode(const char* group, int count, BYTE* buffer, short* length, short size)
{
    const int room = std::min({ count, 3, size - *length });
    *length = static_cast<short>(*length + base64_decode(group, count, buffer + *length, room));
}

int ascii2domain(const char* text, uint32_t* cursor, BYTE* buffer, short* length, short size)
{
    if (text == nullptr || cursor == nullptr || buffer == nullptr || length == nullptr)
        return 0;
    tcp_scan_skip_blanks(text, cursor);
    *length = 0;

    int count = 0; // characters before the cursor that are not decoded yet, at most a group
    for (; base64_belongs(text[*cursor]); ++*cursor, ++count) {
        if (count < 4)
            continue;
        tcp_scan_decode(text + *cursor - 4, 4, buffer, length, size);
        count = 0;
    }
    tcp_scan_decode(text + *cursor - count, count, buffer, length, size);
    while (text[*cursor] == '=')
        ++*cursor;
    return 1;
}

int ascii2string(const char* text, uint32_t* cursor, char* buffer, short* length, short size)
{
    if (text == nullptr || cursor == nullptr || buffer == nullptr || length == nullptr)
        return 0;
    tcp_scan_skip_blanks(text, cursor);
    *length = 0;

    const bool quoted = text[*cursor] == '"';
    if (quoted)
        ++*cursor;
    const int lowest = quoted ? ' ' : ' ' + 1; // bytes of 128 and above are negative
    for (; static_cast<signed char>(text[*cursor]) >= lowest; ++*cursor) {
        if (quoted && text[*cursor] == '"') {
            ++*cursor;
            if (text[*cursor] != '"')
                break;
        }
        if (*length + 1 < size)
            buffer[(*length)++] = text[*cursor];
    }
    if (*length < size)
        buffer[*length] = '\0';
    return 1;
}
