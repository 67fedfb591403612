// The data types of dictionary entries as bytes: their widths, the values in data sheets, and comparison with limits.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/NumberText.h"

#include <QByteArray>
#include <QString>

#include <optional>

enum tValueKind { kindBoolean, kindSigned, kindUnsigned, kindReal, kindText, kindOctets, kindDate, kindTimeOfDay };

/// How a value is laid out. `width` is in bytes; 0 stands for any length.
struct tValueType {
    tValueKind kind;
    int width;
};

/// The layout of a CANopen data type, given by its index (5 = UNSIGNED8). Unknown types are octets of any length.
tValueType valueType(int dataType);

/// Whether values of the type are numbers without a fraction.
bool isNumeric(tValueType type);

/// Whether the text stands for a value that depends on the node-id: it has "$NODEID" in it, in any case.
bool isRelative(const QString& text);

/// Whether `number` is a value of the type: in its range, or a bit pattern of its width. Numeric kinds only.
bool fits(const tNumber& number, tValueType type);

/// The low `width` bytes (1 to 8) of `bits`, least significant byte first, as on the bus.
QByteArray littleEndian(quint64 bits, int width);

/// The number that up to 8 bytes hold, least significant byte first. Signed kinds are sign-extended.
quint64 numberOf(const QByteArray& bytes, tValueType type);

/// The floating-point number in 4 or 8 bytes.
double realOf(const QByteArray& bytes);

/// The bytes of a number written with a decimal point or exponent, or as the bit pattern in hexadecimal ("0x3F800000").
/// `width` is 4 or 8.
std::optional<QByteArray> realFromText(const QString& text, int width);

/// The bytes of a DefaultValue text. A text that is missing or wrong gives zero, or nothing for types of any length;
/// numbers are cut to the width. Texts are Latin-1. Octets are pairs of hexadecimal digits ("01 2A FF"), otherwise the
/// characters of the text. Dates and times are octets or "2026-01-31 12:00:00.000"; TIME_OF_DAY means
/// local time.
QByteArray defaultFromText(const QString& text, tValueType type, unsigned nodeId);

/// The same for those who must not take a wrong text for a value: no value where the text is none of the type, such as
/// a number that does not fit it, a character that Latin-1 does not have, or an empty text. Sums with "$NODEID" are cut
/// to the width.
std::optional<QByteArray> valueFromText(const QString& text, tValueType type, unsigned nodeId);

/// The text that `valueFromText` reads as these bytes: "0x00FF", "1.5", "01 2A FF", a text as it is. With a `nodeId`
/// that is not 0, a number is written relative to it: "$NODEID+0x180" for 0x185 and node 5. No text where a data sheet
/// cannot hold the value, such as a text with a semicolon, or no bytes at all.
std::optional<QString> textFromValue(const QByteArray& bytes, tValueType type, unsigned nodeId = 0);

/// The bytes of a LowLimit or HighLimit text; empty when there is no limit, or none within the range of the type.
QByteArray limitFromText(const QString& text, tValueType type, unsigned nodeId);

/// Whether value `a` is below value `b`. Both have the width of the type, which is a numeric one.
bool isBelow(const QByteArray& a, const QByteArray& b, tValueType type);
