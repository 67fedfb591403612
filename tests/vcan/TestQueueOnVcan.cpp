// What the CAN controller does with messages from a real CAN interface: its message objects and its queue.
// SPDX-License-Identifier: MIT
#include "MasterQueue.h"
#include "RawCan.h"
#include "cop/can_ctrl.h"

#include <QTest>

#include <optional>

namespace
{

constexpr int queueCapacity = 16382;
constexpr WORD receiveObject = 3;

_can_param vcan0 = { "vcan0", 29, 3, 1 };

} // namespace

class TestQueueOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { cop_exit(); }

    void queueKeepsForeignTrafficInItsOrder();
    void remoteFramesAreMessages();
    void extendedFramesAreDropped();
    void clearedQueueIsEmpty();
    void fullQueueDropsTheOldestAndSaysSoOnce();
    void objectTakesItsIdentifierFromTheQueue();
    void firstObjectOfAnIdentifierReceives();
    void overwrittenMessageIsLostUntilInit();
    void drainTakesAtMost100();

private:
    std::optional<CRawCan> m_bus;
};

void TestQueueOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
}

void TestQueueOnVcan::init()
{
    m_bus.emplace();
    QCOMPARE(cop_init(-1, &vcan0, 0), 0);
}

void TestQueueOnVcan::queueKeepsForeignTrafficInItsOrder()
{
    const QStringList frames = { "000#0105", "080#",  "085#0010010000000000", "185#55", "585#4300100091010F00",
                                 "705#7F",   "7FF#01" };
    for (const QString& frame : frames)
        QVERIFY(m_bus->send(frame));
    QCOMPARE(masterQueue::readAll(), frames);
    const masterQueue::tMessage none = masterQueue::read();
    QCOMPARE(none.result, -30);
    QCOMPARE(cop_error, -30);
    QCOMPARE(cop_queue_status(nullptr, nullptr), -30);
    QCOMPARE(cop_queue_status(nullptr, nullptr), 0);
}

void TestQueueOnVcan::remoteFramesAreMessages()
{
    m_bus->send("123#R");
    m_bus->send("124#R3");
    QCOMPARE(masterQueue::readAll(), QStringList({ "123#", "124#000000" }));
}

void TestQueueOnVcan::extendedFramesAreDropped()
{
    QCOMPARE(can_config(receiveObject, 0x123, can_object_receive), 0);
    for (const char* frame : { "00000123#11", "1ABCD123#22", "00000321#R", "124#33" })
        QVERIFY(m_bus->send(frame));
    QCOMPARE(can_read_queue(100), 4); // dropped frames count as taken
    QCOMPARE(masterQueue::readAll(), QStringList("124#33"));
    QCOMPARE(can_data(receiveObject), 0);
}

void TestQueueOnVcan::clearedQueueIsEmpty()
{
    m_bus->send("123#01");
    m_bus->send("124#01");
    QCOMPARE(cop_queue_clear(), -30); // they still wait in the socket
    QCOMPARE(masterQueue::read().frame, "123#01");
    QCOMPARE(cop_queue_clear(), 0);
    QCOMPARE(cop_queue_clear(), -30);
    QCOMPARE(masterQueue::read().result, -30);
}

void TestQueueOnVcan::fullQueueDropsTheOldestAndSaysSoOnce()
{
    m_bus.reset(); // no other receiver is needed
    const CRawCan sender;
    constexpr int surplus = 3;
    for (int number = 0; number < queueCapacity + surplus; ++number) {
        can_frame frame = {};
        frame.can_id = 0x100;
        frame.len = 2;
        frame.data[0] = static_cast<BYTE>(number >> 8);
        frame.data[1] = static_cast<BYTE>(number);
        QVERIFY(sender.send(frame));
        if (number % 50 == 0)
            can_read_queue(100); // before the socket is full
    }
    can_read_queue(100);
    QVERIFY(can_state.b.queue_overrun != 0);
    QCOMPARE(cop_queue_status(nullptr, nullptr), -40);
    QCOMPARE(cop_queue_status(nullptr, nullptr), 0);
    QCOMPARE(masterQueue::read().frame, QStringLiteral("100#%1").arg(surplus, 4, 16, QLatin1Char('0')));
    int left = 1;
    while (masterQueue::read().result == 0)
        ++left;
    QCOMPARE(left, queueCapacity);
}

void TestQueueOnVcan::objectTakesItsIdentifierFromTheQueue()
{
    QCOMPARE(can_config(receiveObject, 0x123, can_object_receive), 0);
    m_bus->send("122#01");
    m_bus->send("123#02");
    m_bus->send("124#03");
    short length = 0;
    BYTE data[8] = {};
    uint32_t cobId = 0;
    QCOMPARE(int(can_receive_id(receiveObject, &length, data, &cobId)), 0);
    QCOMPARE(cobId, 0x123U);
    QCOMPARE(int(length), 1);
    QCOMPARE(int(data[0]), 2);
    QCOMPARE(int(can_receive(receiveObject, &length, data)), -30);
    QVERIFY(can_state.b.receiver_empty != 0);
    QCOMPARE(masterQueue::readAll(), QStringList({ "122#01", "124#03" }));
}

void TestQueueOnVcan::firstObjectOfAnIdentifierReceives()
{
    QCOMPARE(can_config(7, 0x123, can_object_receive), 0);
    QCOMPARE(can_config(4, 0x123, can_object_receive_remote), 0);
    m_bus->send("123#01");
    QCOMPARE(can_data(7), 0);
    QCOMPARE(can_data(4), 1);
}

void TestQueueOnVcan::overwrittenMessageIsLostUntilInit()
{
    QCOMPARE(can_config(receiveObject, 0x123, can_object_receive), 0);
    m_bus->send("123#0102");
    m_bus->send("123#03");
    short length = 0;
    BYTE data[8] = {};
    QCOMPARE(int(can_receive(receiveObject, &length, data)), 0);
    QCOMPARE(int(length), 1);
    QCOMPARE(int(data[0]), 3);
    QVERIFY(can_state.b.message_lost != 0);
    m_bus->send("123#04");
    QCOMPARE(int(can_receive(receiveObject, &length, data)), 0);
    QCOMPARE(cop_reset(0), 0);
    QVERIFY(can_state.b.message_lost != 0);
    QCOMPARE(cop_init(-1, &vcan0, 0), 0);
    QVERIFY(can_state.b.message_lost == 0);
}

void TestQueueOnVcan::drainTakesAtMost100()
{
    for (int n = 0; n < 150; ++n)
        QVERIFY(m_bus->send("123#01"));
    QCOMPARE(can_read_queue(100), 100);
    QCOMPARE(can_read_queue(100), 50);
    QCOMPARE(can_read_queue(100), 0);
    QCOMPARE(masterQueue::readAll().size(), 150);
}

QTEST_GUILESS_MAIN(TestQueueOnVcan)
#include "TestQueueOnVcan.moc"
