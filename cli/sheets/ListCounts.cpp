// How many objects each list of a sheet has, and would have with all its findings mended.
// SPDX-License-Identifier: MIT
#include "sheets/ListCounts.h"

#include <algorithm>
#include <bitset>

namespace
{

bool isCountRight(const tObjectList& list)
{
    return list.number == list.lines || list.number == list.numbers;
}

} // namespace

tSectionKind listOf(unsigned short index)
{
    if (std::ranges::find(mandatoryObjects, index) != std::end(mandatoryObjects))
        return sectionMandatory;
    return isOfManufacturer(index) ? sectionManufacturer : sectionOptional;
}

QString listText(tSectionKind list)
{
    return list == sectionMandatory      ? QStringLiteral("[MandatoryObjects]")
           : list == sectionManufacturer ? QStringLiteral("[ManufacturerObjects]")
                                         : QStringLiteral("[OptionalObjects]");
}

bool isInWrongList(const tListed& listed)
{
    const bool isManufacturer = isOfManufacturer(listed.index);
    const bool isMandatory = listOf(listed.index) == sectionMandatory;
    return (isManufacturer != (listed.list == sectionManufacturer) && listed.index >= 0x1000) ||
           (isMandatory && listed.list == sectionOptional);
}

CListCounts::CListCounts(const tSheetModel& model, const CObjectIndex& objects) : m_model(model)
{
    std::bitset<0x10000> isListed;
    for (const tListed& listed : model.listed) {
        if (isListed[listed.index]) {
            --m_changes[listed.list];
        } else if (isInWrongList(listed)) {
            --m_changes[listed.list];
            ++m_changes[listOf(listed.index)];
        }
        isListed.set(listed.index);
    }
    for (const tObjectRecord& object : model.objects)
        if (!isListed[object.index] && objects.object(object.index) == &object)
            ++m_changes[listOf(object.index)];
}

QString CListCounts::thenCount(tSectionKind kind) const
{
    const auto list = std::ranges::find(m_model.lists, kind, &tObjectList::list);
    if (list == m_model.lists.end() || !isCountRight(*list) || list->number == mended(*list))
        return QString();
    return QStringLiteral(" (SupportedObjects=%1 with all mends of the lists)").arg(mended(*list));
}

void CListCounts::check(CFindings& findings) const
{
    for (const tObjectList& list : m_model.lists) {
        if (list.number < 0 || isCountRight(list))
            continue;
        findings.add(ruleCount, list.numberPlace, [&] {
            const int right = mended(list);
            const QString change = right == list.number ? QStringLiteral("none: %1 is right").arg(right)
                                                        : QStringLiteral("SupportedObjects=%1").arg(right);
            return tAdvice{ QStringLiteral("SupportedObjects is %1, but the section has %2")
                                .arg(QString::number(list.number), QString::number(list.lines)),
                            right == list.lines ? change
                                                : change + QStringLiteral(" with the other mends of the lists") };
        });
    }
}
