// Compares the sections of a sheet with its lists and with each other, when all of it was read.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SheetModel.h"

/// The objects of a sheet by their index, and their entries. The model must not change any more.
class CObjectIndex
{
public:
    /// Sorts the entries of the model by index and sub-index.
    explicit CObjectIndex(tSheetModel& model);

    /// The first section of an object; null when there is none.
    const tObjectRecord* object(unsigned short index) const;
    /// The first section of an entry; null when there is none.
    const tEntryRecord* entry(unsigned short index, unsigned subIndex) const;
    /// All entries of an object, by sub-index.
    std::span<const tEntryRecord> entries(unsigned short index) const;

private:
    const tSheetModel& m_model;
    std::vector<int> m_first; // by index: place of the object, -1 when there is none
};

void checkObjects(const tSheetModel& model, const CObjectIndex& objects, CFindings& findings);
void checkMappings(const tSheetModel& model, const CObjectIndex& objects, CFindings& findings);
