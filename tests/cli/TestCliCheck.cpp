// velmora-cli check, the program: output, messages and exit status.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "SheetFile.h"

#include "base/Product.h"
#include "sheets/SheetRules.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

static const char data[] = VELMORA_TEST_DATA "/check";

static const char syntaxText[] =
    R"(not a valid data sheet: syntax.eds, line 68: "#LowLimit=0" (a key is NAME=VALUE, the )"
    R"(name of letters, digits and "_" only; a comment begins with ";"))"
    "\n"
    R"(syntax.eds:68:1: error: a key is NAME=VALUE, the name of letters, digits and "_" )"
    R"(only; a comment begins with ";" [syntax])"
    "\n"
    "    #LowLimit=0\n"
    "    ^\n"
    "    mend: begin a comment with \";\"\n"
    "syntax.eds: 1 error, 0 warnings, 0 notes\n";
static const char limitsText[] = "limits.eds: loads, 4 objects\n"
                                 "limits.eds:66:14: warning: this is 11, above HighLimit, which is 10 [limits]\n"
                                 "    DefaultValue=11\n"
                                 "                 ^~\n"
                                 "limits.eds: 0 errors, 1 warning, 0 notes\n";
static const char cleanText[] = "limits-mended.eds: loads, 4 objects\n";
static const char noteText[] =
    "file-info-order.eds: loads, 4 objects\n"
    "file-info-order.eds:65:2: note: after [DeviceInfo], the browser ignores EDSVersion and Description "
    "[file-info-order]\n"
    "    [FileInfo]\n"
    "     ^~~~~~~~\n"
    "    mend: put [FileInfo] first\n"
    "file-info-order.eds: 0 errors, 0 warnings, 1 note\n";
static const char noFileText[] = "velmora-cli: no such file: none.eds\n";

class TestCliCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputAndStatusAreExact_data();
    void outputAndStatusAreExact();
    void e35StopsAtItsLine();
    void jsonHasTheFindings();
    void jsonOfAFileThatCannotBeReadSaysSo();
    void sarifHasRulesAndResults();
    void sarifOfAFileThatCannotBeReadFailed();
    void rulesAreListed();
    void helpHasAnExample();
};

void TestCliCheck::outputAndStatusAreExact_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");
    QTest::addColumn<int>("status");
    const auto add = [](const char* arguments, const QString& output, const QString& errors, int status) {
        QTest::newRow(arguments) << output << errors << status;
    };
    const QString hint = "velmora-cli: try 'velmora-cli check --help'\n";
    add("limits-mended.eds", cleanText, "", 0);
    add("limits.eds", limitsText, "", 0);
    add("--werror limits.eds", limitsText, "", 1);
    add("--werror file-info-order.eds", noteText, "", 0);
    add("syntax.eds", syntaxText, "", 1);
    add("syntax.eds limits.eds", QString(syntaxText) + limitsText, "", 1);
    add("none.eds", "", noFileText, 2);
    add("none.eds syntax.eds", syntaxText, noFileText, 2);
    add("syntax.eds none.eds limits-mended.eds", QString(syntaxText) + cleanText, noFileText, 2);
    add(".", "", "velmora-cli: not a file: .\n", 2);
    add("--werror --disable limits limits.eds", "limits.eds: loads, 4 objects\n", "", 0);
    add("--werror --disable limits,count limits.eds", "limits.eds: loads, 4 objects\n", "", 0);
    add("--werror --disable count --disable limits limits.eds", "limits.eds: loads, 4 objects\n", "", 0);
    add("--werror --only count limits.eds", "limits.eds: loads, 4 objects\n", "", 0);
    add("--werror --only limits limits.eds", limitsText, "", 1);
    add("--disable syntax syntax.eds", QString(syntaxText).section('\n', 0, 0) + '\n', "", 1);
    add("--disable nonsense limits.eds", "", "velmora-cli: no such rule: nonsense; --rules lists them\n", 2);
    add("--only nonsense limits.eds", "", "velmora-cli: no such rule: nonsense; --rules lists them\n", 2);
    add("", "", "velmora-cli: no FILE to check; try 'velmora-cli check --help'\n", 2);
    add("--format xml limits.eds", "", "velmora-cli: --format: xml not in {text,json,sarif}\n" + hint, 2);
    add("--nonsense limits.eds", "", "velmora-cli: The following argument was not expected: --nonsense\n" + hint, 2);
}

void TestCliCheck::outputAndStatusAreExact()
{
    const QStringList arguments = QString(QTest::currentDataTag()).split(' ', Qt::SkipEmptyParts);
    const tCliRun run = runCli(QStringList("check") + arguments, data);
    QTEST(QString::fromUtf8(run.output), "output");
    QTEST(QString::fromUtf8(run.error), "errors");
    QTEST(run.status, "status");
}

void TestCliCheck::e35StopsAtItsLine()
{
    if (!QFile::exists(VELMORA_SAMPLE_SHEETS "/e35.eds"))
        QSKIP("the sample sheets are not here");
    const tCliRun run = runCli({ "check", "e35.eds" }, VELMORA_SAMPLE_SHEETS);
    QCOMPARE(QString::fromUtf8(run.output).section('\n', 0, 0),
             "not a valid data sheet: e35.eds, line 7251: \"#ParameterValue=0x2\" (a key is NAME=VALUE, the name of "
             "letters, digits and \"_\" only; a comment begins with \";\")");
    QCOMPARE(run.status, 1);
}

