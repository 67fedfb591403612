// Scanner of the gateway's response lines: keywords, numbers and texts at a cursor.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

// `text` is zero-terminated and `cursor` an index into it, which every function moves past what it takes, never past
// the end. All but `character` and `compare` skip blanks and tabs first. A null pointer is treated as the end of the
// text.

/// The tokens that answers may have; all others are refused.
inline constexpr int tcp_token_error = 7;
inline constexpr int tcp_token_ok = 29;

/// The next character; the cursor stays before it. @return -128 to 127, -1 at the end
int lookahead(const char* text, uint32_t* cursor);

/// Takes one character. @return -128 to 127, -1 at the end
int character(const char* text, uint32_t* cursor);

/// Takes a keyword of the gateway protocol, in any case. Text may follow without a blank: "okay" is "ok" and "ay".
/// @return the number of the keyword, -1 when there is none
int token(const char* text, uint32_t* cursor);

/// True (1) when `text` begins with `keyword`, in any case.
int compare(const char* text, const char* keyword);

/// Takes an unsigned number: decimal "31", hexadecimal "0x1F" or octal "037", up to the first character that does not
/// belong to it. A number out of range is stored cut to the width. `result` may be null.
/// @return 1, or 0 when there is no number or it does not fit the width
int ascii2unsigned8(const char* text, uint32_t* cursor, uint8_t* result);
int ascii2unsigned16(const char* text, uint32_t* cursor, uint16_t* result);
int ascii2unsigned32(const char* text, uint32_t* cursor, uint32_t* result);

/// Takes a signed number, likewise. Only decimal numbers may have a sign; the other forms are bit patterns of the
/// width, so that "0xFF" is -1 with 8 bits.
int ascii2integer8(const char* text, uint32_t* cursor, int8_t* result);
int ascii2integer16(const char* text, uint32_t* cursor, int16_t* result);
int ascii2integer32(const char* text, uint32_t* cursor, int32_t* result);

/// Takes base64 characters and the padding after them, and stores up to `size` decoded bytes; the rest is dropped.
/// `length` becomes the number of bytes stored. @return 1, or 0 when a pointer is null
int ascii2domain(const char* text, uint32_t* cursor, BYTE* buffer, short* length, short size);

/// Takes a word of the characters 33 to 127, or a text in double quotes in which "" stands for one quote. Stores up
/// to `size` - 1 characters and a terminating zero; the rest is dropped. `length` becomes the number of characters
/// stored.
/// @return 1, or 0 when a pointer is null
int ascii2string(const char* text, uint32_t* cursor, char* buffer, short* length, short size);
