// Checks what sections of all kinds have in common: needed keys, numbers and counts.
// SPDX-License-Identifier: MIT
#include "sheets/SectionChecks.h"

#include "base/Digits.h"
#include "base/NodeId.h"
#include "dic/EdsGrammar.h"

#include <algorithm>

namespace
{

bool isObjectOrEntry(const tSection& section)
{
    return section.name.row->kind == sectionObject || section.name.row->kind == sectionEntry;
}

QString largestOf(tKeyValue kind)
{
    return QString::number(kind == valueNumber8 ? 0xFFU : kind == valueNumber32 ? 0xFFFFFFFFU : 0xFFFFU);
}

void reportNoNumber(const tPlace& place, bool isNumber, const tKeyRow& key, CFindings& findings)
{
    findings.add(ruleNotANumber, place, [&] {
        const QString text = isNumber ? QStringLiteral("the number is too large") : QStringLiteral("this is no number");
        return tAdvice{ (key.use & keyRead) != 0 ? text + QStringLiteral(", and the browser takes it as 0") : text,
                        key.value == valueFlag ? QStringLiteral("0 or 1")
                                               : QStringLiteral("0 to ") + largestOf(key.value) };
    });
}

void checkNodeId(const tField& field, CFindings& findings)
{
    const long long number = numberIn(field, valueNodeId);
    if (number < 1 || number > highestNodeId)
        findings.add(ruleNodeId, field.place(), [] {
            return tAdvice{ QStringLiteral("no node-id of a device"), QStringLiteral("1 to %1").arg(highestNodeId) };
        });
}

void checkFields(const tSection& section, CFindings& findings)
{
    const auto keys = section.name.row->keys;
    for (std::size_t place = 0; place < keys.size(); ++place) {
        const tField& field = section.fields[place];
        if (!field.isGiven()) {
            if ((keys[place].use & keyNeeded) != 0)
                reportMissingKey(section, keys[place].name, findings);
        } else if (keys[place].value == valueNodeId) {
            checkNodeId(field, findings);
        } else if (keys[place].value != valueText && numberIn(field, keys[place].value) < 0) {
            unsigned long number = 0;
            reportNoNumber(field.place(), Ascii2Unsigned32(field.text.c_str(), &number), keys[place], findings);
        }
    }
}

void checkNumberedValues(const tSection& section, CFindings& findings)
{
    const tSectionRow& row = *section.name.row;
    const tKeyRow key{ {}, row.numbered.value, row.use };
    if (row.numbered.value == valueText)
        return;
    for (const tNumberedItem& item : section.numbered)
        if (item.content < 0 || item.content > 0xFFFF)
            reportNoNumber(item.value, item.content >= 0, key, findings);
        else if (item.content == 0 && row.numbered.value == valueNumber16)
            findings.add(ruleNotANumber, item.value, [] {
                return tAdvice{ QStringLiteral("no object has the index 0"), {} };
            });
}

// Twice the same number, or a gap. @return how many different ones there are
std::size_t checkNumbers(const tSection& section, CFindings& findings)
{
    std::vector<tNumberedItem> items = section.numbered;
    std::ranges::stable_sort(items, {}, &tNumberedItem::number);
    std::size_t count = 0;
    unsigned last = 0;
    bool hasGap = false;
    for (const tNumberedItem& item : items) {
        if (count > 0 && item.number == last) {
            findings.add(ruleDuplicateKey, item.key, [&] {
                return tAdvice{ QStringLiteral("the number is in this section twice"), {} };
            });
            continue;
        }
        if (section.name.row->numbered.isConsecutive && item.number != last + 1 && !hasGap) {
            hasGap = true;
            findings.add(ruleListNumber, item.key, [&] {
                return tAdvice{
                    QStringLiteral("the number before %1 is missing: a list counts from 1").arg(item.number),
                    QString::number(last + 1)
                };
            });
        }
        last = item.number;
        ++count;
    }
    return count;
}

// `numbers`: how many different ones the lines have. A number that is there twice has its own finding, and to mend that
// may, or may not, take a line away.
void checkCount(const tSection& section, std::size_t numbers, tSheetModel& model, CFindings& findings)
{
    const tSectionRow& row = *section.name.row;
    if (row.count.empty())
        return;
    const tField& field = section.fields[static_cast<std::size_t>(placeOfKey(row.keys, row.count))];
    const long long number = numberIn(field, valueNumber16);
    const auto lines = static_cast<int>(section.numbered.size());
    if (isObjectList(row.kind)) {
        model.lists.push_back({ row.kind, static_cast<int>(number), field.place(), lines, static_cast<int>(numbers) });
        return;
    }
    if (number >= 0 && number != static_cast<long long>(numbers) && number != lines)
        findings.add(ruleCount, field.place(), [&] {
            const QString found = QString::number(lines);
            return tAdvice{
                QStringLiteral("%1 is %2, but the section has %3").arg(latin(row.count)).arg(number).arg(found),
                QStringLiteral("%1=%2").arg(latin(row.count), found)
            };
        });
}

void keepList(const tSection& section, tSheetModel& model)
{
    for (const tNumberedItem& item : section.numbered)
        if (item.content > 0 && item.content <= 0xFFFF)
            model.listed.push_back({ static_cast<unsigned short>(item.content), section.name.row->kind, item.value });
}

void keepDummies(const tSection& section, tSheetModel& model)
{
    if (section.name.row->numbered.prefix == "Dummy")
        for (const tNumberedItem& item : section.numbered)
            if (item.number < model.dummies.size() && item.content > 0)
                model.dummies.set(item.number);
}

void keepCompactMappings(const tSection& section, tSheetModel& model)
{
    if (isMapping(section.name.index) && section.name.row->name == "Value")
        for (const tNumberedItem& item : section.numbered)
            if (item.content > 0)
                model.mappings.push_back({ section.name.index, item.number, static_cast<std::uint32_t>(item.content),
                                           item.value, true, true });
}

tAnnounced announced(const tSection& section, std::string_view key)
{
    const tField& field = section.fields[static_cast<std::size_t>(placeOfKey(section.name.row->keys, key))];
    return { static_cast<int>(numberIn(field, valueNumber16)), field.place() };
}

void keep(const tSection& section, tSheetModel& model)
{
    switch (section.name.row->kind) {
    case sectionMandatory:
    case sectionOptional:
    case sectionManufacturer:
        keepList(section, model);
        return;
    case sectionDeviceInfo:
        model.receivePdos = announced(section, "NrOfRXPDO");
        model.transmitPdos = announced(section, "NrOfTXPDO");
        return;
    case sectionCompact:
        keepCompactMappings(section, model);
        return;
    default:
        keepDummies(section, model);
    }
}

} // namespace

