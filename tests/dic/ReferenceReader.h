// A second tokenizer for data sheets, written apart from the program's: it decodes the whole text to QString first and
// is slow and plain. Tests compare what both deliver.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringDecoder>
#include <QStringView>

#include <optional>

/// The lines of a file as CLineFile delivers them.
class CReferenceLines
{
public:
    static constexpr qsizetype maxLine = 0x10000;

    CReferenceLines() = default;
    Q_DISABLE_COPY_MOVE(CReferenceLines)

    bool open(const char* fileName);
    bool isOpen() const { return m_file.isOpen(); }

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

/// The items of a file as CIniReader delivers them.
class CReferenceReader
{
public:
    explicit CReferenceReader(const char* fileName);
    CReferenceReader() = default;
    Q_DISABLE_COPY_MOVE(CReferenceReader)

    int moveToNextItem();

    QString getSection() const { return m_section; }
    QString getKeyName() const { return m_key; }
    QString getKeyValue() const { return m_value; }

    int getLineOfError() const { return m_lineNumber; }

private:
    bool readSectionHeader(QStringView line);
    bool readKeyLine(QStringView line);

    CReferenceLines m_file;
    QString m_section; // without brackets
    QString m_key;
    QString m_value; // without white space at its ends
    int m_lineNumber = 0;
    bool m_sectionIsNew = false;
    QString m_line; // the line read last; a member so that its memory is reused
};
