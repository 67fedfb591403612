// The CANopen master: opening, closing, restarting, single messages, the queue, and what cop_error holds.
// SPDX-License-Identifier: MIT
#include "StartedBus.h"
#include "cop/cop_api.h"

#include <QtTest>

#include <cerrno>

static const BYTE bytes[9] = { 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 0x88, 0x99 };
static const QStringList opening = { "socket(29, 3, 1)", "ioctl(\"can0\", -1)", "bind(29, 7, 16)" };

// The result of a call if cop_error holds it, too; else another number.
static int32_t kept(int32_t result)
{
    return result == cop_error ? result : 1'000'000'000 + result;
}

class TestCopApi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openingStartsTheController_data() { indexes({ 0, 2, 3, 4, 5, 6, 7, 8 }); }
    void openingStartsTheController();
    void openingClosesWhatWasOpen();
    void indexWithoutBitTimingLeavesNothingOpen_data() { indexes({ 1, 9, 10, 128, 255 }); }
    void indexWithoutBitTimingLeavesNothingOpen();
    void failedOpeningClosesAlsoWhatWasOpen_data();
    void failedOpeningClosesAlsoWhatWasOpen();
    void openingOverAndOverLeaksNothing_data();
    void openingOverAndOverLeaksNothing();
    void eachCallFailsOnceInEachPlace_data();
    void eachCallFailsOnceInEachPlace();
    void closingAlwaysSucceeds();
    void resetStopsFor100Milliseconds();
    void resetToABadIndexStaysStopped_data() { indexes({ 1, 9, 255 }); }
    void resetToABadIndexStaysStopped();
    void resetNeedsAnOpenController();
    void interruptedPauseIsNoFailure();
    void transmitSendsAndFreesItsObject_data();
    void transmitSendsAndFreesItsObject();
    void transmitChecksInThisOrder();
    void transmitWithoutDataSendsZeroes();
    void failedTransmitFreesItsObjectAndALaterOneWorks();
    void statusIsNotSupported();
    void queueIsReadAndCleared();
    void queueStatusIsTheQueuesErrorOnce();
    void textsAreThoseOfTheController();

private:
    // Every service once. The result depends on the call that fails, but is always one of these codes.
    static void session(CFakeBus& bus)
    {
        const QList<int> codes = { 0, -9, -20, -30, -50, -95, -10000 };
        CReceived read;
        uint32_t id = 0;
        short length = 1;
        QVERIFY(codes.contains(cop_init(-1, &bus.param, 0)));
        QVERIFY(codes.contains(cop_transmit(0x100, 1, bytes)));
        bus.injectAfter(1, 0x705, "01");
        QVERIFY(codes.contains(cop_request(0x705, &length, read.data)));
        bus.inject(0x181, "");
        QVERIFY(codes.contains(cop_queue_read(&id, &read.length, read.data)));
        QVERIFY(codes.contains(cop_reset(2)));
        QVERIFY(codes.contains(cop_transmit(0x100, 1, bytes)));
        QCOMPARE(cop_exit(), 0);
    }

    static void indexes(std::initializer_list<int> list)
    {
        QTest::addColumn<int>("index");
        for (const int index : list)
            QTest::addRow("%d", index) << index;
    }
};

void TestCopApi::openingStartsTheController()
{
    QFETCH(int, index);
    CFakeBus bus;
    cop_error = 1;
    QCOMPARE(kept(cop_init(-1, &bus.param, BYTE(index))), 0);
    QCOMPARE(bus.calls(), opening);
    QCOMPARE(can_state.byte, 0x00);
    QCOMPARE(can_start(0), -8);
}

void TestCopApi::openingClosesWhatWasOpen()
{
    CFakeBus bus;
    QCOMPARE(kept(cop_init(-1, &bus.param, 0)), 0);
    QCOMPARE(kept(cop_init(-1, &bus.param, 2)), 0);
    QCOMPARE(bus.calls(), opening + QStringList{ "close()" } + opening);
    QCOMPARE(bus.descriptors(), 1);
    bus.fail(CFakeBus::Bind, EADDRINUSE);
    can_exit();
    QCOMPARE(can_init(-1, &bus.param), -10000); // leaves its socket open
    QCOMPARE(bus.descriptors(), 1);
    QCOMPARE(kept(cop_init(-1, &bus.param, 0)), 0);
    QCOMPARE(bus.descriptors(), 1);
}

