// The lines of a data sheet, each told what it is; a line that stops the browser stops nobody here.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/LineFile.h"

#include <cstddef>
#include <string_view>

enum tLineKind { lineEmpty, lineComment, lineHeader, lineItem };

/// A line. All texts are UTF-8 and parts of `text`, valid until the next line is read.
struct tSheetLine {
    int number = 0;                   ///< from 1, as the browser counts
    tLineKind kind = lineEmpty;       ///< of a broken line: what was probably meant, `lineEmpty` where nobody can tell
    std::string_view text;            ///< without line end
    std::string_view name;            ///< of the section or key
    std::string_view value;           ///< of the key, as the browser takes it
    const char* brokenRule = nullptr; ///< in words, where the line breaks the grammar: there the browser stops
    std::size_t brokenAt = 0;         ///< the byte that breaks it

    std::size_t offsetOf(std::string_view part) const { return static_cast<std::size_t>(part.data() - text.data()); }
};

/// Reads as `CIniReader` does: by the same grammar and with the same line numbers, in bounded memory. But it goes on
/// after a broken line, with what that line probably meant.
class CSheetLines
{
public:
    /// The name as `QFile::encodeName` gives it. A file that cannot be opened has no lines.
    explicit CSheetLines(const char* fileName) { m_file.open(fileName); }

    /// False at the end of the file.
    bool next(tSheetLine& line);
    /// The same with no more than number and text, in a fraction of the time. Either or.
    bool nextText(tSheetLine& line);

    /// Whether the file could be read as far as lines were asked for.
    bool isWhole() const { return m_file.isWhole(); }

private:
    void take(tSheetLine& line);
    void takeHeader(tSheetLine& line);
    void takeItem(tSheetLine& line);

    CLineFile m_file;
    int m_number = 0;
    bool m_hasSection = false;
};
