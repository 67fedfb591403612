// How many messages the CAN controller takes from the socket, and to which object or the queue each goes.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"

#include <QtTest>

#include <cerrno>
#include <linux/can.h>

class TestCanCtrlDispatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lowestMatchingObjectTakesTheMessage();
    void everyObjectBut14Receives();
    void everyBitOfTheIdentifierIsCompared();
    void flagsOfTheIdentifier_data();
    void flagsOfTheIdentifier();
    void remoteMessageWithoutDataIsReceived();
    void lengthsBeyondEightStayInsideTheBuffers();
    void takesAtMostSoManyMessages();
    void takesNothingUnlessInitialised();
    void eachDrainTakesAtMost100_data();
    void eachDrainTakesAtMost100();
    void nothingElseTakesFromTheSocket();
    void failedOrShortReadEndsTheDrainAndALaterOneGoesOn_data();
    void failedOrShortReadEndsTheDrainAndALaterOneGoesOn();
    void withoutASocketNothingIsRead();
    void readingTheSocketNeverBlocks();
};

void TestCanCtrlDispatch::lowestMatchingObjectTakesTheMessage()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x100, 0x0801), 0); // a transmit object does not receive
    QCOMPARE(can_config(3, 0x100, 0x0804), 0);
    QCOMPARE(can_config(13, 0x100, 0x0803), 0);
    bus.inject(0x100, "01");
    bus.inject(0x101, "02");
    QCOMPARE(can_read_queue(100), 2);
    QCOMPARE(can_data(13), 0);
    QCOMPARE(received(3), "0: 01");
    QCOMPARE(queued(), "101 0: 02"); // only this one is queued
    QCOMPARE(queued(), "-30");
    can_delete(3);
    bus.inject(0x100, "03");
    QCOMPARE(received(13), "0: 03");
    can_delete(13);
    bus.inject(0x100, "04");
    QCOMPARE(queued(), "100 0: 04");
}

void TestCanCtrlDispatch::everyObjectBut14Receives()
{
    CStartedBus bus;
    for (short object = 0; object < 15; ++object)
        QCOMPARE(can_config(object, 0x200u + uint32_t(object), WORD(0x0803 + object % 2)), 0);
    for (uint32_t object = 0; object < 15; ++object)
        bus.inject(0x200 + object, qPrintable(QString::asprintf("%02X", object)));
    for (short object = 0; object < 14; ++object)
        QCOMPARE(received(object), QString::asprintf("0: %02X", unsigned(object)));
    QCOMPARE(queued(), "20E 0: 0E");
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlDispatch::everyBitOfTheIdentifierIsCompared()
{
    CStartedBus bus;
    QCOMPARE(can_config(3, 0x123, 0x0803), 0);
    for (unsigned bit = 0; bit < 11; ++bit) {
        const uint32_t other = 0x123 ^ 1U << bit;
        bus.inject(other, "01");
        QCOMPARE(received(3), "-30");
        QCOMPARE(queued(), QString::asprintf("%03X 0: 01", unsigned(other)));
    }
    bus.inject(0x123, "02");
    QCOMPARE(received(3), "0: 02");
}

void TestCanCtrlDispatch::flagsOfTheIdentifier_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<QString>("queue");
    QTest::newRow("data") << 0x123u << "123 0: 01 02";
    QTest::newRow("remote") << (CAN_RTR_FLAG | 0x123u) << "123 0: 01 02";
    QTest::newRow("beyond 11 bits") << 0x1FFFF923u << "123 0: 01 02";
    QTest::newRow("extended") << (CAN_EFF_FLAG | 0x123u) << "-30";
    QTest::newRow("extended, 29 bits") << (CAN_EFF_FLAG | 0x1FFFFFFFu) << "-30";
    QTest::newRow("extended remote") << (CAN_EFF_FLAG | CAN_RTR_FLAG | 0x123u) << "-30";
    QTest::newRow("error") << (CAN_ERR_FLAG | 0x123u) << "-30";
    QTest::newRow("all flags") << 0xFFFFFFFFu << "-30";
}

