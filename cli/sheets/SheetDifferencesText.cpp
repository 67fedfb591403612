// Differences between two data sheets as text and as JSON.
// SPDX-License-Identifier: MIT
#include "sheets/SheetDifferences.h"

#include "console/JsonText.h"
#include "dic/DataSheet.h"
#include "sheets/EntryText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

QString placeText(const tSheetDifference& difference)
{
    if (!difference.index)
        return QStringLiteral("device");
    if (difference.isVariable || !difference.subIndex)
        return indexText(*difference.index).mid(2);
    return entryText(*difference.index, *difference.subIndex);
}

QString shownText(const tSheetDifference& difference, const QString& text)
{
    if (difference.kind == tSheetDifference::text)
        return u'"' + visibleLine(text) + u'"';
    return text.isEmpty() ? QStringLiteral("none") : visibleLine(text);
}

QJsonValue jsonNumber(const std::optional<unsigned>& number)
{
    return number ? QJsonValue(static_cast<int>(*number)) : QJsonValue();
}

QJsonValue jsonValueOf(const tSheetDifference& difference, const QString& text)
{
    if (difference.kind == tSheetDifference::presence)
        return !text.isNull();
    const bool isNone = difference.kind == tSheetDifference::value && text.isEmpty();
    return isNone ? QJsonValue() : QJsonValue(text);
}

} // namespace

QByteArray differencesAsText(const std::vector<tSheetDifference>& differences, const QString& nameA,
                             const QString& nameB)
{
    QByteArray lines;
    for (const tSheetDifference& difference : differences) {
        const QString what = difference.kind == tSheetDifference::presence
                                 ? QStringLiteral("only in ") + (difference.a.isNull() ? nameB : nameA)
                                 : difference.field + u' ' + shownText(difference, difference.a) +
                                       QStringLiteral(" -> ") + shownText(difference, difference.b);
        lines += (placeText(difference) + QStringLiteral(": ") + what + u'\n').toUtf8();
    }
    return lines;
}

QByteArray differencesAsJson(const std::vector<tSheetDifference>& differences, const QString& nameA,
                             const QString& nameB)
{
    QJsonArray list;
    for (const tSheetDifference& difference : differences)
        list.append(QJsonObject{
            { QStringLiteral("index"), difference.index ? QJsonValue(indexText(*difference.index)) : QJsonValue() },
            { QStringLiteral("subindex"), jsonNumber(difference.subIndex) },
            { QStringLiteral("field"), difference.field },
            { QStringLiteral("a"), jsonValueOf(difference, difference.a) },
            { QStringLiteral("b"), jsonValueOf(difference, difference.b) },
        });
    return jsonText(QJsonDocument(QJsonObject{
        { QStringLiteral("a"), nameA },
        { QStringLiteral("b"), nameB },
        { QStringLiteral("differences"), list },
    }));
}
