// velmora-cli on vcan0 with the simulator.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "RawCan.h"
#include "SdoClient.h"
#include "SimulatorProcess.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTest>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";
const QString header = "node,devicetype,vendor,product,revision,serial,name\n";
const QString demo = ",0x000F0191,0x0000F0B5,0x00000401,0x00020005,0x01352901,Velmora Demo I/O\n";
const QString otherClient =
    "velmora-cli: warning: another SDO client is at work on this bus: it talks to node 5, and answers to it may be "
    "taken for answers to this program\n";

QStringList command(const char* name, const QStringList& arguments)
{
    return QStringList{ name, "-i", "vcan0" } + arguments;
}

} // namespace

class TestCliOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void scanFindsTheNodes();
    void scanTakesLessThanThreeSeconds();
    void scanOfAnEmptyBus();
    void scanNoticesADuplicateNode();
    void scanIsInterrupted();
    void valuesAreRead();
    void valuesAreWritten();
    void emptyValueIsRefused();
    void silenceIsNoAnswer();
    void abortOfTheDevice();
    void abortOfAnyCodeIsAnAbort_data();
    void abortOfAnyCodeIsAnAbort();
    void nmtCommands_data();
    void nmtCommands();
    void otherClientIsNoticed();
    void interruptEndsALongWait();
    void interruptTellsWhatWasWritten();
    void interruptEndsASeries();

private:
    // A simulator that serves the bus.
    static std::unique_ptr<CSimulatorProcess> start(const QStringList& options = {})
    {
        auto simulator = std::make_unique<CSimulatorProcess>(QStringList{ "--can", "vcan0" } + options);
        if (!simulator->hasLogged("CAN on vcan0"))
            qFatal("%s", simulator->log().constData());
        return simulator;
    }
};

void TestCliOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
}

void TestCliOnVcan::scanFindsTheNodes()
{
    const auto simulator = start({ "--node", "1=" + sheet, "--node", "127=" + sheet });
    QCOMPARE(shownBy(command("scan", { "--format", "csv" })),
             shown(0, header + "1" + demo + "5" + demo + "127" + demo, ""));
}

// On a busy machine, one of many runs.
void TestCliOnVcan::scanTakesLessThanThreeSeconds()
{
    const auto simulator = start();
    const QDeadlineTimer deadline(patience);
    qint64 shortest = patience;
    while (shortest >= 3000 && !deadline.hasExpired()) {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(shownBy(command("scan", { "--format", "csv" })), shown(0, header + "5" + demo, ""));
        shortest = qMin(shortest, timer.elapsed());
    }
    QVERIFY2(shortest < 3000, qPrintable(QString::number(shortest)));
}

void TestCliOnVcan::scanOfAnEmptyBus()
{
    const CRawCan bus;
    QCOMPARE(shownBy(command("scan", { "--timeout", "50" })), shown(3, "", "velmora-cli: no node answers\n"));
    const QStringList frames = bus.receiveAll();
    QCOMPARE(frames.size(), 127);
    QCOMPARE(frames.first(), "601#4000100000000000");
    QCOMPARE(frames.last(), "67F#4000100000000000");
}

void TestCliOnVcan::scanNoticesADuplicateNode()
{
    const auto simulator = start({ "--fault", "double@1000" });
    CCliRun run(command("scan", { "--format", "csv" }));
    QCOMPARE(run.status(), 0);
    QCOMPARE(run.output(), header + "5" + demo);
    QVERIFY(run.error().startsWith("velmora-cli: warning: node 5 answers twice: two devices may have this node-id\n"));
}

void TestCliOnVcan::scanIsInterrupted()
{
    const auto simulator = start();
    const CRawCan bus;
    CCliRun run(command("scan", { "--format", "csv", "--timeout", "60000" }));
    QVERIFY(bus.waitFor("67F#4000100000000000"));
    run.interrupt();
    QCOMPARE(shown(run), shown(130, header + "5,,,,,,\n",
                               "velmora-cli: interrupted: all nodes were asked, 0 of those found for everything\n"));
}

void TestCliOnVcan::valuesAreRead()
{
    const auto simulator = start();
    QCOMPARE(shownBy(command("read", { "-n", "5", "-s", sheet, "1018:1", "1008", "Offset", "2101:9" })),
             shown(0, "0x0000F0B5\nVelmora Demo I/O\n0xFFE7\n\n", ""));
}

void TestCliOnVcan::valuesAreWritten()
{
    const auto simulator = start();
    const CRawCan bus;
    bus.receiveOnly(0x605, 0x7FF); // no heartbeats
    QCOMPARE(shownBy(command("write", { "-n", "5", "-s", sheet, "2005", "1000", "2008", "Hall 14" })),
             shown(0, "0x03E8\nHall 14\n", ""));
    QCOMPARE(bus.receive(), "605#2B052000E8030000");
    QVERIFY(bus.waitFor("605#0148616C6C203134"));
    QCOMPARE(shownBy(command("read", { "-n", "5", "-s", sheet, "--mode", "dec", "2005", "2008" })),
             shown(0, "1000\nHall 14\n", ""));
}

void TestCliOnVcan::emptyValueIsRefused()
{
    const CRawCan bus;
    QCOMPARE(shownBy(command("write", { "-n", "5", "--type", "vs", "2008", "" })),
             shown(2, "", "velmora-cli: 2008: an empty value cannot be sent on CAN; nothing was sent\n"));
    QCOMPARE(bus.receiveAll(), QStringList());
}

