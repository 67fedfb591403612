// Scanner of the gateway's response lines: keywords, numbers and texts at a cursor.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

// `text` is zero-terminated and `cursor` an index into it, which every function advances over what it takes, never
// beyond the end. Except for `character` and `compare` they skip blanks and tabs first. Null pointers count as the end
// of the text.

/// Tokens with a meaning of their own; the other keywords are recognised only to be refused.
inline constexpr int tcp_token_error = 7;
inline constexpr int tcp_token_ok = 29;

/// The character at the cursor, which is not taken. @return -128 to 127, -1 at the end
int lookahead(const char* text, uint32_t* cursor);

/// Takes one character. @return -128 to 127, -1 at the end
int character(const char* text, uint32_t* cursor);

/// Takes a keyword of the gateway protocol, in any case. There is no word boundary: "okay" is "ok" with more behind it.
/// @return the keyword's number, -1 when there is none
int token(const char* text, uint32_t* cursor);

/// True (1) when `text` begins with `keyword`, in any case.
int compare(const char* text, const char* keyword);

/// Takes an unsigned number: decimal "31", hexadecimal "0x1F" or octal "037". It ends at the first character that does
/// not belong to it. A number out of range is stored cut to the width. `result` may be null.
/// @return 1, or 0 when there is no number or it does not fit the width
int ascii2unsigned8(const char* text, uint32_t* cursor, uint8_t* result);
int ascii2unsigned16(const char* text, uint32_t* cursor, uint16_t* result);
int ascii2unsigned32(const char* text, uint32_t* cursor, uint32_t* result);

/// Takes a signed number, likewise. A sign stands before decimal digits only; the other forms are bit patterns of the
/// width, so that "0xFF" is -1 with 8 bits.
int ascii2integer8(const char* text, uint32_t* cursor, int8_t* result);
int ascii2integer16(const char* text, uint32_t* cursor, int16_t* result);
int ascii2integer32(const char* text, uint32_t* cursor, int32_t* result);

/// Takes base64 characters and the padding behind them, and stores up to `size` decoded bytes; the rest is dropped.
/// `length` becomes the number of bytes stored. @return 1, or 0 when a pointer is null
int ascii2domain(const char* text, uint32_t* cursor, BYTE* buffer, short* length, short size);

/// Takes a word of characters above the blank, or a text in double quotes in which "" stands for one quote. Stores up
/// to `size` - 1 characters and a terminating zero; the rest is dropped. `length` becomes the number of characters
/// stored.
/// @return 1, or 0 when a pointer is null
int ascii2string(const char* text, uint32_t* cursor, char* buffer, short* length, short size);