void TestCopApi::indexWithoutBitTimingLeavesNothingOpen()
{
    QFETCH(int, index);
    CFakeBus bus;
    QCOMPARE(kept(cop_init(-1, &bus.param, BYTE(index))), -91);
    QCOMPARE(bus.calls(), opening + QStringList{ "close()" });
    QCOMPARE(bus.descriptors(), 0);
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), -95);
}

void TestCopApi::failedOpeningClosesAlsoWhatWasOpen_data()
{
    QTest::addColumn<int>("board");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("result");
    QTest::newRow("board") << 0 << QByteArray("can0") << 0 << -93;
    QTest::newRow("no name") << -1 << QByteArray() << 0 << -94;
    QTest::newRow("no interface") << -1 << QByteArray("can9") << 0 << -10000;
    QTest::newRow("no interface, bad index") << -1 << QByteArray("can9") << 1 << -10000;
    QTest::newRow("bad index") << -1 << QByteArray("can0") << 9 << -91;
}

void TestCopApi::failedOpeningClosesAlsoWhatWasOpen()
{
    QFETCH(int, board);
    QFETCH(QByteArray, name);
    QFETCH(int, index);
    QFETCH(int, result);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    _can_param other = { name.isNull() ? nullptr : name.constData(), 29, 3, 1 };
    QCOMPARE(kept(cop_init(board, &other, BYTE(index))), result);
    QCOMPARE(bus.descriptors(), 0);
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), -95);
    QCOMPARE(kept(cop_init(-1, nullptr, 0)), -94);
    QCOMPARE(kept(cop_init(-1, &bus.param, 0)), 0);
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), 0);
}

void TestCopApi::openingOverAndOverLeaksNothing_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("result");
    QTest::newRow("success") << -1 << 0 << 0;
    QTest::newRow("socket fails") << int(CFakeBus::Socket) << 0 << -10000;
    QTest::newRow("index fails") << int(CFakeBus::Ioctl) << 0 << -10000;
    QTest::newRow("bind fails") << int(CFakeBus::Bind) << 0 << -10000;
    QTest::newRow("close fails") << int(CFakeBus::Close) << 0 << 0;
    QTest::newRow("bad index") << -1 << 1 << -91;
}

void TestCopApi::openingOverAndOverLeaksNothing()
{
    QFETCH(int, call);
    QFETCH(int, index);
    QFETCH(int, result);
    CFakeBus bus;
    const int before = CFakeBus::descriptorsOfProcess();
    if (call >= 0)
        bus.fail(CFakeBus::ECall(call), EMFILE, 1, 1000);
    for (int attempt = 0; attempt < 100; ++attempt)
        QCOMPARE(kept(cop_init(-1, &bus.param, BYTE(index))), result);
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before + (result == 0 ? 1 : 0));
    QCOMPARE(kept(cop_exit()), 0);
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before);
}

void TestCopApi::eachCallFailsOnceInEachPlace_data()
{
    QTest::addColumn<int>("call");
    const char* const names[] = { "socket", "fcntl",  "bind",  "ioctl", "write",
                                  "read",   "select", "close", "clock", "usleep" };
    for (int call = CFakeBus::Socket; call <= CFakeBus::Usleep; ++call)
        QTest::newRow(names[call]) << call;
}

