// Base64 codec for one group: up to three bytes into up to four characters and back.
// SPDX-License-Identifier: MIT
#pragma once

/// True for the 64 characters "A"-"Z", "a"-"z", "0"-"9", "+" and "/".
bool base64_belongs(char character);

/// Encodes one group of `length` bytes, padded with "=" to four characters. Writes the first `room` of them and no
/// terminating zero.
///
/// The byte after a group of two must be readable: its upper two bits become part of the third character, so that it
/// should be zero. `"ABC"` gives `"QUJD"`, `"A"` gives `"QQ=="`.
/// @return the number of characters that carry data: 4, 3 or 2 for a group of 3, 2 or 1 bytes with room for all four, 0
/// for an empty group, and `room` when no padding was written
int base64_encode(const unsigned char* input, int length, char* output, int room);

/// Decodes one group of `length` characters (up to four) into at most `room` bytes (up to three).
///
/// There are no errors: a character outside the alphabet gives some bits, and its byte is written but not counted. The
/// caller owes three readable characters, or as many as there is room, also when the group is shorter: whether a byte
/// counts is asked of the character at its place, even after a terminating zero. After a shorter group, one outside the
/// alphabet should follow. `"QUJD"` gives `"ABC"`, `"QQ"` gives `"A"`, and a single character gives one byte, its six
/// bits shifted left by two.
/// @return the number of bytes counted; as many as there is room for are written, at most three, counted or not
int base64_decode(const char* input, int length, unsigned char* output, int room);

/// The revision text of this module.
const char* base64_version();
