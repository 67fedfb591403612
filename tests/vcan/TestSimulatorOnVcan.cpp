// The simulator on a CAN interface against raw frames of the test: transfers, NMT, heartbeat, faults, other traffic.
// SPDX-License-Identifier: MIT
#include "RawCan.h"
#include "SimulatorProcess.h"
#include "VcanInterface.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>

#include <optional>

namespace
{

constexpr int longestDomain = 65536;

// Bytes of which no seven equal the seven before them.
QByteArray pattern(int size)
{
    QByteArray data;
    for (int i = 0; i < size; ++i)
        data += static_cast<char>((i * 131 + i / 251) & 0xFF);
    return data;
}

QString segmentRequest(unsigned command, const QByteArray& data = {})
{
    const QByteArray frame = QByteArray(1, static_cast<char>(command)) + data.leftJustified(7, '\0');
    return "605#" + frame.toHex().toUpper();
}

} // namespace

class TestSimulatorOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void bootUpMessageComesAtTheStart();
    void transcripts_data();
    void transcripts();
    void domainOf64KiBGoesBothWays();
    void otherTrafficIsIgnored();
    void nmtCommandsAndHeartbeat();
    void gatewayAndCanServeTheSameDevices();
    void faults_data();
    void faults();
    void silenceAndDelay();
    void floodComesBeforeTheAnswer();
    void interfaceThatIsTakenDownComesBack();
    void interfaceThatVanishesEndsTheSimulator();

private:
    void start(const QStringList& options = {}, CSimulatorProcess::tVerbosity verbosity = CSimulatorProcess::verbose);
    void stopHeartbeat() { QCOMPARE(ask("605#2B17100000000000"), QString("585#6017100000000000")); }
    QString answer() const;
    QString ask(const QString& request) const;

    std::optional<CRawCan> m_bus;
    std::optional<CSimulatorProcess> m_simulator;
};

void TestSimulatorOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
}

void TestSimulatorOnVcan::init()
{
    m_bus.emplace();
}

void TestSimulatorOnVcan::cleanup()
{
    m_simulator.reset();
    m_bus.reset();
}

void TestSimulatorOnVcan::start(const QStringList& options, CSimulatorProcess::tVerbosity verbosity)
{
    m_simulator.emplace(QStringList{ "--can", "vcan0" } + options, verbosity);
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0\n"), m_simulator->log());
    QVERIFY(m_bus->waitFor("705#00")); // no boot-up message comes later
}

// The next frame that is no heartbeat.
QString TestSimulatorOnVcan::answer() const
{
    const QDeadlineTimer deadline(patience);
    QString frame = m_bus->receive();
    while (frame.startsWith("705#") && !deadline.hasExpired())
        frame = m_bus->receive();
    return frame;
}

QString TestSimulatorOnVcan::ask(const QString& request) const
{
    m_bus->send(request);
    return answer();
}

void TestSimulatorOnVcan::bootUpMessageComesAtTheStart()
{
    m_simulator.emplace(QStringList{ "--can", "vcan0", "--node", "7=" VELMORA_SHARE "/velmora-demo.eds" });
    QCOMPARE(m_bus->receiveCount(2), (QStringList{ "705#00", "707#00" }));
}

void TestSimulatorOnVcan::transcripts_data()
{
    QTest::addColumn<QStringList>("frames"); // request and answer in turn
    QTest::newRow("expedited upload") << QStringList{ "605#4000100000000000", "585#4300100091010F00" };
    QTest::newRow("expedited download") << QStringList{ "605#2B05200034120000", "585#6005200000000000",
                                                        "605#4005200000000000", "585#4B05200034120000" };
    QTest::newRow("segmented upload") << QStringList{ "605#4008100000000000", "585#4108100010000000",
                                                      "605#6000000000000000", "585#0056656C6D6F7261",
                                                      "605#7000000000000000", "585#102044656D6F2049",
                                                      "605#6000000000000000", "585#0B2F4F0000000000" };
    QTest::newRow("segmented download") << QStringList{ "605#210820000A000000", "585#6008200000000000",
                                                        "605#0030313233343536", "585#2000000000000000",
                                                        "605#1937383900000000", "585#3000000000000000" };
    QTest::newRow("abort") << QStringList{ "605#40FF5F0000000000", "585#80FF5F0000000206" };
    QTest::newRow("new initiate") << QStringList{ "605#4008100000000000", "585#4108100010000000",
                                                  "605#4000100000000000", "585#4300100091010F00" };
    QTest::newRow("wrong toggle bit") << QStringList{ "605#4008100000000000", "585#4108100010000000",
                                                      "605#7000000000000000", "585#8008100000000305" };
}

