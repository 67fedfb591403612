// The entries of a data sheet as a list.
// SPDX-License-Identifier: MIT
#include "sheets/DictionaryList.h"

#include "console/JsonText.h"
#include "dic/DataSheet.h"
#include "sheets/Csv.h"
#include "sheets/EntryText.h"
#include "sheets/SheetFile.h"
#include "sheets/TextTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace
{

QStringList columns()
{
    return QStringLiteral("index,subindex,name,type,access,low,high,default,pdo").split(u',');
}

tListRow rowOf(const CCANopenObject& object, const CCANopenObjectEntry& entry)
{
    return {
        object.getIndex(),
        entry.getSubindex(),
        entry.getName(),
        CCANopenObjectEntry::getDataTypeByIndex(entry.getDataType()),
        CCANopenObjectEntry::getAccessByIndex(entry.getAccess()),
        entry.getLowLimit(),
        entry.getHighLimit(),
        entry.getDefaultValue(),
        entry.getPDOMapping() != CCANopenObjectEntry::mappingNo,
    };
}

bool isChosen(const tListRow& row, const tListChoice& choice)
{
    const auto found = [&choice](const QString& text) { return choice.pattern.match(text).hasMatch(); };
    return found(row.name) || found(indexText(row.index)) || found(entryText(row.index, row.subIndex));
}

bool isInside(unsigned index, const std::vector<tIndexRange>& ranges)
{
    return ranges.empty() ||
           std::any_of(ranges.begin(), ranges.end(), [index](const auto& range) { return range.contains(index); });
}

QStringList fieldsOf(const tListRow& row)
{
    return { indexText(row.index),
             subIndexText(row.subIndex),
             row.name,
             row.type,
             row.access,
             row.low,
             row.high,
             row.defaultValue,
             CCANopenDeviceInfo::getBooleanByValue(row.isMapped) };
}

std::vector<QStringList> withHeader(const std::vector<tListRow>& rows)
{
    std::vector<QStringList> table{ columns() };
    for (const tListRow& row : rows)
        table.push_back(fieldsOf(row));
    return table;
}

} // namespace

void tListChoice::setPattern(const QString& text)
{
    pattern = QRegularExpression(text, QRegularExpression::CaseInsensitiveOption);
    if (!pattern.isValid())
        throw tEnd{
            exitUsage,
            QStringLiteral("--grep: wrong regular expression \"%1\": %2").arg(visibleLine(text), pattern.errorString())
        };
}

void tListChoice::addRange(const QString& text)
{
    const auto range = indexRange(text);
    if (!range)
        throw tEnd{ exitUsage, QStringLiteral("--index: \"%1\" is neither an index such as 1017 nor a range such as "
                                              "1000-1FFF")
                                   .arg(visibleLine(text)) };
    ranges.push_back(*range);
}

std::vector<tListRow> dictionaryList(const CCANopen& dictionary, const tListChoice& choice)
{
    std::vector<tListRow> rows;
    for (const auto& object : dictionary.m_objectArray) {
        if (!isInside(object->getIndex(), choice.ranges))
            continue;
        for (const auto& entry : object->m_objectEntryArray) {
            rows.push_back(rowOf(*object, *entry));
            if (!isChosen(rows.back(), choice))
                rows.pop_back();
        }
    }
    return rows;
}

std::vector<tListRow> dictionaryList(const QString& fileName, const tListChoice& choice)
{
    CDataSheet sheet;
    loadSheet(sheet, fileName);
    return dictionaryList(sheet.dictionary(), choice);
}

QByteArray listAsTable(const std::vector<tListRow>& rows)
{
    return textTable(withHeader(rows));
}

QByteArray listAsCsv(const std::vector<tListRow>& rows)
{
    return csvText(withHeader(rows));
}

QByteArray listAsJson(const std::vector<tListRow>& rows)
{
    QJsonArray list;
    const QStringList names = columns();
    for (const tListRow& row : rows) {
        QJsonObject object;
        const QStringList fields = fieldsOf(row);
        for (qsizetype column = 0; column < names.size(); ++column)
            object[names[column]] = fields[column];
        object[QStringLiteral("subindex")] = static_cast<int>(row.subIndex);
        object[QStringLiteral("pdo")] = row.isMapped;
        list.append(object);
    }
    return jsonText(QJsonDocument(list));
}
