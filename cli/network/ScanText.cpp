// The nodes of a network as table, CSV and JSON.
// SPDX-License-Identifier: MIT
#include "console/JsonText.h"
#include "dic/CANopenObjectEntry.h"
#include "network/Scan.h"
#include "network/TypedValue.h"
#include "sheets/Csv.h"
#include "sheets/TextTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <iterator>

namespace
{

struct tColumn {
    const char* title; // of the table
    const char* key;   // of CSV and JSON
    tScanField field;
};

constexpr tColumn columns[] = {
    { "Device type", "devicetype", scanDeviceType }, { "Vendor", "vendor", scanVendor },
    { "Product", "product", scanProduct },           { "Revision", "revision", scanRevision },
    { "Serial number", "serial", scanSerial },       { "Name", "name", scanName },
};
static_assert(std::size(columns) == scanFieldCount);

using tToText = QString (*)(int type, const QByteArray& bytes, valueFormats::TDisplayMode mode);

QString textOf(const tColumn& column, const QByteArray& bytes, tToText toText)
{
    const int type =
        column.field == scanName ? CCANopenObjectEntry::typeVisibleString : CCANopenObjectEntry::typeUnsigned32;
    return toText(type, bytes, valueFormats::modeHex);
}

std::vector<QStringList> rowsOf(const std::vector<tFoundNode>& nodes, const char* first, const char* tColumn::*title,
                                tToText toText)
{
    QStringList header{ QLatin1String(first) };
    for (const tColumn& column : columns)
        header += QLatin1String(column.*title);
    std::vector<QStringList> rows{ header };
    for (const tFoundNode& found : nodes) {
        QStringList& row = rows.emplace_back(QString::number(found.node));
        for (const tColumn& column : columns) {
            const auto& value = found.values[column.field];
            row += value ? textOf(column, *value, toText) : QString();
        }
    }
    return rows;
}

QByteArray json(const std::vector<tFoundNode>& nodes)
{
    QJsonArray array;
    for (const tFoundNode& found : nodes) {
        QJsonObject object{ { QStringLiteral("node"), static_cast<int>(found.node) } };
        for (const tColumn& column : columns) {
            const auto& value = found.values[column.field];
            object.insert(QLatin1String(column.key),
                          value ? QJsonValue(textOf(column, *value, typedValue::exactTextOf)) : QJsonValue());
        }
        array += object;
    }
    return jsonText(QJsonDocument(array));
}

} // namespace

QByteArray scanText(const std::vector<tFoundNode>& nodes, tScanFormat format)
{
    if (format == scanJson)
        return json(nodes);
    if (format == scanTable)
        return nodes.empty() ? QByteArray() : textTable(rowsOf(nodes, "Node", &tColumn::title, typedValue::textOf));
    return csvText(rowsOf(nodes, "node", &tColumn::key, typedValue::textOf));
}