void TestSimulatorOnVcan::transcripts()
{
    QFETCH(QStringList, frames);
    start();
    m_bus->forget();
    for (qsizetype i = 0; i < frames.size(); i += 2)
        QCOMPARE(frames[i] + " -> " + ask(frames[i]), frames[i] + " -> " + frames[i + 1]);
}

// Without the log, which would hold the domain in a single line, and which the test does not read meanwhile.
void TestSimulatorOnVcan::domainOf64KiBGoesBothWays()
{
    start({}, CSimulatorProcess::silent);
    m_bus->forget();
    stopHeartbeat();
    const QByteArray data = pattern(longestDomain);
    QCOMPARE(ask("605#2101210900000100"), QString("585#6001210900000000"));
    unsigned toggle = 0;
    for (int at = 0; at < longestDomain; at += 7, toggle ^= 0x10) {
        const QByteArray part = data.mid(at, 7);
        const unsigned command =
            toggle | static_cast<unsigned>(7 - part.size()) << 1 | (at + 7 >= longestDomain ? 1 : 0);
        QCOMPARE(ask(segmentRequest(command, part)), toggle != 0 ? "585#3000000000000000" : "585#2000000000000000");
    }
    QCOMPARE(ask("605#4001210900000000"), QString("585#4101210900000100"));
    QByteArray read;
    unsigned command = 0;
    for (toggle = 0; (command & 1) == 0 && read.size() < longestDomain; toggle ^= 0x10) {
        const QByteArray frame = QByteArray::fromHex(ask(segmentRequest(0x60 | toggle)).mid(4).toLatin1());
        QCOMPARE(frame.size(), 8);
        command = static_cast<unsigned char>(frame.at(0));
        QCOMPARE(command & 0xF0, toggle);
        read += frame.mid(1, 7 - (command >> 1 & 7));
    }
    QVERIFY((command & 1) != 0);
    QVERIFY(read == data);
}

void TestSimulatorOnVcan::otherTrafficIsIgnored()
{
    start();
    m_bus->forget();
    stopHeartbeat();
    can_frame error = frameFromText("004#0000000000000000");
    error.can_id |= CAN_ERR_FLAG;
    m_bus->send(error);
    for (const char* frame : { "00000605#4000100000000000", "605#R8", "605#", "605#40001000", "606#4000100000000000",
                               "585#4000100000000000", "000#02", "000#R2", "00000000#0205", "705#R1", "080#" })
        m_bus->send(frame);
    QCOMPARE(ask("605#4004200000000000"), QString("585#4F04200032000000"));
    QCOMPARE(m_bus->receiveAll(), QStringList());
}

void TestSimulatorOnVcan::nmtCommandsAndHeartbeat()
{
    start();
    m_bus->forget();
    QCOMPARE(ask("605#2B17100032000000"), QString("585#6017100000000000")); // 50 ms
    QVERIFY(m_bus->waitFor("705#7F"));
    m_bus->send("000#0105");
    QVERIFY(m_bus->waitFor("705#05"));
    m_bus->send("000#0200");
    QVERIFY(m_bus->waitFor("705#04"));
    m_bus->send("605#4000100000000000");
    m_bus->send("000#8000");
    QVERIFY(m_bus->waitFor("705#7F"));
    QCOMPARE(ask("605#4000100000000000"), QString("585#4300100091010F00"));
    m_bus->send("000#8105");
    QVERIFY(m_bus->waitFor("705#00"));
    QCOMPARE(ask("605#4017100000000000"), QString("585#4B171000E8030000"));
}

void TestSimulatorOnVcan::gatewayAndCanServeTheSameDevices()
{
    start();
    m_bus->forget();
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, m_simulator->port());
    QVERIFY(client.waitForConnected(patience));
    client.write("[1] 5 write 0x2005 0x0 u16 0x1234\r\n");
    while (!client.canReadLine())
        QVERIFY(client.waitForReadyRead(patience));
    QCOMPARE(client.readAll(), QByteArray("[1] OK\r\n"));
    QCOMPARE(ask("605#4005200000000000"), QString("585#4B05200034120000"));
    QVERIFY(m_simulator->hasLogged("\nnode 5 write 0x2005 0x00 u16 0x1234 = OK\n"));
    QVERIFY(m_simulator->hasLogged("\nnode 5 read 0x2005 0x00 u16 = 0x1234\n"));
    client.write("[2] 5 reset communication\r\n");
    QVERIFY(client.waitForBytesWritten(patience));
    QVERIFY(m_bus->waitFor("705#00"));
}