void TestCanCtrlDispatch::flagsOfTheIdentifier()
{
    QFETCH(uint, id);
    QFETCH(QString, queue);
    CStartedBus bus;
    bus.inject(id, "01 02");
    QCOMPARE(can_read_queue(100), 1); // the frame is counted, also when it is dropped
    QCOMPARE(queued(), queue);
    QCOMPARE(can_config(2, 0x123, 0x0803), 0);
    bus.inject(id, "01 02");
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(received(2), queue == "-30" ? "-30" : "0: 01 02");
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlDispatch::remoteMessageWithoutDataIsReceived()
{
    CStartedBus bus;
    QCOMPARE(can_config(2, 0x705, 0x0803), 0);
    bus.inject(CAN_RTR_FLAG | 0x705, "");
    QCOMPARE(received(2), "0:");
}

void TestCanCtrlDispatch::lengthsBeyondEightStayInsideTheBuffers()
{
    CStartedBus bus;
    for (const int length : { 9, 15, 64, 255 }) {
        bus.injectLength(0x123, length, "01 02 03 04 05 06 07 08");
        QCOMPARE(queued(), "123 0: 01 02 03 04 05 06 07 08");
        QCOMPARE(can_config(2, 0x123, 0x0803), 0);
        bus.injectLength(0x123, length, "01 02 03 04 05 06 07 08");
        QCOMPARE(received(2), "0: 01 02 03 04 05 06 07 08");
        can_delete(2);
    }
}

void TestCanCtrlDispatch::takesAtMostSoManyMessages()
{
    CStartedBus bus;
    fill(bus, 250);
    QCOMPARE(can_read_queue(1), 1);
    QCOMPARE(bus.count(CFakeBus::Read), 1);
    QCOMPARE(can_read_queue(9), 9);
    QCOMPARE(can_read_queue(100), 100);
    QCOMPARE(bus.count(CFakeBus::Select), 110);
    QCOMPARE(can_read_queue(100), 100);
    QCOMPARE(can_read_queue(100), 40);
    QCOMPARE(can_read_queue(100), 0);
    fill(bus, 250);
    QCOMPARE(can_read_queue(0), 250);
    QCOMPARE(can_read_queue(0), 0);
    QCOMPARE(bus.count(CFakeBus::Read), 500); // no read without a message
}

void TestCanCtrlDispatch::takesNothingUnlessInitialised()
{
    CFakeBus bus;
    QCOMPARE(can_read_queue(100), 0);
    QCOMPARE(can_read_queue(0), 0);
    QCOMPARE(bus.count(CFakeBus::Select), 0);
    QCOMPARE(can_init(-1, &bus.param), 0);
    fill(bus, 3);
    QCOMPARE(can_read_queue(100), 3); // also while stopped
    QCOMPARE(can_queue_clear(), 0);
}

void TestCanCtrlDispatch::eachDrainTakesAtMost100_data()
{
    QTest::addColumn<QByteArray>("call");
    for (const char* call : { "config", "receive", "receive_id", "data", "queue_get_message" })
        QTest::newRow(call) << QByteArray(call);
}

void TestCanCtrlDispatch::eachDrainTakesAtMost100()
{
    QFETCH(QByteArray, call);
    CStartedBus bus;
    QCOMPARE(can_config(2, 0x700, 0x0803), 0);
    fill(bus, 250);
    const auto drain = [&]() -> QString {
        if (call == "config")
            return QString::number(can_config(3, 0x701, 0x0803));
        if (call == "receive")
            return received(2);
        if (call == "receive_id")
            return receivedId(2);
        if (call == "data")
            return QString::number(can_data(2));
        return queued();
    };
    drain();
    QCOMPARE(bus.waiting(), 150);
    drain();
    QCOMPARE(bus.waiting(), 50);
    drain();
    QCOMPARE(bus.waiting(), 0);
}

void TestCanCtrlDispatch::nothingElseTakesFromTheSocket()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x100, 0x0801), 0);
    fill(bus, 3);
    const int polls = bus.count(CFakeBus::Select);
    can_transmit(0, 0, nullptr);
    can_update(0, 0, nullptr);
    can_busy(0);
    can_delete(0);
    can_queue_empty();
    can_queue_clear();
    can_queue_status();
    can_queue_disable();
    can_queue_enable();
    can_status(nullptr);
    can_busload(nullptr, nullptr);
    can_reset();
    can_start(0);
    can_is_timeout();
    CReceived read;
    QCOMPARE(can_receive(2, &read.length, read.data), -93);
    QCOMPARE(can_receive(2, nullptr, nullptr), -94);
    QCOMPARE(can_queue_get_message(nullptr, &read.length, read.data), -94);
    QCOMPARE(bus.count(CFakeBus::Select), polls);
    QCOMPARE(bus.waiting(), 3);
}

