// What the CAN controller remembers over several calls: before the first init, after a failed one, in its objects, in
// the places of its queue and in its timer.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"
#include "cop/can_internal.h"

#include <QtTest>

#include <cerrno>

constexpr int queueSize = 16382;   // messages that the queue holds
constexpr int queuePlaces = 16384; // places in its ring

class TestCanCtrlState : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsOpenAtFirst(); // has to run first
    void onlyAStartRecordsTheBaudRate();
    void stateBitsHaveTheirPlaces();
    void resetRefusesIndex1WhileStarted();
    void failedBindKeepsItsSocketButIsNotInitialised();
    void failedOpeningLeavesAllButTheSocketAlone_data();
    void failedOpeningLeavesAllButTheSocketAlone();
    void configurationSetsTheWholeObject();
    void receivingCountsUntilTheRead();
    void headAndTailGoRound();
    void overrunDropsWhenOneSlotIsStillFree_data();
    void overrunDropsWhenOneSlotIsStillFree();
    void timerIsAnAbsoluteTimeInMicroseconds();
    void clockThatFailsOnceHoldsNobodyUp();

private:
    // Closes the controller with messages in an object and the queue, an error of the queue and state bits.
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

    // Sends so many messages through the queue, one after the other.
    static bool passMessages(CFakeBus& bus, int count)
    {
        for (int message = 0; message < count; ++message) {
            fill(bus, 1);
            if (queued() != numbered(0))
                return false;
        }
        place = (place + count) % queuePlaces;
        return true;
    }

    static inline int place = 0; // of the oldest message in the ring: counts those that have left the queue
};

void TestCanCtrlState::nothingIsOpenAtFirst()
{
    CFakeBus bus;
    const int descriptors = CFakeBus::descriptorsOfProcess();
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(can_hardware(), "interface=\"\", family=29, type=3, protocol=1");
    QCOMPARE(can_baudrate, 255);
    QCOMPARE(can_queue_empty(), 1);
    QCOMPARE(can_queue_status(), 0);
    QCOMPARE(can_start(0), -95);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.calls(), QStringList());
    QCOMPARE(CFakeBus::descriptorsOfProcess(), descriptors); // there is no socket to close
}

void TestCanCtrlState::onlyAStartRecordsTheBaudRate()
{
    CFakeBus bus;
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_baudrate, 255);
    QCOMPARE(can_start(9), -91);
    QCOMPARE(can_start(1), -91);
    QCOMPARE(can_baudrate, 255);
    QCOMPARE(can_start(3), 0);
    QCOMPARE(can_start(4), -8);
    QCOMPARE(can_baudrate, 3);
    QCOMPARE(can_reset(), 0);
    QCOMPARE(can_baudrate, 3);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(can_baudrate, 3);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_baudrate, 3);
    QCOMPARE(can_start(8), 0);
    QCOMPARE(can_baudrate, 8);
    can_baudrate = 255;
}

void TestCanCtrlState::stateBitsHaveTheirPlaces()
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

void TestCanCtrlState::resetRefusesIndex1WhileStarted()
{
    CStartedBus bus;
    can_baudrate = 1; // can_start refuses it
    QCOMPARE(can_reset(), ERR_BAUDRATE);
    QCOMPARE(can_state.byte, 0x00);
    can_state.byte = 0x80;
    QCOMPARE(can_reset(), 0);
    can_state.byte = 0x00;
    can_baudrate = 0;
    QCOMPARE(can_reset(), 0);
    can_exit();
    can_baudrate = 1;
    QCOMPARE(can_reset(), ERR_NOT_INITIALIZED);
    can_baudrate = 255;
}

void TestCanCtrlState::failedBindKeepsItsSocketButIsNotInitialised()
{
    CFakeBus bus;
    bus.fail(CFakeBus::Bind, EADDRINUSE);
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(bus.descriptors(), 1);
    QCOMPARE(can_start(0), -95);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.descriptors(), 0);
    bus.fail(CFakeBus::Socket, EMFILE);
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(can_start(0), -95);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.count(CFakeBus::Close), 1); // the second time nothing was open
}

void TestCanCtrlState::failedOpeningLeavesAllButTheSocketAlone_data()
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

void TestCanCtrlState::failedOpeningLeavesAllButTheSocketAlone()
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
    QCOMPARE(can_queue_empty(), 0); // enabling it would empty it
    QCOMPARE(can_queue_status(), -30);
    bus.heal();
    can_exit();
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(can_queue_empty(), 1); // it was still disabled
    QCOMPARE(can_start(0), 0);
    QCOMPARE(received(3), "-93");
    QCOMPARE(received(4), "-93");
}

