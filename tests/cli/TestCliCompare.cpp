// velmora-cli compare: devices, dumps, configuration files and sheets with each other.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "DumpFile.h"
#include "ScriptedDevice.h"
#include "SimulatorProcess.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace
{

const QString demoSheet = VELMORA_SHARE "/velmora-demo.eds";

// Values that differ in a read-only and in a writable entry, and one that is relative to the node-id.
const QByteArrayList savedLines = { "0x1001,0,Error register,Unsigned8,RO,1,0x01,",
                                    "0x1014,0,COB-ID EMCY,Unsigned32,RW,4,$NODEID+0x00000080,",
                                    "0x1017,0,Producer heartbeat time,Unsigned16,RW,2,0x01F4," };

} // namespace

class TestCliCompare : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void deviceIsComparedWithADump();
    void whatChangesByItselfCountsOnlyWhenAskedFor();
    void formatsOfPrograms();
    void dumpOfTheDeviceAndItsConfigurationFileAreTheSame();
    void everyKindOfFileIsComparedWithEveryOther_data();
    void everyKindOfFileIsComparedWithEveryOther();
    void relativeValuesOfAnotherNodeAreTheSame();
    void valuesFollowTheNodeIdWhereTheyHaveIt();
    void textThatIsNoValueIsADifference();
    void sheetOfTheDeviceTellsItsEntries();
    void abortIsToldAndTheRestCompared();
    void withoutAnAnswerTheEndIs3();
    void foreignTextsAreMadeVisible();
    void wrongUsageEndsWith2_data();
    void wrongUsageEndsWith2();

private:
    QStringList withDevice(const QString& file, const QStringList& more = {}, int node = 5) const
    {
        return QStringList{ "compare", "-i", m_simulator->interface(), "-n", QString::number(node), file } + more;
    }
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString dumped(const QString& name, int node = 5) const
    {
        CCliRun run(
            { "dump", "-i", m_simulator->interface(), "-n", QString::number(node), "-s", demoSheet, "-o", path(name) });
        return run.status() == 0 ? path(name) : QString();
    }
    bool write(int node, const QStringList& values) const
    {
        CCliRun run(
            QStringList{ "write", "-i", m_simulator->interface(), "-n", QString::number(node), "-s", demoSheet } +
            values);
        return run.status() == 0;
    }

    std::unique_ptr<CSimulatorProcess> m_simulator;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestCliCompare::initTestCase()
{
    m_simulator =
        std::make_unique<CSimulatorProcess>(QStringList{ "--node", "7=" + demoSheet }, CSimulatorProcess::silent);
    QVERIFY2(m_simulator->port() != 0, m_simulator->log());
}

void TestCliCompare::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    for (const char* node : { "5", "7" }) {
        CCliRun run({ "nmt", "-i", m_simulator->interface(), "reset", node });
        QCOMPARE(run.status(), 0);
    }
}

void TestCliCompare::deviceIsComparedWithADump()
{
    const CDumpFile file(savedLines);
    CCliRun here(withDevice("saved.csv"), QFileInfo(file.name()).path());
    QCOMPARE(here.outcome(), "parameter  saved.csv  node 5  name                     note\n"
                             "1001       0x01       0x00    Error register           changes by itself\n"
                             "1017       0x01F4     0x03E8  Producer heartbeat time\n"
                             "-- 1\n");
    QVERIFY(write(5, { "1017", "500" }));
    CCliRun second(withDevice("saved.csv"), QFileInfo(file.name()).path());
    QCOMPARE(second.outcome(), "parameter  saved.csv  node 5  name            note\n"
                               "1001       0x01       0x00    Error register  changes by itself\n"
                               "-- 0\n");
}

void TestCliCompare::whatChangesByItselfCountsOnlyWhenAskedFor()
{
    const CDumpFile file(savedLines.mid(0, 2));
    CCliRun run(withDevice("saved.csv", { "--all" }), QFileInfo(file.name()).path());
    QCOMPARE(run.outcome(), "parameter  saved.csv  node 5  name            note\n"
                            "1001       0x01       0x00    Error register  changes by itself\n"
                            "-- 1\n");
    const CDumpFile same(savedLines.mid(1, 1));
    CCliRun none(withDevice(same.name(), { "--all" }));
    QCOMPARE(none.outcome(), "-- 0\n");
}

