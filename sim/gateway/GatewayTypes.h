// The data type words of gateway commands ("u8", "d", ...): the text of a value to its bytes and back.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/ValueTypes.h"

#include <QByteArray>

#include <optional>

/// One data type word. `encode` and `decode` are null for words that the simulator knows and does not serve.
struct tGatewayType {
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
///   vs                    a word, or a quoted text in which a double quote is written twice
///   os us t td            not served
const tGatewayType* gatewayType(const QByteArray& word);

/// The row for an entry of this layout, the way clients ask for it: "d" for what is no number, or for none.
const tGatewayType& gatewayTypeFor(std::optional<tValueType> type);

/// A value of the type as a log shows it: any bytes as `readable` has them, numbers as they are answered.
QByteArray shownValue(const tGatewayType& type, const QByteArray& bytes);

/// A number in hexadecimal, with at least `digits` digits behind the "0x": 0x00FF.
QByteArray hexadecimal(quint64 value, int digits);

/// A text in double quotes, with the double quotes in it written twice.
QByteArray quoted(const QByteArray& text);

/// Bytes as a log shows them: printable ASCII in double quotes, anything else as hexadecimal octets: "01 FF".
QByteArray readable(const QByteArray& bytes);
