// One object of the dictionary: classification, look-up of entries, profile text and the names of its enumerations.
// SPDX-License-Identifier: MIT
#include "dic/CANopenObject.h"

#include "dic/Find.h"
#include "dic/Names.h"
#include "dic/Utf8Text.h"

#include <algorithm>
#include <span>

namespace
{

constexpr tName classes[] = {
    { "NULL", CCANopenObject::classNULL, matchWordNoCase },
    { "DOMAIN", CCANopenObject::classDOMAIN, matchWordNoCase },
    { "DEFTYPE", CCANopenObject::classDEFTYPE, matchWordNoCase },
    { "DEFSTRUCT", CCANopenObject::classDEFSTRUCT, matchWordNoCase },
    { "VAR", CCANopenObject::classVAR, matchWordNoCase },
    { "ARRAY", CCANopenObject::classARRAY, matchWordNoCase },
    { "RECORD", CCANopenObject::classRECORD, matchWordNoCase },
};

// Types that only objects have.
// Kept: "void" reads as 0, but 0, also that of an object without a data type, shows as "User-defined Type".
constexpr tName objectTypes[] = {
    { "void", CCANopenObject::typeVoid, matchWordNoCase, useReadOnly },
    { "PDO CommPar", CCANopenObject::typePDOParameter, matchWordNoCase },
    { "PDO Mapping", CCANopenObject::typePDOMapping, matchWordNoCase },
    { "SDO Parameter", CCANopenObject::typeSDOParameter, matchWordNoCase },
    { "Identity", CCANopenObject::typeIdentity, matchWordNoCase },
};

constexpr auto dataTypes = [] {
    constexpr auto common = dataTypeNames<CCANopenObject>();
    std::array<tName, common.size() + std::size(objectTypes)> all = {};
    std::ranges::copy(objectTypes, std::ranges::copy(common, all.begin()).out);
    return all;
}();

// Kept: category names of objects match in exactly this case: "mandatory" gives 0, optional. Those of entries match in
// any case.
constexpr auto categories = categoryNames<CCANopenObject>(matchPrefix);
constexpr auto states = stateNames<CCANopenObject>(matchWordNoCase);

static_assert(valueOf(dataTypes, "VOID", -1) == 0 && nameOf(dataTypes, 0, "?") == "?");
static_assert(valueOf(dataTypes, "visible string", -1) == 9 && nameOf(dataTypes, 35, "") == "Identity");
static_assert(valueOf(categories, "mandatory", -1) == -1 && valueOf(categories, "Mandatoryx", -1) == 1);

struct tRange {
    int first, last;
};

constexpr tRange standardTypes[] = {
    { 0x01, 0x0D },
    { 0x0F, 0x16 },
    { 0x18, 0x1B },
    // Kept: up to 0x7FF, not 0x7F: the types of every further device module count as standard, complex ones as well.
    { 0x60, 0x7FF },
};

// Structures of CiA 301, the manufacturer and the device profile, then those of each further device module.
constexpr tRange complexTypes[] = {
    { 0x20, 0x23 },   { 0x40, 0x5F },   { 0x80, 0x9F },   { 0xC0, 0xDF },   { 0x100, 0x11F },
    { 0x140, 0x15F }, { 0x180, 0x19F }, { 0x1C0, 0x1DF }, { 0x200, 0x21F }, { 0x240, 0x25F },
};

constexpr bool isWithin(const tRange& range, int value)
{
    return range.first <= value && value <= range.last;
}

constexpr bool isWithinAny(std::span<const tRange> ranges, int value)
{
    return std::ranges::any_of(ranges, [value](const tRange& range) { return isWithin(range, value); });
}

} // namespace

void CCANopenObject::setName(const char* name)
{
    m_name = textFromUtf8(name);
}

void CCANopenObject::setProfileNumber(const char* number)
{
    m_profile.m_number = textFromUtf8(number);
}

void CCANopenObject::setProfileVersion(const char* version)
{
    m_profile.m_version = textFromUtf8(version);
}

void CCANopenObject::setProfileChapter(const char* chapter)
{
    m_profile.m_chapter = textFromUtf8(chapter);
}

void CCANopenObject::setProfilePage(const char* page)
{
    m_profile.m_page = textFromUtf8(page);
}

void CCANopenObject::setProfileLink(const char* link)
{
    m_profile.m_link = textFromUtf8(link);
}

bool CCANopenObject::isCommunicationObject() const
{
    return isWithin({ 0x1000, 0x1FFF }, m_index);
}

bool CCANopenObject::isManufacturerSpecificObject() const
{
    return isWithin({ 0x2000, 0x5FFF }, m_index);
}

bool CCANopenObject::isDeviceProfileObject() const
{
    return isWithin({ 0x6000, 0x9FFF }, m_index);
}

bool CCANopenObject::isSingleObject() const
{
    return m_class == classVAR;
}

bool CCANopenObject::isMultipleObject() const
{
    return m_class == classARRAY || m_class == classRECORD;
}

bool CCANopenObject::isStandardDataType() const
{
    return isWithinAny(standardTypes, m_dataType);
}

bool CCANopenObject::isComplexDataType() const
{
    return isWithinAny(complexTypes, m_dataType);
}

int CCANopenObject::find(unsigned char subIndex) const
{
    return positionOf(m_objectEntryArray, &CCANopenObjectEntry::getSubindex, subIndex);
}

int CCANopenObject::find(const char* name) const
{
    return positionOf(m_objectEntryArray, &CCANopenObjectEntry::getName, textFromUtf8(name));
}

QString CCANopenObject::getProfile(bool link) const
{
    QString profile = m_profile.m_number;
    if (profile.isEmpty())
        return profile;
    if (!m_profile.m_version.isEmpty())
        profile += QLatin1String(", ") + m_profile.m_version;
    if (!m_profile.m_page.isEmpty())
        profile += QLatin1String(", Page ") + m_profile.m_page;
    if (!m_profile.m_chapter.isEmpty())
        profile += QLatin1String(", ") + m_profile.m_chapter;
    if (link && !m_profile.m_link.isEmpty())
        profile += QStringLiteral(", <a href=\"%1\">%2</a>").arg(m_profile.m_link, m_profile.m_link);
    return profile;
}

int CCANopenObject::getClassByName(const char* name)
{
    return valueByName(classes, name, classNULL);
}

QString CCANopenObject::getClassByIndex(TObjectClass objectClass)
{
    return nameByValue(classes, objectClass, "NULL");
}

int CCANopenObject::getDataTypeByName(const char* name)
{
    return valueByName(dataTypes, name, typeVoid);
}

QString CCANopenObject::getDataTypeByIndex(TObjectType type)
{
    return nameByValue(dataTypes, type, "User-defined Type");
}

int CCANopenObject::getCategoryByName(const char* name)
{
    return valueByName(categories, name, categoryOptional);
}

QString CCANopenObject::getCategoryByIndex(TObjectCategory category)
{
    return nameByValue(categories, category, "Optional");
}

int CCANopenObject::getStateByName(const char* name)
{
    return valueByName(states, name, stateInvalid);
}

QString CCANopenObject::getStateByIndex(TObjectState state)
{
    return nameByValue(states, state, "Invalid");
}

const char* CCANopenObject::version()
{
    return "$Rev: 1 $";
}