void TestCliCompare::formatsOfPrograms()
{
    const CDumpFile file(savedLines);
    CCliRun csv(withDevice(file.name(), { "--format", "csv" }));
    QCOMPARE(csv.outcome(), "parameter,first,second,name,note\n"
                            "1001,0x01,0x00,Error register,changes by itself\n"
                            "1017,0x01F4,0x03E8,Producer heartbeat time,\n"
                            "-- 1\n");
    CCliRun json(withDevice(file.name(), { "--format", "json" }));
    QCOMPARE(json.outcome(), R"([
    {
        "byItself": true,
        "first": "0x01",
        "name": "Error register",
        "parameter": "1001",
        "second": "0x00"
    },
    {
        "byItself": false,
        "first": "0x01F4",
        "name": "Producer heartbeat time",
        "parameter": "1017",
        "second": "0x03E8"
    }
]
-- 1
)");
    const CDumpFile same(savedLines.mid(1, 1));
    CCliRun noRows(withDevice(same.name(), { "--format", "csv" }));
    QCOMPARE(noRows.outcome(), "parameter,first,second,name,note\n-- 0\n");
    CCliRun noObjects(withDevice(same.name(), { "--format", "json" }));
    QCOMPARE(noObjects.outcome(), "[\n]\n-- 0\n");
}

void TestCliCompare::dumpOfTheDeviceAndItsConfigurationFileAreTheSame()
{
    QVERIFY(write(5, { "1017", "500", "1014", "0x285", "2008", "Hall 4", "2007", "0x3F800000" }));
    const QStringList files{ dumped("saved.csv"), dumped("saved.json"), dumped("saved.dcf") };
    for (const QString& first : files) {
        CCliRun withNode(withDevice(first, { "--all" }));
        QCOMPARE(withNode.outcome(), "-- 0\n");
        for (const QString& second : files) {
            CCliRun run({ "compare", "--all", first, second });
            QCOMPARE(run.outcome(), "-- 0\n");
        }
    }
}

void TestCliCompare::everyKindOfFileIsComparedWithEveryOther_data()
{
    QTest::addColumn<QString>("second");
    for (const char* name : { "b.csv", "b.json", "b.dcf" })
        QTest::newRow(name) << name;
}

void TestCliCompare::everyKindOfFileIsComparedWithEveryOther()
{
    QFETCH(const QString, second);
    QVERIFY(write(5, { "1014", "0x285", "1017", "500" }));
    QVERIFY(!dumped(second).isEmpty());
    QVERIFY(write(5, { "1017", "600" }));
    for (const QString name : { "a.csv", "a.json", "a.dcf" }) {
        QVERIFY(!dumped(name).isEmpty());
        CCliRun run({ "compare", name, second, "--format", "csv" }, m_folder->path());
        QCOMPARE(run.outcome(), "parameter,first,second,name,note\n"
                                "1017,0x0258,0x01F4,Producer heartbeat time,\n-- 1\n");
    }
    CCliRun sheet({ "compare", demoSheet, second, "--format", "csv" }, m_folder->path());
    QCOMPARE(sheet.outcome(), "parameter,first,second,name,note\n"
                              "1014,$NODEID+0x00000080,$NODEID+0x00000280,COB-ID EMCY,\n"
                              "1017,0x03E8,0x01F4,Producer heartbeat time,\n-- 1\n");
}

void TestCliCompare::relativeValuesOfAnotherNodeAreTheSame()
{
    for (const QString name : { "saved.csv", "saved.json", "saved.dcf" }) {
        QVERIFY(!dumped(name).isEmpty());
        CCliRun other(withDevice(path(name), { "--all" }, 7));
        QCOMPARE(other.outcome(), "-- 0\n");
    }
    QVERIFY(write(7, { "1014", "0x85" })); // that of node 5
    CCliRun run(withDevice(path("saved.dcf"), { "--format", "csv" }, 7));
    QCOMPARE(run.outcome(), "parameter,first,second,name,note\n"
                            "1014,$NODEID+0x00000080,0x00000085,COB-ID EMCY,\n-- 1\n");
}

// Other values than those of the sheet, too, but not what has nothing to do with the node-id.
void TestCliCompare::valuesFollowTheNodeIdWhereTheyHaveIt()
{
    QVERIFY(write(5, { "1014", "0x80000285", "1400:1", "0x80000000", "1401:1", "0x187" }));
    QVERIFY(write(7, { "1014", "0x80000287", "1400:1", "0x80000000", "1401:1", "0x187" }));
    for (const QString name : { "saved.csv", "saved.json", "saved.dcf" }) {
        QVERIFY(!dumped(name).isEmpty());
        CCliRun other(withDevice(path(name), { "--all" }, 7));
        QCOMPARE(other.outcome(), "-- 0\n");
    }
}

void TestCliCompare::textThatIsNoValueIsADifference()
{
    const CSheetFile file(sheetOf(0x1017, 6, "rw", "Heartbeat", "ParameterValue=70000\n"), "device.dcf");
    CCliRun run(withDevice(file.name(), { "--format", "csv" }));
    QCOMPARE(run.outcome(), "parameter,first,second,name,note\n"
                            "1017,\"\"\"70000\"\" (no value)\",0x03E8,Heartbeat,\n-- 1\n");
}

