// The state inside the CAN controller, where calls do not show it. Includes the module itself instead of linking it.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"

#include <QtTest>

#include <cerrno>

#include "cop/can_ctrl.cpp"

class TestCanCtrlState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsOpenAtFirst() // has to run first
    {
        QCOMPARE(fd, -1);
        QCOMPARE(QByteArray(ifname, sizeof ifname), QByteArray(16, '\0'));
        QCOMPARE(family, 29);
        QCOMPARE(type, 3);
        QCOMPARE(protocol, 1);
        QCOMPARE(int(init), 0);
        QCOMPARE(int(can_baudrate), 255);
        QCOMPARE(can_state.byte, 0x80);
        QCOMPARE(int(std::size(msg_buf)), 15);
        QCOMPARE(int(std::size(msg_que)), 16384);
        QCOMPARE(int(sizeof hardware), 256);
        QCOMPARE(int(sizeof software), 256);
    }

    void bitTimingsAreInTheOrderOfTheIndexes()
    {
        const QList<int> rates(std::begin(bit_timing), std::end(bit_timing));
        QCOMPARE(rates, (QList<int>{ 1000, 0, 500, 250, 125, 100, 50, 20, 10 }));
    }

    void stateBitsHaveTheirPlaces()
    {
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.queue_overrun = 1; }), 0x01);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.message_lost = 1; }), 0x02);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.receiver_empty = 1; }), 0x04);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.transmitter_busy = 1; }), 0x08);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.bus_error = 1; }), 0x10);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.warning_level = 1; }), 0x20);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.bus_off = 1; }), 0x40);
        QCOMPARE(stateOf([](CAN_STATE& state) { state.b.can_stopped = 1; }), 0x80);
    }

    void startNotesItsIndex()
    {
        CFakeBus bus;
        QCOMPARE(can_init(-1, &bus.param), 0);
        QCOMPARE(can_start(8), 0);
        QCOMPARE(int(can_baudrate), 8);
        QCOMPARE(can_start(2), -8);
        can_reset();
        QCOMPARE(can_start(9), -91);
        QCOMPARE(can_start(1), -91);
        QCOMPARE(int(can_baudrate), 8);
    }

    void resetRefusesIndex1WhileStarted()
    {
        CStartedBus bus;
        can_baudrate = 1; // can_start refuses it
        QCOMPARE(can_reset(), -91);
        QCOMPARE(can_state.byte, 0x00);
        can_state.byte = 0x80;
        QCOMPARE(can_reset(), 0);
        can_state.byte = 0x00;
        can_baudrate = 0;
        QCOMPARE(can_reset(), 0);
        can_exit();
        can_baudrate = 1;
        QCOMPARE(can_reset(), -95);
        can_baudrate = 255;
    }

    void exitForgetsTheInterface()
    {
        CFakeBus bus;
        bus.param = { "can0", 30, 2, 7 };
        QCOMPARE(can_init(-1, &bus.param), 0);
        QVERIFY(fd >= 0);
        QCOMPARE(int(init), 1);
        QCOMPARE(can_exit(), 0);
        QCOMPARE(fd, -1);
        QCOMPARE(int(init), 0);
        QCOMPARE(QByteArray(ifname, sizeof ifname), QByteArray(16, '\0'));
        QCOMPARE(family, 29);
        QCOMPARE(type, 3);
        QCOMPARE(protocol, 1);
    }

    void failedBindKeepsItsSocketButIsNotInitialised()
    {
        CFakeBus bus;
        bus.fail(CFakeBus::Bind, EADDRINUSE);
        QCOMPARE(can_init(-1, &bus.param), -10000);
        QVERIFY(fd >= 0);
        QCOMPARE(int(init), 0);
        QCOMPARE(can_exit(), 0);
        QCOMPARE(fd, -1);
        bus.fail(CFakeBus::Socket, EMFILE);
        QCOMPARE(can_init(-1, &bus.param), -10000);
        QCOMPARE(fd, -1);
    }

    void failedOpeningLeavesAllButTheSocketAlone_data()
    {
        QTest::addColumn<int>("board");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("call");
        QTest::addColumn<int>("result");
        QTest::newRow("board") << 0 << QByteArray("can0") << -1 << -93;
        QTest::newRow("no name") << -1 << QByteArray() << -1 << -94;
        QTest::newRow("no interface") << -1 << QByteArray("can9") << -1 << -10000;
        QTest::newRow("socket fails") << -1 << QByteArray("can0") << int(CFakeBus::Socket) << -10000;
        QTest::newRow("bind fails") << -1 << QByteArray("can0") << int(CFakeBus::Bind) << -10000;
    }
    void failedOpeningLeavesAllButTheSocketAlone()
    {
        QFETCH(int, board);
        QFETCH(QByteArray, name);
        QFETCH(int, call);
        QFETCH(int, result);
        CStartedBus bus;
        leaveTraces(bus);
        _can_param other = { name.isNull() ? nullptr : name.constData(), 29, 3, 1 };
        if (call >= 0)
            bus.fail(CFakeBus::ECall(call), EPERM);
        QCOMPARE(can_init(board, &other), result);
        QCOMPARE(can_state.byte, 0x86);
        QCOMPARE(object(3), "3 123: 0, 1 bytes 02 00 00 00 00 00 00 00");
        QCOMPARE(object(4), "4 124: 1, 1 bytes 03 00 00 00 00 00 00 00");
        QVERIFY(!queue_enabled);
        QCOMPARE(can_queue_empty(), 0); // enabling it would empty it
        QCOMPARE(int(queue_error), -30);
        bus.heal();
        can_exit();
        QCOMPARE(can_init(-1, &bus.param), 0);
        QCOMPARE(can_state.byte, 0x80);
        QCOMPARE(int(msg_buf[3].control), 0);
        QCOMPARE(int(msg_buf[4].control), 0);
        QCOMPARE(can_queue_empty(), 1);
    }

    void nameOf16CharactersFillsItsField()
    {
        CFakeBus bus;
        bus.param.ifname = "abcdefghijklmnopq";
        QCOMPARE(can_init(-1, &bus.param), -10000);
        QCOMPARE(QByteArray(ifname, sizeof ifname), QByteArray("abcdefghijklmnop"));
    }

    void configurationSetsTheWholeObject()
    {
        CStartedBus bus;
        QCOMPARE(can_config(4, 0x7FF, 0x0803), 0);
        bus.inject(0x7FF, "01 02 03");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(object(4), "3 7FF: 1, 3 bytes 01 02 03 00 00 00 00 00");
        QCOMPARE(msg_buf[4].time_stamp, 0xFFFFFFFFu);
        QCOMPARE(can_config(4, 0x123, 0x0502), 0);
        QCOMPARE(object(4), "2 123: 0, 5 bytes 00 00 00 00 00 00 00 00");
        QCOMPARE(can_delete(4), 0);
        QCOMPARE(int(msg_buf[4].control), 0);
        QCOMPARE(int(msg_buf[4].count), 0);
    }

    void sendingKeepsTheLengthAndCounts()
    {
        CStartedBus bus;
        const BYTE data[] = { 1, 2, 3 };
        QCOMPARE(can_config(0, 0x123, 0x0801), 0);
        msg_buf[0].time_stamp = 0;
        bus.fail(CFakeBus::Write, ENOBUFS);
        QCOMPARE(can_transmit(0, 3, data), -20);
        QCOMPARE(int(msg_buf[0].length), 3);
        QCOMPARE(int(msg_buf[0].count), 1);
        QCOMPARE(msg_buf[0].time_stamp, 0xFFFFFFFFu);
        QCOMPARE(can_transmit(0, 2, data), 0);
        QCOMPARE(int(msg_buf[0].length), 2);
        QCOMPARE(int(msg_buf[0].count), 0);
        QCOMPARE(can_update(0, 8, data), -98);
        QCOMPARE(int(msg_buf[0].length), 2);
    }

    void nullSendsWhatTheObjectHolds()
    {
        CStartedBus bus;
        QCOMPARE(can_config(0, 0x123, 0x0801), 0);
        msg_buf[0].data[0] = 0xAA;
        msg_buf[0].data[2] = 0xBB;
        QCOMPARE(can_transmit(0, 3, nullptr), 0);
        QCOMPARE(bus.written(), QStringList{ "123: AA 00 BB" });
    }

    void receivingCountsUntilTheRead()
    {
        CStartedBus bus;
        QCOMPARE(can_config(4, 0x123, 0x0804), 0);
        for (short count = 1; count <= 3; ++count) {
            bus.inject(0x123, "01 02 03 04 05 06 07 08");
            msg_buf[4].time_stamp = 0;
            QCOMPARE(can_data(4), 1);
            QCOMPARE(msg_buf[4].count, count);
            QCOMPARE(msg_buf[4].time_stamp, 0xFFFFFFFFu);
        }
        QCOMPARE(received(4), "0: 01 02 03 04 05 06 07 08");
        QCOMPARE(int(msg_buf[4].count), 0);
    }

    void queueEntryHasNoRealTimeStamp()
    {
        CStartedBus bus;
        const int at = head;
        msg_que[at].time_stamp = 0;
        bus.inject(0x40000123, "01 02");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(msg_que[at].cob_id, 0x123u);
        QCOMPARE(int(msg_que[at].length), 2);
        QCOMPARE(int(msg_que[at].data[1]), 2);
        QCOMPARE(msg_que[at].time_stamp, 0xFFFFFFFFu);
    }

    void headAndTailGoRound()
    {
        CStartedBus bus;
        head = tail = 16383;
        bus.inject(0x100, "");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(head, 0);
        QCOMPARE(tail, 16383);
        QCOMPARE(queued(), "100 0:");
        QCOMPARE(tail, 0);
    }

    void overrunDropsWhenOneSlotIsStillFree_data()
    {
        QTest::addColumn<int>("first");
        for (const int first : { 0, 1, 2, 8000, 16382, 16383 })
            QTest::addRow("%d", first) << first;
    }
    void overrunDropsWhenOneSlotIsStillFree()
    {
        QFETCH(int, first);
        CStartedBus bus;
        tail = first;
        head = (first + 16381) % 16384;
        bus.inject(0x100, "");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(head, (first + 16382) % 16384);
        QCOMPARE(tail, first);
        QCOMPARE(can_queue_status(), 0);
        bus.inject(0x100, "");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(head, (first + 16383) % 16384);
        QCOMPARE(tail, (first + 1) % 16384);
        QCOMPARE(can_queue_status(), -40);
    }

    void loadIsTheShareOfTheLimit_data()
    {
        QTest::addColumn<int>("waiting");
        QTest::addColumn<int>("limit");
        QTest::addColumn<int>("load");
        struct {
            int waiting;
            int limit;
            int load;
        } const rows[] = { { 0, 100, 0 }, { 37, 100, 37 }, { 100, 100, 100 }, { 150, 100, 100 }, { 2, 8, 25 },
                           { 1, 3, 33 },  { 0, 0, 0 },     { 655, 0, 0 },     { 656, 0, 1 },     { 1311, 0, 2 } };
        for (const auto& row : rows)
            QTest::addRow("%d of %d", row.waiting, row.limit) << row.waiting << row.limit << row.load;
    }
    void loadIsTheShareOfTheLimit()
    {
        QFETCH(int, waiting);
        QFETCH(int, limit);
        QFETCH(int, load);
        CStartedBus bus;
        que_load = 77;
        for (int message = 0; message < waiting; ++message)
            bus.inject(message % 2 == 0 ? 0x100 : 0x80000100, ""); // those that are dropped count as well
        can_read_queue(limit);
        QCOMPARE(int(que_load), load);
    }

    void timerIsAnAbsoluteTimeInMicroseconds()
    {
        CFakeBus bus;
        QCOMPARE(can_start_timer(0), 0);
        const auto now = llUntilStop;
        QVERIFY(now > 0xFFFFFFFFu);
        QCOMPARE(can_start_timer(65535), 0);
        QCOMPARE(llUntilStop, now + 65535000u + unsigned(bus.step));
    }

    void clockThatFailsOnceHoldsNobodyUp()
    {
        CFakeBus bus;
        bus.fail(CFakeBus::Gettimeofday, EFAULT);
        QCOMPARE(can_start_timer(20), 0);
        QCOMPARE(can_is_timeout(), 1); // the deadline has long passed
        QCOMPARE(can_start_timer(20), 0);
        bus.fail(CFakeBus::Gettimeofday, EFAULT);
        can_is_timeout();
        QCOMPARE(can_is_timeout(), 0);
        bus.advance(20);
        QCOMPARE(can_is_timeout(), 1);
    }

