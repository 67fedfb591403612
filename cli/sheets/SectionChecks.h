// Checks a whole section, and keeps what is compared with other sections.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SectionReader.h"

#include <QString>

/// A name of the tables as a text.
inline QString latin(std::string_view name)
{
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

/// The section of an object or entry as the browser reads it: "[1018sub1]".
QString sectionText(const tSectionName& name);

void checkSection(const tSection& section, tSheetModel& model, CFindings& findings);

/// The same for what only the section of an object or an entry has.
void checkObjectSection(const tSection& section, tSheetModel& model, CFindings& findings);

/// The value of a number's field; -1 when it is missing, empty or none.
long long numberIn(const tField& field, tKeyValue kind);

/// Reports that a key is missing or empty.
void reportMissingKey(const tSection& section, std::string_view key, CFindings& findings);
