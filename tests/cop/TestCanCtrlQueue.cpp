// The queue of the CAN controller: what it holds, what it drops, and its error.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"

#include <QtTest>

#include <linux/can.h>

constexpr int queueSize = 16382; // messages that the queue holds

class TestCanCtrlQueue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unclaimedMessagesAreQueuedInOrder();
    void readingTheQueueChecksInThisOrder();
    void readingTheQueueWhileItIsEmptyIsAnErrorOfTheQueue();
    void refusedReadingIsNoErrorOfTheQueue();
    void queueNeedsNoOpenController();
    void queueIsClearedWhileClosed();
    void queueHolds16382();
    void oneMoreDropsTheOldestAndIsReportedOnce();
    void eachFurtherMessageDropsOneMore();
    void overrunBitFollowsTheErrorNotTheDrop();
    void messagesForObjectsLeaveTheOverrunBitAlone();
    void clearingEmptiesTheQueueOnly();
    void disabledQueueDropsButKeepsWhatItHas();
    void enablingEmptiesOnlyADisabledQueue();
    void enabledQueueKeepsItsMessagesOverExitAndInit();
    void openingEnablesTheQueue();
};

void TestCanCtrlQueue::unclaimedMessagesAreQueuedInOrder()
{
    CStartedBus bus;
    QCOMPARE(can_queue_empty(), 1);
    bus.inject(0x000, "");
    bus.inject(0x7FF, "01 02 03 04 05 06 07 08");
    bus.inject(0x123, "AA");
    QCOMPARE(can_queue_empty(), 1); // takes nothing from the socket
    QCOMPARE(queued(), "000 0:");
    QCOMPARE(can_queue_empty(), 0);
    QCOMPARE(queued(), "7FF 0: 01 02 03 04 05 06 07 08");
    QCOMPARE(queued(), "123 0: AA");
    QCOMPARE(can_queue_empty(), 1);
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlQueue::readingTheQueueChecksInThisOrder()
{
    CFakeBus bus;
    CReceived read;
    uint32_t id = 0;
    QCOMPARE(can_queue_get_message(nullptr, nullptr, nullptr), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_queue_get_message(nullptr, nullptr, nullptr), -9);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_queue_get_message(nullptr, &read.length, read.data), -94);
    QCOMPARE(can_queue_get_message(&id, nullptr, read.data), -94);
    QCOMPARE(can_queue_get_message(&id, &read.length, nullptr), -94);
    QCOMPARE(can_queue_get_message(&id, &read.length, read.data), -30);
}

void TestCanCtrlQueue::readingTheQueueWhileItIsEmptyIsAnErrorOfTheQueue()
{
    CStartedBus bus;
    QCOMPARE(can_queue_status(), 0);
    QCOMPARE(queued(), "-30");
    QCOMPARE(can_state.b.receiver_empty, 0); // this bit is about the objects
    QCOMPARE(can_queue_status(), -30);
    QCOMPARE(can_queue_status(), 0);
    QCOMPARE(queued(), "-30");
    bus.inject(0x100, "01");
    QCOMPARE(queued(), "100 0: 01");
    QCOMPARE(can_queue_status(), 0);
}

// A call that is refused before the queue is read does not change the error of the queue.
void TestCanCtrlQueue::refusedReadingIsNoErrorOfTheQueue()
{
    for (const short error : { short(-30), short(0) }) {
        CStartedBus bus;
        const auto setError = [error] { return queued() == "-30" && (error != 0 || can_queue_status() == -30); };
        QVERIFY(setError());
        QCOMPARE(can_queue_get_message(nullptr, nullptr, nullptr), -94);
        QCOMPARE(can_queue_status(), error);
        QVERIFY(setError());
        can_reset();
        QCOMPARE(queued(), "-9");
        QCOMPARE(can_queue_status(), error);
        can_start(0);
        QVERIFY(setError());
        can_exit();
        QCOMPARE(queued(), "-95");
        QCOMPARE(can_queue_status(), error);
    }
}

void TestCanCtrlQueue::queueNeedsNoOpenController()
{
    CStartedBus bus;
    can_exit();
    QCOMPARE(can_queue_enable(), 0);
    QCOMPARE(can_queue_disable(), 0);
    QCOMPARE(can_queue_disable(), 0);
    QCOMPARE(can_queue_enable(), 0);
    QCOMPARE(can_queue_empty(), 1);
    QCOMPARE(can_queue_clear(), -30);
    QCOMPARE(can_queue_status(), 0);
}

