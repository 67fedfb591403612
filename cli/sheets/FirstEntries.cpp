// The entries of a dictionary that count.
// SPDX-License-Identifier: MIT
#include "sheets/FirstEntries.h"

#include "dic/CANopen.h"

#include <bitset>
#include <unordered_set>

std::vector<tFirstEntry> firstEntries(const CCANopen& dictionary)
{
    std::vector<tFirstEntry> entries;
    std::unordered_set<unsigned> indexes;
    for (const auto& object : dictionary.m_objectArray) {
        if (!indexes.insert(object->getIndex()).second)
            continue;
        std::bitset<0x100> subIndexes;
        for (const auto& entry : object->m_objectEntryArray) {
            if (!subIndexes.test(entry->getSubindex()))
                entries.push_back({ *object, *entry });
            subIndexes.set(entry->getSubindex());
        }
    }
    return entries;
}
