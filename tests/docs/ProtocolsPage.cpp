// The examples of docs/protocols.md, read from its code blocks and tables.
// SPDX-License-Identifier: MIT
#include "ProtocolsPage.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>

namespace
{

constexpr int headLines = 2; // of a table

// The code in a table's cell or in a sentence, span by span.
QStringList codeOf(const QString& text)
{
    static const QRegularExpression span("`([^`]*)`");
    QStringList code;
    for (auto match = span.globalMatch(text); match.hasNext();)
        code += match.next().captured(1);
    return code;
}

// The code of a cell, whose lines are separated by <br>; the last one may be empty.
QString cellText(const QString& cell)
{
    QStringList lines;
    for (const QString& part : cell.split("<br>"))
        lines += codeOf(part).join(QString());
    return lines.join("\r\n");
}

QStringList cellsOf(const QString& row)
{
    QStringList cells = row.split(" |");
    cells.removeLast();
    for (QString& cell : cells)
        cell = cell.mid(cell.startsWith('|') ? 1 : 0).trimmed();
    return cells;
}

tPageStep blockStep(const QString& row, int line)
{
    static const struct {
        const char* mark;
        tPageStep::TKind kind;
    } marks[] = { { "  > ", tPageStep::Sent },
                  { "  < ", tPageStep::Came },
                  { "  .. ", tPageStep::Pause },
                  { "  = ", tPageStep::Result } };
    const auto explained = [](const QString& text) { return text.section("   ", 0, 0); };
    for (const auto& [mark, kind] : marks)
        if (row.startsWith(mark))
            return { kind, explained(row.mid(qsizetype(std::strlen(mark)))), line };
    return { tPageStep::Call, explained(row), line };
}

class CPage
{
public:
    explicit CPage(const QStringList& rows) : m_rows(rows) {}

    QList<tPageExample> read()
    {
        while (m_at < m_rows.size()) {
            const QString& row = m_rows[m_at];
            if (row == "```can" || row == "```gateway")
                readBlock();
            else if (row.startsWith('|') && cellsOf(row).contains("Result"))
                readTable();
            else
                ++m_at;
        }
        return m_examples;
    }

private:
    void add(const tPageExample& example)
    {
        if (!example.steps.isEmpty())
            m_examples += example;
    }

    void readBlock()
    {
        tPageExample example;
        for (++m_at; m_at < m_rows.size() && m_rows[m_at] != "```"; ++m_at) {
            if (m_rows[m_at].isEmpty())
                add(std::exchange(example, {}));
            else
                example.steps += blockStep(m_rows[m_at], m_at + 1);
        }
        add(example);
        ++m_at;
    }

    void readTable()
    {
        const QStringList columns = cellsOf(m_rows[m_at]);
        const QStringList above = codeOf(m_rows.value(m_at - 2));
        tPageExample example;
        for (m_at += headLines; m_at < m_rows.size() && m_rows[m_at].startsWith('|'); ++m_at) {
            const QStringList cells = cellsOf(m_rows[m_at]);
            const auto take = [&](tPageStep::TKind kind, const char* column, const QString& otherwise = {}) {
                const qsizetype place = columns.indexOf(column);
                const QString cell = place >= 0 ? cells.value(place) : QString();
                if (!cell.isEmpty() || !otherwise.isEmpty())
                    example.steps += { kind, cell.isEmpty() ? otherwise : cellText(cell), m_at + 1 };
            };
            const bool called = columns.contains("Call");
            take(tPageStep::Call, "Call", called ? QString() : above.value(0));
            take(tPageStep::Sent, "Sent", called ? QString() : above.value(1));
            take(tPageStep::Came, "Answer");
            take(tPageStep::Sent, "Our abort");
            take(tPageStep::Result, "Result");
        }
        add(example);
    }

    QStringList m_rows;
    int m_at = 0;
    QList<tPageExample> m_examples;
};

} // namespace

bool tPageExample::ofGateway() const
{
    return std::any_of(steps.begin(), steps.end(), [](const tPageStep& step) {
        return step.kind == tPageStep::Call && step.text.startsWith("top_");
    });
}

QList<tPageExample> readProtocolsPage(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return CPage(QString::fromUtf8(file.readAll()).split('\n')).read();
}