void TestCopApi::eachCallFailsOnceInEachPlace()
{
    QFETCH(int, call);
    const int descriptors = CFakeBus::descriptorsOfProcess();
    for (int nth = 1; nth <= 10; ++nth) {
        CFakeBus bus;
        bus.fail(CFakeBus::ECall(call), EIO, nth);
        session(bus);
        const bool failed = bus.count(CFakeBus::ECall(call)) >= nth;
        QCOMPARE(CFakeBus::descriptorsOfProcess(), descriptors);
        QVERIFY(bus.count(CFakeBus::Select) < 20'000); // no wait gets longer
        bus.heal();
        QCOMPARE(cop_init(-1, &bus.param, 0), 0);
        QCOMPARE(cop_transmit(0x100, 1, bytes), 0);
        QCOMPARE(cop_reset(2), 0);
        if (!failed)
            break;
    }
    QCOMPARE(CFakeBus::descriptorsOfProcess(), descriptors);
}

void TestCopApi::closingAlwaysSucceeds()
{
    CFakeBus bus;
    cop_error = 1;
    QCOMPARE(kept(cop_exit()), 0);
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    cop_error = 1;
    QCOMPARE(kept(cop_exit()), 0);
    QCOMPARE(bus.calls().last(), "close()");
    QCOMPARE(kept(cop_exit()), 0);
    QCOMPARE(bus.count(CFakeBus::Close), 1);
}

void TestCopApi::resetStopsFor100Milliseconds()
{
    int states = 0;
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.before = [&](CFakeBus::ECall call) { states |= call == CFakeBus::Usleep ? 0x100 | can_state.byte : 0; };
    cop_error = 1;
    QCOMPARE(kept(cop_reset(5)), 0);
    QCOMPARE(states, 0x180); // stopped during the pause
    QCOMPARE(bus.calls(), opening + QStringList{ "usleep(100000)" });
    QCOMPARE(bus.milliseconds(), 100);
    QCOMPARE(can_state.byte, 0x00);
}

void TestCopApi::resetToABadIndexStaysStopped()
{
    QFETCH(int, index);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    QCOMPARE(kept(cop_reset(BYTE(index))), -91);
    QCOMPARE(bus.calls(), opening + QStringList{ "usleep(100000)" });
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(bus.descriptors(), 1);
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), -9);
    QCOMPARE(kept(cop_reset(0)), 0); // can be started again
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), 0);
}

void TestCopApi::resetNeedsAnOpenController()
{
    CFakeBus bus;
    QCOMPARE(kept(cop_reset(0)), -95);
    QCOMPARE(kept(cop_reset(1)), -95);
    QCOMPARE(bus.calls(), QStringList());
}

void TestCopApi::interruptedPauseIsNoFailure()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.fail(CFakeBus::Usleep, EINTR);
    QCOMPARE(kept(cop_reset(0)), 0);
    QCOMPARE(can_state.byte, 0x00);
}

void TestCopApi::transmitSendsAndFreesItsObject_data()
{
    QTest::addColumn<uint>("id");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("frame");
    QTest::newRow("0, 0 bytes") << 0u << 0 << "000:";
    QTest::newRow("80, 1 byte") << 0x80u << 1 << "080: 11";
    QTest::newRow("7FF, 8 bytes") << 0x7FFu << 8 << "7FF: 11 22 33 44 55 66 77 88";
}

void TestCopApi::transmitSendsAndFreesItsObject()
{
    QFETCH(uint, id);
    QFETCH(int, length);
    QFETCH(QString, frame);
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    cop_error = 1;
    QCOMPARE(kept(cop_transmit(id, short(length), bytes)), 0);
    QCOMPARE(bus.written(), QStringList{ frame });
    QCOMPARE(can_transmit(0, 1, bytes), -93);
}

void TestCopApi::transmitChecksInThisOrder()
{
    CFakeBus bus;
    QCOMPARE(kept(cop_transmit(2048, 9, nullptr)), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(kept(cop_transmit(2048, 1, bytes)), -93); // checked before the controller has to be started
    QCOMPARE(kept(cop_transmit(2047, 9, bytes)), -9);
    QCOMPARE(can_start(0), 0);
    for (const uint32_t id : { 2048u, 0x80000001u, 0x40000001u, 0xFFFFFFFFu })
        QCOMPARE(kept(cop_transmit(id, 1, bytes)), -93);
    for (const int length : { -32768, -1, 9, 256, 32767 }) {
        QCOMPARE(kept(cop_transmit(0x100, short(length), bytes)), -93);
        QCOMPARE(can_transmit(0, 1, bytes), -93); // the object is free again
    }
    QCOMPARE(bus.written(), QStringList());
}

void TestCopApi::transmitWithoutDataSendsZeroes()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    QCOMPARE(kept(cop_transmit(0x100, 2, bytes)), 0);
    QCOMPARE(kept(cop_transmit(0x100, 3, nullptr)), 0);
    QCOMPARE(bus.written().last(), "100: 00 00 00");
}

