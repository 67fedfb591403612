// One entry of an object: its texts, its value range and the names of its enumerations.
// SPDX-License-Identifier: MIT
#include "dic/CANopenObjectEntry.h"

#include "dic/Names.h"
#include "dic/Utf8Text.h"

namespace
{

constexpr auto dataTypes = dataTypeNames<CCANopenObjectEntry>();
constexpr auto categories = categoryNames<CCANopenObjectEntry>(matchPrefixNoCase);
constexpr auto states = stateNames<CCANopenObjectEntry>(matchWordNoCase);

constexpr tName accesses[] = {
    { "CONST", CCANopenObjectEntry::accessCONST, matchWordNoCase },
    { "RO", CCANopenObjectEntry::accessRO, matchWordNoCase },
    { "WO", CCANopenObjectEntry::accessWO, matchWordNoCase },
    { "RW", CCANopenObjectEntry::accessRW, matchWordNoCase },
    { "RWR", CCANopenObjectEntry::accessRWR, matchWordNoCase },
    { "RWW", CCANopenObjectEntry::accessRWW, matchWordNoCase },
};

constexpr tName mappings[] = {
    { "Optional", CCANopenObjectEntry::mappingOptional, matchPrefixNoCase },
    { "Possible", CCANopenObjectEntry::mappingOptional, matchPrefixNoCase },
    { "Default", CCANopenObjectEntry::mappingDefault, matchPrefixNoCase },
    { "Yes", CCANopenObjectEntry::mappingDefault, matchPrefixNoCase },
    { "No", CCANopenObjectEntry::mappingNo, matchPrefixNoCase },
    { "0", CCANopenObjectEntry::mappingNo, matchWord },
    { "1", CCANopenObjectEntry::mappingDefault, matchWord },
};

constexpr tName storables[] = {
    { "Yes", CCANopenObjectEntry::storableYes, matchPrefixNoCase },
    { "Auto", CCANopenObjectEntry::storableAuto, matchPrefixNoCase },
    { "No", CCANopenObjectEntry::storableNo, matchPrefixNoCase },
    { "0", CCANopenObjectEntry::storableNo, matchWord },
    { "1", CCANopenObjectEntry::storableYes, matchWord },
};

static_assert(valueOf(accesses, "rw", -1) == 3 && valueOf(accesses, "R W", -1) == -1);
static_assert(valueOf(mappings, "Nothing", -1) == 0 && valueOf(mappings, "possible mapping", -1) == 2);
static_assert(nameOf(mappings, 1, "") == "Default" && nameOf(mappings, 2, "") == "Optional");
static_assert(nameOf(dataTypes, 27, "") == "Unsigned64" && nameOf(dataTypes, 32, "").empty());

} // namespace

void CCANopenObjectEntry::setName(const char* name)
{
    m_name = textFromUtf8(name);
}

void CCANopenObjectEntry::setLowLimit(const char* lowLimit)
{
    m_lowLimit = textFromUtf8(lowLimit);
}

void CCANopenObjectEntry::setHighLimit(const char* highLimit)
{
    m_highLimit = textFromUtf8(highLimit);
}

void CCANopenObjectEntry::setDefaultValue(const char* defaultValue)
{
    m_defaultValue = textFromUtf8(defaultValue);
}

QString CCANopenObjectEntry::getValueRange() const
{
    if (m_lowLimit.isEmpty() && m_highLimit.isEmpty())
        return getDataTypeByIndex(m_dataType);
    if (m_lowLimit.isEmpty())
        return QStringLiteral("...,"); // Kept: the upper limit itself does not show
    if (m_highLimit.isEmpty())
        return QStringLiteral("%1,...").arg(m_lowLimit);
    return QStringLiteral("%1,..,%2").arg(m_lowLimit, m_highLimit);
}

int CCANopenObjectEntry::getDataTypeByName(const char* name)
{
    return valueByName(dataTypes, name, typeVoid);
}

QString CCANopenObjectEntry::getDataTypeByIndex(TEntryType type)
{
    return nameByValue(dataTypes, type, "User-defined Type");
}

int CCANopenObjectEntry::getCategoryByName(const char* name)
{
    return valueByName(categories, name, categoryOptional);
}

QString CCANopenObjectEntry::getCategoryByIndex(TEntryCategory category)
{
    return nameByValue(categories, category, "Optional");
}

int CCANopenObjectEntry::getAccessByName(const char* name)
{
    return valueByName(accesses, name, accessCONST);
}

QString CCANopenObjectEntry::getAccessByIndex(TEntryAccess access)
{
    return nameByValue(accesses, access, "");
}

int CCANopenObjectEntry::getMappingByName(const char* name)
{
    return valueByName(mappings, name, mappingNo);
}

QString CCANopenObjectEntry::getMappingByIndex(TEntryMapping mapping)
{
    return nameByValue(mappings, mapping, "No");
}

int CCANopenObjectEntry::getStorableByName(const char* name)
{
    return valueByName(storables, name, storableNo);
}

QString CCANopenObjectEntry::getStorableByIndex(TEntryStorable storable)
{
    return nameByValue(storables, storable, "No");
}

int CCANopenObjectEntry::getStateByName(const char* name)
{
    return valueByName(states, name, stateInvalid);
}

QString CCANopenObjectEntry::getStateByIndex(TEntryState state)
{
    return nameByValue(states, state, "Invalid");
}

const char* CCANopenObjectEntry::version()
{
    return "$Rev: 1 $";
}
