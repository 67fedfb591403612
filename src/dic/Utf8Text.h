// Texts of the dictionary from C strings, without unused memory.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringDecoder>

/// The text of a UTF-8 C string; a null text for a null pointer. A byte order mark is a character like any other.
/// Decoding reserves one character for each byte, up to three times what is needed; the unused memory is freed, since
/// texts stay as long as their document is open.
inline QString textFromUtf8(const char* utf8)
{
    if (utf8 == nullptr)
        return QString();
    using Flag = QStringConverter::Flag;
    QString text = QStringDecoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom)(utf8);
    text.squeeze();
    return text;
}
