// cop_request: what it waits for, how long, and that it frees its object.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"
#include "cop/cop_api.h"

#include <QtTest>

#include <cerrno>
#include <linux/can.h>

class TestCopApiRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { can_queue_clear(); }

    void indexIs7AtFirst(); // has to run first
    void successKeepsTheIndex();
    void waitsByTheIndexOfTheBaudRate_data();
    void waitsByTheIndexOfTheBaudRate();
    void timeStartsWhenTheObjectIsSetUp();
    void indexOfAFailedCallDoesNotCount();
    void deliversTheMessageThatArrives_data();
    void deliversTheMessageThatArrives();
    void messageCountsThoughTheTimeHasPassed();
    void requestedLengthIsNoCondition_data();
    void requestedLengthIsNoCondition();
    void messageThatWaitedBeforeIsNoAnswer();
    void answerIsFoundAmongOthers();
    void checksAndFreesInEachCase_data();
    void checksAndFreesInEachCase();
    void controllerThatIsNotStartedIsReportedAtOnce();
    void nullPointersAreRefused();
    void failingCallsWhileWaitingAreWaitedOut_data();
    void failingCallsWhileWaitingAreWaitedOut();

private:
    static QString request(uint32_t id, int length)
    {
        CReceived read;
        read.length = short(length);
        const int32_t result = cop_request(id, &read.length, read.data);
        if (result != 0 && read.length == length)
            read.length = 77;
        return read.text(result);
    }

    // How long a request without an answer takes.
    static int waited(CFakeBus& bus)
    {
        bus.step = 1;
        const qint64 before = bus.milliseconds();
        const QString result = request(0x705, 1);
        return result == "-50" && cop_error == -50 && isFree(bus) ? int(bus.milliseconds() - before) : -1;
    }

    // Object 1 is free when nothing can be read from it and a message with either identifier is queued.
    static bool isFree(CFakeBus& bus)
    {
        can_read_queue(0);
        can_queue_clear();
        bus.inject(0x705, "AA");
        bus.inject(0x700, "AB");
        return received(1) == "-93" && queued() == "705 0: AA" && queued() == "700 0: AB";
    }
};

// Neither a failed start of the master nor a start of the CAN controller alone sets the index.
void TestCopApiRequest::indexIs7AtFirst()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 1), -91);
    bus.param.ifname = "can1";
    QCOMPARE(cop_init(-1, &bus.param, 2), -10000);
    QCOMPARE(cop_reset(2), -95);
    bus.param.ifname = "can0";
    can_exit();
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(waited(bus), 100);
}

void TestCopApiRequest::successKeepsTheIndex()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 7), 0);
    QCOMPARE(waited(bus), 100);
    QCOMPARE(cop_reset(6), 0);
    QCOMPARE(waited(bus), 50);
    QCOMPARE(cop_reset(1), -91);
    QCOMPARE(cop_exit(), 0);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(waited(bus), 50);
}

void TestCopApiRequest::waitsByTheIndexOfTheBaudRate_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("milliseconds");
    const int times[] = { 20, 0, 20, 20, 20, 20, 50, 100, 200 };
    for (int index = 0; index <= 8; ++index)
        if (index != 1)
            QTest::addRow("%d", index) << index << times[index];
}

void TestCopApiRequest::waitsByTheIndexOfTheBaudRate()
{
    QFETCH(int, index);
    QFETCH(int, milliseconds);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, BYTE(index)), 0);
    QCOMPARE(waited(bus), milliseconds);
    QCOMPARE(cop_reset(0), 0);
    QCOMPARE(waited(bus), 20);
    QCOMPARE(cop_reset(BYTE(index)), 0); // a reset sets the index, too
    QCOMPARE(waited(bus), milliseconds);
    QVERIFY(bus.finished());
    QCOMPARE(bus.written(), QStringList()); // no remote frame is sent
}

// The time that can_config takes is not part of the time-out.
void TestCopApiRequest::timeStartsWhenTheObjectIsSetUp()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.before = [&](CFakeBus::ECall call) {
        if (call == CFakeBus::Select && bus.count(call) == 1)
            bus.advance(19);
    };
    bus.injectAfter(19 + 19, 0x705, "7F");
    QCOMPARE(request(0x705, 1), "0: 7F");
}

void TestCopApiRequest::indexOfAFailedCallDoesNotCount()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 6), 0);
    QCOMPARE(cop_reset(9), -91);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(waited(bus), 50);
    QCOMPARE(cop_init(-1, &bus.param, 255), -91);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(8), 0);
    QCOMPARE(waited(bus), 50);
}

void TestCopApiRequest::deliversTheMessageThatArrives_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<int>("delay");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("result");
    QTest::newRow("soon") << 0x705u << 1 << QByteArray("7F") << "0: 7F";
    QTest::newRow("late") << 0x705u << 19 << QByteArray("01 02 03 04 05 06 07 08") << "0: 01 02 03 04 05 06 07 08";
    QTest::newRow("without data") << 0x705u << 1 << QByteArray() << "0:";
    QTest::newRow("remote") << (CAN_RTR_FLAG | 0x705u) << 1 << QByteArray("05") << "0: 05";
    QTest::newRow("too late") << 0x705u << 21 << QByteArray("7F") << "-50";
    QTest::newRow("of another identifier") << 0x706u << 1 << QByteArray("7F") << "-50";
    QTest::newRow("extended") << (CAN_EFF_FLAG | 0x705u) << 1 << QByteArray("7F") << "-50";
}

