// JSON of every kind: names with control characters that JSON allows reach no terminal as such, and are read as they
// were.
// SPDX-License-Identifier: MIT
#include "SheetFile.h"

#include "console/Console.h"
#include "network/Compare.h"
#include "sheets/DictionaryList.h"
#include "sheets/FindingsText.h"
#include "sheets/SheetDifferences.h"
#include "sheets/SnapshotText.h"

#include <QJsonDocument>
#include <QTest>

namespace
{

constexpr char nameInFile[] = "clear \xC2\x9B"
                              "2J\x7F";

QByteArray sheet(const char* value)
{
    return sheetOf(0x2000, 5, "rw", nameInFile, QByteArray("DefaultValue=") + value + '\n');
}

const CSheetFile one(sheet("1"), QString::fromUtf8(nameInFile) + ".eds");
const CSheetFile two(sheet("2"));

QByteArray listed()
{
    return listAsJson(dictionaryList(one.name(), tListChoice()));
}

QByteArray dumped()
{
    return snapshotAsJson(loadSnapshot(one.name()));
}

QByteArray checked()
{
    const tCheckResult results[] = { checkSheet(one.name(), tRuleSet().set()) };
    return findingsJson(results);
}

QByteArray checkedAsSarif()
{
    const CSheetFile unreadable("x", QString::fromUtf8(nameInFile) + ".eds");
    tCheckResult results[] = { checkSheet(unreadable.name(), tRuleSet().set()) };
    results[0].verdict = QString::fromUtf8(nameInFile); // which is visible otherwise
    return findingsSarif(results);
}

QByteArray differences()
{
    return differencesAsJson(sheetDifferences(one.name(), two.name()), one.name(), two.name());
}

QByteArray compared()
{
    FILE* const file = std::tmpfile();
    {
        CConsole console(file, file);
        tCompareOptions options;
        options.files = QStringList{ one.name(), two.name() };
        options.format = compareJson;
        compare(options, console);
    }
    std::rewind(file);
    QByteArray text(4096, '\0');
    text.resize(qsizetype(std::fread(text.data(), 1, std::size_t(text.size()), file)));
    std::fclose(file);
    return text;
}

} // namespace

class TestJsonOutputs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void controlCharactersAreEscaped_data();
    void controlCharactersAreEscaped();
};

void TestJsonOutputs::controlCharactersAreEscaped_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("list") << listed();
    QTest::newRow("dump") << dumped();
    QTest::newRow("check") << checked();
    QTest::newRow("check as SARIF") << checkedAsSarif();
    QTest::newRow("diff") << differences();
    QTest::newRow("compare") << compared();
}

void TestJsonOutputs::controlCharactersAreEscaped()
{
    QFETCH(const QByteArray, text);
    QVERIFY(!text.contains('\x7F') && !text.contains("\xC2\x9B"));
    QVERIFY2(QJsonDocument::fromJson(text).toJson().contains(nameInFile), text.constData());
}

QTEST_APPLESS_MAIN(TestJsonOutputs)
#include "TestJsonOutputs.moc"