void TestCliCompare::sheetOfTheDeviceTellsItsEntries()
{
    const CDumpFile file({ "0x1014,0,COB-ID EMCY,Unsigned32,RW,4,0x00000085,",
                           "0x5FFF,0,Not there,Unsigned8,RW,1,0x01,", "0x5FFE,0,Nor known,Unsigned8,RW,,," });
    CCliRun run(withDevice(file.name(), { "-s", demoSheet, "--format", "csv" }));
    QCOMPARE(run.outcome(), "parameter,first,second,name,note\n5FFF,0x01,-,Not there,\n-- 1\n");
    // Without a sheet the file tells the entries of the device, too.
    CCliRun second(withDevice(file.name()));
    QCOMPARE(second.outcome(), "-- 4\n5FFF: aborted by the device: 0x06020000 (Object does not exist in the object "
                               "dictionary.)\nnot compared, since " +
                                   file.name() + " has no value: 5FFE\n");
    // Plain numbers are those of the node.
    CCliRun third(withDevice(file.name(), { "-s", demoSheet, "--format", "csv" }, 7));
    QCOMPARE(third.outcome(), "parameter,first,second,name,note\n"
                              "1014,0x00000085,$NODEID+0x00000080,COB-ID EMCY,\n5FFF,0x01,-,Not there,\n-- 1\n");
}

void TestCliCompare::abortIsToldAndTheRestCompared()
{
    CScriptedDevice device;
    device.set(0x1017, 0, "E803");
    const CDumpFile file(savedLines);
    CCliRun run({ "compare", "-i", device.interface(), "-n", "5", "--format", "csv", file.name() });
    const QString text = ": aborted by the device: 0x06020000 (Object does not exist in the object dictionary.)\n";
    QCOMPARE(run.outcome(), "parameter,first,second,name,note\n"
                            "1017,0x01F4,0x03E8,Producer heartbeat time,\n"
                            "-- 4\n1001" +
                                text + "1014" + text);
    QCOMPARE(device.steps(), QStringList()); // it only reads
}

void TestCliCompare::withoutAnAnswerTheEndIs3()
{
    const CDumpFile file(savedLines);
    CCliRun run(withDevice(file.name(), {}, 9));
    QCOMPARE(run.outcome(), "-- 3\n1001: the gateway answers error 103 (no answer of the device in time); "
                            "0 of 3 entries were read\n");
}

void TestCliCompare::foreignTextsAreMadeVisible()
{
    const CDumpFile first({ "0x2008,0,Lo\x1B[2Jcation,Visible String,RW,3,a\tb," });
    const CDumpFile second({ "0x2008,0,Location,Visible String,RW,3,abc," });
    CCliRun run({ "compare", first.name(), second.name() });
    const QString shown = run.outcome();
    QVERIFY2(!shown.contains('\x1B') && !shown.contains('\t'), qPrintable(shown));
    QVERIFY(shown.endsWith("-- 1\n"));
}

void TestCliCompare::wrongUsageEndsWith2_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    const QString hint = "\ntry 'velmora-cli compare --help'";
    QTest::newRow("one file") << QStringList{ "a.csv" } << "two files are compared, or a device (-i, -n) and a file";
    QTest::newRow("three files") << QStringList{ "a.csv", "b.csv", "c.csv" }
                                 << "two files are compared, or a device (-i, -n) and a file";
    QTest::newRow("device and two files")
        << QStringList{ "-i", "localhost:1", "-n", "5", "a.csv", "b.csv" } << "a device is compared with one file";
    QTest::newRow("not there") << QStringList{ "a.csv", "b.csv" } << "cannot read a.csv: No such file or directory";
    QTest::newRow("ending") << QStringList{ "a.txt", "b.csv" }
                            << "neither a data sheet nor a dump: a.txt (its name must end in .eds, .dcf, .csv or "
                               ".json)";
    QTest::newRow("no node") << QStringList{ "-i", "localhost:1", "a.csv" } << "--interface requires --node" + hint;
    QTest::newRow("node only") << QStringList{ "-n", "5", "a.csv", "b.csv" } << "--node requires --interface" + hint;
    QTest::newRow("sheet only") << QStringList{ "-s", "x.eds", "a.csv", "b.csv" }
                                << "--sheet requires --interface" + hint;
    QTest::newRow("no file") << QStringList() << "files is required" + hint;
}

void TestCliCompare::wrongUsageEndsWith2()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, message);
    CCliRun run(QStringList("compare") + arguments, m_folder->path());
    QCOMPARE(run.outcome(), "-- 2\n" + message + '\n');
}

QTEST_GUILESS_MAIN(TestCliCompare)
#include "TestCliCompare.moc"
