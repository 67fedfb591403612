// The check of a data sheet: the browser's verdict, and what the rules find.
// SPDX-License-Identifier: MIT
#include "sheets/SheetCheck.h"

#include "sheets/ObjectChecks.h"
#include "sheets/SectionReader.h"

#include "dic/DataSheet.h"

#include <QFile>

#include <algorithm>

namespace
{

QString counted(std::size_t number, const char* noun)
{
    return QStringLiteral("%1 %2%3").arg(QString::number(number), QLatin1StringView(noun),
                                         number == 1 ? QString() : QStringLiteral("s"));
}

// What the browser has loaded. An object without entries has nothing that is listed, read or saved.
QString loadedText(const CCANopen& dictionary)
{
    const auto& objects = dictionary.m_objectArray;
    const auto empty =
        std::ranges::count_if(objects, [](const auto& object) { return object->m_objectEntryArray.empty(); });
    const QString text = QStringLiteral("loads, ") + counted(objects.size(), "object");
    return empty == 0 ? text : text + QStringLiteral(", %1 of them without entries").arg(empty);
}

// Loads the sheet and answers whether it is a configuration. Nothing stays of its dictionary.
bool loadSheet(tCheckResult& result)
{
    CDataSheet sheet;
    const CDataSheet::tResult loaded = sheet.load(result.fileName);
    result.isRead = loaded != CDataSheet::noFile;
    result.isLoaded = loaded == CDataSheet::loaded;
    result.verdict = result.isLoaded ? loadedText(sheet.dictionary()) : sheet.error();
    return sheet.dictionary().m_fileType == CCANopen::typeDCF;
}

// The character set of a file where it is none that the browser reads; else empty. Without a mark, the first character
// of a sheet is one of ASCII.
std::string_view otherCharacters(const QString& fileName, bool& isRead)
{
    QFile file(fileName);
    const QByteArray start = file.open(QIODevice::ReadOnly) ? file.read(4) : QByteArray();
    isRead = file.error() == QFileDevice::NoError;
    if (start == QByteArrayView("\xFF\xFE\0\0", 4) || start == QByteArrayView("\0\0\xFE\xFF", 4))
        return "UTF-32";
    const bool isMarked = start.startsWith("\xFF\xFE") || start.startsWith("\xFE\xFF");
    const bool hasZero = start.size() > 1 && (start[0] == '\0') != (start[1] == '\0');
    return isMarked || hasZero ? "UTF-16" : "";
}

// False when the file cannot be read.
bool readSheet(const QString& fileName, const char* name, tSheetModel& model, CFindings& findings)
{
    bool isRead = false;
    CSectionReader sections(model, findings, otherCharacters(fileName, isRead));
    CSheetLines lines(name);
    tSheetLine line;
    while (lines.next(line))
        sections.take(line);
    sections.finish();
    return isRead && lines.isWhole();
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
    result.isRead = readSheet(fileName, name.constData(), model, findings);
    if (!result.isLoaded && !model.isBroken)
        findings.add(ruleNoObjects, { 1, 0, 0 }, [] {
            return tAdvice{ QStringLiteral("the browser finds no object in the file"), {} };
        });
    if (!model.objects.empty() || !model.entries.empty() || !model.listed.empty()) {
        const CObjectIndex objects(model);
        checkObjects(model, objects, findings);
        checkMappings(model, objects, findings);
    }
    result.findings = findings.take(name.constData(), result.isRead);
    if (!result.isRead) {
        result = tCheckResult();
        result.fileName = fileName;
        result.verdict = unreadText(fileName);
        return result;
    }
    for (const tRuleRow& row : sheetRules())
        result.counts[row.rule] = findings.count(row.rule);
    return result;
}