void TestCopApiRequest::deliversTheMessageThatArrives()
{
    QFETCH(uint, id);
    QFETCH(int, delay);
    QFETCH(QByteArray, data);
    QFETCH(QString, result);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.injectAfter(delay, id, data.constData());
    QCOMPARE(request(0x705, 1), result);
    QCOMPARE(cop_error, result == "-50" ? -50 : 0);
    QVERIFY(isFree(bus));
}

// It is looked for before the time is tested.
void TestCopApiRequest::messageCountsThoughTheTimeHasPassed()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.before = [&, looks = 0](CFakeBus::ECall call) mutable {
        if (call != CFakeBus::Gettimeofday)
            return;
        if (++looks == 1) // when the timer starts
            bus.inject(0x705, "7F");
        else
            bus.advance(1000);
    };
    QCOMPARE(request(0x705, 1), "0: 7F");
}

void TestCopApiRequest::requestedLengthIsNoCondition_data()
{
    QTest::addColumn<int>("length");
    for (int length = 0; length <= 8; ++length)
        QTest::addRow("%d", length) << length;
}

void TestCopApiRequest::requestedLengthIsNoCondition()
{
    QFETCH(int, length);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.injectAfter(1, 0x705, "01 02 03");
    QCOMPARE(request(0x705, length), "0: 01 02 03");
}

void TestCopApiRequest::messageThatWaitedBeforeIsNoAnswer()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.inject(0x705, "01");
    QCOMPARE(request(0x705, 1), "-50");
    QCOMPARE(queued(), "705 0: 01");
}

void TestCopApiRequest::answerIsFoundAmongOthers()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    for (int message = 0; message < 1000; ++message)
        bus.injectAfter(1, 0x181, "00");
    bus.injectAfter(1, 0x705, "05");
    bus.injectAfter(1, 0x705, "06");
    QCOMPARE(request(0x705, 1), "0: 06"); // the newest one
    QCOMPARE(can_state.b.message_lost, 1);
    QVERIFY(isFree(bus));
}

void TestCopApiRequest::checksAndFreesInEachCase_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<int>("length");
    struct {
        uint id;
        int length;
    } const rows[] = { { 2048, 1 },   { 0xFFFFFFFF, 1 }, { 0x80000705, 1 }, { 0x705, 9 },
                       { 0x705, -1 }, { 0x705, 256 },    { 0x705, 32767 },  { 0x705, -32768 } };
    for (const auto& row : rows)
        QTest::addRow("%X, %d bytes", row.id, row.length) << row.id << row.length;
}

void TestCopApiRequest::checksAndFreesInEachCase()
{
    QFETCH(uint, id);
    QFETCH(int, length);
    CFakeBus bus;
    QCOMPARE(request(id, length), "-95");
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    QCOMPARE(can_config(1, 0x700, 0x0803), 0); // freed even when it was set up elsewhere
    QCOMPARE(request(id, length), "-93");
    QCOMPARE(cop_error, -93);
    QVERIFY(isFree(bus));
    QVERIFY(bus.milliseconds() < 2);
}

void TestCopApiRequest::controllerThatIsNotStartedIsReportedAtOnce()
{
    CFakeBus bus;
    QCOMPARE(request(0x705, 1), "-95");
    QCOMPARE(cop_error, -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(request(0x705, 1), "-9");
    QCOMPARE(cop_error, -9);
    can_start(0);
    QVERIFY(isFree(bus));
}

void TestCopApiRequest::nullPointersAreRefused()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    short length = 1;
    BYTE data[8] = {};
    for (int which = 0; which < 3; ++which) {
        QCOMPARE(can_config(1, 0x700, 0x0803), 0);
        length = 1;
        QCOMPARE(cop_request(0x705, which == 1 ? &length : nullptr, which == 0 ? data : nullptr), -94);
        QCOMPARE(cop_error, -94);
        QVERIFY2(isFree(bus), qPrintable(QString::number(which)));
    }
    QVERIFY(bus.milliseconds() < 2);
}

void TestCopApiRequest::failingCallsWhileWaitingAreWaitedOut_data()
{
    QTest::addColumn<int>("call");
    QTest::newRow("select") << int(CFakeBus::Select);
    QTest::newRow("read") << int(CFakeBus::Read);
}

void TestCopApiRequest::failingCallsWhileWaitingAreWaitedOut()
{
    QFETCH(int, call);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.fail(CFakeBus::ECall(call), ENETDOWN, 3);
    bus.injectAfter(5, 0x705, "01");
    bus.injectAfter(5, 0x706, "02");
    QCOMPARE(request(0x705, 1), "0: 01");
    bus.fail(CFakeBus::ECall(call), ENETDOWN, 1, 1'000'000); // the interface has been removed
    const qint64 before = bus.milliseconds();
    QCOMPARE(request(0x705, 1), "-50");
    QCOMPARE(bus.milliseconds() - before, 20);
    QVERIFY(bus.finished());
}

QTEST_GUILESS_MAIN(TestCopApiRequest)
#include "TestCopApiRequest.moc"