void TestSimulatorOnVcan::faults_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QStringList>("frames"); // what comes: in turn for each request that begins with "605#"
    const auto row = [](const char* fault, const QStringList& frames) { QTest::newRow(fault) << fault << frames; };
    row("toggle", { "605#4008100000000000", "585#4108100010000000", "605#6000000000000000", "585#1056656C6D6F7261" });
    row("command", { "605#4004200000000000", "585#EF04200032000000" });
    row("short", { "605#4004200000000000", "585#4F042000320000" });
    row("foreign", { "605#4004200000000000", "585#4F052000CD000000", "585#4F04200032000000" });
    row("segment", { "605#4008100000000000", "585#4108100010000000", "605#6000000000000000", "585#8008100000000008" });
    row("last", { "605#2108200002000000", "585#6008200000000000", "605#0B48690000000000", "585#8008200000000008" });
    row("filler", { "605#4004200000000000", "585#4F04200032FFFFFF" });
    row("double", { "605#4004200000000000", "585#4F04200032000000", "585#4F04200032000000" });
    row("abort=0x08000021", { "605#4004200000000000", "585#8004200021000008" });
}

void TestSimulatorOnVcan::faults()
{
    QFETCH(QString, fault);
    QFETCH(QStringList, frames);
    start({ "--fault", fault });
    m_bus->forget();
    for (const QString& frame : frames) {
        if (frame.startsWith("605#"))
            m_bus->send(frame);
        else
            QCOMPARE(answer(), frame);
    }
}

void TestSimulatorOnVcan::silenceAndDelay()
{
    start({ "--fault", "silence@2004", "--fault", "delay=300@2005" });
    m_bus->forget();
    stopHeartbeat();
    QElapsedTimer timer;
    timer.start();
    m_bus->send("605#4004200000000000");
    QCOMPARE(ask("605#4005200000000000"), QString("585#4B052000F4010000"));
    QVERIFY(timer.elapsed() >= 299);
    QCOMPARE(m_bus->receiveAll(), QStringList());
}

void TestSimulatorOnVcan::floodComesBeforeTheAnswer()
{
    start({ "--fault", "flood=1000@2004" });
    m_bus->forget();
    stopHeartbeat();
    m_bus->send("605#4004200000000000");
    const QStringList frames = m_bus->receiveCount(1001);
    QCOMPARE(frames.size(), 1001);
    QCOMPARE(frames.first(), QString("181#0000000000000000"));
    QCOMPARE(frames.last(), QString("585#4F04200032000000"));
}

void TestSimulatorOnVcan::interfaceThatIsTakenDownComesBack()
{
    const CVcanInterface interface;
    QVERIFY2(interface.exists(), CVcanInterface::problem());
    const CRawCan bus(interface.name());
    CSimulatorProcess simulator({ "--can", interface.name() });
    QVERIFY2(simulator.hasLogged(QString("CAN on ") + interface.name()), simulator.log());
    QVERIFY(bus.send("605#2B1710000A000000")); // a heartbeat each 10 ms
    QVERIFY(bus.waitFor("705#7F"));
    QVERIFY(interface.down());
    QVERIFY(simulator.hasLogged("can cannot send: Network is down\n"));
    QVERIFY(interface.up());
    QVERIFY(simulator.hasLogged("can sends again\n"));
    bus.forget(); // the socket reports once that the interface was down
    QVERIFY(bus.send("605#4000100000000000"));
    QVERIFY(bus.waitFor("585#4300100091010F00"));
    QCOMPARE(simulator.end(SIGTERM), 0);
}

void TestSimulatorOnVcan::interfaceThatVanishesEndsTheSimulator()
{
    const CVcanInterface interface;
    QVERIFY2(interface.exists(), CVcanInterface::problem());
    QProcess simulator;
    simulator.start(VELMORA_SIM, { "--can", interface.name(), "--node", "5=" VELMORA_SHARE "/velmora-demo.eds" });
    QVERIFY(QTest::qWaitFor([&] { return simulator.readAllStandardOutput().contains("CAN on"); }, patience));
    QVERIFY(interface.remove());
    QVERIFY(simulator.waitForFinished(patience));
    QCOMPARE(simulator.exitStatus(), QProcess::NormalExit);
    QCOMPARE(simulator.exitCode(), 1);
    QCOMPARE(simulator.readAllStandardError(), QByteArray("velmora-sim: ") + interface.name() + " was removed\n");
}

QTEST_GUILESS_MAIN(TestSimulatorOnVcan)
#include "TestSimulatorOnVcan.moc"
