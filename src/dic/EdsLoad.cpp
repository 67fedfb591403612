// The sections and keys of a data sheet and what each of them does to the dictionary.
// SPDX-License-Identifier: MIT
#include "dic/EdsLoad.h"

#include "dic/CANopen.h"
#include "dic/EdsGrammar.h"
#include "dic/FirstObjects.h"
#include "dic/IniReader.h"
#include "dic/TextPool.h"
#include "dic/Utf8Text.h"

#include <QByteArray>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

namespace
{

enum TSection {
    sectionFileInfo = 0,
    sectionDeviceInfo = 1,
    sectionMandatoryObjects = 2,
    sectionOptionalObjects = 3,
    sectionManufacturerObjects = 4,
    sectionObject = 5,
    sectionObjectEntry = 6,
    sectionUnknown = -1 // all keys are skipped
};

// Section names other than those of objects and entries.
constexpr struct {
    std::string_view name;
    TSection section;
} sections[] = {
    { "FileInfo", sectionFileInfo },
    { "DeviceInfo", sectionDeviceInfo },
    { "MandatoryObjects", sectionMandatoryObjects },
    { "OptionalObjects", sectionOptionalObjects },
    { "ManufacturerObjects", sectionManufacturerObjects },
};

constexpr std::string_view parameterValue = "ParameterValue";

class CEdsLoad
{
public:
    CEdsLoad(CCANopen& dictionary, tEdsReport* report);

    void enterSection(const char* name);
    void processKey(std::string_view key, const char* value);
    void noteLine(const CIniReader& reader, tSheetLines& lines) const;

    // What the functions in the key tables work on.
    CCANopen& m_dictionary;
    CCANopenObject* m_object = nullptr; // current object, entry and device information; owned by the dictionary
    CCANopenObjectEntry* m_entry = nullptr;
    CCANopenDeviceInfo* m_deviceInfo = nullptr;
    QByteArray m_edsVersion = "4.0"; // for the device information, when its section begins
    QByteArray m_description = "";
    CTextPool m_pool;
    tEdsReport* const m_report; // borrowed; may be null

    void declareObject(unsigned short index);
    CCANopenObjectEntry& appendEntry(unsigned short index, unsigned char subIndex, int category);

private:
    void enterDeviceInfo();
    void chooseObject(unsigned short index);
    void appendObject(unsigned short index);

