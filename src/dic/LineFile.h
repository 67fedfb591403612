// A text file read line by line as UTF-8, in bounded memory whatever the file holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>

#include <cstring>
#include <span>
#include <utility>

/// The text is UTF-8 if the whole file is valid UTF-8 (a byte order mark at its start is dropped), else Windows-1252,
/// which is converted; its five bytes without a character become the control characters U+0081, 8D, 8F, 90 and 9D.
class CLineFile
{
public:
    /// Longest line in UTF-16 units, line feed included. What is longer continues as the next line; a character of two
    /// units is not divided.
    static constexpr qsizetype maxLine = 0x10000;

    CLineFile() = default;
    Q_DISABLE_COPY_MOVE(CLineFile)

    /// Opens a regular file (name as `QFile::encodeName` gives it) and finds out its character set. Directories, pipes
    /// and devices are refused: some of them never end. False if nothing was opened.
    bool open(const char* fileName);
    bool isOpen() const { return m_isOpen; }
    /// Whether all that was wanted of the file so far could be read. False after an error of the system, which else
    /// looks like the end of the file, and without a file.
    bool isWhole() const { return m_isOpen && !m_hasFailed; }

    /// Takes the next line if all of it has been read from the file already; the line before stays valid then. No line
    /// otherwise, see `readLine`.
    std::span<char> takeLine()
    {
        auto* lineFeed = static_cast<char*>(std::memchr(m_next, '\n', static_cast<std::size_t>(m_end - m_next)));
        if (lineFeed == nullptr || lineFeed - m_next >= maxLine)
            return {};
        return { std::exchange(m_next, lineFeed + 1), lineFeed + 1 };
    }

    /// Reads the next line with its line feed, which only the last line or a part of a longer line can lack. The file
    /// ends where it ended when it was opened, or earlier if it has been cut since then; bytes changed since then may
    /// break the UTF-8.
    /// @return UTF-8 that the caller may change, valid until the next call; empty at the end
    std::span<char> readLine();

    /// The end of the line taken or read last.
    const char* endOfLine() const { return m_next; }

private:
    qint64 readBytes(char* bytes, qint64 most);
    bool isUtf8();
    bool appendBlock();

    QFile m_file;
    qint64 m_bytesLeft = 0; // of the size found when the file was opened
    bool m_isOpen = false;
    bool m_hasFailed = false; // a part could not be read
    bool m_isUtf8 = false;
    QByteArray m_block;           // bytes of the file that are not UTF-8 yet
    QByteArray m_text;            // UTF-8
    char* m_next = m_text.data(); // the part of m_text that has not been delivered
    char* m_end = m_next;
};
