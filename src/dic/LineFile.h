// A text file read line by line, in bounded memory whatever the file holds.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringDecoder>
#include <QStringView>

#include <optional>

/// The text is UTF-8 if the whole file is valid UTF-8 (a byte order mark is dropped), else Windows-1252, whose five
/// bytes without a character become the control characters U+0081, 8D, 8F, 90 and 9D.
class CLineFile
{
public:
    /// Longest line in UTF-16 units, line feed included. A longer one is read as several lines.
    static constexpr qsizetype maxLine = 0x10000;

    CLineFile() = default;
    Q_DISABLE_COPY_MOVE(CLineFile)

    /// Opens a regular file (name as `QFile::encodeName` gives it) and finds out its character set. Directories, pipes
    /// and devices are refused: some of them never end. False if nothing was opened.
    bool open(const char* fileName);
    bool isOpen() const { return m_file.isOpen(); }

    /// Reads the next line with its line feed; only the last line and parts of a longer line can have none. Bytes that
    /// are appended after `open` are not read; a file that is shortened ends earlier; bytes that are changed may read
    /// as U+FFFD. False at the end; `line` is empty then.
    bool readLine(QString& line);

private:
    QByteArrayView readBytes();
    bool isUtf8();
    bool decodeNextBlock();

    QFile m_file;
    qint64 m_bytesLeft = 0;                  // of the size found when the file was opened
    QByteArray m_bytes;                      // one block as it is in the file
    std::optional<QStringDecoder> m_decoder; // none: Windows-1252
    QString m_text;                          // the characters of the block
    QStringView m_rest;                      // the end of m_text that readLine has not returned yet
};
