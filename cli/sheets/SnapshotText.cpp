// Snapshots as text.
// SPDX-License-Identifier: MIT
#include "sheets/SnapshotText.h"

#include "console/JsonText.h"
#include "dic/CANopenObjectEntry.h"
#include "dic/NumberText.h"
#include "sheets/Csv.h"
#include "sheets/EntryText.h"
#include "sheets/TextTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

using tEntry = CCANopenObjectEntry;

QString abortText(const std::optional<std::uint32_t>& code)
{
    return code ? hexadecimalText(*code, 8) : QString();
}

// The fields of the columns.
QStringList fieldsOf(const tSnapshotEntry& entry)
{
    return {
        indexText(entry.index),
        subIndexText(entry.subIndex),
        entry.name,
        dataTypeName(entry.type),
        tEntry::getAccessByIndex(static_cast<tEntry::TEntryAccess>(entry.access)),
        entry.value ? QString::number(entry.value->size()) : QString(),
        entry.value ? dumpedText(*entry.value, entry.type, entry.relative) : QString(),
        abortText(entry.abortCode),
    };
}

// With the names of the columns first.
std::vector<QStringList> rowsOf(const tSnapshot& snapshot)
{
    std::vector<QStringList> rows{ dumpColumns() };
    for (const tSnapshotEntry& entry : snapshot.entries)
        rows.push_back(fieldsOf(entry));
    return rows;
}

QJsonObject jsonOf(const tSnapshotEntry& entry)
{
    QJsonObject object;
    const QStringList columns = dumpColumns();
    const QStringList fields = fieldsOf(entry);
    for (qsizetype column = 0; column < columns.size(); ++column)
        object[columns[column]] = fields[column];
    object[QStringLiteral("subindex")] = static_cast<int>(entry.subIndex);
    object[QStringLiteral("size")] = entry.value ? QJsonValue(qint64{ entry.value->size() }) : QJsonValue();
    if (!entry.value)
        object[QStringLiteral("value")] = QJsonValue();
    if (!entry.abortCode)
        object[QStringLiteral("abort")] = QJsonValue();
    return object;
}

} // namespace

QStringList dumpColumns()
{
    return QStringLiteral("index,subindex,name,type,access,size,value,abort").split(u',');
}

QByteArray snapshotAsCsv(const tSnapshot& snapshot)
{
    return csvText(rowsOf(snapshot));
}

QByteArray snapshotAsJson(const tSnapshot& snapshot)
{
    QJsonArray entries;
    for (const tSnapshotEntry& entry : snapshot.entries)
        entries.append(jsonOf(entry));
    const QJsonObject object{
        { QStringLiteral("nodeId"), static_cast<int>(snapshot.nodeId) },
        { QStringLiteral("sheet"), snapshot.sheet },
        { QStringLiteral("entries"), entries },
    };
    return jsonText(QJsonDocument(object));
}

QByteArray snapshotAsTable(const tSnapshot& snapshot)
{
    return textTable(rowsOf(snapshot));
}
