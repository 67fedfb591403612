// Objects and lists against each other: what is missing, what is there twice, and counts.
// SPDX-License-Identifier: MIT
#include "sheets/ObjectChecks.h"

#include "sheets/EntryAccess.h"
#include "sheets/EntryText.h"
#include "sheets/ListCounts.h"

#include "dic/CANopenObjectEntry.h"

#include <algorithm>
#include <bitset>
#include <vector>

namespace
{

using tIndexSet = std::bitset<0x10000>;

tPlace startOfFile()
{
    return { 1, 0, 0 };
}

class CObjectChecks
{
public:
    CObjectChecks(const tSheetModel& model, const CObjectIndex& objects, CFindings& findings)
        : m_model(model), m_objects(objects), m_findings(findings), m_lists(model, objects), m_listedAt(0x10000, 0)
    {
    }

    void run();

private:
    void checkNamedSections();
    void checkLists();
    void checkList(const tListed& listed);
    void checkMandatory();
    void checkOrder(unsigned short index, const tPlace& place);
    void checkSections();
    void checkEntries();
    void checkSubNumbers();
    bool lacksSubIndex0(const tObjectRecord& object, std::span<const tEntryRecord> entries, int count);
    void checkSubNumber(const tObjectRecord& object, std::span<const tEntryRecord> entries);
    void checkPdoCount(const tAnnounced& announced, unsigned short first, const char* name);
    void add(tRule rule, const tPlace& place, const QString& text, const QString& mend = QString())
    {
        m_findings.add(rule, place, [&] { return tAdvice{ text, mend }; });
    }

    // What to do with an object that its list lacks.
    QString listIt(unsigned short index) const
    {
        return QStringLiteral("list it in ") + listText(listOf(index)) + m_lists.thenCount(listOf(index));
    }

