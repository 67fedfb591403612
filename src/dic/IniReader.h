// The INI tokenizer: a data sheet as a stream of items, each a section, a key and a value.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/LineFile.h"
#include "dic/Utf8Text.h"

#include <span>
#include <string>
#include <string_view>

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

    QString getSection() const { return textFromUtf8(m_section); }
    QString getKeyName() const { return textFromUtf8(m_key); }
    QString getKeyValue() const { return textFromUtf8(m_value); }

    /// The same as UTF-8, without a conversion. Key and value are valid until the next item is read.
    const char* section() const { return m_section.c_str(); }
    std::string_view keyName() const { return m_key; }
    const char* keyValue() const { return m_value.data(); }

    /// Whether the file could be read as far as items were asked for: false after an error, and without a file.
    bool isWhole() const { return m_file.isWhole(); }

    /// Number of the line reached, from 1; -1 before any file was opened.
    int getLineOfError() const;
    /// After the result 0: that line as UTF-8, without its end. Valid as long as the reader.
    std::string_view textOfError() const;
    /// After the result 0: what the grammar asks for there, in words.
    const char* ruleOfError() const { return m_brokenRule; }

    static const char* version();

private:
    std::span<char> readLine();
    bool readSectionHeader(std::string_view line);
    bool readKeyLine(std::string_view line, std::span<char> bytes);
    void keepValue();
    [[gnu::cold, gnu::noinline]] bool refuse(const char* line, const char* rule);

    CLineFile m_file;
    std::string m_section;         // without brackets
    std::string_view m_key;        // in the line read last, or m_keptKey
    std::string_view m_value = ""; // likewise; without white space at its ends, and a zero byte after it
    std::string m_keptKey;
    std::string m_keptValue;
    const char* m_refusedLine = nullptr; // its start
    const char* m_brokenRule = "";
};
