// The SDO client with servers that answer late, twice, too much or not at all, and on a bus at full load.
// SPDX-License-Identifier: MIT
#include "SdoPhases.h"

#include <QtTest>

class TestCopSdoHostilePeers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lateAnswersDoNotDisturbTheNextTransfer_data() { addSdoPhases(); }
    void lateAnswersDoNotDisturbTheNextTransfer();
    void lateAnswerInTheNextTransferIsPassedOver_data() { addSdoPhases(); }
    void lateAnswerInTheNextTransferIsPassedOver();
    void answersThatComeTwiceAtOnceCountOnce_data() { addSdoPhases(); }
    void answersThatComeTwiceAtOnceCountOnce();
    void segmentAnswerThatIsRepeatedHasTheWrongToggle_data();
    void segmentAnswerThatIsRepeatedHasTheWrongToggle();
    void lastOfManyAnswersCounts();
    void lengthGrowsBeyondTheRoom_data();
    void lengthGrowsBeyondTheRoom();
    void segmentsWithoutDataAreWaitedFor();
    void abortAfterManySegmentsEndsThem();
    void answerIsFoundBehindManyOthers_data() { addSdoPhases(); }
    void answerIsFoundBehindManyOthers();
    void everyAnswerIsFoundAtFullLoad_data();
    void everyAnswerIsFoundAtFullLoad();
    void queueMayOverrunMeanwhile();

private:
    static bool queued(uint32_t expected, const char* bytes)
    {
        uint32_t id = 0;
        short length = 0;
        BYTE data[8] = {};
        return cop_queue_read(&id, &length, data) == 0 && id == expected &&
               hexText(QByteArray(reinterpret_cast<char*>(data), length)) == bytes;
    }
};

void TestCopSdoHostilePeers::lateAnswersDoNotDisturbTheNextTransfer()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->after(510).answer(0x585, phase.answer()).answer(0x585, "80 08 20 01 00 00 04 05");
    bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    QCOMPARE(phase.transfer.run(), QString("-50"));
    bus.advance(20);
    QCOMPARE(bus.waiting(), 2);
    bus.talkAll();
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
    QVERIFY(queued(0x585, phase.answer())); // they were not taken as answers
    QVERIFY(queued(0x585, "80 08 20 01 00 00 04 05"));
    QCOMPARE(can_queue_empty(), 1);
}

// A late answer arrives while the next transfer, about another object, awaits its first answer.
void TestCopSdoHostilePeers::lateAnswerInTheNextTransferIsPassedOver()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->after(510).answer(0x585, phase.answer());
    bus.CSdoBus::talk("80 08 20 01 00 00 04 05");
    QCOMPARE(phase.transfer.run(), QString("-50"));
    bus.CSdoBus::talk("40 18 10 02 00 00 00 00").after(50).answer(0x585, "43 18 10 02 78 56 34 12");
    uint32_t value = 0;
    QCOMPARE(ended(sdo_read_32bit(5, 0x1018, 2, &value)), QString("0"));
    QCOMPARE(value, 0x12345678u);
    QVERIFY(bus.finished());
    QCOMPARE(can_queue_empty(), 1);
}

void TestCopSdoHostilePeers::answersThatComeTwiceAtOnceCountOnce()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->answer(0x585, phase.answer()).answer(0x585, phase.answer());
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
}

void TestCopSdoHostilePeers::segmentAnswerThatIsRepeatedHasTheWrongToggle_data()
{
    QTest::addColumn<int>("place");
    for (const int place : { 2, 3, 7, 8 })
        QTest::newRow(sdoPhases[place].name) << place;
}

// The second one arrives when the next one is awaited.
void TestCopSdoHostilePeers::segmentAnswerThatIsRepeatedHasTheWrongToggle()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->answer(0x585, phase.answer()).after(5).answer(0x585, phase.answer());
    const auto& next = phase.transfer.exchanges[phase.place + 1];
    bus.CSdoBus::talk(next.first).after(10).answer(0x585, next.second);
    bus.CSdoBus::talk("80 08 20 01 00 00 03 05");
    QCOMPARE(phase.transfer.run(), QString("-70"));
    QVERIFY(bus.finished());
}

// Of the answers taken in one go only the newest is seen: an object holds one message.
void TestCopSdoHostilePeers::lastOfManyAnswersCounts()
{
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "4F 08 20 01 11 00 00 00")
        .answer(0x585, "80 08 20 01 02 00 01 06")
        .answer(0x585, "4F 08 20 01 22 00 00 00");
    QCOMPARE(readInto(4), QString("0: 22"));
    QCOMPARE(can_state.b.message_lost, 1);
    bus.talk("40 08 20 01 00 00 00 00", "4F 08 20 01 11 00 00 00").answer(0x585, "4F 09 20 01 22 00 00 00");
    bus.talk("80 08 20 01 00 00 04 05");
    QCOMPARE(readInto(4), QString("-50"));
    QVERIFY(bus.finished());
}

