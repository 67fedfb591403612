// velmora-cli read --repeat and --every, and Ctrl-C in all commands that wait.
// SPDX-License-Identifier: MIT
#include "ScriptedRun.h"
#include "SimulatorProcess.h"

#include <QDateTime>
#include <QTest>

namespace
{

const QString sheet = VELMORA_SHARE "/velmora-demo.eds";

// The rows of a series without their time stamps; one that is no time stamp is named.
QStringList valuesOf(const QString& output)
{
    QStringList rows = output.split('\n', Qt::SkipEmptyParts);
    for (QString& row : rows) {
        const QString stamp = row.section(',', 0, 0);
        if (stamp != "time" && !QDateTime::fromString(stamp, Qt::ISODateWithMs).isValid())
            return { "no time stamp: " + row };
        row = row.section(',', 1);
    }
    return rows;
}

// Waits until a line has come to the gateway after which nothing more is answered.
bool hasReceived(const CFakeGateway& gateway, const std::string& text)
{
    return QTest::qWaitFor([&] { return gateway.received().find(text) != std::string::npos; }, patience);
}

} // namespace

class TestCliSeries : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsHaveATimeAndTheValues();
    void abortLeavesACellEmpty();
    void silenceLeavesACellEmptyAndGoesOn();
    void hangUpEndsTheSeries();
    void rowsComeInTheirInterval();
    void interruptEndsASeries();
    void interruptEndsAReadOfASilentGateway_data();
    void interruptEndsAReadOfASilentGateway();
    void interruptTellsWhatWasWritten();
    void interruptEndsAnNmtCommand();
    void interruptKeepsJsonWhole();
};

void TestCliSeries::rowsHaveATimeAndTheValues()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    CCliRun run({ "read", "-i", simulator.interface(), "-n", "5", "-s", sheet, "--repeat", "3", "--mode", "dec",
                  "Offset", "2008", "1018:1" });
    QCOMPARE(run.status(), 0);
    QVERIFY(run.output().startsWith("time,2002,2008,1018:1\n"));
    QCOMPARE(valuesOf(run.output()), QStringList({ "2002,2008,1018:1", "-25,Machine hall 3,61621",
                                                   "-25,Machine hall 3,61621", "-25,Machine hall 3,61621" }));
    QCOMPARE(run.error(), "");
}

void TestCliSeries::abortLeavesACellEmpty()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x2000", "0x0"), "[#] ERROR: 0x06020000\r\n");
    gateway.expect(readOf("0x2001", "0x0"), value("a,\"b\"\x1B"));
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "--type", "vs", "--repeat", "1", "2000", "2001" });
    QCOMPARE(run.status(), 4);
    QCOMPARE(valuesOf(run.output()), QStringList({ "2000,2001", ",\"a,\"\"b\"\"\\x1B\"" }));
    QVERIFY(run.error().startsWith("velmora-cli: 2000: aborted by the device: 0x06020000"));
}

void TestCliSeries::silenceLeavesACellEmptyAndGoesOn()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x2000", "0x0"), "");
    gateway.expect(readOf("0x2000", "0x0"), "[#-1] AQ==\r\n[#] Ag==\r\n"); // the first answer comes late
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "--gateway-timeout", "200", "--type", "u8", "--repeat",
                  "2", "2000" });
    QCOMPARE(run.status(), 3);
    QCOMPARE(valuesOf(run.output()), QStringList({ "2000", "", "0x02" }));
    QCOMPARE(run.error(), "velmora-cli: 2000: the gateway does not answer\n");
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliSeries::hangUpEndsTheSeries()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x2000", "0x0"), value("\1"));
    gateway.expect(readOf("0x2000", "0x0"), { "", tGatewayAnswer::hangUp });
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "--type", "u8", "--every", "1ms", "2000" });
    QCOMPARE(run.status(), 3);
    QCOMPARE(valuesOf(run.output()), QStringList({ "2000", "0x01", "" }));
    QCOMPARE(run.error(), "velmora-cli: 2000: the gateway has closed the connection\n");
}

void TestCliSeries::rowsComeInTheirInterval()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    QElapsedTimer timer;
    timer.start();
    CCliRun run({ "read", "-i", simulator.interface(), "-n", "5", "--repeat", "4", "--every", "100ms", "1001" });
    QCOMPARE(run.status(), 0);
    QVERIFY(timer.elapsed() >= 299);
    QCOMPARE(valuesOf(run.output()).size(), 5);
}

void TestCliSeries::interruptEndsASeries()
{
    const CSimulatorProcess simulator;
    QVERIFY2(simulator.port() != 0, simulator.log());
    CCliRun run({ "read", "-i", simulator.interface(), "-n", "5", "--every", "1min", "1001" });
    QVERIFY(run.hasWritten(2));
    run.interrupt();
    QCOMPARE(run.status(), 130);
    QCOMPARE(valuesOf(run.output()), QStringList({ "1001", "0x00" }));
    QCOMPARE(run.error(), "velmora-cli: interrupted: after reading number 1\n");
}

void TestCliSeries::interruptEndsAReadOfASilentGateway_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

// The gateway would be waited for 66 seconds.
void TestCliSeries::interruptEndsAReadOfASilentGateway()
{
    QFETCH(int, signal);
    CFakeGateway gateway;
    gateway.expect(readOf("0x2000", "0x0"), value("\1"));
    gateway.expect(readOf("0x2001", "0x0"), "");
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "--type", "u8", "2000", "2001", "2002" });
    QVERIFY(hasReceived(gateway, "0x2001"));
    QElapsedTimer timer;
    timer.start();
    run.interrupt(signal);
    QCOMPARE(run.status(), 130);
    QVERIFY2(timer.elapsed() < 50000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(run.output(), "0x01\n");
    QCOMPARE(run.error(), "velmora-cli: interrupted: 1 of 3 parameters were read\n");
}

void TestCliSeries::interruptTellsWhatWasWritten()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0x1\r\n", "[#] OK\r\n");
    gateway.expect("[#] 5 write 0x2001 0x0 u8 0x2\r\n", "");
    CCliRun run(
        { "write", "-i", interfaceOf(gateway), "-n", "5", "--type", "u8", "2000", "1", "2001", "2", "2002", "3" });
    QVERIFY(hasReceived(gateway, "0x2001"));
    run.interrupt();
    QCOMPARE(shown(run), shown(130, "0x01\n",
                               "velmora-cli: interrupted: 1 of 3 values were written, not 2001, 2002; the first of "
                               "these may have been\n"));
    QCOMPARE(difference(gateway), QByteArray());
}

void TestCliSeries::interruptEndsAnNmtCommand()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n", "");
    CCliRun run({ "nmt", "-i", interfaceOf(gateway), "start", "5" });
    QVERIFY(hasReceived(gateway, "start"));
    run.interrupt();
    QCOMPARE(shown(run), shown(130, "", "velmora-cli: interrupted: the command was sent, but not answered\n"));
}

void TestCliSeries::interruptKeepsJsonWhole()
{
    CFakeGateway gateway;
    gateway.expect(readOf("0x2000", "0x0"), "");
    CCliRun run({ "read", "-i", interfaceOf(gateway), "-n", "5", "--format", "json", "2000" });
    QVERIFY(hasReceived(gateway, "0x2000"));
    run.interrupt();
    QCOMPARE(shown(run), shown(130, "[\n]\n", "velmora-cli: interrupted: 0 of 1 parameters were read\n"));
}

QTEST_GUILESS_MAIN(TestCliSeries)
#include "TestCliSeries.moc"
