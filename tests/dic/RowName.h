// Names of test rows made from their input.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

/// The text in quotation marks, control characters as numbers: "12\x0a".
inline QByteArray rowName(const QByteArray& text)
{
    QByteArray name = "\"";
    for (const char character : text) {
        const bool control = '\0' <= character && character < ' ';
        name += control ? "\\x" + QByteArray::number(character, 16).rightJustified(2, '0') : QByteArray(1, character);
    }
    return name + '"';
}
