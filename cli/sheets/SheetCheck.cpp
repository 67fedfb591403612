// The check of a data sheet: the browser's verdict, and what the rules find.
// SPDX-License-Identifier: MIT
#include "sheets/SheetCheck.h"

#include "sheets/ObjectChecks.h"
#include "sheets/SectionReader.h"

#include "dic/DataSheet.h"

#include <QFile>

namespace
{

// Loads the sheet and answers whether it is a configuration. Nothing stays of its dictionary.
bool loadSheet(tCheckResult& result)
{
    CDataSheet sheet;
    const CDataSheet::tResult loaded = sheet.load(result.fileName);
    result.isRead = loaded != CDataSheet::noFile;
    result.isLoaded = loaded == CDataSheet::loaded;
    const auto objects = sheet.dictionary().m_objectArray.size();
    result.verdict =
        result.isLoaded
            ? QStringLiteral("loads, %1 object%2").arg(objects).arg(objects == 1 ? QString() : QStringLiteral("s"))
            : sheet.error();
    return sheet.dictionary().m_fileType == CCANopen::typeDCF;
}

void readSheet(const char* fileName, tSheetModel& model, CFindings& findings)
{
    CSectionReader sections(model, findings);
    CSheetLines lines(fileName);
    tSheetLine line;
    while (lines.next(line))
        sections.take(line);
    sections.finish();
}

} // namespace

int tCheckResult::count(tSeverity severity) const
{
    int sum = 0;
    for (const tRuleRow& row : sheetRules())
        sum += row.severity == severity ? counts[row.rule] : 0;
    return sum;
}

tCheckResult checkSheet(const QString& fileName, const tRuleSet& rules)
{
    tCheckResult result;
    result.fileName = fileName;
    tSheetModel model;
    model.isDcf = loadSheet(result);
    if (!result.isRead)
        return result;
    const QByteArray name = QFile::encodeName(fileName);
    CFindings findings(rules);
    readSheet(name.constData(), model, findings);
    if (!result.isLoaded && !model.isBroken)
        findings.add(ruleNoObjects, { 1, 0, 0 }, [] {
            return tAdvice{ QStringLiteral("the browser finds no object in the file"), {} };
        });
    if (!model.objects.empty() || !model.entries.empty() || !model.listed.empty()) {
        const CObjectIndex objects(model);
        checkObjects(model, objects, findings);
        checkMappings(model, objects, findings);
    }
    result.findings = findings.take(name.constData());
    for (const tRuleRow& row : sheetRules())
        result.counts[row.rule] = findings.count(row.rule);
    return result;
}
