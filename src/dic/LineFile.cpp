// Lines of a text file: one pass over the bytes finds the character set, a second one delivers the lines.
// SPDX-License-Identifier: MIT
#include "dic/LineFile.h"

#include "dic/Utf8Text.h"

#include <QFileInfo>
#include <QUtf8StringView>

#include <algorithm>
#include <array>
#include <cstring>

namespace
{

constexpr qsizetype blockSize = 0x10000;
constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
constexpr qsizetype longestCharacter = 4;

// The first byte of a character of two UTF-16 units.
constexpr bool isFirstOfFour(char byte)
{
    return static_cast<unsigned char>(byte) >= 0xF0;
}

// The characters of the bytes 0x80 to 0x9F in Windows-1252; all others are those of Latin-1.
// clang-format off
constexpr std::array<char16_t, 32> windows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
// clang-format on

// Writes bytes of Windows-1252 as UTF-8, up to three bytes for each. Returns the end of what was written.
char* toUtf8(const char* bytes, qint64 count, char* text)
{
    for (qint64 n = 0; n < count; ++n) {
        const auto byte = static_cast<unsigned char>(bytes[n]);
        const unsigned code = 0x80 <= byte && byte < 0xA0 ? windows1252[byte - 0x80U] : byte;
        if (code < 0x80) {
            *text++ = static_cast<char>(code);
        } else if (code < 0x800) {
            *text++ = static_cast<char>(0xC0 | code >> 6);
            *text++ = static_cast<char>(0x80 | (code & 0x3F));
        } else {
            *text++ = static_cast<char>(0xE0 | code >> 12);
            *text++ = static_cast<char>(0x80 | (code >> 6 & 0x3F));
            *text++ = static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return text;
}

// The bytes of the longest whole characters that have at most `most` UTF-16 units. At most three bytes a unit, even
// when the file was changed to something that is not UTF-8.
qsizetype bytesOfUnits(const char* text, qsizetype size, qsizetype most)
{
    if (size <= most) // a byte is at most one unit
        return size;
    qsizetype units = 0;
    qsizetype end = 0;
    for (qsizetype place = 0; place < size; ++place) {
        if (isContinuation(text[place]))
            continue;
        end = place;
        units += isFirstOfFour(text[place]) ? 2 : 1;
        if (units > most)
            return end;
    }
    return std::min(size, 3 * most);
}

} // namespace

bool CLineFile::open(const char* fileName)
{
    const QString name = QFile::decodeName(fileName);
    if (!QFileInfo(name).isFile())
        return false;
    m_file.setFileName(name);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    m_isOpen = true;
    const qint64 size = m_file.size();
    m_bytesLeft = size;
    m_isUtf8 = isUtf8();
    m_hasFailed = !m_file.seek(0) || m_hasFailed;
    m_bytesLeft = m_hasFailed ? 0 : size;
    m_next = m_end = m_text.data();
    if (m_isUtf8 && appendBlock() && QByteArrayView(m_next, m_end).startsWith(byteOrderMark))
        m_next += byteOrderMark.size();
    return true;
}

std::span<char> CLineFile::readLine()
{
    while (true) {
        const qsizetype size = m_end - m_next;
        const auto* lineFeed = static_cast<const char*>(std::memchr(m_next, '\n', static_cast<std::size_t>(size)));
        const qsizetype whole = lineFeed != nullptr ? lineFeed + 1 - m_next : size;
        const qsizetype length = bytesOfUnits(m_next, whole, maxLine);
        if (lineFeed == nullptr && length == size && appendBlock())
            continue;
        return { std::exchange(m_next, m_next + length), static_cast<std::size_t>(length) };
    }
}

// Reads the next bytes of the file. Returns their number, 0 at its end or when it cannot be read.
qint64 CLineFile::readBytes(char* bytes, qint64 most)
{
    const qint64 count = m_file.read(bytes, std::min(most, m_bytesLeft));
    m_bytesLeft = count > 0 ? m_bytesLeft - count : 0;
    m_hasFailed = count < 0 || m_hasFailed;
    return std::max<qint64>(count, 0);
}

// Looks at all bytes, those of a character at the end of a block together with the next one.
bool CLineFile::isUtf8()
{
    m_block.resize(blockSize + longestCharacter);
    qsizetype kept = 0; // bytes of an unfinished character, moved to the front
    while (const qint64 count = readBytes(m_block.data() + kept, blockSize)) {
        const qsizetype size = kept + count;
        qsizetype end = size;
        while (end > 0 && size - end < longestCharacter && isContinuation(m_block[end - 1]))
            --end;
        end = end > 0 && static_cast<unsigned char>(m_block[end - 1]) >= 0xC0 ? end - 1 : size;
        if (!QUtf8StringView(m_block.constData(), end).isValidUtf8())
            return false;
        kept = size - end;
        std::memmove(m_block.data(), m_block.constData() + end, static_cast<std::size_t>(kept));
    }
    return QUtf8StringView(m_block.constData(), kept).isValidUtf8();
}

// Appends the next block of the file to the text that has not been delivered; false at the end of the file.
bool CLineFile::appendBlock()
{
    const qsizetype rest = m_end - m_next;
    const qsizetype room = m_isUtf8 ? blockSize : 3 * blockSize;
    std::memmove(m_text.data(), m_next, static_cast<std::size_t>(rest));
    if (m_text.size() < rest + room)
        m_text.resize(rest + room);
    m_next = m_text.data();
    char* const block = m_next + rest;
    if (m_isUtf8) {
        m_end = block + readBytes(block, blockSize);
    } else {
        m_block.resize(blockSize);
        m_end = toUtf8(m_block.constData(), readBytes(m_block.data(), blockSize), block);
    }
    return m_end > block;
}
