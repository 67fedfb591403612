// What PDOs map: whether it is there, may be mapped, and is as long as they say.
// SPDX-License-Identifier: MIT
#include "sheets/ObjectChecks.h"

#include "sheets/EntryText.h"

#include "dic/CANopenObjectEntry.h"
#include "dic/ValueTypes.h"

#include <algorithm>
#include <utility>

namespace
{

using tEntry = CCANopenObjectEntry;

struct tTarget {
    unsigned short index;
    unsigned subIndex;
    unsigned bits;
};

constexpr tTarget targetOf(const tMapping& mapping)
{
    return { static_cast<unsigned short>(mapping.target >> 16), mapping.target >> 8 & 0xFF, mapping.target & 0xFF };
}

// The attributes of a parameter; null when the sheet does not have it.
const tAttributes* attributesOf(const CObjectIndex& objects, const tTarget& target)
{
    if (const tEntryRecord* const entry = objects.entry(target.index, target.subIndex))
        return &entry->attributes;
    const tObjectRecord* const object = objects.object(target.index);
    if (object == nullptr)
        return nullptr;
    const bool isThere = object->isMultiple
                             ? target.subIndex > 0 && target.subIndex <= static_cast<unsigned>(object->compactSubObj)
                             : target.subIndex == 0;
    return isThere ? &object->attributes : nullptr;
}

// Whether values of the access type go in that direction.
bool hasDirection(int access, bool isReceive)
{
    if (access == tEntry::accessRW)
        return true;
    return isReceive == (access == tEntry::accessWO || access == tEntry::accessRWW);
}

// Types without a width of their own have any number of bytes.
bool isLength(unsigned bits, int dataType)
{
    const tValueType type = valueType(dataType);
    const auto width = static_cast<unsigned>(8 * type.width);
    if (type.kind == kindBoolean && bits == 1)
        return true;
    return bits > 0 && (width > 0 ? bits == width : bits % 8 == 0);
}

QString lengthText(int dataType)
{
    const tValueType type = valueType(dataType);
    return type.width > 0 ? QStringLiteral("%1 bits").arg(8 * type.width) : QString();
}

// A gap in a receive PDO, written as the data type that it has the length of.
void checkDummy(const tMapping& mapping, const tSheetModel& model, CFindings& findings)
{
    const tTarget target = targetOf(mapping);
    if (!isWithin(mapping.pdo, firstReceiveMapping) || !model.dummies[target.index])
        findings.add(ruleNotMappable, mapping.place, [&] {
            const QString digits = QString::number(target.index, 16).toUpper().rightJustified(4, u'0');
            return tAdvice{ QStringLiteral("only a receive PDO has gaps, and only of types that [DummyUsage] allows"),
                            QStringLiteral("Dummy%1=1 in [DummyUsage]").arg(digits) };
        });
}

// Adds up what each PDO maps, with its default values or with those of a configuration. `model.mappings` may not be in
// the order of the sub-indexes.
class CPdoLengths
{
public:
    CPdoLengths(const tSheetModel& model, CFindings& findings) : m_model(model), m_findings(findings) {}

    void check(bool tMapping::*isMapped, int tMappingCount::*count);

private:
    static constexpr int mostMapped = 64; // a count beyond that is none: such PDOs are multiplexed
    static constexpr unsigned bitsOfAFrame = 64;

    void checkPdo(std::span<const tMapping* const> mappings, int count);

    const tSheetModel& m_model;
    CFindings& m_findings;
    std::vector<const tMapping*> m_reported;
};

void CPdoLengths::check(bool tMapping::*isMapped, int tMappingCount::*count)
{
    std::vector<const tMapping*> mappings;
    for (const tMapping& mapping : m_model.mappings)
        if (mapping.*isMapped)
            mappings.push_back(&mapping);
    std::ranges::stable_sort(mappings, {}, [](const tMapping* each) { return std::pair(each->pdo, each->subIndex); });
    std::vector<int> counts(0x10000, -1);
    for (const tMappingCount& each : m_model.mappingCounts)
        counts[each.pdo] = each.*count;
    for (std::span<const tMapping* const> rest(mappings); !rest.empty();) {
        const auto next =
            std::ranges::find_if(rest, [pdo = rest.front()->pdo](const auto* each) { return each->pdo != pdo; });
        const auto size = static_cast<std::size_t>(next - rest.begin());
        checkPdo(rest.first(size), counts[rest.front()->pdo]);
        rest = rest.subspan(size);
    }
}

void CPdoLengths::checkPdo(std::span<const tMapping* const> mappings, int count)
{
    const int last = count < 0 ? mostMapped : count;
    unsigned bits = 0;
    for (const tMapping* const mapping : mappings) {
        if (last > mostMapped || mapping->subIndex > static_cast<unsigned>(last))
            return;
        bits += targetOf(*mapping).bits;
        if (bits <= bitsOfAFrame)
            continue;
        if (std::ranges::find(m_reported, mapping) == m_reported.end())
            m_findings.add(rulePdoLength, mapping->place, [&] {
                return tAdvice{ QStringLiteral("up to here PDO %1 maps %2 bits, but a CAN frame has %3")
                                    .arg(parameterText(mapping->pdo, 0), QString::number(bits),
                                         QString::number(bitsOfAFrame)),
                                {} };
            });
        m_reported.push_back(mapping);
        return;
    }
}

void checkMapping(const tMapping& mapping, const CObjectIndex& objects, CFindings& findings)
{
    const tTarget target = targetOf(mapping);
    const QString name = parameterText(target.index, target.subIndex);
    const tAttributes* const attributes = attributesOf(objects, target);
    const bool isReceive = isWithin(mapping.pdo, firstReceiveMapping);
    if (attributes == nullptr) {
        findings.add(ruleMappingMissing, mapping.place, [&] {
            return tAdvice{ QStringLiteral("the sheet has no %1").arg(name), {} };
        });
        return;
    }
    if (!attributes->isMappable)
        findings.add(ruleNotMappable, mapping.place, [&] {
            return tAdvice{ QStringLiteral("%1 is not for PDOs: its PDOMapping is 0").arg(name), {} };
        });
    else if (!hasDirection(attributes->access, isReceive))
        findings.add(ruleNotMappable, mapping.place, [&] {
            const QString access =
                tEntry::getAccessByIndex(static_cast<tEntry::TEntryAccess>(attributes->access)).toLower();
            return tAdvice{ isReceive ? QStringLiteral("a receive PDO cannot write %1, which is %2").arg(name, access)
                                      : QStringLiteral("a transmit PDO cannot read %1, which is %2").arg(name, access),
                            {} };
        });
    if (!isLength(target.bits, attributes->dataType))
        findings.add(ruleMappingLength, mapping.place, [&] {
            return tAdvice{
                QStringLiteral("%1 is mapped with %2 bits, which is not its length").arg(name).arg(target.bits),
                lengthText(attributes->dataType)
            };
        });
}

} // namespace

void checkMappings(const tSheetModel& model, const CObjectIndex& objects, CFindings& findings)
{
    for (const tMapping& mapping : model.mappings)
        if (targetOf(mapping).index < model.dummies.size())
            checkDummy(mapping, model, findings);
        else
            checkMapping(mapping, objects, findings);
    if (model.mappings.empty())
        return;
    CPdoLengths lengths(model, findings);
    lengths.check(&tMapping::isDefault, &tMappingCount::ofDefaults);
    lengths.check(&tMapping::isConfigured, &tMappingCount::ofConfiguration);
}
