// The values of a device or a file: what commands save, compare and restore.
// SPDX-License-Identifier: MIT
#include "sheets/Snapshot.h"

#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "sheets/Commissioning.h"
#include "sheets/EntryText.h"
#include "sheets/FirstEntries.h"
#include "sheets/SnapshotReader.h"

#include <utility>

namespace
{

// The number `bytes` plus `summand`, cut to its width. Other values stay as they are.
QByteArray shifted(const tSnapshotEntry& entry, const QByteArray& bytes, quint64 summand)
{
    const tValueType type = valueType(entry.type);
    if (!entry.relative || !isNumeric(type) || bytes.size() != type.width)
        return bytes;
    return littleEndian(numberOf(bytes, type) + summand, type.width);
}

// What the entry holds for a text of its sheet.
std::optional<QByteArray> heldValue(const tSnapshotEntry& entry, const QString& text, unsigned nodeId)
{
    const tValueType type = valueType(entry.type);
    const bool depends = isNumeric(type) && isRelative(text);
    if (!depends && !entry.relative)
        return valueFromText(text, type, 0);
    if (entry.relative)
        if (auto value = relativeValue(text, entry.type))
            return value;
    if (nodeId == 0)
        return std::nullopt;
    const auto onBus = valueFromText(text, type, nodeId);
    return onBus ? std::optional(valueToHold(entry, *onBus, nodeId)) : std::nullopt;
}

tSnapshotEntry describe(const CCANopenObject& object, const CCANopenObjectEntry& source)
{
    tSnapshotEntry entry;
    entry.index = object.getIndex();
    entry.subIndex = source.getSubindex();
    entry.name = source.getName();
    entry.type = source.getDataType();
    entry.access = source.getAccess();
    entry.relative = isNumeric(valueType(entry.type)) && isRelative(source.getDefaultValue());
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

QByteArray valueOfNode(const tSnapshotEntry& entry, const QByteArray& held, unsigned nodeId)
{
    return shifted(entry, held, nodeId);
}

QByteArray valueToHold(const tSnapshotEntry& entry, const QByteArray& onBus, unsigned nodeId)
{
    return shifted(entry, onBus, ~quint64{ nodeId } + 1);
}

tSnapshot snapshotOf(const CDataSheet& sheet, unsigned nodeId)
{
    tSnapshot snapshot{ nodeId, sheet.dictionary().getFileName(), {} };
    const bool configured = sheet.dictionary().m_fileType == CCANopen::typeDCF;
    for (const auto& [object, source] : firstEntries(sheet.dictionary())) {
        tSnapshotEntry entry = describe(object, source);
        const auto configuredValue = sheet.parameterValues().find(&source);
        if (!configured)
            entry.value = heldValue(entry, source.getDefaultValue(), nodeId);
        else if (configuredValue != sheet.parameterValues().end())
            entry.value = heldValue(entry, configuredValue->second, nodeId);
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
