// The SDO client's time-out: how long each answer may take, and when the time is checked.
// SPDX-License-Identifier: MIT
#include "SdoPhases.h"

#include <QtTest>

class TestCopSdoTiming : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timeoutIsHalfASecondAtFirst();
    void settingReturnsThePreviousOne();
    void answerWithinTheTimeoutCounts_data() { addSdoPhases(); }
    void answerWithinTheTimeoutCounts();
    void timeStartsWhenTheRequestIsSent_data() { addSdoPhases(); }
    void timeStartsWhenTheRequestIsSent();
    void silenceEndsWithAnAbort_data();
    void silenceEndsWithAnAbort();
    void waitEndsWhenAsked_data() { addSdoPhases(); }
    void waitEndsWhenAsked();
    void eachAnswerHasTheWholeTime_data();
    void eachAnswerHasTheWholeTime();
    void goodAnswerAsTheTimeRunsOut_data() { addSdoPhases(); }
    void goodAnswerAsTheTimeRunsOut();
    void badAnswerAsTheTimeRunsOut_data() { addSdoPhases(); }
    void badAnswerAsTheTimeRunsOut();
    void answersPassedOverDoNotStopTheTime_data() { addSdoPhases(true); }
    void answersPassedOverDoNotStopTheTime();
    void otherTrafficDoesNotStopTheTime_data() { addSdoPhases(); }
    void otherTrafficDoesNotStopTheTime();
    void timeoutOfZeroTakesWhatIsThere();
};

// Has to run first, before a test sets it.
void TestCopSdoTiming::timeoutIsHalfASecondAtFirst()
{
    CFakeBus bus;
    QCOMPARE(cop_init(-1, &bus.param, 0), 0);
    bus.expect(0x605, "40 08 20 01 00 00 00 00");
    bus.expect(0x605, "80 08 20 01 00 00 04 05");
    QCOMPARE(readInto(8), QString("-50"));
    QCOMPARE(bus.milliseconds(), 500);
    QVERIFY(bus.finished());
}

void TestCopSdoTiming::settingReturnsThePreviousOne()
{
    cop_error = -50;
    QCOMPARE(sdo_timeout(0), WORD(500));
    QCOMPARE(sdo_timeout(65535), WORD(0));
    QCOMPARE(sdo_timeout(1), WORD(65535));
    QCOMPARE(sdo_timeout(500), WORD(1));
    QCOMPARE(cop_error, -50);
}

void TestCopSdoTiming::answerWithinTheTimeoutCounts()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->after(499).answer(0x585, phase.answer());
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
    QCOMPARE(bus.count(CFakeBus::Usleep), 0);
}

void TestCopSdoTiming::timeStartsWhenTheRequestIsSent()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.before = [&](CFakeBus::ECall call) {
        if (call == CFakeBus::Write && bus.count(call) == int(phase.place) + 1)
            bus.advance(499);
    };
    bus.request->after(499).answer(0x585, phase.answer());
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
    QCOMPARE(bus.milliseconds(), 499 + 499);
}

void TestCopSdoTiming::silenceEndsWithAnAbort_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("milliseconds");
    for (const tSdoPhase& phase : sdoPhases)
        for (const int milliseconds : { 1, 50, 500, 65535 })
            QTest::addRow("%s, %d ms", phase.name, milliseconds) << int(&phase - sdoPhases) << milliseconds;
}

void TestCopSdoTiming::silenceEndsWithAnAbort()
{
    const tSdoPhase& phase = fetchedPhase();
    QFETCH(int, milliseconds);
    CPhaseBus bus(phase);
    bus.step = milliseconds > 500 ? 500 : milliseconds > 50 ? 10 : 1;
    sdo_timeout(WORD(milliseconds));
    bus.request->after(milliseconds + 2).answer(0x585, phase.answer());
    bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    QCOMPARE(phase.transfer.run(), QString("-50"));
    QVERIFY(bus.finished());
    QVERIFY(bus.milliseconds() >= milliseconds);
    QVERIFY(bus.milliseconds() <=
            milliseconds + (milliseconds > 500 ? 20 : 1)); // plus the clock steps of earlier exchanges
}

// Asked for as soon as the request of the phase is sent.
void TestCopSdoTiming::waitEndsWhenAsked()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    static CPhaseBus* watched;
    static int requests;
    watched = &bus;
    requests = int(phase.place) + 1;
    sdo_end_when([] { return watched->count(CFakeBus::Write) >= requests; });
    bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    QCOMPARE(phase.transfer.run(), QString("-50"));
    QVERIFY(bus.finished());
    QVERIFY(bus.milliseconds() < 10);
    sdo_end_when(nullptr);
    bus.talkAll();
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
}

void TestCopSdoTiming::eachAnswerHasTheWholeTime_data()
{
    QTest::addColumn<int>("place");
    QTest::newRow("download") << 1;
    QTest::newRow("upload") << 6;
}