    const tSheetModel& m_model;
    const CObjectIndex& m_objects;
    CFindings& m_findings;
    const CListCounts m_lists;
    std::vector<int> m_listedAt; // by index: the first line that lists it; 0: none
    tIndexSet m_reported;        // as without a section
    tIndexSet m_late;            // as listed after their section
};

void CObjectChecks::run()
{
    checkNamedSections();
    checkLists();
    checkMandatory();
    checkSections();
    checkEntries();
    checkSubNumbers();
    checkPdoCount(m_model.receivePdos, firstReceiveParameter, "NrOfRXPDO");
    checkPdoCount(m_model.transmitPdos, firstTransmitParameter, "NrOfTXPDO");
}

void CObjectChecks::checkNamedSections()
{
    const struct {
        const tPlace& place;
        const char* name;
    } needed[] = { { m_model.fileInfo, "FileInfo" },
                   { m_model.deviceInfo, "DeviceInfo" },
                   { m_model.mandatoryObjects, "MandatoryObjects" } };
    for (const auto& [place, name] : needed)
        if (place.line == 0)
            add(ruleMissingSection, startOfFile(),
                QStringLiteral("the sheet has no [%1]").arg(QLatin1StringView(name)));
    if (m_model.fileInfo.line > m_model.deviceInfo.line && m_model.deviceInfo.line != 0)
        add(ruleFileInfoOrder, m_model.fileInfo,
            QStringLiteral("after [DeviceInfo], the browser ignores EDSVersion and Description"),
            QStringLiteral("put [FileInfo] first"));
}

void CObjectChecks::checkLists()
{
    for (const tListed& listed : m_model.listed)
        checkList(listed);
    m_lists.check(m_findings);
}

void CObjectChecks::checkList(const tListed& listed)
{
    if (m_listedAt[listed.index] != 0) {
        add(ruleDuplicateIndex, listed.place,
            QStringLiteral("object %1 is listed twice, and the browser shows it twice").arg(indexText(listed.index)),
            QStringLiteral("remove the line") + m_lists.thenCount(listed.list));
        return;
    }
    m_listedAt[listed.index] = listed.place.line;
    if (isInWrongList(listed))
        add(ruleWrongList, listed.place,
            listOf(listed.index) == sectionMandatory
                ? QStringLiteral("object %1 is mandatory").arg(indexText(listed.index))
            : isOfManufacturer(listed.index) ? QStringLiteral("0x2000 to 0x5FFF are objects of the manufacturer")
                                             : QStringLiteral("the objects of the manufacturer are 0x2000 to 0x5FFF"),
            listIt(listed.index) +
                QStringLiteral(" and not in %1%2").arg(listText(listed.list), m_lists.thenCount(listed.list)));
    if (m_objects.object(listed.index) == nullptr) {
        m_reported.set(listed.index);
        add(ruleMissingObject, listed.place,
            QStringLiteral("object %1 is listed, but has no section").arg(indexText(listed.index)),
            QStringLiteral("[%1]").arg(QString::number(listed.index, 16).toUpper()));
    }
}

void CObjectChecks::checkMandatory()
{
    const tPlace place = m_model.mandatoryObjects.line != 0 ? m_model.mandatoryObjects : startOfFile();
    for (const unsigned short index : mandatoryObjects) {
        const auto listed = std::ranges::find(m_model.listed, index, &tListed::index);
        if (listed == m_model.listed.end() && m_objects.object(index) == nullptr)
            add(ruleMissingMandatory, place,
                QStringLiteral("every device has object %1, but this sheet does not").arg(indexText(index)));
    }
}

// The browser makes an object when a list names it.
void CObjectChecks::checkOrder(unsigned short index, const tPlace& place)
{
    const int listedAt = m_listedAt[index];
    if (listedAt > place.line && !m_late[index]) {
        m_late.set(index);
        add(ruleLateList, place,
            QStringLiteral(
                "object %1 is listed after its section, in line %2: the browser takes these keys for those of "
                "another object, or shows the object twice")
                .arg(indexText(index))
                .arg(listedAt),
            QStringLiteral("put %1 before the sections of objects").arg(listText(listOf(index))));
    }
}

void CObjectChecks::checkSections()
{
    tIndexSet met;
    for (const tObjectRecord& object : m_model.objects) {
        if (met[object.index]) {
            add(ruleDuplicateSection, object.place,
                QStringLiteral("object %1 has a section already, in line %2")
                    .arg(indexText(object.index))
                    .arg(m_objects.object(object.index)->place.line));
            continue;
        }
        met.set(object.index);
        if (m_listedAt[object.index] == 0)
            add(ruleUnlistedObject, object.place,
                QStringLiteral("no list names object %1: the browser takes its keys for those of another object")
                    .arg(indexText(object.index)),
                listIt(object.index));
        checkOrder(object.index, object.place);
        if (!object.makesEntry && object.compactSubObj == 0 && m_objects.entries(object.index).empty())
            add(ruleMissingObjectType, object.place,
                QStringLiteral(
                    "without ObjectType this is a variable, but the browser has no entry for it: it is in no "
                    "list and no dump"),
                QStringLiteral("ObjectType=0x7"));
    }
}

void CObjectChecks::checkEntries()
{
    const tEntryRecord* last = nullptr;
    for (const tEntryRecord& entry : m_model.entries) {
        if (last != nullptr && last->index == entry.index && last->subIndex == entry.subIndex) {
            add(ruleDuplicateSection, entry.place,
                QStringLiteral("entry %1 has a section already, in line %2, and the browser shows it twice")
                    .arg(parameterText(entry.index, entry.subIndex))
                    .arg(last->place.line));
            continue;
        }
        last = &entry;
        checkOrder(entry.index, entry.place);
        if (m_objects.object(entry.index) == nullptr && !m_reported[entry.index]) {
            m_reported.set(entry.index);
            add(ruleMissingObject, entry.place,
                QStringLiteral("object %1 has entries, but no section of its own").arg(indexText(entry.index)),
                QStringLiteral("[%1]").arg(QString::number(entry.index, 16).toUpper()));
        }
    }
}

void CObjectChecks::checkSubNumbers()
{
    auto next = m_model.entries.begin();
    while (next != m_model.entries.end()) {
        const auto first = next;
        next = std::find_if(first, m_model.entries.end(), [&](const auto& each) { return each.index != first->index; });
        if (const tObjectRecord* const object = m_objects.object(first->index))
            checkSubNumber(*object, { first, next });
    }
    for (const tObjectRecord& object : m_model.objects)
        if (object.isMultiple && object.compactSubObj == 0 && object.subNumber >= 0 &&
            m_objects.entries(object.index).empty())
            checkSubNumber(object, {});
}

// An array or record without sub-index 0. @return whether it is one
bool CObjectChecks::lacksSubIndex0(const tObjectRecord& object, std::span<const tEntryRecord> entries, int count)
{
    if (!object.isMultiple || object.compactSubObj > 0 || (!entries.empty() && entries.front().subIndex == 0))
        return false;
    const QString then = object.subNumber == count ? QStringLiteral(" (then SubNumber=%1)").arg(count + 1) : QString();
    add(ruleMissingSub0, object.place,
        QStringLiteral("object %1 has no sub-index 0, which says how many it has").arg(indexText(object.index)),
        QStringLiteral("[%1sub0]%2").arg(QString::number(object.index, 16).toUpper(), then));
    return true;
}

void CObjectChecks::checkSubNumber(const tObjectRecord& object, std::span<const tEntryRecord> entries)
{
    if (!object.isMultiple && !object.isStructure && !entries.empty()) {
        add(ruleSubOfVariable, entries.front().place,
            QStringLiteral("object %1 is no array and no record, but has entries").arg(indexText(object.index)),
            QStringLiteral("ObjectType=0x8 for an array, 0x9 for a record, in [%1]")
                .arg(QString::number(object.index, 16).toUpper()));
        return;
    }
    int count = 0;
    for (std::size_t n = 0; n < entries.size(); ++n)
        count += n == 0 || entries[n].subIndex != entries[n - 1].subIndex ? 1 : 0;
    const int mended = count + (lacksSubIndex0(object, entries, count) ? 1 : 0);
    if (object.subNumber >= 0 && object.compactSubObj == 0 && object.subNumber != count && object.subNumber != mended)
        add(ruleSubCount, object.subNumberPlace,
            QStringLiteral("SubNumber is %1, but the number of entries with a section is %2")
                .arg(object.subNumber)
                .arg(count),
            QStringLiteral("SubNumber=%1, or the sections that are missing").arg(mended));
    // What the device may change by itself, or is written, counts the entries in use.
    if (entries.empty() || entries.front().subIndex != 0 || entries.front().value < 0 || object.compactSubObj > 0)
        return;
    const tEntryRecord& number = entries.front();
    const bool isOfUse = object.index == 0x1003 || isMapping(object.index) || isWritable(number.attributes.access);
    const auto last =
        std::ranges::find_if(entries.rbegin(), entries.rend(), [](const auto& e) { return e.subIndex < 0xFF; });
    if (!isOfUse && number.value != last->subIndex)
        add(ruleHighestSub, number.valuePlace,
            QStringLiteral("sub-index 0 says %1, but the highest sub-index is %2")
                .arg(number.value)
                .arg(last->subIndex),
            QStringLiteral("DefaultValue=%1").arg(last->subIndex));
}

void CObjectChecks::checkPdoCount(const tAnnounced& announced, unsigned short first, const char* name)
{
    if (announced.number < 0)
        return;
    int count = 0;
    for (unsigned index = first; index < unsigned{ first } + pdosOfADirection; ++index)
        count += m_objects.object(static_cast<unsigned short>(index)) != nullptr ? 1 : 0;
    if (count != announced.number)
        add(rulePdoCount, announced.place,
            QStringLiteral("%1 is %2, but %3 PDOs from %4 on have sections")
                .arg(QLatin1StringView(name))
                .arg(announced.number)
                .arg(count)
                .arg(indexText(first)),
            QStringLiteral("%1=%2").arg(QLatin1StringView(name)).arg(count));
}

} // namespace

void checkObjects(const tSheetModel& model, const CObjectIndex& objects, CFindings& findings)
{
    CObjectChecks(model, objects, findings).run();
}