void TestCliCheck::jsonHasTheFindings()
{
    const tCliRun run = runCli({ "check", "--format", "json", "limits.eds", "limits-mended.eds" }, data);
    QCOMPARE(run.error, "");
    QCOMPARE(run.status, 0);
    const QJsonObject finding{ { "line", 66 },
                               { "column", 14 },
                               { "length", 2 },
                               { "severity", "warning" },
                               { "rule", "limits" },
                               { "text", "this is 11, above HighLimit, which is 10" },
                               { "source", "DefaultValue=11" },
                               { "mend", "" } };
    const QJsonObject first{ { "file", "limits.eds" }, { "read", true },
                             { "loads", true },        { "verdict", "loads, 4 objects" },
                             { "errors", 0 },          { "warnings", 1 },
                             { "notes", 0 },           { "findings", QJsonArray{ finding } } };
    const QJsonObject second{ { "file", "limits-mended.eds" },
                              { "read", true },
                              { "loads", true },
                              { "verdict", "loads, 4 objects" },
                              { "errors", 0 },
                              { "warnings", 0 },
                              { "notes", 0 },
                              { "findings", QJsonArray() } };
    QCOMPARE(QJsonDocument::fromJson(run.output), QJsonDocument(QJsonArray{ first, second }));
}

void TestCliCheck::jsonOfAFileThatCannotBeReadSaysSo()
{
    const tCliRun run = runCli({ "check", "--format", "json", "none.eds", "limits-mended.eds" }, data);
    QCOMPARE(run.error, noFileText);
    QCOMPARE(run.status, 2);
    const QJsonArray files = QJsonDocument::fromJson(run.output).array();
    QCOMPARE(files.size(), 2);
    QCOMPARE(files[0].toObject()["read"], QJsonValue(false));
    QCOMPARE(files[0].toObject()["verdict"], QJsonValue("no such file: none.eds"));
    QCOMPARE(files[1].toObject()["loads"], QJsonValue(true));
}

void TestCliCheck::sarifHasRulesAndResults()
{
    const tCliRun run = runCli({ "check", "--format", "sarif", "syntax.eds" }, data);
    QCOMPARE(run.error, "");
    QCOMPARE(run.status, 1);
    const QJsonObject log = QJsonDocument::fromJson(run.output).object();
    QCOMPARE(log["version"], QJsonValue("2.1.0"));
    const QJsonObject first = log["runs"].toArray()[0].toObject();
    const QJsonObject driver = first["tool"].toObject()["driver"].toObject();
    QCOMPARE(driver["name"], QJsonValue("velmora-cli"));
    QCOMPARE(driver["version"], QJsonValue(product::version));
    QCOMPARE(driver["rules"].toArray().size(), qsizetype(sheetRules().size()));
    QCOMPARE(first["columnKind"], QJsonValue("unicodeCodePoints"));
    const QJsonObject region{ { "startLine", 68 }, { "startColumn", 1 }, { "endColumn", 2 } };
    const QJsonObject place{ { "artifactLocation", QJsonObject{ { "uri", "syntax.eds" } } }, { "region", region } };
    const QJsonObject result{
        { "ruleId", "syntax" },
        { "ruleIndex", 0 },
        { "level", "error" },
        { "message",
          QJsonObject{ { "text", "a key is NAME=VALUE, the name of letters, digits and \"_\" only; a comment "
                                 "begins with \";\"; mend: begin a comment with \";\"" } } },
        { "locations", QJsonArray{ QJsonObject{ { "physicalLocation", place } } } }
    };
    QCOMPARE(first["results"].toArray(), QJsonArray{ result });
    QCOMPARE(first["invocations"].toArray()[0].toObject()["executionSuccessful"], QJsonValue(true));
}

void TestCliCheck::sarifOfAFileThatCannotBeReadFailed()
{
    const tCliRun run = runCli({ "check", "--format", "sarif", "none.eds" }, data);
    QCOMPARE(run.error, noFileText);
    QCOMPARE(run.status, 2);
    const QJsonObject log = QJsonDocument::fromJson(run.output).object();
    const QJsonObject first = log["runs"].toArray()[0].toObject();
    QCOMPARE(first["results"].toArray(), QJsonArray());
    const QJsonObject invocation = first["invocations"].toArray()[0].toObject();
    QCOMPARE(invocation["executionSuccessful"], QJsonValue(false));
    QCOMPARE(invocation["toolExecutionNotifications"].toArray()[0].toObject()["message"].toObject()["text"],
             QJsonValue("no such file: none.eds"));
}

void TestCliCheck::rulesAreListed()
{
    const tCliRun run = runCli({ "check", "--rules" });
    QCOMPARE(run.status, 0);
    QStringList lines = QString::fromUtf8(run.output).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), qsizetype(sheetRules().size()));
    QCOMPARE(lines.first(),
             "syntax               error    a line that is no section, key or comment stops the browser");
}

void TestCliCheck::helpHasAnExample()
{
    const tCliRun run = runCli({ "check", "--help" });
    QCOMPARE(run.status, 0);
    QVERIFY(run.output.contains("Example:\n  velmora-cli check "));
    QCOMPARE(run.error, "");
}

QTEST_APPLESS_MAIN(TestCliCheck)
#include "TestCliCheck.moc"
