// What differs between two data sheets, by meaning and not by text.
// SPDX-License-Identifier: MIT
#include "sheets/SheetDifferences.h"

#include "dic/DataSheet.h"
#include "dic/NumberText.h"
#include "sheets/EntryText.h"
#include "sheets/FirstEntries.h"
#include "sheets/SameValue.h"
#include "sheets/SheetFile.h"

#include <QStringList>

#include <map>
#include <utility>

namespace
{

using tKind = tSheetDifference::tKind;

struct tDescribed {
    const CCANopenObject* object = nullptr;
    std::map<unsigned, const CCANopenObjectEntry*> entries;
};
using tDescriptions = std::map<unsigned, tDescribed>;

tDescriptions descriptionsOf(const CCANopen& dictionary)
{
    tDescriptions descriptions;
    for (const auto& object : dictionary.m_objectArray)
        if (tDescribed& described = descriptions[object->getIndex()]; described.object == nullptr)
            described.object = object.get();
    for (const auto& [object, entry] : firstEntries(dictionary))
        descriptions[object.getIndex()].entries.emplace(entry.getSubindex(), &entry);
    return descriptions;
}

QString yesOrNo(bool value)
{
    return CCANopenDeviceInfo::getBooleanByValue(value);
}

QString baudratesOf(const CCANopenDeviceInfo& info)
{
    QStringList rates;
    for (int rate = CCANopenDeviceInfo::baudrate10; rate >= CCANopenDeviceInfo::baudrate1000; --rate)
        if (const auto index = static_cast<CCANopenDeviceInfo::TBaudrateIndex>(rate); info.getBaudrate(index))
            rates.append(CCANopenDeviceInfo::getBaudrateByIndex(index));
    return rates.join(u' ');
}

struct tDeviceField {
    const char* name;
    tKind kind;
    QString (*text)(const CCANopenDeviceInfo& info);
};

// clang-format off
constexpr tDeviceField deviceFields[] = {
    { "vendor name",          tKind::text,  [](const auto& info) { return info.getVendorName(); } },
    { "vendor number",        tKind::value, [](const auto& info) { return hexadecimalText(info.getVendorNumber(), 1); } },
    { "product name",         tKind::text,  [](const auto& info) { return info.getProductName(); } },
    { "product number",       tKind::value, [](const auto& info) { return hexadecimalText(info.getProductNumber(), 1); } },
    { "revision number",      tKind::value, [](const auto& info) { return hexadecimalText(info.getRevisionNumber(), 1); } },
    { "order code",           tKind::text,  [](const auto& info) { return info.getOrderCode(); } },
    { "bit rates",            tKind::text,  [](const auto& info) { return baudratesOf(info); } },
    { "boot-up master",       tKind::value, [](const auto& info) { return yesOrNo(info.getSimpleBootUpMaster()); } },
    { "boot-up slave",        tKind::value, [](const auto& info) { return yesOrNo(info.getSimpleBootUpSlave()); } },
    { "PDO granularity",      tKind::value, [](const auto& info) { return QString::number(info.getPDOGranularity()); } },
    { "dynamic channels",     tKind::value, [](const auto& info) { return yesOrNo(info.getDynamicChannels()); } },
    { "group messaging",      tKind::value, [](const auto& info) { return yesOrNo(info.getGroupMessaging()); } },
    { "receive PDOs",         tKind::value, [](const auto& info) { return QString::number(info.getNumberOfRxPDO()); } },
    { "transmit PDOs",        tKind::value, [](const auto& info) { return QString::number(info.getNumberOfTxPDO()); } },
    { "LSS",                  tKind::value, [](const auto& info) { return yesOrNo(info.getLayerSettings()); } },
    { "LMT manufacturer name", tKind::text, [](const auto& info) { return info.getLmtManufacturerName(); } },
    { "LMT product name",     tKind::text,  [](const auto& info) { return info.getLmtProductName(); } },
};
// clang-format on

// A type by its name; by its number, too, where that does not tell them apart.
template <typename Described>
std::pair<QString, QString> typeNames(const Described& a, const Described& b)
{
    const auto nameOf = [](const Described& each) { return Described::getDataTypeByIndex(each.getDataType()); };
    if (a.getDataType() == b.getDataType() || nameOf(a) != nameOf(b))
        return { nameOf(a), nameOf(b) };
    const auto numbered = [&nameOf](const Described& each) {
        return QStringLiteral("%1 %2").arg(nameOf(each), indexText(static_cast<unsigned>(each.getDataType())));
    };
    return { numbered(a), numbered(b) };
}

class CComparison
{
public:
    CComparison(const CDataSheet& a, const CDataSheet& b) : m_a(a), m_b(b) {}

    std::vector<tSheetDifference> differences()
    {
        compareDevices();
        compareDictionaries();
        return std::move(m_differences);
    }

private:
    void compareDevices();
    void compareDictionaries();
    void compareObjects(const tDescribed& a, const tDescribed& b);
    void compareEntries(const CCANopenObjectEntry& a, const CCANopenObjectEntry& b);

