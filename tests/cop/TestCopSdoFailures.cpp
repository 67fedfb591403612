// The SDO client when the controller fails: each system call fails once in each place, or permanently.
// SPDX-License-Identifier: MIT
#include "SdoPhases.h"

#include <QtTest>

#include <cerrno>

class TestCopSdoFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestThatCannotBeSentEndsTheTransfer_data() { addSdoPhases(); }
    void requestThatCannotBeSentEndsTheTransfer();
    void abortThatCannotBeSentChangesNothing_data() { addSdoPhases(); }
    void abortThatCannotBeSentChangesNothing();
    void failingPollsAreRepeated_data();
    void failingPollsAreRepeated();
    void failingClockEndsInOneOfTwoWays_data() { addTransfers(); }
    void failingClockEndsInOneOfTwoWays();
    void interfaceThatVanishesIsATimeout_data() { addSdoPhases(); }
    void interfaceThatVanishesIsATimeout();
    void bytesThatAreNoFrameArePassedOver();
    void receiveErrorsAreReportedAfterAnAbort_data() { addSdoPhases(); }
    void receiveErrorsAreReportedAfterAnAbort();
    void controllerThatStopsInTheMidstIsReported_data() { addSdoPhases(); }
    void controllerThatStopsInTheMidstIsReported();
    void controllerThatClosesInTheMidstIsReported_data() { addSdoPhases(); }
    void controllerThatClosesInTheMidstIsReported();

private:
    static void addTransfers()
    {
        QTest::addColumn<int>("place");
        for (const int place : { 0, 1, 5, 6 }) // the first phase of each
            QTest::newRow(sdoPhases[place].name) << place;
    }

    // The whole transfer once more, from the start.
    static bool succeedsNow(CPhaseBus& bus)
    {
        bus.before = nullptr;
        bus.talkAll();
        return bus.transfer.run() == bus.transfer.success && bus.finished() && bus.descriptors() == 1;
    }

    // Runs `action` once, as soon as the client looks at the clock after the request of the phase.
    static void whileWaiting(CPhaseBus& bus, const tSdoPhase& phase, const std::function<void()>& action)
    {
        bus.before = [&bus, &phase, action, done = false](CFakeBus::ECall call) mutable {
            if (done || call != CFakeBus::Gettimeofday || bus.written().size() != qsizetype(phase.place) + 1)
                return;
            done = true;
            action();
        };
    }
};

void TestCopSdoFailures::requestThatCannotBeSentEndsTheTransfer()
{
    const tSdoPhase& phase = fetchedPhase();
    for (const int taken : { -1, 0, 8, 15 }) { // bytes of the frame; -1: an error
        CSdoBus bus;
        for (size_t at = 0; at < phase.place; ++at)
            bus.talk(phase.transfer.exchanges[at].first, phase.transfer.exchanges[at].second);
        bus.before = [&](CFakeBus::ECall call) {
            if (call != CFakeBus::Write || bus.count(call) != int(phase.place) + 1)
                return;
            if (taken < 0)
                bus.fail(CFakeBus::Write, ENOBUFS);
            else
                bus.shortWrite(taken);
        };
        QCOMPARE(phase.transfer.run(), QString("-20")); // and no abort
        QCOMPARE(bus.count(CFakeBus::Write), int(phase.place) + 1);
        QVERIFY(bus.finished());
        QVERIFY(bus.milliseconds() < 2);
        bus.before = nullptr;
        for (const auto& [request, answer] : phase.transfer.exchanges)
            bus.talk(request, answer);
        QCOMPARE(phase.transfer.run(), QString(phase.transfer.success)); // a later transfer works
        QVERIFY(bus.finished());
    }
}

void TestCopSdoFailures::abortThatCannotBeSentChangesNothing()
{
    const tSdoPhase& phase = fetchedPhase();
    struct {
        const char* answer;
        const char* result;
    } const rows[] = { { nullptr, "-50" }, { "60 08 20 01", "-60" }, { "E0 08 20 01 00 00 00 00", "-70" } };
    for (const auto& row : rows) {
        CPhaseBus bus(phase);
        sdo_timeout(1);
        if (row.answer != nullptr)
            bus.request->answer(0x585, row.answer);
        bus.fail(CFakeBus::Write, ENETDOWN, int(phase.place) + 2);
        QCOMPARE(phase.transfer.run(), QString(row.result));
        QCOMPARE(bus.count(CFakeBus::Write), int(phase.place) + 2);
        sdo_timeout(500);
        QVERIFY(succeedsNow(bus));
    }
}

void TestCopSdoFailures::failingPollsAreRepeated_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("error");
    for (const int place : { 0, 1, 5, 6 })
        for (const int error : { EINTR, ENETDOWN, ENOBUFS, EIO }) {
            QTest::addRow("%s, select %d", sdoPhases[place].name, error) << place << int(CFakeBus::Select) << error;
            QTest::addRow("%s, read %d", sdoPhases[place].name, error) << place << int(CFakeBus::Read) << error;
        }
}

