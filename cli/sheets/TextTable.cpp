// A table of text in columns.
// SPDX-License-Identifier: MIT
#include "sheets/TextTable.h"

#include "dic/DataSheet.h"

#include <algorithm>

QByteArray textTable(const std::vector<QStringList>& rows)
{
    std::vector<QStringList> visible;
    std::vector<qsizetype> widths;
    for (const QStringList& row : rows) {
        QStringList& cells = visible.emplace_back();
        widths.resize(std::max(widths.size(), static_cast<std::size_t>(row.size())));
        for (const QString& text : row) {
            const auto column = static_cast<std::size_t>(cells.size());
            cells.append(visibleLine(text));
            widths[column] = std::max(widths[column], cells.back().size());
        }
    }
    QByteArray table;
    for (const QStringList& row : visible) {
        QString line;
        for (qsizetype column = 0; column < row.size(); ++column)
            line += row[column].leftJustified(widths[static_cast<std::size_t>(column)] + 2);
        while (line.endsWith(u' '))
            line.chop(1);
        table += line.toUtf8() + '\n';
    }
    return table;
}
