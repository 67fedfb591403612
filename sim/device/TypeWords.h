// The words for data types in gateway commands and in the log ("u8", "d", ...): texts of values to bytes and back.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/ValueTypes.h"

#include <QByteArray>

#include <optional>

/// One word. `encode` and `decode` are null where the simulator knows the word but does not support the type.
struct tTypeWord {
    const char* word;
    tValueType type;
    std::optional<QByteArray> (*encode)(const QByteArray& text, tValueType type);
    QByteArray (*decode)(const QByteArray& bytes, tValueType type);
};

/// The row of a word, in upper or lower case; null for other words.
///
///   b                     boolean: 0 or 1                     u8 u16 ... u64   number; answered as 0x1234
///   r32 r64               1.5, or the bit pattern 0x3FC00000   i8 i16 ... i64   number; answered as -12
///   d                     any bytes in base64; answered as "=" when there are none
///   vs                    a word, or a quoted text in which a double quote is written twice; answered in quotes, with
///                         question marks for control characters
///   os us t td            not supported
const tTypeWord* findTypeWord(const QByteArray& word);

/// The row by which clients read an entry of this layout: "d" unless it is a number, also when the layout is unknown.
const tTypeWord& typeWordFor(std::optional<tValueType> type);

/// A value of the type for the log: for "d" the text of `readable`, otherwise the text that a read answers.
QByteArray shownValue(const tTypeWord& type, const QByteArray& bytes);

/// A number in hexadecimal, with at least `digits` digits after the "0x": 0x00FF.
QByteArray hexadecimal(quint64 value, int digits);

/// A text in double quotes, with the double quotes in it written twice.
QByteArray quoted(const QByteArray& text);

/// Bytes for the log: text in double quotes when all are printable ASCII, otherwise hexadecimal octets: 01 FF.
QByteArray readable(const QByteArray& bytes);