void TestCopSdoHostilePeers::lengthGrowsBeyondTheRoom_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("size");
    struct {
        int count;
        int size;
    } const rows[] = { { 255, 10 },      { 256, 0 },       { 256, 10 },      { 32767, 200 },   { 32768, 10 },
                       { 32768, 32767 }, { 32775, 32767 }, { 65528, 1 },     { 65535, 10 },    { 65536, 0 },
                       { 65536, 10 },    { 65537, 10 },    { 65546, 32767 }, { 98304, 32767 }, { 131075, 10 } };
    for (const auto& row : rows)
        QTest::addRow("%d bytes into %d", row.count, row.size) << row.count << row.size;
}

void TestCopSdoHostilePeers::lengthGrowsBeyondTheRoom()
{
    QFETCH(int, count);
    QFETCH(int, size);
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 00 00 00 00");
    bus.talkUploadSegments(sampleBytes(count));
    QCOMPARE(readInto(size), size > 0 ? "0: " + hexText(sampleBytes(size)) : QString("0:"));
    QVERIFY(bus.finished());
}

void TestCopSdoHostilePeers::segmentsWithoutDataAreWaitedFor()
{
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 00 00 00 00");
    for (int turn = 0; turn < 1000; ++turn) { // 40 s in all, each in time
        bus.talk("60 00 00 00 00 00 00 00").after(20).answer(0x585, "0E 11 22 33 44 55 66 77");
        bus.talk("70 00 00 00 00 00 00 00").after(20).answer(0x585, "1E 11 22 33 44 55 66 77");
    }
    bus.talk("60 00 00 00 00 00 00 00", "0B 41 42 00 00 00 00 00");
    QCOMPARE(readInto(10), QString("0: 41 42 | 00"));
    QVERIFY(bus.finished());
    QVERIFY(bus.milliseconds() >= 40000);
}

void TestCopSdoHostilePeers::abortAfterManySegmentsEndsThem()
{
    CSdoBus bus;
    bus.talk("40 08 20 01 00 00 00 00", "41 08 20 01 00 00 00 00");
    for (int turn = 0; turn < 10000; ++turn) {
        bus.talk("60 00 00 00 00 00 00 00", "00 11 22 33 44 55 66 77");
        bus.talk("70 00 00 00 00 00 00 00", "10 11 22 33 44 55 66 77");
    }
    bus.talk("60 00 00 00 00 00 00 00", "80 08 20 01 00 00 00 08");
    QCOMPARE(readInto(10), QString("08000000"));
    QVERIFY(bus.finished());
}

// 450 messages before the answer and 450 after it: the answer is in the middle of the fifth hundred.
void TestCopSdoHostilePeers::answerIsFoundBehindManyOthers()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    for (int frame = 0; frame < 450; ++frame)
        bus.request->answer(0x181, "01 02 03");
    bus.request->answer(0x585, phase.answer());
    for (int frame = 0; frame < 450; ++frame)
        bus.request->answer(0x182, "04");
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    if (phase.place + 1 == phase.transfer.exchanges.size())
        QCOMPARE(bus.waiting(), 450 - 49);
    QVERIFY(bus.finished());
    can_read_queue(0);
    for (int frame = 0; frame < 450; ++frame)
        QVERIFY(queued(0x181, "01 02 03"));
    for (int frame = 0; frame < 450; ++frame)
        QVERIFY(queued(0x182, "04"));
    QCOMPARE(can_queue_empty(), 1);
}

void TestCopSdoHostilePeers::everyAnswerIsFoundAtFullLoad_data()
{
    QTest::addColumn<int>("others");
    for (const int others : { 1, 98, 99, 100, 101, 199, 200, 1000 })
        QTest::addRow("%d others before each answer", others) << others;
}

void TestCopSdoHostilePeers::everyAnswerIsFoundAtFullLoad()
{
    QFETCH(int, others);
    for (const tSdoTalk* transfer : { &writeTwoBytes, &writeSegments, &readTwoBytes, &readSegments }) {
        CSdoBus bus;
        for (const auto& [request, answer] : transfer->exchanges) {
            CFakeBusRequest& sent = bus.talk(request);
            for (int frame = 0; frame < others; ++frame)
                sent.answer(frame % 2 == 0 ? 0x586u : 0x705u, "05 06");
            sent.answer(0x585, answer);
        }
        QCOMPARE(transfer->run(), QString(transfer->success));
        QVERIFY(bus.finished());
        const auto all = others * qint64(transfer->exchanges.size());
        for (qint64 frame = 0; frame < all; ++frame)
            QVERIFY(queued(frame % others % 2 == 0 ? 0x586u : 0x705u, "05 06"));
        QCOMPARE(can_queue_empty(), 1);
    }
}

void TestCopSdoHostilePeers::queueMayOverrunMeanwhile()
{
    CSdoBus bus;
    CFakeBusRequest& sent = bus.talk("40 08 20 01 00 00 00 00");
    for (int frame = 0; frame < 17000; ++frame)
        sent.answer(0x181, "01");
    sent.answer(0x585, "4F 08 20 01 22 00 00 00");
    QCOMPARE(readInto(4), QString("0: 22"));
    QCOMPARE(can_state.b.queue_overrun, 1);
    QCOMPARE(cop_queue_status(nullptr, nullptr), -40);
    QVERIFY(queued(0x181, "01"));
    QVERIFY(bus.finished());
}

QTEST_GUILESS_MAIN(TestCopSdoHostilePeers)
#include "TestCopSdoHostilePeers.moc"
