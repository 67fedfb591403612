// UTF-8 and the texts of the dictionary that are made of it.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringDecoder>

#include <algorithm>
#include <string_view>

/// True for the bytes of a UTF-8 character after its first one.
constexpr bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The text of UTF-8, without unused memory, since texts stay as long as their document is open. A byte order mark is a
/// character like any other.
inline QString textFromUtf8(std::string_view utf8)
{
    const auto size = static_cast<qsizetype>(utf8.size());
    if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<signed char>(c) >= 0; }))
        return QString::fromLatin1(utf8.data(), size);
    using Flag = QStringConverter::Flag;
    QString text = QStringDecoder(QStringDecoder::Utf8,
                                  Flag::Stateless | Flag::ConvertInitialBom)(QByteArrayView(utf8.data(), size));
    text.squeeze(); // decoding reserves one character for each byte
    return text;
}

/// The same of a C string; a null text for a null pointer.
inline QString textFromUtf8(const char* utf8)
{
    return utf8 != nullptr ? textFromUtf8(std::string_view(utf8)) : QString();
}
