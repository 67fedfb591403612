// The results of checks as SARIF 2.1.0.
// SPDX-License-Identifier: MIT
#include "sheets/FindingsText.h"

#include "console/JsonText.h"
#include "sheets/SectionChecks.h"

#include "base/Product.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

namespace
{

QJsonObject messageOf(const QString& text)
{
    return { { QStringLiteral("text"), text } };
}

QJsonArray rules()
{
    QJsonArray all;
    for (const tRuleRow& row : sheetRules())
        all.append(QJsonObject{ { QStringLiteral("id"), latin(row.name) },
                                { QStringLiteral("shortDescription"), messageOf(latin(row.description)) },
                                { QStringLiteral("defaultConfiguration"),
                                  QJsonObject{ { QStringLiteral("level"), latin(nameOf(row.severity)) } } } });
    return all;
}

// A relative name stays relative to the folder of the run.
QString uriOf(const QString& fileName)
{
    const QUrl url = QFileInfo(fileName).isAbsolute()
                         ? QUrl::fromLocalFile(fileName)
                         : QUrl(QString::fromLatin1(QUrl::toPercentEncoding(fileName, QByteArrayLiteral("/"))));
    return url.toString(QUrl::FullyEncoded);
}

QJsonArray locationOf(const QString& fileName, const tFinding& finding)
{
    const QJsonObject region{ { QStringLiteral("startLine"), finding.place.line },
                              { QStringLiteral("startColumn"), finding.column },
                              { QStringLiteral("endColumn"), finding.column + finding.length } };
    const QJsonObject place{ { QStringLiteral("artifactLocation"),
                               QJsonObject{ { QStringLiteral("uri"), uriOf(fileName) } } },
                             { QStringLiteral("region"), region } };
    return { QJsonObject{ { QStringLiteral("physicalLocation"), place } } };
}

QJsonObject resultOf(const QString& fileName, const tFinding& finding)
{
    const tRuleRow& rule = rowOf(finding.rule);
    const QString& mend = finding.advice.mend;
    const QString text = mend.isEmpty() ? finding.advice.text : finding.advice.text + QStringLiteral("; mend: ") + mend;
    return { { QStringLiteral("ruleId"), latin(rule.name) },
             { QStringLiteral("ruleIndex"), static_cast<int>(rule.rule) },
             { QStringLiteral("level"), latin(nameOf(rule.severity)) },
             { QStringLiteral("message"), messageOf(text) },
             { QStringLiteral("locations"), locationOf(fileName, finding) } };
}

// Files that cannot be read, and verdicts.
QJsonArray notificationsOf(std::span<const tCheckResult> results)
{
    QJsonArray all;
    for (const tCheckResult& result : results)
        if (!result.isLoaded)
            all.append(QJsonObject{ { QStringLiteral("level"), QStringLiteral("error") },
                                    { QStringLiteral("message"), messageOf(result.verdict) } });
    return all;
}

} // namespace

QByteArray findingsSarif(std::span<const tCheckResult> results)
{
    QJsonArray found;
    bool isComplete = true;
    for (const tCheckResult& result : results) {
        isComplete = isComplete && result.isRead;
        for (const tFinding& finding : result.findings)
            found.append(resultOf(result.fileName, finding));
    }
    const QJsonObject driver{ { QStringLiteral("name"), QStringLiteral("velmora-cli") },
                              { QStringLiteral("version"), QString::fromLatin1(product::version) },
                              { QStringLiteral("rules"), rules() } };
    const QJsonObject invocation{ { QStringLiteral("executionSuccessful"), isComplete },
                                  { QStringLiteral("toolExecutionNotifications"), notificationsOf(results) } };
    const QJsonObject run{ { QStringLiteral("tool"), QJsonObject{ { QStringLiteral("driver"), driver } } },
                           { QStringLiteral("columnKind"), QStringLiteral("unicodeCodePoints") },
                           { QStringLiteral("invocations"), QJsonArray{ invocation } },
                           { QStringLiteral("results"), found } };
    const QJsonObject log{ { QStringLiteral("$schema"),
                             QStringLiteral("https://json.schemastore.org/sarif-2.1.0.json") },
                           { QStringLiteral("version"), QStringLiteral("2.1.0") },
                           { QStringLiteral("runs"), QJsonArray{ run } } };
    return jsonText(QJsonDocument(log));
}