void TestCanCtrlQueue::queueIsClearedWhileClosed()
{
    CStartedBus bus;
    fill(bus, 2);
    can_read_queue(100);
    can_exit();
    QCOMPARE(can_queue_empty(), 0);
    QCOMPARE(can_queue_clear(), 0);
    QCOMPARE(can_queue_clear(), -30);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlQueue::queueHolds16382()
{
    CStartedBus bus;
    fill(bus, queueSize);
    QCOMPARE(can_read_queue(0), queueSize);
    QCOMPARE(can_state.b.queue_overrun, 0);
    QCOMPARE(can_queue_status(), 0);
    for (int message = 0; message < queueSize; ++message)
        QCOMPARE(queued(), numbered(message));
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlQueue::oneMoreDropsTheOldestAndIsReportedOnce()
{
    CStartedBus bus;
    fill(bus, queueSize + 1);
    QCOMPARE(can_read_queue(0), queueSize + 1);
    QCOMPARE(can_state.byte, 0x01);
    QCOMPARE(can_queue_status(), -40);
    QCOMPARE(can_queue_status(), 0);
    QCOMPARE(can_state.byte, 0x01); // until the next message
    for (int message = 1; message <= queueSize; ++message)
        QCOMPARE(queued(), numbered(message));
    QCOMPARE(queued(), "-30");
    QCOMPARE(can_state.byte, 0x01);
    bus.inject(0x100, "");
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(can_state.byte, 0x00);
}

void TestCanCtrlQueue::eachFurtherMessageDropsOneMore()
{
    CStartedBus bus;
    fill(bus, queueSize + 1);
    can_read_queue(0);
    QCOMPARE(can_queue_status(), -40);
    for (int further = 1; further <= 300; ++further) {
        bus.inject(0x100, "");
        QCOMPARE(can_read_queue(100), 1);
        QCOMPARE(can_queue_status(), -40);
    }
    QCOMPARE(queued(), numbered(301));
    bus.inject(0x100, "");
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(can_queue_status(), 0);
    QCOMPARE(can_state.b.queue_overrun, 0);
}

void TestCanCtrlQueue::overrunBitFollowsTheErrorNotTheDrop()
{
    CStartedBus bus;
    fill(bus, queueSize + 1);
    can_read_queue(0);
    QCOMPARE(can_queue_clear(), 0);
    bus.inject(0x100, "");
    can_read_queue(100);
    QCOMPARE(can_state.b.queue_overrun, 1); // the error has not been read yet
    QCOMPARE(queued(), "100 0:");           // reading a message clears the error, too
    QCOMPARE(can_queue_status(), 0);
    QCOMPARE(can_state.b.queue_overrun, 1);
    bus.inject(0x100, "");
    can_read_queue(100);
    QCOMPARE(can_state.b.queue_overrun, 0);
}

void TestCanCtrlQueue::messagesForObjectsLeaveTheOverrunBitAlone()
{
    CStartedBus bus;
    fill(bus, queueSize + 1);
    can_read_queue(0);
    can_queue_status();
    QCOMPARE(can_config(2, 0x700, 0x0803), 0);
    bus.inject(0x700, "");
    bus.inject(CAN_EFF_FLAG | 1, "");
    QCOMPARE(can_read_queue(100), 2);
    QCOMPARE(can_state.b.queue_overrun, 1);
}

void TestCanCtrlQueue::clearingEmptiesTheQueueOnly()
{
    CStartedBus bus;
    QCOMPARE(can_queue_clear(), -30);
    QCOMPARE(can_queue_status(), 0); // clearing an empty queue sets no error
    QCOMPARE(queued(), "-30");
    fill(bus, 3);
    can_read_queue(2);
    QCOMPARE(can_queue_clear(), 0);
    QCOMPARE(can_queue_status(), -30); // the error stays
    QCOMPARE(can_queue_empty(), 1);
    QCOMPARE(can_queue_clear(), -30);
    QCOMPARE(queued(), numbered(2)); // the message that waited in the socket is still there
}

void TestCanCtrlQueue::disabledQueueDropsButKeepsWhatItHas()
{
    CStartedBus bus;
    fill(bus, 2);
    can_read_queue(100);
    QCOMPARE(can_queue_disable(), 0);
    QCOMPARE(can_queue_disable(), 0);
    bus.inject(0x100, "");
    QCOMPARE(can_read_queue(100), 1);
    QCOMPARE(queued(), numbered(0));
    QCOMPARE(queued(), numbered(1));
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlQueue::enablingEmptiesOnlyADisabledQueue()
{
    CStartedBus bus;
    QCOMPARE(queued(), "-30");
    fill(bus, 2);
    can_read_queue(100);
    QCOMPARE(can_queue_enable(), 0);
    QCOMPARE(can_queue_empty(), 0);
    QCOMPARE(can_queue_status(), -30);
    QCOMPARE(queued(), numbered(0));
    can_queue_clear();
    QCOMPARE(queued(), "-30");
    fill(bus, 2);
    can_read_queue(100);
    can_queue_disable();
    QCOMPARE(can_queue_empty(), 0);
    QCOMPARE(can_queue_enable(), 0);
    QCOMPARE(can_queue_empty(), 1);
    QCOMPARE(can_queue_status(), 0);
}

// The exit does not disable the queue, and enabling an enabled queue does not empty it.
void TestCanCtrlQueue::enabledQueueKeepsItsMessagesOverExitAndInit()
{
    CStartedBus bus;
    fill(bus, 2);
    can_read_queue(100);
    can_exit();
    QCOMPARE(can_queue_empty(), 0);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(queued(), numbered(0));
    QCOMPARE(queued(), numbered(1));
    QCOMPARE(queued(), "-30");
}

void TestCanCtrlQueue::openingEnablesTheQueue()
{
    CStartedBus bus;
    fill(bus, 2);
    can_read_queue(100);
    can_queue_disable();
    can_exit();
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_queue_empty(), 1);
    QCOMPARE(can_start(0), 0);
    fill(bus, 1);
    QCOMPARE(queued(), numbered(0));
}

QTEST_GUILESS_MAIN(TestCanCtrlQueue)
#include "TestCanCtrlQueue.moc"