void TestCopApi::failedTransmitFreesItsObjectAndALaterOneWorks()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.fail(CFakeBus::Write, ENOBUFS);
    bus.shortWrite(8);
    for (int attempt = 0; attempt < 2; ++attempt) {
        QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), -20);
        QCOMPARE(can_busy(0), 0);
        QCOMPARE(can_transmit(0, 1, bytes), -93);
        bus.shortWrite(15);
    }
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), -20);
    QCOMPARE(kept(cop_transmit(0x100, 1, bytes)), 0);
    QCOMPARE(bus.written(), QStringList{ "100: 11" });
}

void TestCopApi::statusIsNotSupported()
{
    CFakeBus bus;
    BYTE status = 0x5A;
    BYTE load = 0x5A;
    QCOMPARE(kept(cop_status(&status, &load)), -95);
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    QCOMPARE(kept(cop_status(&status, &load)), -98);
    QCOMPARE(kept(cop_status(nullptr, nullptr)), -98);
    QCOMPARE(status, 0x5A);
    QCOMPARE(load, 0x5A);
}

void TestCopApi::queueIsReadAndCleared()
{
    CStartedBus bus;
    CReceived read;
    uint32_t id = 0;
    bus.inject(0x181, "01 02 03");
    bus.inject(0x281, "");
    bus.inject(0x381, "");
    cop_error = 1;
    QCOMPARE(kept(cop_queue_read(&id, &read.length, read.data)), 0);
    QCOMPARE(id, 0x181u);
    QCOMPARE(read.text(0), "0: 01 02 03");
    QCOMPARE(kept(cop_queue_read(nullptr, &read.length, read.data)), -94);
    QCOMPARE(kept(cop_queue_clear()), 0);
    QCOMPARE(kept(cop_queue_clear()), -30);
    QCOMPARE(kept(cop_queue_read(&id, &read.length, read.data)), -30);
    can_reset();
    QCOMPARE(kept(cop_queue_read(&id, &read.length, read.data)), -9);
    can_exit();
    QCOMPARE(kept(cop_queue_read(&id, &read.length, read.data)), -95);
}

void TestCopApi::queueStatusIsTheQueuesErrorOnce()
{
    CStartedBus bus;
    BYTE status = 0x5A;
    BYTE load = 0x5A;
    cop_error = 1;
    QCOMPARE(kept(cop_queue_status(&status, &load)), 0); // not ERR_NOT_SUPPORTED as for the bus load
    QCOMPARE(queued(), "-30");
    QCOMPARE(kept(cop_queue_status(&status, &load)), -30);
    QCOMPARE(kept(cop_queue_status(nullptr, nullptr)), 0);
    for (int message = 0; message < 16383; ++message)
        bus.inject(0x100, "");
    can_read_queue(0);
    QCOMPARE(kept(cop_queue_status(&status, &load)), -40);
    QCOMPARE(kept(cop_queue_status(&status, &load)), 0);
    QCOMPARE(status, 0x5A);
    QCOMPARE(load, 0x5A);
    QCOMPARE(can_queue_clear(), 0);
    QCOMPARE(queued(), "-30");
    can_exit();
    QCOMPARE(kept(cop_queue_status(&status, &load)), -30); // also while closed
}

void TestCopApi::textsAreThoseOfTheController()
{
    CStartedBus bus;
    QCOMPARE(cop_hardware(), "interface=\"can0\", family=29, type=3, protocol=1");
    QCOMPARE(cop_software(), QString(can_software()));
    QCOMPARE(QByteArray(cop_version()), QByteArray("Velmora CANopen master, cop_api, 2026-11-21"));
}

QTEST_GUILESS_MAIN(TestCopApi)
#include "TestCopApi.moc"