    TSection m_section = sectionUnknown;
    CFirstObjects m_firstObjects;
};

// Values that are no numbers read as 0.

unsigned char number8(const char* value)
{
    unsigned char number = 0;
    return Ascii2Unsigned8(value, &number) ? number : static_cast<unsigned char>(0);
}

unsigned short number16(const char* value)
{
    unsigned short number = 0;
    return Ascii2Unsigned16(value, &number) ? number : static_cast<unsigned short>(0);
}

std::uint32_t number32(const char* value)
{
    unsigned long number = 0;
    return Ascii2Unsigned32(value, &number) ? static_cast<std::uint32_t>(number) : 0;
}

// Kept: a text that is no number, even "Yes", reads as false.
bool flag(const char* value)
{
    return number16(value) != 0;
}

// A key and what its value changes in `Target`, which is what the section describes.
template <typename Target>
struct tKey {
    std::string_view name;
    void (*apply)(Target& target, const char* value);
};

// False when there is no such key.
template <typename Target, std::size_t N>
bool applyKey(const tKey<Target> (&keys)[N], std::string_view name, Target& target, const char* value)
{
    for (const tKey<Target>& key : keys)
        if (key.name.front() == name.front() && key.name == name) { // most differ in their first letter
            key.apply(target, value);
            return true;
        }
    return false;
}

void setUnlessEmpty(QString& text, const char* value)
{
    if (*value)
        text = textFromUtf8(value);
}

// clang-format off
constexpr tKey<CEdsLoad> fileInfoKeys[] = {
    { "EDSVersion",       [](auto& load, auto value) { load.m_edsVersion = value; } },
    { "FileVersion",      [](auto& load, auto value) { load.m_dictionary.m_info.m_revision = textFromUtf8(value); } },
    { "Description",      [](auto& load, auto value) { load.m_description = value; } },
    { "CreationTime",     [](auto& load, auto value) { load.m_dictionary.m_info.m_time = textFromUtf8(value); } },
    { "CreationDate",     [](auto& load, auto value) { load.m_dictionary.m_info.m_date = textFromUtf8(value); } },
    { "CreatedBy",        [](auto& load, auto value) { load.m_dictionary.m_info.m_author = textFromUtf8(value); } },
    { "ModificationTime", [](auto& load, auto value) { setUnlessEmpty(load.m_dictionary.m_info.m_time, value); } },
    { "ModificationDate", [](auto& load, auto value) { setUnlessEmpty(load.m_dictionary.m_info.m_date, value); } },
};

constexpr tKey<CCANopenDeviceInfo> deviceInfoKeys[] = {
    { "VendorName",               [](auto& info, auto value) { info.setVendorName(value); } },
    { "ProductName",              [](auto& info, auto value) { info.setProductName(value); } },
    { "VendorNumber",             [](auto& info, auto value) { info.setVendorNumber(number32(value)); } },
    { "ProductNumber",            [](auto& info, auto value) { info.setProductNumber(number32(value)); } },
    { "RevisionNumber",           [](auto& info, auto value) { info.setRevisionNumber(number32(value)); } },
    { "OrderCode",                [](auto& info, auto value) { info.setOrderCode(value); } },
    { "BaudRate_10",              [](auto& info, auto value) { info.setBaudrate(info.baudrate10, flag(value)); } },
    { "BaudRate_20",              [](auto& info, auto value) { info.setBaudrate(info.baudrate20, flag(value)); } },
    { "BaudRate_50",              [](auto& info, auto value) { info.setBaudrate(info.baudrate50, flag(value)); } },
    { "BaudRate_100",             [](auto& info, auto value) { info.setBaudrate(info.baudrate100, flag(value)); } },
    { "BaudRate_125",             [](auto& info, auto value) { info.setBaudrate(info.baudrate125, flag(value)); } },
    { "BaudRate_250",             [](auto& info, auto value) { info.setBaudrate(info.baudrate250, flag(value)); } },
    { "BaudRate_500",             [](auto& info, auto value) { info.setBaudrate(info.baudrate500, flag(value)); } },
    { "BaudRate_800",             [](auto& info, auto value) { info.setBaudrate(info.baudrate800, flag(value)); } },
    { "BaudRate_1000",            [](auto& info, auto value) { info.setBaudrate(info.baudrate1000, flag(value)); } },
    { "SimpleBootUpMaster",       [](auto& info, auto value) { info.setSimpleBootUpMaster(flag(value)); } },
    { "SimpleBootUpSlave",        [](auto& info, auto value) { info.setSimpleBootUpSlave(flag(value)); } },
    { "Granularity",              [](auto& info, auto value) { info.setPDOGranularity(number8(value)); } },
    { "DynamicChannelsSupported", [](auto& info, auto value) { info.setDynamicChannels(flag(value)); } },
    { "GroupMessaging",           [](auto& info, auto value) { info.setGroupMessaging(flag(value)); } },
    { "NrOfRXPDO",                [](auto& info, auto value) { info.setNumberOfRxPDO(number16(value)); } },
    { "NrOfTXPDO",                [](auto& info, auto value) { info.setNumberOfTxPDO(number16(value)); } },
    { "LSS_Supported",            [](auto& info, auto value) { info.setLayerSettings(flag(value)); } },
    { "LMT_ManufacturerName",     [](auto& info, auto value) { info.setLmtManufacturerName(value); } },
    { "LMT_ProductName",          [](auto& info, auto value) { info.setLmtProductName(value); } },
};

// Room that an object has for entries that are only announced: a sheet may announce more than it has.
constexpr unsigned char mostAnnounced = 16;

// Keys of an object section that concern the object; the others describe its entry.
// Kept: each "ObjectType" of an object that is no array or record adds an entry, also a repeated one.
constexpr tKey<CEdsLoad> objectKeys[] = {
    { "ParameterName", [](auto& load, auto value) { load.m_object->setName(value); } },
    { "ObjectType",    [](auto& load, auto value) {
        load.m_object->setClass(number8(value));
        if (!load.m_object->isMultipleObject())
            load.appendEntry(load.m_object->getIndex(), 0, load.m_object->getCategory())
                .setName(load.m_object->getName());
    } },
    { "DataType",      [](auto& load, auto value) {
        load.m_object->setDataType(number16(value));
        if (load.m_entry)
            load.m_entry->setDataType(number16(value));
    } },
    { "SubNumber",     [](auto& load, auto value) {
        load.m_object->m_objectEntryArray.reserve(std::min(number8(value), mostAnnounced));
    } },
};

// Keys that describe an entry only in a section of its own.
constexpr tKey<CEdsLoad> subIndexKeys[] = {
    { "ParameterName", [](auto& load, auto value) { load.m_entry->setName(load.m_pool.text(value)); } },
    { "DataType",      [](auto& load, auto value) { load.m_entry->setDataType(number16(value)); } },
};

constexpr tKey<CEdsLoad> entryKeys[] = {
    { "AccessType",   [](auto& load, auto value) { load.m_entry->setAccess(load.m_entry->getAccessByName(value)); } },
    { "PDOMapping",   [](auto& load, auto value) {
        load.m_entry->setPDOMapping(flag(value) ? load.m_entry->mappingDefault : load.m_entry->mappingNo);
    } },
    { "LowLimit",     [](auto& load, auto value) { load.m_entry->setLowLimit(load.m_pool.text(value)); } },
    { "HighLimit",    [](auto& load, auto value) { load.m_entry->setHighLimit(load.m_pool.text(value)); } },
    { "DefaultValue", [](auto& load, auto value) { load.m_entry->setDefaultValue(load.m_pool.text(value)); } },
    { "ObjFlags",     [](auto& load, auto value) { load.m_entry->setObjectFlags(number32(value)); } },
    { parameterValue, [](auto& load, auto value) {
        if (load.m_report && *value)
            load.m_report->parameterValues[load.m_entry] = load.m_pool.text(value);
        else if (load.m_report) // the last one counts, also an empty one
            load.m_report->parameterValues.erase(load.m_entry);
    } },
};
// clang-format on

// The profile that describes the objects of an index range.
const CCANopenObject::tProfile& profileOf(unsigned short index)
{
    static const struct {
        unsigned short last;
        CCANopenObject::tProfile profile;
    } profiles[] = {
        { 0x0FFF, { QStringLiteral("CiA DS-301"), {}, QStringLiteral("Data type entry"), {}, {} } },
        { 0x1FFF, { QStringLiteral("CiA DS-301"), {}, QStringLiteral("Communication profile"), {}, {} } },
        { 0x5FFF, { QStringLiteral("Manufacturer specific"), {}, {}, {}, {} } },
        { 0x9FFF, { QStringLiteral("Device profile"), {}, {}, {}, {} } },
        { 0xFFFF, { QStringLiteral("(reserved)"), {}, {}, {}, {} } },
    };
    const auto* row = profiles;
    while (index > row->last)
        ++row;
    return row->profile;
}

CEdsLoad::CEdsLoad(CCANopen& dictionary, tEdsReport* report) : m_dictionary(dictionary), m_report(report)
{
    for (const auto& object : dictionary.m_objectArray)
        m_firstObjects.add(*object);
}

void CEdsLoad::enterSection(const char* name)
{
    unsigned short index = 0;
    unsigned char subIndex = 0;
    const auto known = std::ranges::find(sections, std::string_view(name), [](const auto& row) { return row.name; });
    if (known != std::end(sections)) {
        m_section = known->section;
        if (m_section == sectionDeviceInfo)
            enterDeviceInfo();
    } else if (IsObjectEntry(name, &index, &subIndex)) {
        m_section = sectionObjectEntry;
        chooseObject(index);
        appendEntry(index, subIndex,
                    subIndex == 0 ? int{ CCANopenObject::categoryMandatory } : m_object->getCategory());
    } else if (IsObject(name, &index)) {
        m_section = sectionObject;
        chooseObject(index);
        m_entry = nullptr;
    } else {
        m_section = sectionUnknown;
    }
}

void CEdsLoad::processKey(std::string_view key, const char* value)
{
    switch (m_section) {
    case sectionFileInfo:
        applyKey(fileInfoKeys, key, *this, value);
        return;
    case sectionDeviceInfo:
        applyKey(deviceInfoKeys, key, *m_deviceInfo, value);
        return;
    case sectionMandatoryObjects:
    case sectionOptionalObjects:
    case sectionManufacturerObjects:
        if (key != "SupportedObjects")
            declareObject(number16(value));
        return;
    case sectionObject:
        if (!applyKey(objectKeys, key, *this, value) && m_entry)
            applyKey(entryKeys, key, *this, value);
        return;
    case sectionObjectEntry:
        if (!applyKey(subIndexKeys, key, *this, value))
            applyKey(entryKeys, key, *this, value);
        return;
    case sectionUnknown:
        return;
    }
}

// Notes the line of the key that was processed last.
void CEdsLoad::noteLine(const CIniReader& reader, tSheetLines& lines) const
{
    if ((m_section != sectionObject && m_section != sectionObjectEntry) || m_entry == nullptr)
        return;
    tEntryLines& ofEntry = lines[m_entry];
    ofEntry.last = reader.getLineOfError();
    if (reader.keyName() != parameterValue)
        return;
    ofEntry.values.push_back(ofEntry.last);
    ofEntry.hasValue = ofEntry.hasValue || *reader.keyValue() != '\0';
}

// The first section of a load creates the device information, further ones add to it.
// Kept: EDS version and description are taken now; file information after the device information does not change them.
void CEdsLoad::enterDeviceInfo()
{
    if (m_deviceInfo)
        return;
    delete m_dictionary.m_deviceInfo; // of an earlier load
    m_deviceInfo = m_dictionary.m_deviceInfo = new CCANopenDeviceInfo;
    m_deviceInfo->setEDSVersion(m_edsVersion.constData());
    m_deviceInfo->setDescription(m_description.constData());
}

// Creates the object that an object list names; none for index 0.
// Kept: an index listed twice gives two objects.
void CEdsLoad::declareObject(unsigned short index)
{
    m_object = nullptr;
    if (index == 0)
        return;
    appendObject(index);
    m_object->setProfile(profileOf(index));
    m_object->setCategory(m_section == sectionMandatoryObjects ? CCANopenObject::categoryMandatory
                                                               : CCANopenObject::categoryOptional);
}

// Makes the object of a section current; afterwards `m_object` is not null.
void CEdsLoad::chooseObject(unsigned short index)
{
    if (m_object && m_object->getIndex() == index)
        return;
    if (CCANopenObject* first = m_firstObjects.find(index))
        m_object = first;
    // Kept: the section of an undeclared object describes the current object; only without one it creates its own.
    if (!m_object)
        appendObject(index);
}

void CEdsLoad::appendObject(unsigned short index)
{
    m_object = m_dictionary.m_objectArray.emplace_back(std::make_unique<CCANopenObject>(index)).get();
    m_firstObjects.add(*m_object);
}

// Kept: a sub-index described twice gives two entries.
CCANopenObjectEntry& CEdsLoad::appendEntry(unsigned short index, unsigned char subIndex, int category)
{
    auto& entries = m_object->m_objectEntryArray;
    m_entry = entries.emplace_back(std::make_unique<CCANopenObjectEntry>(index, subIndex)).get();
    m_entry->setCategory(category);
    return *m_entry;
}

// Apart from the loop below, which is fast.
[[gnu::cold, gnu::noinline]] bool refuse(const CIniReader& reader, tEdsReport* report)
{
    if (report) {
        report->isWhole = reader.isWhole();
        report->line = reader.getLineOfError();
        report->text = reader.textOfError();
        report->rule = reader.ruleOfError();
    }
    return false;
}

} // namespace

bool loadEdsFile(CCANopen& dictionary, const char* fileName, tEdsReport* report)
{
    CIniReader reader(fileName);
    CEdsLoad load(dictionary, report);
    tSheetLines* const lines = report != nullptr ? report->lines : nullptr;
    while (true) {
        switch (reader.moveToNextItem()) {
        case -1:
            if (report != nullptr)
                report->isWhole = reader.isWhole();
            return true;
        case 1:
            load.enterSection(reader.section());
            [[fallthrough]];
        case 2:
            load.processKey(reader.keyName(), reader.keyValue());
            if (lines != nullptr) [[unlikely]]
                load.noteLine(reader, *lines);
            break;
        default:
            return refuse(reader, report);
        }
    }
}
