// The INI tokenizer: a data sheet as a stream of items, each a section, a key and a value.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/LineFile.h"

#include <QString>
#include <QStringView>

/// Strict: a line that does not fit the grammar ends the reading. Line number and section state are kept once for the
/// program, so that only one reader may be in use at a time.
class CIniReader
{
public:
    /// Opens a file (name as `QFile::encodeName` gives it). A file that cannot be opened reads as an empty one.
    explicit CIniReader(const char* fileName);
    /// A reader without a file.
    CIniReader() = default;
    Q_DISABLE_COPY_MOVE(CIniReader)

    /// Reads up to and including the next key line.
    /// @return 1 for the first item after a section header, 2 for a further item of the section, -1 at the end of the
    /// file or without a file, 0 for a line that breaks the grammar; do not use the reader after that
    int moveToNextItem();

    QString getSection() const { return m_section; }
    QString getKeyName() const { return m_key; }
    QString getKeyValue() const { return m_value; }

    /// Number of the line reached, from 1; -1 before any file was opened.
    int getLineOfError() const;

    static const char* version();

private:
    bool readSectionHeader(QStringView line);
    bool readKeyLine(QStringView line);

    CLineFile m_file;
    QString m_section; // without brackets
    QString m_key;
    QString m_value; // without white space at its ends
    QString m_line;  // the line read last; a member so that its memory is reused
};
