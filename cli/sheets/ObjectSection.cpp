// Checks the section of an object or an entry: its attributes and values.
// SPDX-License-Identifier: MIT
#include "sheets/SectionChecks.h"
#include "sheets/ValueChecks.h"

#include "dic/CANopenObject.h"
#include "dic/EdsGrammar.h"

#include <algorithm>

namespace
{

using tObject = CCANopenObject;
using tEntry = CCANopenObjectEntry;

// Ranges of data types that neither CiA 301 nor a profile may give a meaning.
constexpr struct {
    long long first, last;
} reservedTypes[] = {
    { 0x00, 0x00 }, { 0x0E, 0x0E }, { 0x17, 0x17 }, { 0x1C, 0x1F }, { 0x26, 0x3F }, { 0x260, 0xFFFF }
};

// The section with what was read of it.
struct tAttributesRead {
    const tSection& section;
    CFindings& findings;
    int objectClass = tObject::classVAR;
    bool hasClass = false;
    int dataType = 0;
    int access = tEntry::accessCONST;
    long long compactSubObj = 0;

    const tField& field(tObjectKey key) const { return section.fields[key]; }
    bool isEntry() const { return section.name.row->kind == sectionEntry; }
    bool isMultiple() const
    {
        return !isEntry() && (objectClass == tObject::classARRAY || objectClass == tObject::classRECORD);
    }
    // Its values are those of parameters: of itself, or of the entries of a compact object.
    bool hasValues() const { return !isMultiple() || compactSubObj > 0; }
};

void checkClass(tAttributesRead& read)
{
    const tField& field = read.field(keyObjectType);
    const long long number = numberIn(field, valueNumber8);
    read.hasClass = field.line != 0;
    if (number < 0)
        return;
    read.objectClass = static_cast<int>(number);
    const bool isKnown = number == tObject::classNULL || number == tObject::classDOMAIN ||
                         (number >= tObject::classDEFTYPE && number <= tObject::classRECORD);
    if (!isKnown)
        read.findings.add(ruleUnknownObjectType, field.place(), [] {
            return tAdvice{ QStringLiteral("no object code of CiA 301"),
                            QStringLiteral(
                                "0x7 for a variable, 0x8 for an array, 0x9 for a record, 0x2 for a domain") };
        });
}

void checkDataType(tAttributesRead& read)
{
    const tField& field = read.field(keyDataType);
    const long long number = numberIn(field, valueNumber16);
    if (number < 0)
        return;
    read.dataType = static_cast<int>(number);
    if (std::ranges::any_of(reservedTypes,
                            [number](auto range) { return range.first <= number && number <= range.last; }))
        read.findings.add(ruleUnknownType, field.place(), [] {
            return tAdvice{ QStringLiteral("no data type of CiA 301"), {} };
        });
}

void checkAccess(tAttributesRead& read)
{
    const tField& field = read.field(keyAccessType);
    if (!field.isGiven())
        return;
    read.access = tEntry::getAccessByName(field.text.c_str());
    // The number of "const" stands for unknown words, too.
    if (read.access == tEntry::accessCONST &&
        tEntry::getAccessByIndex(tEntry::accessCONST)
                .compare(QLatin1StringView(field.text.c_str()), Qt::CaseInsensitive) != 0)
        read.findings.add(ruleUnknownAccess, field.place(), [] {
            return tAdvice{ QStringLiteral("no access type, and the browser takes it as const"),
                            QStringLiteral("ro, wo, rw, rwr, rww or const") };
        });
}

void need(const tAttributesRead& read, tObjectKey key)
{
    if (!read.field(key).isGiven())
        reportMissingKey(read.section, read.section.name.row->keys[key].name, read.findings);
}

// ParameterName is needed by its row.
void checkNeeded(const tAttributesRead& read)
{
    if (read.isMultiple() && read.compactSubObj == 0) {
        need(read, keySubNumber);
    } else if (read.objectClass == tObject::classVAR || read.isMultiple()) {
        need(read, keyDataType);
        need(read, keyAccessType);
    }
    if (!read.isEntry() && read.compactSubObj > 0)
        read.findings.add(ruleCompactSubObj, read.field(keyCompactSubObj).place(), [&] {
            const QString index = QString::number(read.section.name.index, 16).toUpper();
            return tAdvice{ QStringLiteral(
                                "the browser does not know CompactSubObj: only the sub-indexes with a section "
                                "of their own are in a list or dump"),
                            QStringLiteral("sections from [%1sub0] to [%1sub%2]")
                                .arg(index, QString::number(read.compactSubObj, 16).toUpper()) };
        });
}

// An ObjectType makes the entry of a variable, with the name known until then; other keys describe the entry that is
// there.
void checkOrder(const tAttributesRead& read)
{
    const tField& objectType = read.field(keyObjectType);
    if (read.isEntry() || read.isMultiple() || !read.hasClass)
        return;
    const tField& name = read.field(keyParameterName);
    if (name.isGiven() && name.line > objectType.line)
        read.findings.add(ruleKeyOrder, name.place(), [] {
            return tAdvice{ QStringLiteral(
                                "after ObjectType, the browser gives the name to the object but not to its entry"),
                            QStringLiteral("put ParameterName before ObjectType") };
        });
    for (const tObjectKey key : { keyDataType, keyAccessType, keyPDOMapping, keyDefaultValue, keyLowLimit, keyHighLimit,
                                  keyParameterValue, keyObjFlags })
        if (const tField& field = read.field(key); field.isGiven() && field.line < objectType.line) {
            read.findings.add(ruleKeyOrder, field.place(), [] {
                return tAdvice{ QStringLiteral("before ObjectType, the browser ignores the key for the object's entry"),
                                QStringLiteral("put ObjectType before it") };
            });
            return;
        }
}

tAttributes attributesOf(const tAttributesRead& read)
{
    return { read.dataType, read.access, numberIn(read.field(keyPDOMapping), valueFlag) > 0 };
}

void keepObject(const tAttributesRead& read, tSheetModel& model)
{
    tObjectRecord object;
    object.index = read.section.name.index;
    object.isMultiple = read.isMultiple();
    object.makesEntry = read.hasClass || read.section.isEmpty;
    object.isStructure = read.objectClass == tObject::classDEFSTRUCT || read.objectClass == tObject::classDEFTYPE;
    object.compactSubObj = static_cast<int>(std::max(0LL, read.compactSubObj));
    object.subNumber = static_cast<int>(numberIn(read.field(keySubNumber), valueNumber8));
    object.place = read.section.place;
    object.subNumberPlace = read.field(keySubNumber).place();
    object.attributes = attributesOf(read);
    model.objects.push_back(object);
}

// What a configuration does not give stays as it is by default.
void keepMapping(const tAttributesRead& read, tSheetModel& model)
{
    const tSectionName& name = read.section.name;
    const long long standard = numberIn(read.field(keyDefaultValue), valueNumber32);
    const long long given = numberIn(read.field(keyParameterValue), valueNumber32);
    const long long configured = given < 0 ? standard : given;
    if (name.subIndex == 0) {
        model.mappingCounts.push_back({ name.index, static_cast<int>(standard), static_cast<int>(configured) });
        return;
    }
    const auto add = [&](long long target, tObjectKey key, bool isDefault, bool isConfigured) {
        if (target > 0)
            model.mappings.push_back({ name.index, name.subIndex, static_cast<std::uint32_t>(target),
                                       read.field(key).place(), isDefault, isConfigured });
    };
    add(standard, keyDefaultValue, true, configured == standard);
    if (configured != standard)
        add(configured, keyParameterValue, false, true);
}

void keepEntry(const tAttributesRead& read, tSheetModel& model)
{
    const tSectionName& name = read.section.name;
    tEntryRecord entry;
    entry.index = name.index;
    entry.subIndex = name.subIndex;
    entry.place = read.section.place;
    entry.attributes = attributesOf(read);
    if (name.subIndex == 0) {
        entry.value = static_cast<int>(numberIn(read.field(keyDefaultValue), valueNumber8));
        entry.valuePlace = read.field(keyDefaultValue).place();
    }
    if (isMapping(name.index))
        keepMapping(read, model);
    model.entries.push_back(entry);
}

} // namespace

void checkObjectSection(const tSection& section, tSheetModel& model, CFindings& findings)
{
    tAttributesRead read{ section, findings };
    read.compactSubObj = std::max(0LL, numberIn(section.fields[keyCompactSubObj], valueNumber8));
    checkClass(read);
    checkDataType(read);
    checkAccess(read);
    if (!section.isEmpty) {
        checkNeeded(read);
        checkOrder(read);
    }
    if (read.hasValues())
        checkValues(section, read.dataType, findings);
    if (read.isEntry())
        keepEntry(read, model);
    else
        keepObject(read, model);
}