QString sectionText(const tSectionName& name)
{
    QString text = QString::number(name.index, 16).toUpper();
    if (name.row->kind == sectionEntry)
        text += QStringLiteral("sub") + QString::number(name.subIndex, 16).toUpper();
    return QStringLiteral("[%1]").arg(text);
}

long long numberIn(const tField& field, tKeyValue kind)
{
    unsigned long number32 = 0;
    unsigned short number16 = 0;
    unsigned char number8 = 0;
    if (!field.isGiven())
        return -1;
    if (field.text.size() == 1 && digitOf(field.text.front()) < 10) // most are
        return digitOf(field.text.front());
    const char* const text = field.text.c_str();
    if (kind == valueNumber32)
        return Ascii2Unsigned32(text, &number32) ? static_cast<long long>(number32) : -1;
    if (kind == valueNumber8 || kind == valueNodeId)
        return Ascii2Unsigned8(text, &number8) ? number8 : -1;
    return Ascii2Unsigned16(text, &number16) ? number16 : -1;
}

void reportMissingKey(const tSection& section, std::string_view key, CFindings& findings)
{
    findings.add(ruleMissingKey, section.place, [&] {
        return tAdvice{ QStringLiteral("%1 is missing or empty").arg(latin(key)), {} };
    });
}

void checkSection(const tSection& section, tSheetModel& model, CFindings& findings)
{
    const tSectionKind kind = section.name.row->kind;
    if (section.isEmpty && (isObjectOrEntry(section) || kind == sectionFileInfo || kind == sectionDeviceInfo)) {
        findings.add(ruleEmptySection, section.place, [] {
            return tAdvice{ QStringLiteral("the section has no keys, and the browser does not see it"), {} };
        });
    } else {
        checkFields(section, findings);
    }
    if (isObjectOrEntry(section)) {
        checkObjectSection(section, model, findings);
        return;
    }
    if (section.name.row->numbered.base != 0) {
        checkNumberedValues(section, findings);
        checkCount(section, checkNumbers(section, findings), model, findings);
    }
    keep(section, model);
}
