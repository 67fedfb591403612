// Dumps that were written as CSV or JSON.
// SPDX-License-Identifier: MIT
#include "sheets/SnapshotReader.h"

#include "base/NodeId.h"
#include "dic/CANopenObjectEntry.h"
#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "sheets/Csv.h"
#include "sheets/EntryText.h"
#include "sheets/SnapshotText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>
#include <unordered_set>
#include <utility>

namespace
{

using tEntry = CCANopenObjectEntry;

constexpr unsigned largestValue = 64 << 20; // as large as the file

enum tColumn {
    columnIndex,
    columnSubIndex,
    columnName,
    columnType,
    columnAccess,
    columnSize,
    columnValue,
    columnAbort
};

// A dump being read: where reading is, for messages.
class CDump
{
public:
    explicit CDump(const QString& fileName) : m_fileName(fileName) { snapshot.isDump = true; }

    void setPlace(const QString& place) { m_place = place; }
    [[noreturn]] void refuse(const QString& why) const
    {
        throw tEnd{ exitUsage, QStringLiteral("not a valid dump: %1, %2: %3").arg(m_fileName, m_place, why) };
    }
    [[noreturn]] void refuse(const char* what, const QString& text) const
    {
        refuse(QStringLiteral("\"%1\" is no %2").arg(visibleLine(text), QLatin1String(what)));
    }

    unsigned number(const QString& text, unsigned most, const char* what) const
    {
        const auto number = numberIn(text, most);
        if (!number)
            refuse(what, text);
        return *number;
    }

    void add(const QStringList& fields);

    tSnapshot snapshot;

private:
    void readValue(tSnapshotEntry& entry, const QString& size, const QString& text) const;

    const QString m_fileName;
    QString m_place;
    std::unordered_set<unsigned> m_parameters;
};

void CDump::add(const QStringList& fields)
{
    tSnapshotEntry entry;
    entry.index = number(fields[columnIndex], 0xFFFF, "index");
    entry.subIndex = number(fields[columnSubIndex], 0xFF, "sub-index");
    if (!m_parameters.insert(entry.index << 8 | entry.subIndex).second)
        refuse(QStringLiteral("%1 is there twice").arg(parameterText(entry.index, entry.subIndex)));
    entry.name = fields[columnName];
    entry.type = tEntry::getDataTypeByName(fields[columnType].toUtf8().constData());
    if (dataTypeName(entry.type) != fields[columnType])
        refuse("data type", fields[columnType]);
    entry.access = tEntry::getAccessByName(fields[columnAccess].toUtf8().constData());
    if (tEntry::getAccessByIndex(static_cast<tEntry::TEntryAccess>(entry.access)) != fields[columnAccess])
        refuse("access type", fields[columnAccess]);
    readValue(entry, fields[columnSize], fields[columnValue]);
    if (!fields[columnAbort].isEmpty())
        entry.abortCode = number(fields[columnAbort], std::numeric_limits<std::uint32_t>::max(), "abort code");
    snapshot.entries.push_back(std::move(entry));
}

void CDump::readValue(tSnapshotEntry& entry, const QString& size, const QString& text) const
{
    if (size.isEmpty()) {
        if (!text.isEmpty())
            refuse(QStringLiteral("a value without a size"));
        return;
    }
    const unsigned bytes = number(size, largestValue, "size");
    entry.value = dumpedValue(text, entry.type, bytes);
    if (!entry.value)
        refuse(QStringLiteral("\"%1\" is no value of type %2 with size %3")
                   .arg(visibleLine(text), dataTypeName(entry.type), QString::number(bytes)));
    const tValueType type = valueType(entry.type);
    entry.relative = isNumeric(type) && bytes == static_cast<unsigned>(type.width) && isRelative(text);
    if (entry.relative)
        entry.offset = numberOf(*entry.value, type);
}

QString lineText(qsizetype line)
{
    return QStringLiteral("line %1").arg(line);
}

// A field of an entry as CSV has it: texts as they are, whole numbers as text, null as nothing.
QString fieldOf(const CDump& dump, const QJsonObject& entry, const QString& key)
{
    const QJsonValue value = entry.value(key);
    constexpr qint64 none = -1;
    const qint64 number = value.toInteger(none);
    if (value.isString())
        return value.toString();
    if (value.isNull())
        return QString();
    if (number == none)
        dump.refuse(QStringLiteral("\"%1\" is missing or wrong").arg(key));
    return QString::number(number);
}

QJsonObject parseObject(CDump& dump, const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    const qsizetype place = error.error == QJsonParseError::NoError ? 0 : error.offset;
    dump.setPlace(lineText(text.left(place).count('\n') + 1));
    if (error.error != QJsonParseError::NoError)
        dump.refuse(error.errorString());
    if (!document.isObject())
        dump.refuse(QStringLiteral("no object"));
    return document.object();
}

} // namespace

tSnapshot snapshotFromCsv(const QByteArray& text, const QString& fileName)
{
    CDump dump(fileName);
    CCsvReader reader(text);
    QStringList fields;
    const QStringList columns = dumpColumns();
    const bool headed = reader.next(fields) && fields == columns;
    while (headed && reader.next(fields)) {
        dump.setPlace(lineText(reader.line()));
        if (fields.size() != columns.size())
            dump.refuse(QStringLiteral("%1 fields where %2 are needed").arg(fields.size()).arg(columns.size()));
        dump.add(fields);
    }
    dump.setPlace(lineText(reader.line()));
    if (!reader.error().isEmpty())
        dump.refuse(reader.error());
    if (!headed)
        dump.refuse(QStringLiteral("the first line is not \"%1\"").arg(columns.join(u',')));
    return std::move(dump.snapshot);
}

tSnapshot snapshotFromJson(const QByteArray& text, const QString& fileName)
{
    CDump dump(fileName);
    const QJsonObject object = parseObject(dump, text);
    const qint64 nodeId = object.value(QStringLiteral("nodeId")).toInteger(-1);
    if (nodeId < 0 || nodeId > highestNodeId)
        dump.refuse(QStringLiteral("\"nodeId\" is missing or wrong"));
    if (!object.value(QStringLiteral("entries")).isArray())
        dump.refuse(QStringLiteral("\"entries\" is missing or wrong"));
    dump.snapshot.nodeId = static_cast<unsigned>(nodeId);
    dump.snapshot.sheet = object.value(QStringLiteral("sheet")).toString();
    const QJsonArray entries = object.value(QStringLiteral("entries")).toArray();
    for (qsizetype position = 0; position < entries.size(); ++position) {
        dump.setPlace(QStringLiteral("entry %1").arg(position + 1));
        QStringList fields;
        for (const QString& column : dumpColumns())
            fields.append(fieldOf(dump, entries[position].toObject(), column));
        dump.add(fields);
    }
    return std::move(dump.snapshot);
}
