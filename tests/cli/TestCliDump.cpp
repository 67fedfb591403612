// velmora-cli dump, against simulated and scripted devices.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "SheetFile.h"
#include "SimulatorProcess.h"
#include "SmallDevice.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

namespace
{

const QString demoSheet = VELMORA_SHARE "/velmora-demo.eds";

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
    void valueOfAnotherSizeIsToldAndSavedAsOctets();
    void manyEntriesWithoutAValueAreNamedInPart();
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
    setValues(*m_device);
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
    QTest::newRow("txt --format csv") << QStringList{ "--format", "csv" } << csv;
    QTest::newRow("any --format table") << QStringList{ "--format", "table" } << table;
    QTest::newRow("eds --format csv") << QStringList{ "--format", "csv" } << csv;
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
    QCOMPARE(bytesOf(file).left(begin.size()), begin);
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
    const QJsonObject saved = QJsonDocument::fromJson(bytesOf(path("saved.json"))).object();
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
    QCOMPARE(bytesOf(path("saved.dcf")), expected + "\r\n[DeviceComissioning]\r\nNodeID=5\r\n"); // sic
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
                            "2003: aborted by the device: 0x05040000 (SDO protocol timed out.)\n"
                            "2 of 4 entries have no value: 2000, 2003\n");
    QCOMPARE(bytesOf(path("saved.csv")), "index,subindex,name,type,access,size,value,abort\n"
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

void TestCliDump::valueOfAnotherSizeIsToldAndSavedAsOctets()
{
    m_device->set(0x2000, 0, "E8030000");
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(run.outcome(), "-- 1\n2000: warning: the device has 4 bytes, which is no Unsigned16\n");
    QByteArray expected = smallCsv;
    QCOMPARE(bytesOf(path("saved.csv")), expected.replace(",2,0x03E8,", ",4,E8 03 00 00,"));
}

void TestCliDump::manyEntriesWithoutAValueAreNamedInPart()
{
    QByteArray lists = "[ManufacturerObjects]\nSupportedObjects=12\n", sections;
    for (int n = 1; n <= 12; ++n) {
        const QByteArray index = QByteArray::number(0x20FF + n, 16);
        lists += QByteArray::number(n) + "=0x" + index + '\n';
        sections +=
            "[" + index + "]\nParameterName=P\nObjectType=7\nDataType=5\nAccessType=" + (n < 12 ? "rw" : "wo") + '\n';
    }
    const CSheetFile sheet(lists + sections);
    CCliRun run(dump(m_device->interface(), sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(run.outcome().section('\n', -2, -2),
             "11 of 11 entries have no value: 2100, 2101, 2102, 2103, 2104, 2105, 2106, 2107, 2108, 2109 and 1 more");
    QCOMPARE(run.status(), 4);
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
    const bool isSaved = !message.endsWith("saved");
    QCOMPARE(run.outcome(), "-- 3\n2000: " + message + '\n' + (isSaved ? "1 of 4 entries have no value: 2000\n" : ""));
    const bool saved = bytesOf(path("saved.csv")).contains("\n0x2000,0,Entry 2000,Unsigned16,RW,,,\n0x2001");
    QCOMPARE(saved, isSaved);
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
