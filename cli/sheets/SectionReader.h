// Checks a sheet section by section while it is read, and keeps what is compared later.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SheetLines.h"
#include "sheets/SheetModel.h"

#include <array>
#include <string>
#include <vector>

/// A key of the section that is being read.
struct tField {
    int line = 0;   ///< 0: not there
    int offset = 0; ///< of the value
    std::string text;

    bool isGiven() const { return line != 0 && !text.empty(); }
    tPlace place() const { return { line, offset, static_cast<int>(text.size()) }; }
};

struct tNumberedItem {
    unsigned number;
    tPlace key;
    tPlace value;
    long long content; ///< the value, if it is a number of up to 32 bits; else -1
};

/// A section while it is read.
struct tSection {
    static constexpr std::size_t mostKeys = 40;

    tSectionName name;
    tPlace place; ///< of its name
    bool isEmpty = true;
    std::array<tField, mostKeys> fields; ///< those of `name.row->keys` are in use
    std::vector<tNumberedItem> numbered;
};

class CSectionReader
{
public:
    /// `otherCharacters`: the character set of the sheet, where it is one that the browser cannot read; else empty.
    CSectionReader(tSheetModel& model, CFindings& findings, std::string_view otherCharacters)
        : m_model(model), m_findings(findings), m_otherCharacters(otherCharacters)
    {
    }

    /// Takes the next line of the sheet.
    void take(const tSheetLine& line);
    /// Ends the last section.
    void finish() { endSection(); }

private:
    void reportBroken(const tSheetLine& line);
    void reportLineEnd(const tSheetLine& line);
    void beginSection(const tSheetLine& line);
    void reportName(const tSheetLine& line);
    void noteNamed();
    void takeItem(const tSheetLine& line);
    bool takeNumbered(const tSheetLine& line);
    void takeOddKey(const tSheetLine& line);
    void noteListed(const tSheetLine& line);
    void store(std::size_t place, const tSheetLine& line);
    void endSection();

    tSheetModel& m_model;
    CFindings& m_findings;
    const std::string_view m_otherCharacters;
    tSection m_section;
    bool m_isOpen = false;
    bool m_hasModules = false;
    std::vector<const tSectionRow*> m_named; // sections that there can be only one of, as far as they were met
};
