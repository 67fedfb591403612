// The devices on the simulated bus: who answers which frame, NMT, boot-up messages and heartbeats.
// SPDX-License-Identifier: MIT
#include "CanBusProbe.h"
#include "SheetFile.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>

class TestSimulatedCanBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void devicesSendTheirBootUpMessage();
    void framesForNoDeviceAreIgnored_data();
    void framesForNoDeviceAreIgnored();
    void devicesHaveServersOfTheirOwn();
    void nmtCommandsChangeTheState_data();
    void nmtCommandsChangeTheState();
    void stoppedDeviceAnswersNoSdo();
    void stopEndsTheTransfer();
    void stoppedOrResetDeviceSendsNoLateAnswer_data();
    void stoppedOrResetDeviceSendsNoLateAnswer();
    void resetEndsTheTransferAndSendsTheBootUpMessage();
    void resetBringsTheDefaultsBack();
    void heartbeatCarriesTheState();
    void heartbeatFollowsItsTimeAtOnce();
    void heartbeatKeepsItsPaceUnderOtherWrites();
    void heartbeatEndsWithTheTimeZero();
    void resetBringsTheHeartbeatOfTheDefaults();
    void heartbeatTimeNeedsNoReadAccess();
    void deviceWithoutHeartbeatTimeHasNoHeartbeat();
    void whatAnotherFrontEndDoesShowsOnTheBus();
    void transfersAndCommandsAreLogged();
    void anyFramesLeaveTheDevicesAnswering();
};

void TestSimulatedCanBus::devicesSendTheirBootUpMessage()
{
    CCanBusProbe probe;
    QCOMPARE(probe.take(), QByteArrayList());
    probe.bus().start();
    QCOMPARE(probe.take(), (QByteArrayList{ "705 00", "707 00" }));
}

void TestSimulatedCanBus::framesForNoDeviceAreIgnored_data()
{
    QTest::addColumn<QByteArray>("frame");
    for (const char* frame : {
             "606 40 00 10 00 00 00 00 00", // no such node
             "600 40 00 10 00 00 00 00 00", // no node-id
             "585 40 00 10 00 00 00 00 00", // an answer
             "605 40 00 10 00",             // too short
             "605",
             "205 40 00 10 00 00 00 00 00", // a PDO
             "705 00",                      // a boot-up message
             "080",                         // SYNC
             "7FF 40 00 10 00 00 00 00 00", "000", "000 02",
             "000 02 05 00", // three bytes are no NMT command
             "000 03 05",    // no such command
             "000 02 06",    // no such node
         })
        QTest::newRow(frame) << QByteArray(frame);
}

void TestSimulatedCanBus::framesForNoDeviceAreIgnored()
{
    QFETCH(QByteArray, frame);
    CCanBusProbe probe;
    QCOMPARE(probe.ask(frame), QByteArray());
    QCOMPARE(probe.ask("605 40 00 10 00 00 00 00 00"), QByteArray("585 43 00 10 00 91 01 0F 00"));
}

void TestSimulatedCanBus::devicesHaveServersOfTheirOwn()
{
    CCanBusProbe probe;
    QCOMPARE(probe.ask("605 40 09 10 00 00 00 00 00"), QByteArray("585 41 09 10 00 06 00 00 00"));
    QCOMPARE(probe.ask("607 40 08 10 00 00 00 00 00"), QByteArray("587 41 08 10 00 10 00 00 00"));
    QCOMPARE(probe.ask("605 60 00 00 00 00 00 00 00"), QByteArray("585 03 48 57 20 31 2E 32 00"));
    QCOMPARE(probe.ask("607 60 00 00 00 00 00 00 00"), QByteArray("587 00 56 65 6C 6D 6F 72 61"));
    QCOMPARE(probe.ask("605 2F 04 20 00 0A 00 00 00"), QByteArray("585 60 04 20 00 00 00 00 00"));
    QCOMPARE(probe.ask("607 40 04 20 00 00 00 00 00"), QByteArray("587 4F 04 20 00 32 00 00 00"));
}

