// The text of a device configuration file.
// SPDX-License-Identifier: MIT
#include "sheets/DcfText.h"

#include "dic/DataSheet.h"
#include "dic/LineFile.h"
#include "sheets/Commissioning.h"
#include "sheets/EntryText.h"
#include "sheets/FirstEntries.h"
#include "sheets/LineEdits.h"

#include <unordered_map>
#include <utility>

namespace
{

unsigned keyOf(unsigned index, unsigned subIndex)
{
    return index << 8 | subIndex;
}

// The line for a value; null when a sheet cannot hold it. The type is that of the sheet, by which it is read again.
QString lineFor(const tSnapshotEntry& entry, int dataType)
{
    const auto text = sheetText(*entry.value, dataType, entry.relative);
    const QString line = text ? QStringLiteral("ParameterValue=") + *text : QString();
    constexpr qsizetype lineEnd = 2;
    return line.size() + lineEnd <= CLineFile::maxLine ? line : QString();
}

void setValue(CLineEdits& edits, const tEntryLines& lines, const QString& text)
{
    if (lines.values.empty())
        edits.addAfter(lines.last, text);
    else
        edits.replace(lines.values.back(), text);
}

void setNodeId(CLineEdits& edits, const QString& sheetName, unsigned nodeId)
{
    const tCommissioningLines lines = commissioningLines(sheetName);
    const QString text = QStringLiteral("%1=%2").arg(QLatin1String(commissioning::nodeId)).arg(nodeId);
    if (lines.nodeId != 0) {
        edits.replace(lines.nodeId, text);
    } else if (lines.last != 0) {
        edits.addAfter(lines.last, text);
    } else {
        edits.append(QString());
        edits.append(QStringLiteral("[%1]").arg(QLatin1String(commissioning::section)));
        edits.append(text);
    }
}

} // namespace

tDcfText dcfText(const QString& sheetName, const tSnapshot& snapshot)
{
    tSheetLines lines;
    CDataSheet sheet;
    loadSheet(sheet, sheetName, &lines);
    CLineEdits edits(sheetName);

    std::unordered_map<unsigned, const CCANopenObjectEntry*> entries;
    std::unordered_map<const CCANopenObjectEntry*, QString> values;
    for (const auto& [object, entry] : firstEntries(sheet.dictionary()))
        entries.emplace(keyOf(object.getIndex(), entry.getSubindex()), &entry);
    tDcfText dcf;
    for (std::size_t place = 0; place < snapshot.entries.size(); ++place) {
        const tSnapshotEntry& from = snapshot.entries[place];
        if (!from.value)
            continue;
        const auto to = entries.find(keyOf(from.index, from.subIndex));
        const QString line = to != entries.end() ? lineFor(from, to->second->getDataType()) : QString();
        if (line.isNull())
            dcf.unwritten.push_back(place);
        else
            values[to->second] = line;
    }
    for (const auto& [key, entry] : entries) {
        const tEntryLines& ofEntry = lines.at(entry);
        if (const auto value = values.find(entry); value != values.end())
            setValue(edits, ofEntry, value->second);
        else if (ofEntry.hasValue)
            for (const int line : ofEntry.values)
                edits.remove(line);
    }
    if (snapshot.nodeId != 0 && snapshot.nodeId != commissionedNodeId(sheetName))
        setNodeId(edits, sheetName, snapshot.nodeId);
    dcf.text = edits.result();
    return dcf;
}
