// velmora-cli dump, compare and restore on vcan0, and the state of the node before and after.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "RawCan.h"
#include "SimulatorProcess.h"

#include <QTemporaryDir>
#include <QTest>

#include <optional>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";
const QString begun = "node 5 is in pre-operational while its PDO parameters are written\n";

} // namespace

class TestCliRestoreOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void savedAndRestoredComparesEqual_data();
    void savedAndRestoredComparesEqual();
    void operationalNodeIsOperationalAgain();
    void preOperationalNodeStaysSo();
    void nodeWithoutHeartbeatIsStarted();
    void slowHeartbeatTellsTheState();
    void anotherClientIsNoticedWhileItWaitsForAHeartbeat();
    void framesOfAPdoComeInOrder();
    void silenceSavesNothing();
    void storingMayTakeLong();

private:
    // Of the program, with a time-out that no busy machine reaches, on vcan0.
    static QString run(const QStringList& words, int node = 5)
    {
        CCliRun process(
            words.mid(0, 1) +
            QStringList{ "-i", "vcan0", "--timeout", QString::number(sdoPatience), "-n", QString::number(node) } +
            words.mid(1));
        return process.outcome();
    }
    static QString nmt(const QString& command, const QString& node = "5")
    {
        CCliRun process({ "nmt", "-i", "vcan0", command, node });
        return process.outcome();
    }
    static QString restored(const QString& end)
    {
        return "1017: 0x0064 -> 0x00C8  Producer heartbeat time\n"
               "1800:2: 0xFF -> 0x01  Transmission type\n-- 0\n" +
               begun + end + "2 of 2 values were written\n";
    }
    QString path(const QString& name) const { return m_folder.filePath(name); }
    // Saves 1017 = 200 and 1800:2 = 1, then resets the node and gives it that heartbeat.
    void prepare(const QString& heartbeat);
    // The NMT commands and states that were on the bus, each state once.
    QStringList states() const;

    const QTemporaryDir m_folder;
    std::optional<CSimulatorProcess> m_simulator;
    std::optional<CRawCan> m_bus;
};

void TestCliRestoreOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
    m_simulator.emplace(QStringList{ "--can", "vcan0", "--node", "7=" + sheet, "--fault", "silence@2006" },
                        CSimulatorProcess::silent);
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0"), m_simulator->log());
    m_bus.emplace();
}

void TestCliRestoreOnVcan::init()
{
    m_bus->forget();
    QCOMPARE(nmt("reset", "all"), "-- 0\n");
    QVERIFY(m_bus->waitFor("705#00"));
}

void TestCliRestoreOnVcan::prepare(const QString& heartbeat)
{
    QFile small(path("small.eds"));
    QVERIFY(small.open(QIODevice::WriteOnly));
    small.write("[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=Device type\nObjectType=7\nDataType=7\n"
                "AccessType=ro\n[OptionalObjects]\n1=0x1017\n2=0x1800\n[1017]\nParameterName=Producer heartbeat time\n"
                "ObjectType=7\nDataType=6\nAccessType=rw\n[1800]\nParameterName=PDO\nObjectType=9\nSubNumber=2\n"
                "[1800sub1]\nParameterName=COB-ID\nObjectType=7\nDataType=7\nAccessType=rw\n"
                "DefaultValue=$NODEID+0x180\n[1800sub2]\nParameterName=Transmission type\nObjectType=7\nDataType=5\n"
                "AccessType=rw\n");
    small.close();
    QCOMPARE(run({ "write", "-s", small.fileName(), "1017", "200", "1800:2", "1" }), "0x00C8\n0x01\n-- 0\n");
    QCOMPARE(run({ "dump", "-s", small.fileName(), "-o", path("saved.csv") }), "-- 0\n");
    QCOMPARE(nmt("reset"), "-- 0\n");
    QCOMPARE(run({ "write", "--type", "u16", "1017", heartbeat }).section("-- ", 1), "0\n");
}

QStringList TestCliRestoreOnVcan::states() const
{
    QStringList seen;
    for (const QString& frame : m_bus->receiveAll())
        if ((frame.startsWith("000#") || frame.startsWith("705#")) && (seen.isEmpty() || seen.last() != frame))
            seen += frame;
    return seen;
}

void TestCliRestoreOnVcan::savedAndRestoredComparesEqual_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("saved");
    QTest::newRow("DCF") << "saved.dcf"
                         << "-- 0\nempty as in the sheet, for which a DCF has no line: 2017, 2101:9\n";
    for (const char* name : { "saved.csv", "saved.json" })
        QTest::newRow(name) << name << "-- 0\n";
}

