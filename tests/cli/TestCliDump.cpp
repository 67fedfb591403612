// velmora-cli dump, against simulated and scripted devices.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "ScriptedDevice.h"
#include "SheetFile.h"
#include "SimulatorProcess.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace
{

const QString demoSheet = VELMORA_SHARE "/velmora-demo.eds";

// A number, a text with a default, a write-only entry, an octet string, and a COB-ID.
QByteArray smallSheet()
{
    const auto section = [](const char* index, const char* type, const char* access, const char* more = "") {
        return QByteArray("[") + index + "]\r\nParameterName=Entry " + index + "\r\nObjectType=7\r\nDataType=" + type +
               "\r\nAccessType=" + access + "\r\n" + more + "\r\n";
    };
    return "[ManufacturerObjects]\r\nSupportedObjects=5\r\n1=0x2000\r\n2=0x2001\r\n3=0x2002\r\n4=0x2003\r\n5=0x2004\r\n"
           "\r\n" +
           section("2000", "6", "rw") + section("2001", "9", "rw", "DefaultValue=none\r\n") +
           section("2002", "5", "wo") + section("2003", "10", "ro") +
           section("2004", "7", "rw", "DefaultValue=$NODEID+0x180\r\n");
}

QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(not there)");
}

const QByteArray smallCsv = "index,subindex,name,type,access,size,value,abort\n"
                            "0x2000,0,Entry 2000,Unsigned16,RW,2,0x03E8,\n"
                            "0x2001,0,Entry 2001,Visible String,RW,2,ab,\n"
                            "0x2002,0,Entry 2002,Unsigned8,WO,,,\n"
                            "0x2003,0,Entry 2003,Octet String,RO,2,01 FF,\n"
                            "0x2004,0,Entry 2004,Unsigned32,RW,4,$NODEID+0x00000180,\n";

} // namespace

class TestCliDump : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void formatIsThatOfTheOptionOrTheEnding_data();
    void formatIsThatOfTheOptionOrTheEnding();
    void tableIsWrittenToStandardOutput();
    void csvTellsEachEntryOfTheSheet();
    void jsonTellsTheSame();
    void dcfIsTheSheetWithTheValues();
    void abortsAreListedAndAllElseIsSaved();
    void withoutAnAnswerNothingIsSaved();
    void fileThatCannotBeWrittenIsLeftAsItWas();
    void fileIsReplacedAsAWhole();
    void pipeIsWrittenAndNotReplaced();
    void valueOfAnotherSizeIsToldAndSavedAsOctets();
    void valueThatADcfCannotHoldIsTold();
    void emptyTextIsToldOnlyWhereTheSheetHasAnother();
    void wrongAnswersAreNoValues_data();
    void wrongAnswersAreNoValues();
    void interruptSaysWhatWasRead();
    void wrongUsageEndsWith2_data();
    void wrongUsageEndsWith2();

private:
    QStringList dump(const QString& interface, const QString& sheet, const QStringList& more = {}) const
    {
        return QStringList{ "dump", "-i", interface, "-n", "5", "-s", sheet } + more;
    }
    QString path(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<CScriptedDevice> m_device;
    const CSheetFile m_sheet{ smallSheet(), "small.eds" };
};

void TestCliDump::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_device = std::make_unique<CScriptedDevice>();
    m_device->set(0x2000, 0, "E803");
    m_device->set(0x2001, 0, "6162");
    m_device->set(0x2003, 0, "01FF");
    m_device->set(0x2004, 0, "85010000");
}

void TestCliDump::formatIsThatOfTheOptionOrTheEnding_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("begin");
    const QByteArray table = "index   subindex", csv = "index,subindex,", json = "{\n", dcf = "[ManufacturerObjects]";
    QTest::newRow("csv") << QStringList() << csv;
    QTest::newRow("CSV") << QStringList() << csv;
    QTest::newRow("json") << QStringList() << json;
    QTest::newRow("dcf") << QStringList() << dcf;
    QTest::newRow("Dcf") << QStringList() << dcf;
    QTest::newRow("txt") << QStringList() << table;
    for (const auto& [format, begin] : { std::pair("table", table), { "csv", csv }, { "json", json }, { "dcf", dcf } })
        QTest::addRow("dcf --format %s", format) << QStringList{ "--format", format } << begin;
}