    void add(tKind kind, const char* field, const QString& a, const QString& b)
    {
        tSheetDifference difference = m_place;
        difference.kind = kind;
        difference.field = QLatin1String(field);
        difference.a = a;
        difference.b = b;
        m_differences.push_back(difference);
    }
    void compareTexts(tKind kind, const char* field, const QString& a, const QString& b)
    {
        if (a != b)
            add(kind, field, a, b);
    }
    // Goes through two maps and calls `compare` for what is in both.
    template <typename Map, typename Compare>
    void compareMaps(const Map& a, const Map& b, std::optional<unsigned> tSheetDifference::*place, Compare compare);

    const CDataSheet& m_a;
    const CDataSheet& m_b;
    tSheetDifference m_place;
    std::vector<tSheetDifference> m_differences;
};

template <typename Map, typename Compare>
void CComparison::compareMaps(const Map& a, const Map& b, std::optional<unsigned> tSheetDifference::*place,
                              Compare compare)
{
    const QString here = QStringLiteral("");
    auto inA = a.begin();
    auto inB = b.begin();
    while (inA != a.end() || inB != b.end()) {
        if (inB == b.end() || (inA != a.end() && inA->first < inB->first)) {
            m_place.*place = (inA++)->first;
            add(tKind::presence, "presence", here, QString());
        } else if (inA == a.end() || inB->first < inA->first) {
            m_place.*place = (inB++)->first;
            add(tKind::presence, "presence", QString(), here);
        } else {
            m_place.*place = inA->first;
            compare((inA++)->second, (inB++)->second);
        }
    }
    (m_place.*place).reset();
}

void CComparison::compareDevices()
{
    const CCANopenDeviceInfo none;
    const auto infoOf = [&none](const CDataSheet& sheet) -> const CCANopenDeviceInfo& {
        const CCANopenDeviceInfo* info = sheet.dictionary().m_deviceInfo;
        return info != nullptr ? *info : none;
    };
    for (const tDeviceField& field : deviceFields)
        compareTexts(field.kind, field.name, field.text(infoOf(m_a)), field.text(infoOf(m_b)));
}

void CComparison::compareDictionaries()
{
    compareMaps(descriptionsOf(m_a.dictionary()), descriptionsOf(m_b.dictionary()), &tSheetDifference::index,
                [this](const tDescribed& a, const tDescribed& b) { compareObjects(a, b); });
}

void CComparison::compareObjects(const tDescribed& a, const tDescribed& b)
{
    const auto isVariable = [](const tDescribed& described) {
        return !described.object->isMultipleObject() && described.entries.size() == 1 &&
               described.entries.begin()->first == 0;
    };
    const auto isMandatory = [](const CCANopenObject& object) {
        return yesOrNo(object.getCategory() != CCANopenObject::categoryOptional);
    };
    m_place.isVariable = isVariable(a) && isVariable(b);
    compareTexts(tKind::text, "name", a.object->getName(), b.object->getName());
    compareTexts(tKind::value, "code", CCANopenObject::getClassByIndex(a.object->getClass()),
                 CCANopenObject::getClassByIndex(b.object->getClass()));
    compareTexts(tKind::value, "mandatory", isMandatory(*a.object), isMandatory(*b.object));
    if (!m_place.isVariable) { // whose type is that of its entry
        const auto [typeA, typeB] = typeNames(*a.object, *b.object);
        compareTexts(tKind::value, "type", typeA, typeB);
    }
    compareMaps(a.entries, b.entries, &tSheetDifference::subIndex,
                [this](const auto* entryA, const auto* entryB) { compareEntries(*entryA, *entryB); });
    m_place.isVariable = false;
}

void CComparison::compareEntries(const CCANopenObjectEntry& a, const CCANopenObjectEntry& b)
{
    const auto compareValues = [this, &a, &b](const char* field, const QString& textA, const QString& textB) {
        if (!isSameValue(textA, a.getDataType(), textB, b.getDataType()))
            add(tKind::value, field, textA, textB);
    };
    const auto configured = [](const CDataSheet& sheet, const CCANopenObjectEntry& entry) {
        const auto value = sheet.parameterValues().find(&entry);
        return value != sheet.parameterValues().end() ? value->second : QString();
    };
    const auto isMapped = [](const CCANopenObjectEntry& entry) {
        return yesOrNo(entry.getPDOMapping() != CCANopenObjectEntry::mappingNo);
    };
    const auto [typeA, typeB] = typeNames(a, b);
    if (!m_place.isVariable) // whose name is that of its object
        compareTexts(tKind::text, "name", a.getName(), b.getName());
    compareTexts(tKind::value, "type", typeA, typeB);
    compareTexts(tKind::value, "access", CCANopenObjectEntry::getAccessByIndex(a.getAccess()),
                 CCANopenObjectEntry::getAccessByIndex(b.getAccess()));
    compareValues("low limit", a.getLowLimit(), b.getLowLimit());
    compareValues("high limit", a.getHighLimit(), b.getHighLimit());
    compareValues("default", a.getDefaultValue(), b.getDefaultValue());
    compareValues("value", configured(m_a, a), configured(m_b, b));
    compareTexts(tKind::value, "pdo", isMapped(a), isMapped(b));
}

} // namespace

std::vector<tSheetDifference> sheetDifferences(const CDataSheet& a, const CDataSheet& b)
{
    return CComparison(a, b).differences();
}

std::vector<tSheetDifference> sheetDifferences(const QString& fileA, const QString& fileB)
{
    CDataSheet a;
    CDataSheet b;
    loadSheet(a, fileA);
    loadSheet(b, fileB);
    return sheetDifferences(a, b);
}
