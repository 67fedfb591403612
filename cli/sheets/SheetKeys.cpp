// The sections and keys of a data sheet after CiA 306, as tables.
// SPDX-License-Identifier: MIT
#include "sheets/SheetKeys.h"

#include "sheets/NearName.h"

#include "dic/EdsGrammar.h"
#include "dic/Names.h"

#include <algorithm>
#include <string>

namespace
{

// clang-format off
constexpr tKeyRow fileInfo[] = {
    { "FileName",         valueText, keyNeeded },
    { "FileVersion",      valueText, keyRead | keyNeeded },
    { "FileRevision",     valueText, keyNeeded },
    { "EDSVersion",       valueText, keyRead },
    { "Description",      valueText, keyRead },
    { "CreationTime",     valueText, keyRead },
    { "CreationDate",     valueText, keyRead },
    { "CreatedBy",        valueText, keyRead },
    { "ModificationTime", valueText, keyRead },
    { "ModificationDate", valueText, keyRead },
    { "ModifiedBy",       valueText, keyPlain },
    { "LastEDS",          valueText, keyPlain },
};

constexpr tKeyRow deviceInfo[] = {
    { "VendorName",               valueText,     keyRead | keyNeeded },
    { "VendorNumber",             valueNumber32, keyRead | keyNeeded },
    { "ProductName",              valueText,     keyRead | keyNeeded },
    { "ProductNumber",            valueNumber32, keyRead },
    { "RevisionNumber",           valueNumber32, keyRead },
    { "OrderCode",                valueText,     keyRead },
    { "BaudRate_10",              valueFlag,     keyRead },
    { "BaudRate_20",              valueFlag,     keyRead },
    { "BaudRate_50",              valueFlag,     keyRead },
    { "BaudRate_100",             valueFlag,     keyRead },
    { "BaudRate_125",             valueFlag,     keyRead },
    { "BaudRate_250",             valueFlag,     keyRead },
    { "BaudRate_500",             valueFlag,     keyRead },
    { "BaudRate_800",             valueFlag,     keyRead },
    { "BaudRate_1000",            valueFlag,     keyRead },
    { "BaudRate_auto",            valueFlag,     keyPlain },
    { "SimpleBootUpMaster",       valueFlag,     keyRead },
    { "SimpleBootUpSlave",        valueFlag,     keyRead },
    { "Granularity",              valueNumber8,  keyRead },
    { "DynamicChannelsSupported", valueNumber16, keyRead },
    { "CompactPDO",               valueNumber16, keyPlain },
    { "GroupMessaging",           valueFlag,     keyRead },
    { "NrOfRXPDO",                valueNumber16, keyRead | keyNeeded },
    { "NrOfTXPDO",                valueNumber16, keyRead | keyNeeded },
    { "LSS_Supported",            valueFlag,     keyRead },
    { "LSS_Type",                 valueText,     keyPlain },
    { "NG_Slave",                 valueFlag,     keyPlain },
    { "NG_Master",                valueFlag,     keyPlain },
    { "NG_NumOfNodes",            valueNumber8,  keyPlain },
    { "NrOfNG_MonitoredNodes",    valueNumber16, keyPlain },
    { "CANopenManager",           valueFlag,     keyPlain },
    { "CANopenSafetySupported",   valueFlag,     keyPlain },
    { "LMT_ManufacturerName",     valueText,     keyRead },
    { "LMT_ProductName",          valueText,     keyRead },
};

// In the order of tObjectKey, as far as that goes.
constexpr tKeyRow objectKeys[] = {
    { "ParameterName",  valueText,     keyRead | keyNeeded },
    { "ObjectType",     valueNumber8,  keyRead },
    { "DataType",       valueNumber16, keyRead },
    { "AccessType",     valueText,     keyRead },
    { "PDOMapping",     valueFlag,     keyRead },
    { "DefaultValue",   valueText,     keyRead },
    { "LowLimit",       valueText,     keyRead },
    { "HighLimit",      valueText,     keyRead },
    { "ParameterValue", valueText,     keyRead | keyOfDcf },
    { "ObjFlags",       valueNumber32, keyRead },
    { "SubNumber",      valueNumber8,  keyRead },
    { "CompactSubObj",  valueNumber8,  keyPlain },
    { "Denotation",     valueText,     keyOfDcf },
    { "UploadFile",     valueText,     keyOfDcf },
    { "DownloadFile",   valueText,     keyOfDcf },
    { "ParamRefd",      valueText,     keyOfDcf },
    { "SRDOMapping",    valueFlag,     keyPlain },
    { "InvertedSRAD",   valueText,     keyPlain },
};

constexpr tKeyRow commissioning[] = {
    { "NodeID",           valueNodeId,   keyPlain },
    { "NodeName",         valueText,     keyPlain },
    { "NodeRefd",         valueText,     keyPlain },
    { "Baudrate",         valueNumber16, keyPlain },
    { "NetNumber",        valueNumber32, keyPlain },
    { "NetworkName",      valueText,     keyPlain },
    { "NetRefd",          valueText,     keyPlain },
    { "CANopenManager",   valueFlag,     keyPlain },
    { "LSS_SerialNumber", valueNumber32, keyPlain },
};

constexpr tKeyRow listKeys[] = { { "SupportedObjects", valueNumber16, keyRead | keyNeeded } };
constexpr tKeyRow commentKeys[] = { { "Lines", valueNumber16, keyPlain } };
constexpr tKeyRow countedKeys[] = { { "NrOfEntries", valueNumber16, keyPlain } };
constexpr tKeyRow linkKeys[] = { { "ObjectLinks", valueNumber16, keyPlain } };
constexpr tKeyRow toolKeys[] = { { "Name", valueText, keyPlain }, { "Command", valueText, keyPlain } };

constexpr tNumberedKeys listed = { "", 10, true, valueNumber16 };
constexpr tNumberedKeys entries = { "", 10, false, valueText };

constexpr tSectionRow namedSections[] = {
    { "FileInfo",            sectionFileInfo,     keyRead, fileInfo },
    { "DeviceInfo",          sectionDeviceInfo,   keyRead, deviceInfo },
    { "MandatoryObjects",    sectionMandatory,    keyRead, listKeys, listed, "SupportedObjects" },
    { "OptionalObjects",     sectionOptional,     keyRead, listKeys, listed, "SupportedObjects" },
    { "ManufacturerObjects", sectionManufacturer, keyRead, listKeys, listed, "SupportedObjects" },
    { "DummyUsage",          sectionPlain,        keyPlain, {}, { "Dummy", 16, false, valueFlag } },
    { "Comments",            sectionPlain,        keyPlain, commentKeys, { "Line", 10, true, valueText }, "Lines" },
    { "DeviceComissioning",  sectionPlain,        keyOfDcf, commissioning }, // sic
    { "StandardDataTypes",   sectionPlain,        keyPlain, {}, { "0x", 16, false, valueFlag } },
    { "SupportedModules",    sectionPlain,        keyPlain, countedKeys, { "", 10, true, valueText }, "NrOfEntries" },
    { "ConnectedModules",    sectionPlain,        keyOfDcf, countedKeys, entries, "NrOfEntries" },
    { "DynamicChannels",     sectionFree,         keyPlain, {} },
    { "Tools",               sectionFree,         keyPlain, {} },
};

constexpr tSectionRow objectSection = { "", sectionObject, keyPlain, objectKeys };
constexpr tSectionRow entrySection = { "", sectionEntry, keyPlain, objectKeys };
constexpr tSectionRow toolSection = { "", sectionPlain, keyPlain, toolKeys };
constexpr tSectionRow freeSection = { "", sectionFree, keyPlain, {} };
constexpr tSectionRow moduleSection = { "", sectionModule, keyPlain, {} };
constexpr tSectionRow unknownSection = { "", sectionUnknown, keyPlain, {} };

// Sections whose names are an index and a word.
constexpr tSectionRow suffixed[] = {
    { "Name",        sectionCompact, keyPlain, countedKeys, entries, "NrOfEntries" },
    { "Value",       sectionCompact, keyPlain, countedKeys, entries, "NrOfEntries" },
    { "Denotation",  sectionCompact, keyOfDcf, countedKeys, entries, "NrOfEntries" },
    { "ObjectLinks", sectionPlain,   keyPlain, linkKeys, { "", 10, true, valueNumber16 }, "ObjectLinks" },
};

// What follows "M" and a number in the names of a module's sections. Some have an index after it.
constexpr struct {
    std::string_view word;
    const tSectionRow* row;
} moduleWords[] = {
    { "ModuleInfo", &freeSection },
    { "Comments",   &freeSection },
    { "Fixed",      &moduleSection }, // and "FixedObjects"
    { "SubExt",     &moduleSection }, // and "SubExtends"
};
// clang-format on

bool equalInAnyCase(std::string_view a, std::string_view b)
{
    return std::ranges::equal(a, b, {}, lowerCase, lowerCase);
}

bool startsInAnyCase(std::string_view text, std::string_view start)
{
    return text.size() >= start.size() && equalInAnyCase(text.substr(0, start.size()), start);
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// module = "M" number word [ index [ "sub" number ] ]; null when the name is none
const tSectionRow* moduleRow(std::string_view name)
{
    if (name.size() < 3 || lowerCase(name.front()) != 'm' || !isDigit(name[1]))
        return nullptr;
    const auto digits = std::ranges::find_if_not(name.substr(1), isDigit);
    const std::string_view rest(digits, name.end());
    const auto* const row =
        std::ranges::find_if(moduleWords, [rest](const auto& each) { return startsInAnyCase(rest, each.word); });
    return row == std::end(moduleWords) ? nullptr : row->row;
}

// tool = "Tool" number
bool isToolSection(std::string_view name)
{
    return name.size() > 4 && name.size() < 9 && startsInAnyCase(name, "Tool") &&
           std::ranges::all_of(name.substr(4), isDigit);
}

constexpr std::size_t longestIndex = 40; // of a section's name that may stand for an index with leading zeros

// The name that the browser would read, where `name` is an index or entry with zeros, or "0x", in front of its numbers.
std::string withoutZeros(std::string_view name)
{
    const auto strip = [](std::string_view number) {
        if (startsInAnyCase(number, "0x"))
            number.remove_prefix(2);
        while (number.size() > 1 && number.front() == '0')
            number.remove_prefix(1);
        return number;
    };
    for (std::size_t place = 1; place + 3 < name.size(); ++place)
        if (startsInAnyCase(name.substr(place), "sub"))
            return std::string(strip(name.substr(0, place))) + "sub" + std::string(strip(name.substr(place + 3)));
    return std::string(strip(name));
}

void classifyIgnored(std::string_view name, tSectionName& section)
{
    if (name.size() > longestIndex)
        return;
    const std::string plain = withoutZeros(name);
    section.isIgnored = IsObjectEntry(plain.c_str(), &section.index, &section.subIndex);
    if (section.isIgnored) {
        section.row = &entrySection;
        return;
    }
    section.isIgnored = IsObject(plain.c_str(), &section.index);
    if (section.isIgnored)
        section.row = &objectSection;
}

// Sections of an object beside its own: "1600Value".
bool classifySuffixed(std::string_view name, tSectionName& section)
{
    if (name.size() < 5 || !IsObject(std::string(name.substr(0, 4)).c_str(), &section.index))
        return false;
    const auto* const row =
        std::ranges::find_if(suffixed, [name](const auto& each) { return equalInAnyCase(each.name, name.substr(4)); });
    if (row == std::end(suffixed))
        return false;
    section.row = row;
    return true;
}

bool classifyNamed(std::string_view name, tSectionName& section)
{
    const auto* const row =
        std::ranges::find_if(namedSections, [name](const auto& each) { return equalInAnyCase(each.name, name); });
    if (row == std::end(namedSections))
        return false;
    section.row = row;
    if (row->name != name && (row->use & keyRead) != 0)
        section.spelling = row->name;
    return true;
}

} // namespace

tSectionName sectionOf(std::string_view name)
{
    tSectionName section;
    const std::string text(name);
    if (IsObjectEntry(text.c_str(), &section.index, &section.subIndex)) {
        section.row = &entrySection;
        return section;
    }
    if (IsObject(text.c_str(), &section.index)) {
        section.row = &objectSection;
        return section;
    }
    section = {}; // what is no index is stored as well
    section.row = &unknownSection;
    if (isToolSection(name))
        section.row = &toolSection;
    else if (const tSectionRow* const module = moduleRow(name))
        section.row = module;
    else if (!name.empty() && !classifyNamed(name, section) && !classifySuffixed(name, section))
        classifyIgnored(name, section);
    return section;
}

int placeOfKey(std::span<const tKeyRow> keys, std::string_view name)
{
    for (std::size_t place = 0; place < keys.size(); ++place)
        if (keys[place].name.front() == name.front() && keys[place].name == name)
            return static_cast<int>(place);
    return -1;
}

int placeOfKeyInAnyCase(std::span<const tKeyRow> keys, std::string_view name)
{
    for (std::size_t place = 0; place < keys.size(); ++place)
        if (equalInAnyCase(keys[place].name, name))
            return static_cast<int>(place);
    return -1;
}

std::string_view nearestKey(const tSectionRow& section, std::string_view name)
{
    CNearName near(name);
    for (const tKeyRow& key : section.keys)
        near.offer(key.name);
    return near.best();
}

std::string_view nearestSection(std::string_view name)
{
    CNearName near(name);
    for (const tSectionRow& section : namedSections)
        near.offer(section.name);
    return near.best();
}