void TestCanCtrlState::configurationSetsTheWholeObject()
{
    CStartedBus bus;
    QCOMPARE(can_config(4, 0x7FF, 0x0803), 0);
    bus.inject(0x7FF, "01 02 03");
    QCOMPARE(receivedId(4), "7FF 0: 01 02 03");
    bus.inject(0x7FF, "04 05 06");
    QCOMPARE(can_data(4), 1);
    QCOMPARE(can_config(4, 0x123, 0x0501), 0); // kind, identifier, count and data are new
    QCOMPARE(can_data(4), 0);
    QCOMPARE(can_busy(4), 0);
    QCOMPARE(can_transmit(4, 8, nullptr), 0);
    QCOMPARE(bus.written(), QStringList{ "123: 00 00 00 00 00 00 00 00" });
    QCOMPARE(can_delete(4), 0);
    QCOMPARE(can_transmit(4, 8, nullptr), -93);
    QCOMPARE(received(4), "-93");
}

void TestCanCtrlState::receivingCountsUntilTheRead()
{
    CStartedBus bus;
    QCOMPARE(can_config(4, 0x123, 0x0804), 0);
    for (int count = 1; count <= 3; ++count) {
        bus.inject(0x123, "01 02 03 04 05 06 07 08");
        QCOMPARE(can_data(4), 1);
        QCOMPARE(can_state.b.message_lost, 0);
    }
    QCOMPARE(received(4), "0: 01 02 03 04 05 06 07 08");
    QCOMPARE(can_state.b.message_lost, 1);
    QCOMPARE(can_data(4), 0);
    QCOMPARE(received(4), "-30");
}

void TestCanCtrlState::headAndTailGoRound()
{
    CStartedBus bus;
    QVERIFY(passMessages(bus, queuePlaces + 1));
    bus.inject(0x200, "01");
    QCOMPARE(can_read_queue(100), 1);
    for (int message = 0; message <= queuePlaces; ++message) { // with one more message in the queue
        bus.inject(0x200, message % 2 == 0 ? "02" : "01");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(queued(), message % 2 == 0 ? "200 0: 01" : "200 0: 02");
    }
    QCOMPARE(can_queue_clear(), 0);
    QCOMPARE(can_queue_status(), 0);
    place = (place + queuePlaces + 1) % queuePlaces;
}

// Also where the ring of the queue begins and ends. `first` is the place of the oldest message.
void TestCanCtrlState::overrunDropsWhenOneSlotIsStillFree_data()
{
    QTest::addColumn<int>("first");
    for (const int first : { 0, 1, 2, 8000, 16382, 16383 })
        QTest::addRow("%d", first) << first;
}

void TestCanCtrlState::overrunDropsWhenOneSlotIsStillFree()
{
    QFETCH(int, first);
    CStartedBus bus;
    QVERIFY(passMessages(bus, (first - place + queuePlaces) % queuePlaces));
    QCOMPARE(place, first);
    fill(bus, queueSize);
    QCOMPARE(can_read_queue(0), queueSize);
    QCOMPARE(can_queue_status(), 0);
    bus.inject(0x101, "");
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(can_queue_status(), -40);
    for (int message = 1; message < queueSize; ++message)
        QCOMPARE(queued(), numbered(message));
    QCOMPARE(queued(), "101 0:");
    QCOMPARE(queued(), "-30");
    place = (place + queueSize + 1) % queuePlaces;
}

void TestCanCtrlState::timerIsAnAbsoluteTimeInMicroseconds()
{
    CFakeBus bus;
    bus.step = 1; // each reading of the clock takes 1 µs
    QCOMPARE(can_start_timer(1), 0);
    for (int microsecond = 1; microsecond < 1000; ++microsecond)
        QCOMPARE(can_is_timeout(), 0);
    QCOMPARE(can_is_timeout(), 1);
    for (int quarter = 0; quarter < 8; ++quarter) { // of an hour; 32 bits of microseconds are 72 minutes
        bus.advance(900'000);
        QCOMPARE(can_is_timeout(), 1);
    }
}

void TestCanCtrlState::clockThatFailsOnceHoldsNobodyUp()
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

QTEST_GUILESS_MAIN(TestCanCtrlState)
#include "TestCanCtrlState.moc"