void TestCanCtrlDispatch::failedOrShortReadEndsTheDrainAndALaterOneGoesOn_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("size");
    QTest::newRow("select fails") << int(CFakeBus::Select) << -1;
    QTest::newRow("read fails") << int(CFakeBus::Read) << -1;
    for (const int size : { 0, 1, 8, 15 })
        QTest::addRow("%d bytes", size) << int(CFakeBus::Read) << size;
}

void TestCanCtrlDispatch::failedOrShortReadEndsTheDrainAndALaterOneGoesOn()
{
    QFETCH(int, call);
    QFETCH(int, size);
    CStartedBus bus;
    bus.inject(0x101, "01");
    if (size < 0)
        bus.fail(CFakeBus::ECall(call), ENETDOWN, 2);
    else
        bus.injectBytes(QByteArray(size, '\1'));
    bus.inject(0x102, "02");
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(bus.waiting(), 1);
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(queued(), "101 0: 01");
    QCOMPARE(queued(), "102 0: 02");
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlDispatch::withoutASocketNothingIsRead()
{
    CFakeBus bus;
    can_frame frame = {};
    QCOMPARE(can_read_socket(&frame), 0);
    QCOMPARE(can_read_queue(0), 0);
    bus.fail(CFakeBus::Bind, ENODEV); // leaves a socket, that is none to read from
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(can_read_socket(&frame), 0);
    QCOMPARE(can_read_queue(0), 0);
    QCOMPARE(bus.count(CFakeBus::Select), 0);
    QCOMPARE(can_exit(), 0);
}

void TestCanCtrlDispatch::readingTheSocketNeverBlocks()
{
    CStartedBus bus;
    can_frame frame = {};
    QCOMPARE(can_read_socket(&frame), 0);
    QCOMPARE(bus.count(CFakeBus::Read), 0);
    bus.inject(CAN_EFF_FLAG | 0x12345, "01 02 03");
    QCOMPARE(can_read_socket(&frame), 1);
    QCOMPARE(frame.can_id, CAN_EFF_FLAG | 0x12345);
    QCOMPARE(frame.len, 3);
    QCOMPARE(frame.data[2], 3);
    bus.injectBytes(QByteArray(15, '\0'));
    QCOMPARE(can_read_socket(&frame), 0);
    bus.fail(CFakeBus::Read, ENODEV);
    QCOMPARE(can_read_socket(&frame), 0);
    bus.inject(0x100, "");
    bus.fail(CFakeBus::Select, EINTR);
    QCOMPARE(can_read_socket(&frame), 0);
    QCOMPARE(can_read_socket(&frame), 1);
    QVERIFY(bus.finished());
}

QTEST_GUILESS_MAIN(TestCanCtrlDispatch)
#include "TestCanCtrlDispatch.moc"
