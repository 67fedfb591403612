// What the check keeps of a sheet to compare its sections with each other.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Findings.h"
#include "sheets/SheetKeys.h"

#include <bitset>
#include <cstdint>
#include <vector>

struct tListed {
    unsigned short index;
    tSectionKind list;
    tPlace place;
};

/// The attributes that an object without sub-indexes and an entry have in common.
struct tAttributes {
    int dataType = 0;
    int access = 0; ///< of CCANopenObjectEntry
    bool isMappable = false;
};

struct tObjectRecord {
    unsigned short index = 0;
    bool isMultiple = false;
    bool isStructure = false; ///< a data type with sub-indexes
    int compactSubObj = 0;
    int subNumber = -1; ///< -1: not given
    tPlace place;       ///< of its name
    tPlace subNumberPlace;
    tAttributes attributes;
};

struct tEntryRecord {
    unsigned short index = 0;
    unsigned char subIndex = 0;
    int value = -1; ///< of sub-index 0: its default value; -1: none
    tPlace place;   ///< of its name
    tPlace valuePlace;
    tAttributes attributes;
};

/// A parameter that a PDO maps.
struct tMapping {
    unsigned short pdo;   ///< index of the mapping parameter
    std::uint32_t target; ///< index, sub-index and length, as in the sheet
    tPlace place;
};

/// A number in the device information.
struct tAnnounced {
    int number = -1; ///< -1: not given
    tPlace place;
};

struct tSheetModel {
    bool isDcf = false;
    bool isBroken = false; ///< a line stops the browser
    std::vector<tListed> listed;
    std::vector<tObjectRecord> objects;
    std::vector<tEntryRecord> entries;
    std::vector<tMapping> mappings;
    tAnnounced receivePdos, transmitPdos;
    tPlace fileInfo, deviceInfo, mandatoryObjects; ///< of their names; nowhere when missing
    std::bitset<32> dummies;                       ///< data types that a receive PDO may map as a gap
};

// Ranges of CiA 301.
constexpr unsigned short firstReceiveParameter = 0x1400, firstReceiveMapping = 0x1600, firstTransmitParameter = 0x1800,
                         firstTransmitMapping = 0x1A00, pdosOfADirection = 0x200;

constexpr bool isWithin(unsigned index, unsigned first)
{
    return index >= first && index < first + pdosOfADirection;
}
constexpr bool isMapping(unsigned index)
{
    return isWithin(index, firstReceiveMapping) || isWithin(index, firstTransmitMapping);
}