void TestCliRestoreOnVcan::savedAndRestoredComparesEqual()
{
    QFETCH(const QString, name);
    // Without the entry that stays silent.
    QFile original(sheet);
    QVERIFY(original.open(QIODevice::ReadOnly));
    QFile copy(path("without.eds"));
    QVERIFY(copy.open(QIODevice::WriteOnly));
    copy.write(original.readAll().replace("=0x2006\r\n", "=0x2005\r\n").replace("=0x2006\n", "=0x2005\n"));
    copy.close();
    QCOMPARE(run({ "write", "-s", sheet, "1017", "500", "1014", "0x285", "1400:1", "0x80000205", "1A00", "1", "1A00:1",
                   "0x60000208", "2008", "Hall 4, a place with a long name" })
                 .section("-- ", 1),
             "0\n");
    QTEST(run({ "dump", "-s", copy.fileName(), "-o", path(name) }), "saved");
    QCOMPARE(nmt("reset"), "-- 0\n");
    for (const int node : { 5, 7 }) {
        const QString shown = run({ "restore", path(name), "--no-start" }, node);
        QVERIFY2(shown.endsWith("6 of 6 values were written\n") && shown.contains("-- 0\n"), qPrintable(shown));
        QCOMPARE(run({ "compare", "--all", path(name) }, node), "-- 0\n");
    }
}

void TestCliRestoreOnVcan::operationalNodeIsOperationalAgain()
{
    prepare("100");
    m_bus->forget();
    QCOMPARE(nmt("start"), "-- 0\n");
    QVERIFY(m_bus->waitFor("705#05"));
    m_bus->forget();
    QCOMPARE(run({ "restore", path("saved.csv") }), restored("node 5 is operational again\n"));
    QVERIFY(m_bus->waitFor("000#0105"));
    QVERIFY(m_bus->waitFor("705#05"));
}

void TestCliRestoreOnVcan::preOperationalNodeStaysSo()
{
    prepare("100");
    m_bus->forget();
    QVERIFY(m_bus->waitFor("705#7F"));
    m_bus->forget();
    QCOMPARE(run({ "restore", path("saved.csv") }), restored("node 5 stays in pre-operational, as it was\n"));
    const QStringList seen = states();
    QVERIFY2(seen.contains("000#8005") && !seen.contains("000#0105") && !seen.contains("705#05"),
             qPrintable(seen.join(' ')));
}

void TestCliRestoreOnVcan::nodeWithoutHeartbeatIsStarted()
{
    prepare("0");
    m_bus->forget();
    const QString end = "node 5 was started again; its state before is not known\n";
    QCOMPARE(run({ "restore", path("saved.csv") }), restored(end).replace("0x0064", "0x0000"));
    QVERIFY(m_bus->waitFor("000#0105"));
}

// A heartbeat that comes once in a while is waited for.
void TestCliRestoreOnVcan::slowHeartbeatTellsTheState()
{
    prepare("2500");
    QCOMPARE(nmt("start"), "-- 0\n");
    const QString waiting = "waiting for a heartbeat of node 5, which comes every 2500 ms\n";
    QCOMPARE(run({ "restore", path("saved.csv") }),
             restored("node 5 is operational again\n").replace("0x0064", "0x09C4").replace(begun, waiting + begun));
}

void TestCliRestoreOnVcan::anotherClientIsNoticedWhileItWaitsForAHeartbeat()
{
    prepare("5000");
    CCliRun process(
        { "restore", "-i", "vcan0", "--timeout", QString::number(sdoPatience), "-n", "5", path("saved.csv") });
    QVERIFY(process.hasTold("waiting for a heartbeat"));
    QVERIFY(m_bus->send("611#4018100100000000"));
    QVERIFY2(process.hasTold("another SDO client is at work on this bus: it talks to node 17"),
             qPrintable(process.error()));
    QCOMPARE(process.status(), 0);
}

void TestCliRestoreOnVcan::framesOfAPdoComeInOrder()
{
    prepare("0");
    m_bus->forget();
    QVERIFY(run({ "restore", path("saved.csv") }).contains("-- 0\n"));
    QStringList sent;
    for (const QString& frame : m_bus->receiveAll())
        if (frame.startsWith("000#") || frame.startsWith("605#2"))
            sent += frame;
    QCOMPARE(sent, QStringList({ "000#8005", "605#2B171000C8000000", "605#2300180185010080", "605#2F00180201000000",
                                 "605#2300180185010000", "000#0105" }));
}

void TestCliRestoreOnVcan::silenceSavesNothing()
{
    CCliRun process({ "dump", "-i", "vcan0", "-n", "5", "-s", sheet, "-o", path("silent.csv") });
    const QString shown = process.outcome();
    QVERIFY2(shown.startsWith("-- 3\n") && shown.endsWith(" entries were read; nothing was saved\n"),
             qPrintable(shown));
    QVERIFY(!QFile::exists(path("silent.csv")));
}

// A device may take longer for storing than for anything else. The last test, since it starts another simulator.
void TestCliRestoreOnVcan::storingMayTakeLong()
{
    constexpr int timeout = 3000; // milliseconds
    m_simulator.reset();
    m_simulator.emplace(
        QStringList{ "--can", "vcan0", "--fault", "delay=" + QString::number(timeout + 1000) + "@1010" },
        CSimulatorProcess::silent);
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0"), m_simulator->log());
    prepare("0");
    CCliRun process({ "restore", "-i", "vcan0", "--timeout", QString::number(timeout), "-n", "5", path("saved.csv"),
                      "--store", "--no-start" });
    const QString shown = process.outcome();
    QVERIFY2(shown.contains("-- 0\n") && shown.contains("node 5 has stored its parameters\n"), qPrintable(shown));
}

QTEST_GUILESS_MAIN(TestCliRestoreOnVcan)
#include "TestCliRestoreOnVcan.moc"
