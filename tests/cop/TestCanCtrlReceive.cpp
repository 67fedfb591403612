// Receiving with the message objects of the CAN controller.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"

#include <QtTest>

class TestCanCtrlReceive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void receiveChecksInThisOrder();
    void receivesEachLength_data();
    void receivesEachLength();
    void emptyReceiverIsShownUntilARead();
    void secondMessageOverwritesTheFirstAndIsLostForGood();
    void countedMessagesDoNotWrapToNone_data();
    void countedMessagesDoNotWrapToNone();
    void dataIsZeroInEachInvalidCase();
    void object14IsTheQueueWhileItIsEnabled();
};

void TestCanCtrlReceive::receiveChecksInThisOrder()
{
    CFakeBus bus;
    CReceived read;
    uint32_t id = 0;
    const auto receive = [&](short object, short* length, BYTE* data) {
        const short plain = can_receive(object, length, data);
        const short identified = can_receive_id(object, length, data, &id);
        return plain == identified ? plain : short(1000);
    };
    QCOMPARE(receive(99, nullptr, nullptr), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(receive(99, nullptr, nullptr), -9);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_config(1, 0x124, 0x0002), 0);
    QCOMPARE(can_config(2, 0x125, 0x0803), 0);
    QCOMPARE(can_config(14, 0x127, 0x0803), 0);
    for (const int object : { -32768, -1, 15, 32767 })
        QCOMPARE(receive(short(object), nullptr, nullptr), -93);
    for (const int object : { 0, 2, 5, 14 }) { // the pointers are checked before the kind of the object
        QCOMPARE(receive(short(object), nullptr, read.data), -94);
        QCOMPARE(receive(short(object), &read.length, nullptr), -94);
    }
    QCOMPARE(can_receive_id(2, &read.length, read.data, nullptr), -94);
    for (const int object : { 0, 1, 5, 14 })
        QCOMPARE(receive(short(object), &read.length, read.data), -93);
    QCOMPARE(receive(2, &read.length, read.data), -30);
    QCOMPARE(read.text(-30), "-30");
    QCOMPARE(bus.descriptors(), 1);
}

void TestCanCtrlReceive::receivesEachLength_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("length");
    for (const int mode : { 3, 4 })
        for (int length = 0; length <= 8; ++length)
            QTest::addRow("mode %d, %d bytes", mode, length) << mode << length;
}

void TestCanCtrlReceive::receivesEachLength()
{
    QFETCH(int, mode);
    QFETCH(int, length);
    CStartedBus bus;
    const QByteArray text = QByteArray("11 22 33 44 55 66 77 88").left(qMax(0, 3 * length - 1));
    QCOMPARE(can_config(5, 0x7FF, WORD(0x0200 + mode)), 0);
    bus.inject(0x7FF, text.constData());
    QCOMPARE(can_data(5), 1);
    QCOMPARE(received(5), QString("0:" + (length > 0 ? " " + text : QByteArray())));
    QCOMPARE(can_data(5), 0);
    QCOMPARE(received(5), "-30");
    bus.inject(0x7FF, text.constData());
    QCOMPARE(receivedId(5), QString("7FF 0:" + (length > 0 ? " " + text : QByteArray())));
    QCOMPARE(receivedId(5), "-30");
}

void TestCanCtrlReceive::emptyReceiverIsShownUntilARead()
{
    CStartedBus bus;
    QCOMPARE(can_config(5, 0x100, 0x0803), 0);
    QCOMPARE(can_state.byte, 0x00);
    QCOMPARE(received(5), "-30");
    QCOMPARE(can_state.byte, 0x04);
    bus.inject(0x100, "01");
    QCOMPARE(can_data(5), 1);
    QCOMPARE(can_state.byte, 0x04);
    QCOMPARE(received(5), "0: 01");
    QCOMPARE(can_state.byte, 0x00);
}

void TestCanCtrlReceive::secondMessageOverwritesTheFirstAndIsLostForGood()
{
    CStartedBus bus;
    QCOMPARE(can_config(5, 0x100, 0x0803), 0);
    bus.inject(0x100, "01 02 03");
    bus.inject(0x100, "04");
    QCOMPARE(can_data(5), 1);
    QCOMPARE(can_state.byte, 0x00); // set only by the read
    QCOMPARE(received(5), "0: 04");
    QCOMPARE(can_state.byte, 0x02);
    QCOMPARE(received(5), "-30");
    QCOMPARE(can_state.byte, 0x06);
    bus.inject(0x100, "05");
    QCOMPARE(received(5), "0: 05"); // not lost, but the bit of the lost one stays set
    QCOMPARE(can_state.byte, 0x02);
    can_reset();
    QCOMPARE(can_state.byte, 0x82);
    can_start(0);
    QCOMPARE(can_state.byte, 0x02);
    can_exit();
    QCOMPARE(can_state.byte, 0x82);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_state.byte, 0x80);
}

void TestCanCtrlReceive::countedMessagesDoNotWrapToNone_data()
{
    QTest::addColumn<int>("messages");
    for (const int messages : { 32767, 32768, 65536, 65537, 70000 })
        QTest::addRow("%d", messages) << messages;
}

void TestCanCtrlReceive::countedMessagesDoNotWrapToNone()
{
    QFETCH(int, messages);
    CStartedBus bus;
    QCOMPARE(can_config(5, 0x100, 0x0803), 0);
    for (int message = 0; message < messages; ++message)
        bus.inject(0x100, "01");
    QCOMPARE(can_read_queue(0), messages);
    QCOMPARE(can_data(5), 1);
    QCOMPARE(received(5), "0: 01");
    QCOMPARE(can_state.b.message_lost, 1);
}

void TestCanCtrlReceive::dataIsZeroInEachInvalidCase()
{
    CFakeBus bus;
    QCOMPARE(can_data(2), 0);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    QCOMPARE(can_config(2, 0x125, 0x0803), 0);
    QCOMPARE(can_config(14, 0x126, 0x0803), 0);
    bus.inject(0x125, "01");
    bus.inject(0x126, "01");
    QCOMPARE(can_data(2), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_data(2), 1);
    for (const int object : { -32768, -1, 0, 1, 14, 15, 32767 })
        QCOMPARE(can_data(short(object)), 0);
}

void TestCanCtrlReceive::object14IsTheQueueWhileItIsEnabled()
{
    CStartedBus bus;
    QCOMPARE(can_config(14, 0x100, 0x0803), 0);
    QCOMPARE(received(14), "-93");
    QCOMPARE(receivedId(14), "-93");
    bus.inject(0x100, "01");
    QCOMPARE(can_data(14), 0);
    QCOMPARE(queued(), "100 0: 01");
    can_queue_disable();
    QCOMPARE(received(14), "-30");
    QCOMPARE(receivedId(14), "-30");
    bus.inject(0x100, "02"); // object 14 never receives
    QCOMPARE(can_data(14), 0);
    QCOMPARE(received(14), "-30");
    can_queue_enable();
    QCOMPARE(queued(), "-30");
}

QTEST_GUILESS_MAIN(TestCanCtrlReceive)
#include "TestCanCtrlReceive.moc"
