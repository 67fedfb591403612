// The sections and keys of a data sheet after CiA 306.
// SPDX-License-Identifier: MIT
#pragma once

#include <span>
#include <string_view>

/// What a value has to be.
enum tKeyValue { valueText, valueFlag, valueNumber8, valueNumber16, valueNumber32, valueNodeId };

/// `keyRead`: the browser reads it, in this spelling only. `keyNeeded`: the section must have it. `keyOfDcf`: only a
/// configured device has it.
enum tKeyUse : unsigned { keyPlain = 0, keyRead = 1, keyNeeded = 2, keyOfDcf = 4 };

struct tKeyRow {
    std::string_view name;
    tKeyValue value;
    unsigned use; ///< of `tKeyUse`
};

/// Keys that are numbered: "1", "Line1", "Dummy0001".
struct tNumberedKeys {
    std::string_view prefix;
    unsigned base = 0;          ///< 0: the section has none
    bool isConsecutive = false; ///< they count from 1
    tKeyValue value = valueText;
};

enum tSectionKind {
    sectionPlain, ///< nothing but its keys
    sectionFileInfo,
    sectionDeviceInfo,
    sectionMandatory, ///< the three lists of objects
    sectionOptional,
    sectionManufacturer,
    sectionObject,
    sectionEntry,
    sectionCompact, ///< names, values or denotations of an object with CompactSubObj
    sectionFree,    ///< any keys
    sectionModule,  ///< objects of a module, with any keys
    sectionUnknown
};

constexpr bool isObjectList(tSectionKind kind)
{
    return kind >= sectionMandatory && kind <= sectionManufacturer;
}

struct tSectionRow {
    std::string_view name;
    tSectionKind kind;
    unsigned use; ///< of `tKeyUse`
    std::span<const tKeyRow> keys;
    tNumberedKeys numbered = {};
    std::string_view count = {}; ///< the key with the number of numbered keys
};

/// What the name of a section says.
struct tSectionName {
    const tSectionRow* row = nullptr; ///< never null after `sectionOf`
    unsigned short index = 0;
    unsigned char subIndex = 0;
    bool isIgnored = false;         ///< it names an object or entry, but with zeros in front, which the browser ignores
    std::string_view spelling = {}; ///< how the browser spells it, where it differs
};

/// Classifies as the browser does, and beyond that what it ignores.
tSectionName sectionOf(std::string_view name);

/// Places of the keys of an object or entry in their section's `keys`.
enum tObjectKey : unsigned {
    keyParameterName,
    keyObjectType,
    keyDataType,
    keyAccessType,
    keyPDOMapping,
    keyDefaultValue,
    keyLowLimit,
    keyHighLimit,
    keyParameterValue,
    keyObjFlags,
    keySubNumber,
    keyCompactSubObj
};

/// Place of the row with that name, or -1.
int placeOfKey(std::span<const tKeyRow> keys, std::string_view name);
/// The same in upper or lower case.
int placeOfKeyInAnyCase(std::span<const tKeyRow> keys, std::string_view name);

/// The key or section that was probably meant; empty where none is near.
std::string_view nearestKey(const tSectionRow& section, std::string_view name);
std::string_view nearestSection(std::string_view name);