private:
    // Closes the controller with a message in an object and another in the queue, an error of the queue and state bits.
    static void leaveTraces(CFakeBus& bus)
    {
        QCOMPARE(queued(), "-30");
        QCOMPARE(can_config(3, 0x123, 0x0803), 0);
        QCOMPARE(can_config(4, 0x124, 0x0804), 0);
        bus.inject(0x123, "01");
        bus.inject(0x123, "02"); // the one before is lost
        QCOMPARE(received(3), "0: 02");
        bus.inject(0x124, "03");
        bus.inject(0x125, "04");
        QCOMPARE(received(3), "-30");
        can_queue_disable();
        QCOMPARE(can_exit(), 0);
        QCOMPARE(can_state.byte, 0x86);
    }

    static int stateOf(void (*set)(CAN_STATE& state))
    {
        CAN_STATE state = {};
        set(state);
        return state.byte;
    }

    static QString object(int number)
    {
        const auto& entry = msg_buf[number];
        const QByteArray data(reinterpret_cast<const char*>(entry.data), sizeof entry.data);
        return QString::asprintf("%d %03X: %d, %d bytes ", entry.control, entry.cob_id, entry.count, entry.length) +
               data.toHex(' ').toUpper();
    }
};

QTEST_GUILESS_MAIN(TestCanCtrlState)
#include "TestCanCtrlState.moc"