void TestCliDump::formatIsThatOfTheOptionOrTheEnding()
{
    QFETCH(const QStringList, options);
    QFETCH(const QByteArray, begin);
    const QString file = path("saved." + QString(QTest::currentDataTag()).section(' ', 0, 0));
    CCliRun run(dump(m_device->interface(), m_sheet.name(), QStringList{ "-o", file } + options));
    QCOMPARE(run.outcome(), "-- 0\n");
    QCOMPARE(contentOf(file).left(begin.size()), begin);
}

void TestCliDump::tableIsWrittenToStandardOutput()
{
    CCliRun run(dump(m_device->interface(), m_sheet.name()));
    QCOMPARE(run.outcome(), "index   subindex  name        type            access  size  value               abort\n"
                            "0x2000  0         Entry 2000  Unsigned16      RW      2     0x03E8\n"
                            "0x2001  0         Entry 2001  Visible String  RW      2     ab\n"
                            "0x2002  0         Entry 2002  Unsigned8       WO\n"
                            "0x2003  0         Entry 2003  Octet String    RO      2     01 FF\n"
                            "0x2004  0         Entry 2004  Unsigned32      RW      4     $NODEID+0x00000180\n"
                            "-- 0\n");
    QCOMPARE(m_device->steps(), QStringList()); // it only reads
}

void TestCliDump::csvTellsEachEntryOfTheSheet()
{
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "--format", "csv" }));
    QCOMPARE(run.outcome(), smallCsv + "-- 0\n");
}

void TestCliDump::jsonTellsTheSame()
{
    m_device->set(0x2004, 0, "85020000");
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.json") }));
    QCOMPARE(run.outcome(), "-- 0\n");
    const QJsonObject saved = QJsonDocument::fromJson(contentOf(path("saved.json"))).object();
    QCOMPARE(saved["nodeId"].toInt(), 5);
    const QJsonArray entries = saved["entries"].toArray();
    QCOMPARE(entries.size(), 5);
    const QJsonObject last{
        { "index", "0x2004" }, { "subindex", 0 }, { "name", "Entry 2004" },          { "type", "Unsigned32" },
        { "access", "RW" },    { "size", 4 },     { "value", "$NODEID+0x00000280" }, { "abort", QJsonValue() }
    };
    QCOMPARE(entries.last().toObject(), last);
    QCOMPARE(entries[2].toObject()["value"], QJsonValue());
}

void TestCliDump::dcfIsTheSheetWithTheValues()
{
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(run.outcome(), "-- 0\n");
    QByteArray expected = smallSheet();
    expected.replace("AccessType=rw\r\n\r\n[2001]", "AccessType=rw\r\nParameterValue=0x03E8\r\n\r\n[2001]");
    expected.replace("DefaultValue=none\r\n", "DefaultValue=none\r\nParameterValue=ab\r\n");
    expected.replace("AccessType=ro\r\n", "AccessType=ro\r\nParameterValue=01 FF\r\n");
    expected.replace("+0x180\r\n", "+0x180\r\nParameterValue=$NODEID+0x00000180\r\n");
    QCOMPARE(contentOf(path("saved.dcf")), expected + "\r\n[DeviceComissioning]\r\nNodeID=5\r\n"); // sic
}