void TestSimulatedCanBus::nmtCommandsChangeTheState_data()
{
    QTest::addColumn<QByteArray>("frame");
    QTest::addColumn<tNmtState>("state5");
    QTest::addColumn<tNmtState>("state7");
    QTest::addColumn<QByteArray>("sent");
    const auto row = [](const char* frame, tNmtState state5, tNmtState state7, const char* sent) {
        QTest::newRow(frame) << QByteArray(frame) << state5 << state7 << QByteArray(sent);
    };
    row("000 01 05", stateOperational, statePreOperational, "");
    row("000 01 00", stateOperational, stateOperational, "");
    row("000 02 07", statePreOperational, stateStopped, "");
    row("000 02 00", stateStopped, stateStopped, "");
    row("000 80 00", statePreOperational, statePreOperational, "");
    row("000 81 05", statePreOperational, statePreOperational, "705 00");
    row("000 82 00", statePreOperational, statePreOperational, "705 00 | 707 00");
}

void TestSimulatedCanBus::nmtCommandsChangeTheState()
{
    QFETCH(QByteArray, frame);
    QFETCH(tNmtState, state5);
    QFETCH(tNmtState, state7);
    QFETCH(QByteArray, sent);
    CCanBusProbe probe;
    // The sheet's heartbeat comes back with a reset; it is later than the end of this test.
    QCOMPARE(probe.ask(frame), sent);
    QCOMPARE(probe.network().node(5)->state(), state5);
    QCOMPARE(probe.network().node(7)->state(), state7);
}

void TestSimulatedCanBus::stoppedDeviceAnswersNoSdo()
{
    CCanBusProbe probe;
    probe.put("000 02 05");
    QCOMPARE(probe.ask("605 40 00 10 00 00 00 00 00"), QByteArray());
    QCOMPARE(probe.ask("607 40 00 10 00 00 00 00 00"), QByteArray("587 43 00 10 00 91 01 0F 00"));
    probe.put("000 80 05");
    QCOMPARE(probe.ask("605 40 00 10 00 00 00 00 00"), QByteArray("585 43 00 10 00 91 01 0F 00"));
}

void TestSimulatedCanBus::stopEndsTheTransfer()
{
    CCanBusProbe probe;
    probe.ask("605 40 09 10 00 00 00 00 00");
    probe.put("000 02 05");
    probe.put("000 01 05");
    QCOMPARE(probe.ask("605 60 00 00 00 00 00 00 00"), QByteArray("585 80 09 10 00 01 00 04 05"));
}

void TestSimulatedCanBus::stoppedOrResetDeviceSendsNoLateAnswer_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("sent");
    QTest::newRow("stop") << QByteArray("000 02 05") << QByteArray();
    QTest::newRow("reset node") << QByteArray("000 81 05") << QByteArray("705 00");
    QTest::newRow("reset communication") << QByteArray("000 82 05") << QByteArray("705 00");
}

void TestSimulatedCanBus::stoppedOrResetDeviceSendsNoLateAnswer()
{
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, sent);
    CCanBusProbe probe({ "delay=50" });
    QCOMPARE(probe.ask("605 40 00 10 00 00 00 00 00"), QByteArray());
    QCOMPARE(probe.ask("607 40 00 10 00 00 00 00 00"), QByteArray());
    QCOMPARE(probe.ask(command), sent);
    if (!sent.isEmpty())
        probe.stopHeartbeat(5); // which the reset has brought back
    QVERIFY(probe.await(1));    // the answer of node 5 would have come before
    QCOMPARE(probe.take(), QByteArrayList{ "587 43 00 10 00 91 01 0F 00" });
    probe.put("000 80 05");
    QCOMPARE(probe.ask("605 40 00 10 00 00 00 00 00"), QByteArray());
    QVERIFY(probe.await(1));
    QCOMPARE(probe.take(), QByteArrayList{ "585 43 00 10 00 91 01 0F 00" });
}

void TestSimulatedCanBus::resetEndsTheTransferAndSendsTheBootUpMessage()
{
    for (const char* reset : { "000 81 05", "000 82 00" }) {
        CCanBusProbe probe;
        probe.ask("605 40 09 10 00 00 00 00 00");
        QVERIFY(probe.ask(reset).startsWith("705 00"));
        QCOMPARE(probe.ask("605 60 00 00 00 00 00 00 00"), QByteArray("585 80 09 10 00 01 00 04 05"));
    }
}

