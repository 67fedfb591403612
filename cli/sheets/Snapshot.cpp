// The values of a device or a file: what commands save, compare and restore.
// SPDX-License-Identifier: MIT
#include "sheets/Snapshot.h"

#include "base/NodeId.h"
#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "sheets/Commissioning.h"
#include "sheets/EntryText.h"
#include "sheets/FirstEntries.h"
#include "sheets/SnapshotReader.h"

#include <utility>

namespace
{

// The number that the bytes are; none when they are no number of the type.
std::optional<quint64> numberIn(const QByteArray& bytes, tValueType type)
{
    return isNumeric(type) && bytes.size() == type.width ? std::optional(numberOf(bytes, type)) : std::nullopt;
}

// Whether `text` is a sum with the node-id, which it gives the entry as its offset.
bool isSum(tSnapshotEntry& entry, const QString& text)
{
    const auto held = relativeValue(text, entry.type);
    if (held)
        entry.offset = numberOf(*held, valueType(entry.type));
    return held.has_value();
}

// Gives the entry the value that a text of its sheet stands for.
void readValue(tSnapshotEntry& entry, const QString& text, unsigned nodeId)
{
    const tValueType type = valueType(entry.type);
    const bool depends = isNumeric(type) && isRelative(text);
    if (const auto held = relativeValue(text, entry.type)) {
        entry.value = held;
        entry.relative = true;
        return;
    }
    const auto onBus = depends && nodeId == 0 ? std::nullopt : valueFromText(text, type, nodeId);
    if (!onBus)
        entry.wrongText = text;
    else if (nodeId != 0)
        holdValue(entry, *onBus, nodeId);
    else
        entry.value = onBus;
}

tSnapshotEntry describe(const CCANopenObject& object, const CCANopenObjectEntry& source)
{
    tSnapshotEntry entry;
    entry.index = object.getIndex();
    entry.subIndex = source.getSubindex();
    entry.name = source.getName();
    entry.type = source.getDataType();
    entry.access = source.getAccess();
    return entry;
}

tSnapshot loadSheetSnapshot(const QString& fileName)
{
    CDataSheet sheet;
    loadSheet(sheet, fileName);
    return snapshotOf(sheet, 0);
}

tSnapshot loadConfiguration(const QString& fileName)
{
    CDataSheet sheet;
    loadSheet(sheet, fileName);
    return snapshotOf(sheet, commissionedNodeId(fileName));
}

tSnapshot loadCsv(const QString& fileName)
{
    return snapshotFromCsv(contentOf(fileName), fileName);
}

tSnapshot loadJson(const QString& fileName)
{
    return snapshotFromJson(contentOf(fileName), fileName);
}

constexpr struct {
    const char* ending;
    tSnapshot (*load)(const QString& fileName);
} fileTypes[] = {
    { ".eds", loadSheetSnapshot },
    { ".dcf", loadConfiguration },
    { ".csv", loadCsv },
    { ".json", loadJson },
};

} // namespace

QString nameOf(const tSnapshotEntry& entry)
{
    return parameterText(entry.index, entry.subIndex);
}

QByteArray valueOfNode(const tSnapshotEntry& entry, unsigned nodeId)
{
    const tValueType type = valueType(entry.type);
    const auto number = numberIn(*entry.value, type);
    return entry.relative && number ? littleEndian(*number + nodeId, type.width) : *entry.value;
}

void holdValue(tSnapshotEntry& entry, const QByteArray& onBus, unsigned nodeId)
{
    const tValueType type = valueType(entry.type);
    const auto number = numberIn(onBus, type);
    entry.relative = number && entry.offset && ((*number - nodeId - *entry.offset) & highestNodeId) == 0;
    entry.value = entry.relative ? littleEndian(*number - nodeId, type.width) : onBus;
}

tSnapshot snapshotOf(const CDataSheet& sheet, unsigned nodeId)
{
    tSnapshot snapshot{ nodeId, sheet.dictionary().getFileName(), {} };
    const bool configured = sheet.dictionary().m_fileType == CCANopen::typeDCF;
    for (const auto& [object, source] : firstEntries(sheet.dictionary())) {
        tSnapshotEntry entry = describe(object, source);
        const QString byDefault = source.getDefaultValue();
        const auto configuredValue = sheet.parameterValues().find(&source);
        const bool hasValue = configuredValue != sheet.parameterValues().end();
        if (!isSum(entry, byDefault) && hasValue)
            isSum(entry, configuredValue->second);
        if (!configured)
            readValue(entry, byDefault, nodeId);
        else if (hasValue)
            readValue(entry, configuredValue->second, nodeId);
        else
            entry.defaultValue = valueFromText(byDefault, valueType(entry.type), nodeId);
        snapshot.entries.push_back(std::move(entry));
    }
    return snapshot;
}

tSnapshot loadSnapshot(const QString& fileName)
{
    for (const auto& type : fileTypes)
        if (fileName.endsWith(QLatin1String(type.ending), Qt::CaseInsensitive))
            return type.load(fileName);
    throw tEnd{ exitUsage, QStringLiteral("neither a data sheet nor a dump: %1 (its name must end in .eds, .dcf, .csv "
                                          "or .json)")
                               .arg(fileName) };
}