void TestCliOnVcan::silenceIsNoAnswer()
{
    const auto simulator = start({ "--fault", "silence@2005" });
    QCOMPARE(shownBy(command("read", { "-n", "5", "-s", sheet, "1017", "2005", "1018:1" })),
             shown(3, "0x03E8\n", "velmora-cli: 2005: no answer of node 5 within 500 ms\n"));
    QCOMPARE(shownBy(command("write", { "-n", "5", "--timeout", "50", "-s", sheet, "2005", "7" })),
             shown(3, "",
                   "velmora-cli: 2005: no answer of node 5 within 50 ms\nvelmora-cli: 0 of 1 values were written, not "
                   "2005; the first of these "
                   "may have been\n"));
}

void TestCliOnVcan::abortOfTheDevice()
{
    const auto simulator = start();
    QCOMPARE(shownBy(command("read", { "-n", "5", "5FFF" })),
             shown(4, "",
                   "velmora-cli: 5FFF: aborted by the device: 0x06020000 (Object does not exist in the object "
                   "dictionary.)\n"));
}

void TestCliOnVcan::abortOfAnyCodeIsAnAbort_data()
{
    QTest::addColumn<QString>("code");
    QTest::newRow("reads as success") << "0x00000000";
    QTest::newRow("reads as a time-out") << "0xFFFFFFCE";
    QTest::newRow("reads as another error") << "0xFFFFFFFF";
}

void TestCliOnVcan::abortOfAnyCodeIsAnAbort()
{
    QFETCH(QString, code);
    const auto simulator = start({ "--fault", "abort=" + code + "@2005", "--fault", "abort=" + code + "@2008" });
    const QString error = "velmora-cli: %1: aborted by the device: " + code + " (Unknown SDO abort code.)\n";
    QCOMPARE(shownBy(command("read", { "-n", "5", "-s", sheet, "2005", "2008", "1017" })),
             shown(4, "0x03E8\n", error.arg("2005") + error.arg("2008")));
    QCOMPARE(shownBy(command("write", { "-n", "5", "-s", sheet, "2008", "Hall 14" })),
             shown(4, "", error.arg("2008") + "velmora-cli: 0 of 1 values were written, not 2008\n"));
    QCOMPARE(shownBy(command("nmt", { "start", "5" })), shown(0, "", ""));
}

void TestCliOnVcan::nmtCommands_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("frame");
    QTest::newRow("start 5") << QStringList{ "start", "5" } << "000#0105";
    QTest::newRow("stop 127") << QStringList{ "stop", "127" } << "000#027F";
    QTest::newRow("preop all") << QStringList{ "preop", "all" } << "000#8000";
    QTest::newRow("reset 5") << QStringList{ "reset", "5" } << "000#8105";
    QTest::newRow("reset-comm all") << QStringList{ "reset-comm", "all" } << "000#8200";
}

void TestCliOnVcan::nmtCommands()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, frame);
    const CRawCan bus;
    QCOMPARE(shownBy(command("nmt", arguments)), shown(0, "", ""));
    QCOMPARE(bus.receiveAll(), QStringList(frame));
}

// The client of this process reads, while the program does.
void TestCliOnVcan::otherClientIsNoticed()
{
    const auto simulator = start();
    _can_param param = { "vcan0", 29, 3, 1 };
    QCOMPARE(cop_init(-1, &param, 0), 0);
    sdo_timeout(sdoPatience);
    CCliRun run(command("read", { "-n", "5", "--every", "10s", "1001" }));
    QVERIFY(run.hasWritten(2)); // its reading is over, and it waits
    sdoClient::tRead read(4);
    QCOMPARE(read(0x1018, 1), 0);
    cop_exit();
    run.interrupt();
    QCOMPARE(run.status(), 130);
    QCOMPARE(run.error(), otherClient + "velmora-cli: interrupted: after reading number 1\n");
}

// The device is told that nobody waits any more.
void TestCliOnVcan::interruptEndsALongWait()
{
    const auto simulator = start({ "--fault", "silence@2005" });
    const CRawCan bus;
    CCliRun run(command("read", { "-n", "5", "--timeout", "65535", "-s", sheet, "1017", "2005", "1018:1" }));
    QVERIFY(bus.waitFor("605#4005200000000000"));
    QElapsedTimer timer;
    timer.start();
    run.interrupt();
    QCOMPARE(shown(run), shown(130, "0x03E8\n", "velmora-cli: interrupted: 1 of 3 parameters were read\n"));
    QVERIFY(timer.elapsed() < 60000);
    QVERIFY(bus.waitFor("605#8005200000000405"));
}

void TestCliOnVcan::interruptTellsWhatWasWritten()
{
    const auto simulator = start({ "--fault", "stall=3@2008" }); // the second segment is not answered
    const CRawCan bus;
    CCliRun run(command("write", { "-n", "5", "--timeout", "65535", "-s", sheet, "1017", "250", "2008", "Hall 14, left",
                                   "2005", "1" }));
    QVERIFY(bus.waitFor("605#132C206C65667400"));
    run.interrupt();
    QCOMPARE(shown(run),
             shown(130, "0x00FA\n",
                   "velmora-cli: interrupted: 1 of 3 values were written, not 2008, 2005; the first of these "
                   "may have been\n"));
}

void TestCliOnVcan::interruptEndsASeries()
{
    const auto simulator = start();
    CCliRun run(command("read", { "-n", "5", "--every", "1min", "1001" }));
    QVERIFY(run.hasWritten(2));
    run.interrupt();
    QCOMPARE(run.status(), 130);
    QCOMPARE(run.error(), "velmora-cli: interrupted: after reading number 1\n");
}

QTEST_GUILESS_MAIN(TestCliOnVcan)
#include "TestCliOnVcan.moc"
