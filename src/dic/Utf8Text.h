// Texts of the dictionary from C strings, without spare room after them.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringDecoder>

/// The text of a UTF-8 C string; null for a null pointer. A byte order mark is a character like any other. Decoding
/// reserves one character for each byte, three times the need in the worst case, which is given back: a large data
/// sheet keeps its values for as long as its window is open.
inline QString textFromUtf8(const char* utf8)
{
    if (utf8 == nullptr)
        return QString();
    using Flag = QStringConverter::Flag;
    QString text = QStringDecoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom)(utf8);
    text.squeeze();
    return text;
}
