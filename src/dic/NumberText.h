// Numbers in texts: of data sheets, gateway commands and command lines.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>
#include <QtGlobal>
#include <optional>

/// A number as it was written. `bits` holds two's complement when `negative` is set. `pattern`: written in
/// hexadecimal or octal, so that it may be the bit pattern of a signed value.
struct tNumber {
    quint64 bits = 0;
    bool negative = false;
    bool pattern = false;
};

/// Reads a whole text: decimal with an optional sign, hexadecimal after "0x", octal after "0"; blanks around it are
/// skipped. No value when the text is no such number or needs more than 64 bits.
/// Examples: "10", "-5", "0x1F", "017".
std::optional<tNumber> readNumber(QStringView text);

/// Reads a value of a data sheet: a number, or a sum of numbers and "$NODEID" (in any case), each of which stands for
/// `nodeId`. Sums are cut to 64 bits. Examples: "0x10", "$NODEID+0x180", "0x180 + $NODEID".
std::optional<tNumber> readTerms(QStringView text, unsigned nodeId);

/// A number in hexadecimal, with at least `digits` digits: "0x00FF".
QString hexadecimalText(quint64 number, int digits);
