// velmora-cli list: what it writes, where, and how it ends.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "SheetFile.h"

#include "dic/DataSheet.h"

#include <QDir>
#include <QTest>

namespace
{

const QString demo = VELMORA_SHARE "/velmora-demo.eds";

} // namespace

class TestCliList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstRowsOfTheDemoSheet();
    void tableIsTheDefault();
    void choiceLimitsTheRows();
    void everySheetHasARowForEachEntry_data();
    void everySheetHasARowForEachEntry();
    void wrongUsageEndsWith2_data();
    void wrongUsageEndsWith2();
    void sheetThatDoesNotLoadEndsWith2();
    void readerThatGoesAwayIsNoError();
    void fullDiskEndsWith2();
    void helpHasAnExample();
};

void TestCliList::firstRowsOfTheDemoSheet()
{
    const tCliRun run = runCli({ "list", demo, "--format", "csv" });
    QCOMPARE(run.status, 0);
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(run.output.split('\n').mid(0, 6).join('\n'),
             QByteArray("index,subindex,name,type,access,low,high,default,pdo\n"
                        "0x1000,0,Device type,Unsigned32,RO,,,0x000F0191,No\n"
                        "0x1001,0,Error register,Unsigned8,RO,,,0,Yes\n"
                        "0x1018,0,Number of entries,Unsigned8,CONST,,,4,No\n"
                        "0x1018,1,Vendor-ID,Unsigned32,RO,,,0x0000F0B5,No\n"
                        "0x1018,2,Product code,Unsigned32,RO,,,0x00000401,No"));
}

void TestCliList::tableIsTheDefault()
{
    const CSheetFile file(sheetOf(0x2000, 5, "rw", "Level", "DefaultValue=7\n"));
    const tCliRun run = runCli({ "list", file.name() });
    QCOMPARE(run.status, 0);
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(run.output, QByteArray("index   subindex  name   type       access  low  high  default  pdo\n"
                                    "0x2000  0         Level  Unsigned8  RW                 7        No\n"));
    QCOMPARE(runCli({ "list", file.name(), "--format=table" }).output, run.output);
}

void TestCliList::choiceLimitsTheRows()
{
    const tCliRun run = runCli({ "list", "--index", "1000,1017", "--index=0x1018-0x1019", "--grep", "VENDOR|^device",
                                 demo, "--format", "json" });
    QCOMPARE(run.status, 0);
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(run.output, QByteArray(R"([
    {
        "access": "RO",
        "default": "0x000F0191",
        "high": "",
        "index": "0x1000",
        "low": "",
        "name": "Device type",
        "pdo": false,
        "subindex": 0,
        "type": "Unsigned32"
    },
    {
        "access": "RO",
        "default": "0x0000F0B5",
        "high": "",
        "index": "0x1018",
        "low": "",
        "name": "Vendor-ID",
        "pdo": false,
        "subindex": 1,
        "type": "Unsigned32"
    }
]
)"));
    const tCliRun none = runCli({ "list", demo, "--grep", "no such entry", "--format", "csv" });
    QCOMPARE(none.status, 0);
    QCOMPARE(none.output, QByteArray("index,subindex,name,type,access,low,high,default,pdo\n"));
}

void TestCliList::everySheetHasARowForEachEntry_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("the shipped sheet") << demo;
    for (const QFileInfo& info : QDir(VELMORA_SAMPLE_SHEETS).entryInfoList({ "*.eds", "*.dcf" }))
        QTest::newRow(qPrintable(info.fileName())) << info.filePath();
}

void TestCliList::everySheetHasARowForEachEntry()
{
    QFETCH(QString, path);
    CDataSheet sheet;
    const bool loads = sheet.load(path) == CDataSheet::loaded;
    qsizetype rows = 1;
    for (const auto& object : sheet.dictionary().m_objectArray)
        rows += qsizetype(object->m_objectEntryArray.size());
    const tCliRun run = runCli({ "list", path, "--format", "csv" });
    QCOMPARE(run.status, loads ? 0 : 2);
    QCOMPARE(run.output.count('\n'), loads ? rows : 0);
    QCOMPARE(run.error, loads ? QByteArray() : ("velmora-cli: " + sheet.error() + '\n').toUtf8());
}

void TestCliList::wrongUsageEndsWith2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("error");
    const QByteArray hint = "\nvelmora-cli: try 'velmora-cli list --help'";
    QTest::newRow("no file") << QStringList{ "list" } << "FILE is required" + hint;
    QTest::newRow("expression") << QStringList{ "list", demo, "--grep", "(" }
                                << QByteArray("--grep: wrong regular expression \"(\": missing closing parenthesis");
    QTest::newRow("range") << QStringList{ "list", demo, "--index", "1000-" }
                           << QByteArray("--index: \"1000-\" is neither an index such as 1017 nor a range such as "
                                         "1000-1FFF");
    QTest::newRow("format") << QStringList{ "list", demo, "--format", "xml" }
                            << "--format: xml not in {table,csv,json}" + hint;
    QTest::newRow("two files") << QStringList{ "list", demo, "b.eds" }
                               << "The following argument was not expected: b.eds" + hint;
    QTest::newRow("no such file") << QStringList{ "list", "/none.eds" } << QByteArray("no such file: /none.eds");
}

void TestCliList::wrongUsageEndsWith2()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, error);
    const tCliRun run = runCli(arguments);
    QCOMPARE(run.error, "velmora-cli: " + error + '\n');
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.status, 2);
}

void TestCliList::sheetThatDoesNotLoadEndsWith2()
{
    const QString path = VELMORA_SAMPLE_SHEETS "/e35.eds";
    if (!QFile::exists(path))
        QSKIP("the sample sheets are not here");
    const tCliRun run = runCli({ "list", path });
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.error,
             "velmora-cli: not a valid data sheet: " + path.toUtf8() +
                 ", line 7251: \"#ParameterValue=0x2\" (a key is NAME=VALUE, the name of letters, digits and "
                 "\"_\" only; a comment begins with \";\")\n");
}

void TestCliList::readerThatGoesAwayIsNoError()
{
    QByteArray text = sheetOf(0x2000, 5);
    for (int copy = 0; copy < 10000; ++copy) // more than a pipe holds
        text += "ObjectType=7\n";
    const CSheetFile file(text);
    const tCliRun run = runCliInShell("{ \"$0\" list \"$1\"; echo $? >&2; } | head -n 1", { file.name() });
    QCOMPARE(run.status, 0);
    QCOMPARE(run.output.left(15), QByteArray("index   subinde"));
    QCOMPARE(run.output.count('\n'), 1);
    QCOMPARE(run.error, QByteArray("0\n"));
}

void TestCliList::fullDiskEndsWith2()
{
    const tCliRun run = runCliInShell("\"$0\" list \"$1\" > /dev/full", { demo });
    QCOMPARE(run.status, 2);
    QCOMPARE(run.error, QByteArray("velmora-cli: cannot write the output: No space left on device\n"));
}

void TestCliList::helpHasAnExample()
{
    for (const char* command : { "list", "diff" }) {
        const tCliRun run = runCli({ command, "--help" });
        QCOMPARE(run.status, 0);
        QCOMPARE(run.error, QByteArray());
        QVERIFY(run.output.contains("Example:\n  velmora-cli " + QByteArray(command) + ' '));
    }
}

QTEST_GUILESS_MAIN(TestCliList)
#include "TestCliList.moc"
