// The results of checks as text for people.
// SPDX-License-Identifier: MIT
#include "sheets/FindingsText.h"

#include "sheets/SectionChecks.h"

#include "dic/DataSheet.h"

namespace
{

QString counted(int number, const char* noun)
{
    return QStringLiteral("%1 %2%3").arg(number).arg(QLatin1StringView(noun),
                                                     number == 1 ? QLatin1StringView() : QLatin1StringView("s"));
}

QString findingText(const QString& file, const tFinding& finding)
{
    const tRuleRow& rule = rowOf(finding.rule);
    const QString indent(4, u' ');
    QString text = QStringLiteral("%1:%2:%3: %4: %5 [%6]\n")
                       .arg(file, QString::number(finding.place.line), QString::number(finding.column),
                            latin(nameOf(rule.severity)), finding.advice.text, latin(rule.name));
    if (!finding.excerpt.isEmpty())
        text += indent + finding.excerpt + u'\n' + indent + QString(finding.caret, u' ') + u'^' +
                QString(finding.caretLength - 1, u'~') + u'\n';
    if (!finding.advice.mend.isEmpty())
        text += indent + QStringLiteral("mend: ") + finding.advice.mend + u'\n';
    return text;
}

// Where there are more findings of a rule than were kept.
QString furtherText(const QString& file, const tCheckResult& result)
{
    QString text;
    for (const tRuleRow& row : sheetRules())
        if (const int more = result.counts[row.rule] - CFindings::mostOfARule; more > 0)
            text += QStringLiteral("%1: %2 more of [%3]\n").arg(file, QString::number(more), latin(row.name));
    return text;
}

} // namespace

QString findingsText(const tCheckResult& result)
{
    const QString file = visibleText(result.fileName);
    QString text = result.isLoaded ? QStringLiteral("%1: %2\n").arg(file, result.verdict) : result.verdict + u'\n';
    for (const tFinding& finding : result.findings)
        text += findingText(file, finding);
    text += furtherText(file, result);
    if (!result.findings.empty())
        text +=
            QStringLiteral("%1: %2, %3, %4\n")
                .arg(file, counted(result.count(severityError), "error"),
                     counted(result.count(severityWarning), "warning"), counted(result.count(severityNote), "note"));
    return text;
}

QString rulesText()
{
    QString text;
    for (const tRuleRow& row : sheetRules())
        text += QStringLiteral("%1 %2 %3\n")
                    .arg(latin(row.name), -20)
                    .arg(latin(nameOf(row.severity)), -8)
                    .arg(latin(row.description));
    return text;
}
