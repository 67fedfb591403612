// How many objects each list of a sheet has, and would have with all its findings mended.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/ObjectChecks.h"

#include <QString>

#include <array>

/// The list that an object belongs to; a device profile may make others mandatory.
tSectionKind listOf(unsigned short index);
/// "[OptionalObjects]"
QString listText(tSectionKind list);
/// Whether an object is in the list of others.
bool isInWrongList(const tListed& listed);

/// Lines that findings add to lists and take away. To mend one finding must not make another one: a count says what it
/// has to be when all of them are mended, and a change of a list, which count it needs.
class CListCounts
{
public:
    CListCounts(const tSheetModel& model, const CObjectIndex& objects);

    /// " (SupportedObjects=4 with all mends of the lists)" where a list that gets or loses a line needs that, too;
    /// empty where the count is right then, or has a finding of its own.
    QString thenCount(tSectionKind kind) const;

    /// Reports the counts that differ.
    void check(CFindings& findings) const;

private:
    int mended(const tObjectList& list) const { return list.lines + m_changes[list.list]; }

    const tSheetModel& m_model;
    std::array<int, sectionUnknown> m_changes{}; // of the number of lines, by list
};
