// The values of parameters as texts of the command line: those that a user types, and those that the program prints.
// SPDX-License-Identifier: MIT
#pragma once

#include "values/ValueFormats.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace typedValue
{

/// The number of a data type by its word on the command line: "u8", "i32", "bool", "r32", "vs", "os", "d", "date",
/// "time"; none for other words.
std::optional<int> typeOfWord(const QString& word);
/// All words, for messages and help: "bool, i8, ... time".
QString words();

/// The bytes that a typed text stands for; none when it is no value of the type, for example a number out of its range.
/// Integers are read as the window reads them, but need a digit; a boolean is 0 or 1; reals are decimal or bit
/// patterns ("1.5", "0x3FC00000"); texts are Latin-1; dates and times are "2026-01-31 12:00:00.000" or bytes; all other
/// types are bytes in hexadecimal ("01 2A FF", "0x01 0x2A", "012AFF").
std::optional<QByteArray> bytesOf(int type, const QString& text);

/// A value as the window shows it when it was sent, without blanks at its ends: "0x000003E8", "+12", "0x01 0x02". Reals
/// are shown as they are read. Texts end with their first zero byte, and their control characters are shown as "\x1B".
/// Bytes that are no value of the type, since their number is another or there is no such date, are shown byte by byte.
/// Bytes are hexadecimal in each mode, and octal numbers begin with 0, so that `bytesOf` takes everything for what it
/// is but texts with such characters.
QString textOf(int type, const QByteArray& bytes, valueFormats::TDisplayMode mode);

/// The same with texts as they are, for formats that can hold every character.
QString exactTextOf(int type, const QByteArray& bytes, valueFormats::TDisplayMode mode);

/// Whether values of the type have a fixed number of bytes other than this one.
bool sizeDiffers(int type, qsizetype size);

} // namespace typedValue
