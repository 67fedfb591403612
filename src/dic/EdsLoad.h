// Loads a data sheet into an object dictionary.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string>
#include <unordered_map>
#include <vector>

class CCANopen;
class CCANopenObjectEntry;

/// The "ParameterValue" texts of a configured device, by the entries that they are written for. The last text of an
/// entry counts; an entry whose last text is empty is left out.
using tParameterValues = std::unordered_map<const CCANopenObjectEntry*, QString>;

/// The lines of a sheet, from 1, that describe an entry.
struct tEntryLines {
    int last = 0;            ///< with the last key of the entry
    std::vector<int> values; ///< with its "ParameterValue", also without a text
    bool hasValue = false;   ///< one of them has a text
};
using tSheetLines = std::unordered_map<const CCANopenObjectEntry*, tEntryLines>;

/// What a sheet tells besides its dictionary.
struct tEdsReport {
    tParameterValues parameterValues;
    tSheetLines* lines = nullptr; ///< where to put the lines of the entries; borrowed, null for those who need none
    bool isWhole = true;          ///< false when an error of the system hid some of the file, or all of it
    // Where reading stopped; after success line 0.
    int line = 0;
    std::string text; ///< of that line, UTF-8
    const char* rule = "";
};

/// Reads the sheet (name as `QFile::encodeName` gives it) and adds what it describes to the dictionary, in time linear
/// in the size of the file. A file that cannot be opened reads as an empty one. `report` is for those who ask for it.
/// @return false after a line that is not INI syntax; what was read before it stays in the dictionary
bool loadEdsFile(CCANopen& dictionary, const char* fileName, tEdsReport* report = nullptr);