void TestSimulatedCanBus::resetBringsTheDefaultsBack()
{
    CCanBusProbe probe;
    probe.ask("605 2F 04 20 00 0A 00 00 00");
    probe.put("000 82 05");
    QCOMPARE(probe.ask("605 40 04 20 00 00 00 00 00"), QByteArray("585 4F 04 20 00 0A 00 00 00"));
    probe.put("000 81 05");
    QCOMPARE(probe.ask("605 40 04 20 00 00 00 00 00"), QByteArray("585 4F 04 20 00 32 00 00 00"));
}

void TestSimulatedCanBus::heartbeatCarriesTheState()
{
    CCanBusProbe probe;
    QCOMPARE(probe.ask("605 2B 17 10 00 0A 00 00 00"), QByteArray("585 60 17 10 00 00 00 00 00"));
    for (const auto& [command, heartbeat] : std::initializer_list<std::pair<const char*, const char*>>{
             { "000 80 05", "705 7F" }, { "000 01 05", "705 05" }, { "000 02 05", "705 04" } }) {
        QCOMPARE(probe.ask(command), QByteArray());
        QVERIFY(probe.await(2));
        const QByteArrayList sent = probe.take(); // a busy machine may be late enough for one more
        QVERIFY2(sent.count(heartbeat) == sent.size(), sent.join(" | "));
    }
}