// Each of the calls that a good transfer makes fails once.
void TestCopSdoFailures::failingPollsAreRepeated()
{
    const tSdoPhase& phase = fetchedPhase();
    QFETCH(int, call);
    QFETCH(int, error);
    int calls = 1;
    for (int nth = 1; nth <= calls; ++nth) {
        CPhaseBus bus(phase);
        bus.request->answer(0x585, phase.answer());
        bus.talkFrom(1);
        const int before = bus.count(CFakeBus::ECall(call));
        bus.fail(CFakeBus::ECall(call), error, nth);
        QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
        QVERIFY(bus.finished());
        calls = qMax(calls, bus.count(CFakeBus::ECall(call)) - before - 1);
        QVERIFY(succeedsNow(bus));
    }
    QVERIFY(calls >= int(phase.transfer.exchanges.size()));
}

// While the clock fails, a transfer that is answered succeeds or times out; the next one works.
void TestCopSdoFailures::failingClockEndsInOneOfTwoWays()
{
    const tSdoPhase& phase = fetchedPhase();
    int calls = 1;
    for (int nth = 1; nth <= calls; ++nth) {
        CSdoBus bus;
        for (const auto& [request, answer] : phase.transfer.exchanges)
            bus.talk(request).after(1).answer(0x585, answer);
        const int before = bus.count(CFakeBus::Gettimeofday);
        bus.fail(CFakeBus::Gettimeofday, EFAULT, nth);
        const QString end = phase.transfer.run();
        QVERIFY2(end == phase.transfer.success || end == "-50", qPrintable(end));
        calls = qMin(qMax(calls, bus.count(CFakeBus::Gettimeofday) - before), 200);
    }
    QVERIFY(calls > int(phase.transfer.exchanges.size()));
    for (const bool answered : { true, false }) {
        CPhaseBus bus(phase);
        if (answered)
            bus.request->answer(0x585, phase.answer());
        else
            bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
        bus.talkFrom(answered ? 1 : bus.transfer.exchanges.size());
        QCOMPARE(phase.transfer.run(), answered ? QString(phase.transfer.success) : QString("-50"));
        QVERIFY(bus.finished());
    }
}

// After the request every call fails: no answer comes, and the abort cannot be sent.
void TestCopSdoFailures::interfaceThatVanishesIsATimeout()
{
    const tSdoPhase& phase = fetchedPhase();
    for (const auto failing : { CFakeBus::Read, CFakeBus::Select }) {
        CPhaseBus bus(phase);
        bus.request->answer(0x585, phase.answer());
        whileWaiting(bus, phase, [&] {
            bus.fail(failing, ENETDOWN, 1, 1'000'000);
            bus.fail(CFakeBus::Write, ENETDOWN, 1, 1'000'000);
        });
        QCOMPARE(phase.transfer.run(), QString("-50"));
        QVERIFY(bus.finished());
        QCOMPARE(bus.milliseconds(), 500);
        bus.before = nullptr;
        QCOMPARE(phase.transfer.run(), QString("-20")); // still failing
        QCOMPARE(bus.descriptors(), 1);
    }
}

void TestCopSdoFailures::bytesThatAreNoFrameArePassedOver()
{
    for (const tSdoPhase& phase : sdoPhases) {
        CPhaseBus bus(phase);
        bus.request->after(5).answer(0x585, phase.answer());
        bus.talkFrom(phase.place + 1);
        whileWaiting(bus, phase, [&] {
            const QByteArray frame = fakeBusFrame(0x585, -1, "80 08 20 01 02 00 01 06");
            for (const int size : { 0, 1, 8, 15 })
                bus.injectBytes(frame.first(size));
        });
        QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
        QVERIFY(bus.finished());
    }
}

// The receive object is freed while an answer is awaited.
void TestCopSdoFailures::receiveErrorsAreReportedAfterAnAbort()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->after(10).answer(0x585, phase.answer());
    bus.CSdoBus::talk("80 08 20 01 00 00 00 08");
    whileWaiting(bus, phase, [] { can_delete(receiveObject); });
    QCOMPARE(phase.transfer.run(), QString("-93"));
    QVERIFY(bus.finished());
    bus.advance(20);
    QVERIFY(succeedsNow(bus));
}

// The abort cannot be sent then.
void TestCopSdoFailures::controllerThatStopsInTheMidstIsReported()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    whileWaiting(bus, phase, [] { can_reset(); });
    QCOMPARE(phase.transfer.run(), QString("-9"));
    QVERIFY(bus.finished());
    QCOMPARE(can_start(0), 0);
    cop_error = -9;
    QCOMPARE(ended(-9), QString("-9")); // the objects are free
    QVERIFY(succeedsNow(bus));
}

void TestCopSdoFailures::controllerThatClosesInTheMidstIsReported()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    whileWaiting(bus, phase, [] { can_exit(); });
    QCOMPARE(phase.transfer.run(), QString("-95"));
    QVERIFY(bus.finished());
    QCOMPARE(bus.descriptors(), 0);
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    QVERIFY(succeedsNow(bus));
}

QTEST_GUILESS_MAIN(TestCopSdoFailures)
#include "TestCopSdoFailures.moc"
