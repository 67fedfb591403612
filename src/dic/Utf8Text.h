// Texts of the dictionary from C strings, without spare room behind them.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The text of a UTF-8 C string; null for a null pointer. Decoding reserves one character for each byte, three times
/// the need in the worst case: a large data sheet keeps its values for as long as its window is open.
inline QString textFromUtf8(const char* utf8)
{
    QString text = QString::fromUtf8(utf8);
    text.squeeze();
    return text;
}
