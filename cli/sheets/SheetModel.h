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

/// A section that lists objects.
struct tObjectList {
    tSectionKind list;
    int number; ///< SupportedObjects; -1: not given
    tPlace numberPlace;
    int lines; ///< with a number of their own or not
    int numbers;
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
    bool makesEntry = true;   ///< an ObjectType does; nothing is said of a section without any key
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
    unsigned short pdo; ///< index of the mapping parameter
    unsigned subIndex;
    std::uint32_t target; ///< index, sub-index and length, as in the sheet
    tPlace place;
    bool isDefault;    ///< mapped by the default values
    bool isConfigured; ///< mapped by the values of a configuration, where it has some
};

/// How many parameters a PDO maps.
struct tMappingCount {
    unsigned short pdo;
    int ofDefaults, ofConfiguration; ///< -1: not given
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
    std::vector<tObjectList> lists;
    std::vector<tObjectRecord> objects;
    std::vector<tEntryRecord> entries;
    std::vector<tMapping> mappings;
    std::vector<tMappingCount> mappingCounts;
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
constexpr unsigned short mandatoryObjects[] = { 0x1000, 0x1001, 0x1018 };
constexpr bool isOfManufacturer(unsigned index)
{
    return index >= 0x2000 && index <= 0x5FFF;
}
constexpr bool isMapping(unsigned index)
{
    return isWithin(index, firstReceiveMapping) || isWithin(index, firstTransmitMapping);
}
