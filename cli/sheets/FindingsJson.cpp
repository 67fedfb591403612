// The results of checks as JSON.
// SPDX-License-Identifier: MIT
#include "sheets/FindingsText.h"

#include "console/JsonText.h"
#include "sheets/SectionChecks.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace
{

QJsonObject jsonOf(const tFinding& finding)
{
    const tRuleRow& rule = rowOf(finding.rule);
    return {
        { QStringLiteral("line"), finding.place.line }, { QStringLiteral("column"), finding.column },
        { QStringLiteral("length"), finding.length },   { QStringLiteral("severity"), latin(nameOf(rule.severity)) },
        { QStringLiteral("rule"), latin(rule.name) },   { QStringLiteral("text"), finding.advice.text },
        { QStringLiteral("source"), finding.excerpt },  { QStringLiteral("mend"), finding.advice.mend }
    };
}

QJsonObject jsonOf(const tCheckResult& result)
{
    QJsonArray findings;
    for (const tFinding& finding : result.findings)
        findings.append(jsonOf(finding));
    return { { QStringLiteral("file"), result.fileName },
             { QStringLiteral("read"), result.isRead },
             { QStringLiteral("loads"), result.isLoaded },
             { QStringLiteral("verdict"), result.verdict },
             { QStringLiteral("errors"), result.count(severityError) },
             { QStringLiteral("warnings"), result.count(severityWarning) },
             { QStringLiteral("notes"), result.count(severityNote) },
             { QStringLiteral("findings"), findings } };
}

} // namespace

QByteArray findingsJson(std::span<const tCheckResult> results)
{
    QJsonArray files;
    for (const tCheckResult& result : results)
        files.append(jsonOf(result));
    return jsonText(QJsonDocument(files));
}