void TestCopSdoTiming::eachAnswerHasTheWholeTime()
{
    const tSdoTalk& transfer = fetchedPhase().transfer;
    CSdoBus bus;
    for (const auto& [request, answer] : transfer.exchanges)
        bus.talk(request).after(450).answer(0x585, answer);
    QCOMPARE(transfer.run(), QString(transfer.success));
    QVERIFY(bus.finished());
    QCOMPARE(bus.milliseconds(), 4 * 450);
}

// The time runs out while the answer is read. Only the segmented download checks it then, but not after its last one.
void TestCopSdoTiming::goodAnswerAsTheTimeRunsOut()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->answer(0x585, phase.answer());
    bus.before = [&](CFakeBus::ECall call) {
        if (call == CFakeBus::Read && bus.count(call) == int(phase.place) + 1)
            bus.advance(500);
    };
    const bool looksAtIt = &phase.transfer == &writeSegments && phase.place < 3;
    if (looksAtIt)
        bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    else
        bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), looksAtIt ? QString("-50") : QString(phase.transfer.success));
    QVERIFY(bus.finished());
}

// The answer decides in every phase, although the time has passed.
void TestCopSdoTiming::badAnswerAsTheTimeRunsOut()
{
    const tSdoPhase& phase = fetchedPhase();
    for (const char* answer : { "80 08 20 01 02 00 01 06", "FF 08 20 01 00 00 00 00", "60 08 20" }) {
        CPhaseBus bus(phase);
        bus.request->answer(0x585, answer);
        bus.before = [&](CFakeBus::ECall call) {
            if (call == CFakeBus::Read && bus.count(call) == int(phase.place) + 1)
                bus.advance(500);
        };
        if (answer[0] == 'F')
            bus.CSdoBus::talk("80 08 20 01 01 00 04 05");
        else if (answer[0] == '6')
            bus.CSdoBus::talk("80 08 20 01 00 00 00 08");
        const char* result = answer[0] == 'F' ? "-70" : answer[0] == '6' ? "-60" : "06010002";
        QCOMPARE(phase.transfer.run(), QString(result));
        QVERIFY(bus.finished());
    }
}

// They do not lengthen the wait: here the good answer has arrived, but not among the 100 messages that were taken
// together with the other one.
void TestCopSdoTiming::answersPassedOverDoNotStopTheTime()
{
    const tSdoPhase& phase = fetchedPhase();
    {
        CPhaseBus bus(phase);
        bus.request->answer(0x585, "60 09 20 01 00 00 00 00");
        for (int frame = 0; frame < 99; ++frame)
            bus.request->answer(0x181, "01 02");
        bus.request->answer(0x585, phase.answer());
        bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
        bus.before = [&](CFakeBus::ECall call) {
            if (call == CFakeBus::Read && bus.count(call) == 1)
                bus.advance(500);
        };
        QCOMPARE(phase.transfer.run(), QString("-50"));
        QVERIFY(bus.finished());
    }
    CPhaseBus bus(phase);
    for (int turn = 0; turn < 100; ++turn)
        bus.request->answer(0x585, "60 09 20 01 00 00 00 00").after(10);
    bus.request->answer(0x585, phase.answer());
    bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    QCOMPARE(phase.transfer.run(), QString("-50"));
    QVERIFY(bus.finished());
    QCOMPARE(bus.milliseconds(), 500);
}

// The bus is so busy that each call takes its 100 messages and leaves some.
void TestCopSdoTiming::otherTrafficDoesNotStopTheTime()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    sdo_timeout(50);
    for (int frame = 0; frame < 10000; ++frame)
        bus.request->answer(0x181, "01 02");
    bus.request->answer(0x585, phase.answer());
    bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    QCOMPARE(phase.transfer.run(), QString("-50"));
    QVERIFY(bus.finished());
    QVERIFY(bus.waiting() > 1000);
    QVERIFY(bus.milliseconds() <= 52); // plus the time of taking 100 messages
}

// A time-out of 0: an answer that has arrived already is taken, except by the segmented download.
void TestCopSdoTiming::timeoutOfZeroTakesWhatIsThere()
{
    for (const tSdoTalk* transfer : { &writeTwoBytes, &readTwoBytes, &readSegments }) {
        CSdoBus bus;
        sdo_timeout(0);
        for (const auto& [request, answer] : transfer->exchanges)
            bus.talk(request, answer);
        QCOMPARE(transfer->run(), QString(transfer->success));
        QVERIFY(bus.finished());
    }
    CSdoBus bus;
    sdo_timeout(0);
    bus.talk("21 08 20 01 0F 00 00 00", "60 08 20 01 00 00 00 00");
    bus.talk("80 08 20 01 00 00 04 05");
    QCOMPARE(written(15), QString("-50"));
    QVERIFY(bus.finished());
}

QTEST_GUILESS_MAIN(TestCopSdoTiming)
#include "TestCopSdoTiming.moc"
