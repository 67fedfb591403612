// The section names and numbers of a data sheet.
// SPDX-License-Identifier: MIT
#pragma once

// These functions also store what they have read when they return false. A null pointer causes a warning in the log; a
// null text then counts as empty, and for a null result nothing is stored.

/// Section name of an object: 1 to 4 hexadecimal digits, the first not 0. Example: "1A00".
bool IsObject(const char* name, unsigned short* index);

/// Section name of an entry: an index of 4 hexadecimal digits, "sub" in upper or lower case, and a sub-index of 1 or 2
/// hexadecimal digits. Neither number begins with 0, except for sub-index "0". Example: "1018sub1".
bool IsObjectEntry(const char* name, unsigned short* index, unsigned char* subIndex);

/// Unsigned number, decimal ("20", "+20"), hexadecimal ("0x14") or octal ("024"), with blanks and tabs around it. "+"
/// with only blanks after it is 0. False for an empty text, "+" alone, any other character ("-" included) and numbers
/// above 255; `value` then holds the digits before.
bool Ascii2Unsigned8(const char* text, unsigned char* value);
/// The same up to 65535.
bool Ascii2Unsigned16(const char* text, unsigned short* value);
/// The same up to 4294967295.
bool Ascii2Unsigned32(const char* text, unsigned long* value);