void TestSimulatedCanBus::heartbeatFollowsItsTimeAtOnce()
{
    CCanBusProbe probe;
    probe.put("605 2B 17 10 00 30 75 00 00"); // 30 s
    QElapsedTimer timer;
    timer.start();
    probe.put("605 2B 17 10 00 64 00 00 00"); // 100 ms
    probe.take();
    QVERIFY(probe.await(2));
    QVERIFY2(timer.elapsed() >= 190, "two periods of 100 ms");
    QVERIFY2(timer.elapsed() < 59'000, "not two of 30 s");
    QCOMPARE(probe.take().first(2), (QByteArrayList{ "705 7F", "705 7F" }));
}

// If each write restarted the timer, a client that writes all the time would suppress the heartbeat.
void TestSimulatedCanBus::heartbeatKeepsItsPaceUnderOtherWrites()
{
    CCanBusProbe probe;
    probe.put("605 2B 17 10 00 32 00 00 00");
    probe.take();
    QVERIFY(QTest::qWaitFor(
        [&] {
            probe.put("605 2F 04 20 00 0A 00 00 00");
            probe.put("605 2B 17 10 00 32 00 00 00");
            return probe.take().contains("705 7F");
        },
        patience));
}

void TestSimulatedCanBus::heartbeatEndsWithTheTimeZero()
{
    CCanBusProbe probe;
    probe.put("605 2B 17 10 00 0A 00 00 00");
    probe.take();
    QVERIFY(probe.await(1));
    probe.put("605 2B 17 10 00 00 00 00 00");
    probe.put("607 2B 17 10 00 14 00 00 00");
    probe.take();
    QVERIFY(probe.await(2)); // twice as slow: those of node 5 would have come before
    QVERIFY(!probe.take().contains("705 7F"));
}

void TestSimulatedCanBus::resetBringsTheHeartbeatOfTheDefaults()
{
    CCanBusProbe probe;
    probe.put("605 2B 17 10 00 0A 00 00 00");
    probe.take();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(probe.ask("000 82 05"), QByteArray("705 00"));
    QVERIFY(probe.await(1));
    QVERIFY2(timer.elapsed() >= 990, "the sheet's time is 1 s");
    QCOMPARE(probe.take().first(), QByteArray("705 7F"));
}

void TestSimulatedCanBus::heartbeatTimeNeedsNoReadAccess()
{
    const CSheetFile sheet("[MandatoryObjects]\n1=0x1017\n"
                           "[1017]\nParameterName=Time\nObjectType=7\nDataType=6\nAccessType=wo\n");
    CCanBusProbe probe({}, sheet.name());
    QCOMPARE(probe.ask("605 40 17 10 00 00 00 00 00"), QByteArray("585 80 17 10 00 01 00 01 06"));
    QCOMPARE(probe.ask("605 2B 17 10 00 0A 00 00 00"), QByteArray("585 60 17 10 00 00 00 00 00"));
    QVERIFY(probe.await(1));
    QCOMPARE(probe.take().first(), QByteArray("705 7F"));
}

void TestSimulatedCanBus::deviceWithoutHeartbeatTimeHasNoHeartbeat()
{
    const CSheetFile sheet("[MandatoryObjects]\n1=0x1000\n"
                           "[1000]\nParameterName=Type\nObjectType=7\nDataType=7\nAccessType=rw\n");
    CCanBusProbe probe({}, sheet.name());
    probe.bus().start();
    QCOMPARE(probe.take(), (QByteArrayList{ "705 00", "707 00" }));
    QCOMPARE(probe.ask("000 01 05"), QByteArray());
    QCOMPARE(probe.ask("605 23 00 10 00 0A 00 00 00"), QByteArray("585 60 00 10 00 00 00 00 00"));
    CCanBusProbe other;
    other.put("605 2B 17 10 00 0A 00 00 00");
    other.take();
    QVERIFY(other.await(5)); // meanwhile another device's come
    QCOMPARE(probe.take(), QByteArrayList());
}

void TestSimulatedCanBus::whatAnotherFrontEndDoesShowsOnTheBus()
{
    CCanBusProbe probe;
    probe.network().command(0, nmtResetCommunication);
    QCOMPARE(probe.take(), (QByteArrayList{ "705 00", "707 00" }));
    probe.stopHeartbeat(5);
    QCOMPARE(probe.network().node(5)->write(0x2004, 0, bytes("0B")), abortNone);
    QCOMPARE(probe.ask("605 40 04 20 00 00 00 00 00"), QByteArray("585 4F 04 20 00 0B 00 00 00"));
    QCOMPARE(probe.network().node(7)->write(0x1017, 0, bytes("0A 00")), abortNone);
    QVERIFY(probe.await(1));
    QCOMPARE(probe.take().first(), QByteArray("707 7F"));
}

void TestSimulatedCanBus::transfersAndCommandsAreLogged()
{
    CCanBusProbe probe({ "silence@2005" });
    probe.put("605 40 17 10 00 00 00 00 00");
    probe.put("607 23 00 10 00 01 00 00 00");
    probe.put("605 40 05 20 00 00 00 00 00");
    for (const char* command : { "000 01 05", "000 02 07", "000 80 00", "000 81 00", "000 82 05" })
        probe.put(command);
    QCOMPARE(probe.log(), (QByteArrayList{
                              "node 5 read 0x1017 0x00 u16 = 0x0000",
                              "node 7 write 0x1000 0x00 u32 0x00000001 = ERROR: 0x06010002",
                              "node 5 fault silence",
                              "node 5 read 0x2005 0x00 u16 = 0x01F4",
                              "node 5 start",
                              "node 7 stop",
                              "node 0 preoperational",
                              "node 0 reset node",
                              "node 5 reset communication",
                          }));
}

void TestSimulatedCanBus::anyFramesLeaveTheDevicesAnswering()
{
    CCanBusProbe probe;
    QRandomGenerator random(4711);
    const quint32 identifiers[] = { 0x000, 0x605, 0x607, 0x605, 0x607, 0x605, 0x607, 0x705 };
    for (int i = 0; i < 100000; ++i) {
        tCanFrame frame{ identifiers[random.bounded(8)], QByteArray(random.bounded(10) == 0 ? 7 : 8, '\0') };
        for (char& byte : frame.data)
            byte = static_cast<char>(random.bounded(256));
        // Often an entry that is there, and the beginning of a transfer.
        if (random.bounded(3) == 0)
            frame.data.replace(0, 4, bytes(random.bounded(2) == 0 ? "40 08 20 00" : "20 01 21 09"));
        if (frame.cobId == 0)
            frame.data = frame.data.left(2);
        probe.bus().receive(frame);
        for (const QByteArray& sent : probe.take())
            QVERIFY2(sent.startsWith("585 ") || sent.startsWith("587 ") ? sent.size() == 27 : sent.size() == 6, sent);
    }
    probe.put("000 81 00");
    QCOMPARE(probe.ask("605 40 00 10 00 00 00 00 00"), QByteArray("585 43 00 10 00 91 01 0F 00"));
}

QTEST_GUILESS_MAIN(TestSimulatedCanBus)
#include "TestSimulatedCanBus.moc"