void TestCliDump::abortsAreListedAndAllElseIsSaved()
{
    const CSimulatorProcess simulator(
        { "--node", "6=" + m_sheet.name(), "--fault", "abort=0x06010001@2000", "--fault", "abort=0x05040000@2003" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    QStringList arguments = dump(simulator.interface(), m_sheet.name(), { "-o", path("saved.csv") });
    arguments[4] = "6";
    CCliRun run(arguments);
    QCOMPARE(run.outcome(), "-- 4\n"
                            "2000: aborted by the device: 0x06010001 (Attempt to read a write only object.)\n"
                            "2003: aborted by the device: 0x05040000 (SDO protocol timed out.)\n");
    QCOMPARE(contentOf(path("saved.csv")), "index,subindex,name,type,access,size,value,abort\n"
                                           "0x2000,0,Entry 2000,Unsigned16,RW,,,0x06010001\n"
                                           "0x2001,0,Entry 2001,Visible String,RW,4,none,\n"
                                           "0x2002,0,Entry 2002,Unsigned8,WO,,,\n"
                                           "0x2003,0,Entry 2003,Octet String,RO,,,0x05040000\n"
                                           "0x2004,0,Entry 2004,Unsigned32,RW,4,$NODEID+0x00000180,\n");
}

void TestCliDump::withoutAnAnswerNothingIsSaved()
{
    const CSimulatorProcess simulator({ "--fault", "silence@1001" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    CCliRun run(dump(simulator.interface(), demoSheet, { "-o", path("saved.csv"), "--gateway-timeout", "500" }));
    const QString entries = run.outcome().section(" of ", 1, 1).section(' ', 0, 0);
    QVERIFY(entries.toInt() > 100);
    QCOMPARE(run.outcome(),
             "-- 3\n1001: the gateway does not answer; 1 of " + entries + " entries were read; nothing was saved\n");
    QVERIFY(!QFileInfo::exists(path("saved.csv")));

    // A node that is not there.
    QStringList absent = dump(simulator.interface(), m_sheet.name(), { "-o", path("saved.csv") });
    absent[4] = "9";
    CCliRun second(absent);
    QCOMPARE(second.outcome(), "-- 3\n2000: the gateway answers error 103 (no answer of the device in time); "
                               "0 of 4 entries were read; nothing was saved\n");
    QVERIFY(!QFileInfo::exists(path("saved.csv")));
}

void TestCliDump::fileThatCannotBeWrittenIsLeftAsItWas()
{
    CCliRun nowhere(dump(m_device->interface(), m_sheet.name(), { "-o", path("no/folder.csv") }));
    QCOMPARE(nowhere.outcome(), "-- 2\ncannot write " + path("no/folder.csv") + ": No such file or directory\n");

    QVERIFY(QDir(m_folder->path()).mkdir("saved.csv"));
    CCliRun folder(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(folder.outcome(), "-- 2\ncannot write " + path("saved.csv") + ": Filename refers to a directory\n");

    // A file that may not grow, as on a full disk.
    const CSheetFile old("old", "saved.csv");
    QProcess run;
    run.start("bash", QStringList{ "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "bash", VELMORA_CLI } +
                          dump(m_device->interface(), m_sheet.name(), { "-o", old.name() }));
    QVERIFY(run.waitForFinished(patience));
    QCOMPARE(run.exitCode(), 2);
    QCOMPARE(run.readAllStandardOutput(), QByteArray());
    QCOMPARE(QString::fromUtf8(run.readAllStandardError()),
             "velmora-cli: cannot write " + old.name() + ": File too large\n");
    QCOMPARE(contentOf(old.name()), "old");
    QCOMPARE(QDir(QFileInfo(old.name()).path()).entryList(QDir::Files | QDir::Hidden), QStringList("saved.csv"));
}

void TestCliDump::fileIsReplacedAsAWhole()
{
    const CSheetFile old(QByteArray(100000, 'x'), "saved.csv");
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", old.name() }));
    QCOMPARE(run.outcome(), "-- 0\n");
    QCOMPARE(contentOf(old.name()), smallCsv);
    QCOMPARE(QDir(QFileInfo(old.name()).path()).entryList(QDir::Files | QDir::Hidden), QStringList("saved.csv"));
}

void TestCliDump::pipeIsWrittenAndNotReplaced()
{
    const QString pipe = path("pipe.csv");
    QCOMPARE(QProcess::execute("mkfifo", { pipe }), 0);
    QProcess reader;
    reader.start("cat", { pipe });
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", pipe }));
    QCOMPARE(run.outcome(), "-- 0\n");
    QVERIFY(QFileInfo::exists(pipe) && !QFileInfo(pipe).isFile());
    QVERIFY(reader.waitForFinished(patience));
    QCOMPARE(reader.readAllStandardOutput(), smallCsv);
}

void TestCliDump::valueOfAnotherSizeIsToldAndSavedAsOctets()
{
    m_device->set(0x2000, 0, "E8030000");
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(run.outcome(), "-- 1\n2000: warning: the device has 4 bytes, which is no Unsigned16\n");
    QByteArray expected = smallCsv;
    QCOMPARE(contentOf(path("saved.csv")), expected.replace(",2,0x03E8,", ",4,E8 03 00 00,"));
}

void TestCliDump::valueThatADcfCannotHoldIsTold()
{
    m_device->set(0x2000, 0, "E80300");
    m_device->set(0x2001, 0, "613B62"); // a;b
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(run.outcome(), "-- 1\n"
                            "2000: warning: the device has 3 bytes, which is no Unsigned16\n"
                            "2000: a DCF cannot hold its value; CSV and JSON can\n"
                            "2001: a DCF cannot hold its value; CSV and JSON can\n");
    QCOMPARE(contentOf(path("saved.dcf")).count("ParameterValue"), 2);
    CCliRun csv(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(csv.status(), 1);
    QVERIFY(contentOf(path("saved.csv")).contains("Visible String,RW,3,a;b,"));
}

void TestCliDump::emptyTextIsToldOnlyWhereTheSheetHasAnother()
{
    m_device->set(0x2003, 0, "");
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(run.outcome(), "-- 0\n");
    m_device->set(0x2001, 0, "");
    CCliRun second(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(second.outcome(), "-- 1\n2001: a DCF cannot hold its value; CSV and JSON can\n");
}

void TestCliDump::wrongAnswersAreNoValues_data()
{
    QTest::addColumn<QString>("message");
    const QString end = "; 0 of 4 entries were read; nothing was saved";
    QTest::newRow("drop") << "the gateway has closed the connection" + end;
    QTest::newRow("sequence") << "the gateway does not answer" + end;
    QTest::newRow("overlong") << "the answer of the gateway is cut";
    QTest::newRow("error=101") << "the gateway answers error 101 (it does not understand the command)";
}

void TestCliDump::wrongAnswersAreNoValues()
{
    QFETCH(const QString, message);
    const QString fault = QTest::currentDataTag();
    const CSimulatorProcess simulator({ "--node", "6=" + m_sheet.name(), "--fault", fault + "@2000" });
    QVERIFY2(simulator.port() != 0, simulator.log());
    QStringList arguments =
        dump(simulator.interface(), m_sheet.name(), { "-o", path("saved.csv"), "--gateway-timeout", "500" });
    arguments[4] = "6";
    CCliRun run(arguments);
    QCOMPARE(run.outcome(), "-- 3\n2000: " + message + '\n');
    const bool saved = contentOf(path("saved.csv")).contains("\n0x2000,0,Entry 2000,Unsigned16,RW,,,\n0x2001");
    QCOMPARE(saved, !message.endsWith("saved"));
}

void TestCliDump::interruptSaysWhatWasRead()
{
    std::atomic<bool> silent = false;
    m_device->setHook([&silent](const QString& step) {
        if (step != "read 2003")
            return std::optional<QByteArray>();
        silent = true;
        return std::optional(QByteArray());
    });
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    AWAIT_VERIFY(silent.load());
    run.interrupt();
    QCOMPARE(run.outcome(), "-- 130\ninterrupted; 2 of 4 entries were read; nothing was saved\n");
    QVERIFY(!QFileInfo::exists(path("saved.csv")));
}

void TestCliDump::wrongUsageEndsWith2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("no node") << QStringList{ "dump", "-i", "x", "-s", "y" } << "--node is required";
    QTest::newRow("node 0") << QStringList{ "dump", "-i", "x", "-s", "y", "-n", "0" }
                            << "--node: expected a number from 1 to 127, not 0";
    QTest::newRow("node 128") << QStringList{ "dump", "-i", "x", "-s", "y", "-n", "128" }
                              << "--node: expected a number from 1 to 127, not 128";
    QTest::newRow("no sheet") << QStringList{ "dump", "-i", "x", "-n", "5" } << "--sheet is required";
    QTest::newRow("no interface") << QStringList{ "dump", "-s", "x", "-n", "5" } << "--interface is required";
    QTest::newRow("format") << QStringList{ "dump", "-i", "x", "-s", "y", "-n", "5", "--format", "xml" }
                            << "--format: xml not in {csv,dcf,json,table}";
}

void TestCliDump::wrongUsageEndsWith2()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, message);
    CCliRun run(arguments);
    QCOMPARE(run.outcome(), "-- 2\n" + message + "\ntry 'velmora-cli dump --help'\n");
}

QTEST_GUILESS_MAIN(TestCliDump)
#include "TestCliDump.moc"
