// How the SDO client treats each answer, in every phase of every kind of transfer.
// SPDX-License-Identifier: MIT
#include "SdoPhases.h"

#include <QtTest>

#include <cstring>
#include <functional>

class TestCopSdoAnswers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void transferSucceeds_data() { addSdoPhases(); }
    void transferSucceeds();
    void firstByteDecides_data() { addSdoPhases(); }
    void firstByteDecides();
    void abortCodeIsTheResult_data();
    void abortCodeIsTheResult();
    void abortIsToldOfTheLastTransferOnly();
    void everyBitOfTheMultiplexorIsCompared_data() { addSdoPhases(); }
    void everyBitOfTheMultiplexorIsCompared();
    void answersAboutOtherObjectsArePassedOver_data() { addSdoPhases(true); }
    void answersAboutOtherObjectsArePassedOver();
    void answersOfOtherNodesAreQueued_data() { addSdoPhases(); }
    void answersOfOtherNodesAreQueued();
    void answerOfAnotherLengthIsRefused_data();
    void answerOfAnotherLengthIsRefused();
    void remoteFrameIsAnAnswerAndAnExtendedOneIsNot_data() { addSdoPhases(); }
    void remoteFrameIsAnAnswerAndAnExtendedOneIsNot();
};

void TestCopSdoAnswers::transferSucceeds()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->answer(0x585, phase.answer());
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
}

// All 256 first bytes. Our abort has index and sub-index also in phases whose answers have none.
void TestCopSdoAnswers::firstByteDecides()
{
    const tSdoPhase& phase = fetchedPhase();
    const auto* verdict = phase.verdicts.data();
    for (int byte = 0; byte <= 0xFF; ++byte) {
        if (byte > verdict->last)
            ++verdict;
        const QByteArray answer = QByteArray(1, char(byte)) + QByteArray::fromHex("08 20 01 02 00 01 06");
        CPhaseBus bus(phase);
        sdo_timeout(1);
        bus.request->answer(0x585, answer.toHex());
        const QString end = phase.transfer.run();
        const QStringList after = bus.written().mid(qsizetype(phase.place) + 1);
        const char* what =
            qPrintable(QString::asprintf("answer %02X: ", unsigned(byte)) + end + " " + after.join(", "));
        switch (verdict->verdict) {
        case good: // the transfer ends or goes on
            QVERIFY2(after.isEmpty() ? end.startsWith("0") && end != "06010002" : !after[0].startsWith("605: 80"),
                     what);
            break;
        case unexpected:
            QVERIFY2(end == "-70" && after == QStringList("605: 80 08 20 01 01 00 04 05"), what);
            break;
        case wrongToggle:
            QVERIFY2(end == "-70" && after == QStringList("605: 80 08 20 01 00 00 03 05"), what);
            break;
        case aborted:
            QVERIFY2(end == "06010002" && after.isEmpty(), what);
            break;
        }
    }
}

void TestCopSdoAnswers::abortCodeIsTheResult_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QByteArray>("code");
    QTest::addColumn<QString>("result");
    struct {
        const char* code;
        const char* result;
    } const rows[] = {
        { "02 00 01 06", "06010002" }, { "11 00 09 06", "06090011" },    { "78 56 34 12", "12345678" },
        { "FF FF FF 7F", "7FFFFFFF" }, { "01 00 00 00", "00000001" },    { "00 00 00 00", "0" },
        { "FF FF FF FF", "-1" },       { "00 00 00 80", "-2147483648" }, { "CE FF FF FF", "-50" },
    };
    for (const tSdoPhase& phase : sdoPhases)
        for (const auto& row : rows)
            QTest::addRow("%s, %s", phase.name, row.code)
                << int(&phase - sdoPhases) << QByteArray(row.code) << QString(row.result);
}

void TestCopSdoAnswers::abortCodeIsTheResult()
{
    const tSdoPhase& phase = fetchedPhase();
    QFETCH(QByteArray, code);
    QFETCH(QString, result);
    CPhaseBus bus(phase);
    bus.request->answer(0x585, "80 08 20 01 " + code);
    const QString end = phase.transfer.run();
    if (result == "0" && QString(phase.name).contains("upload")) // success without data, also after segments
        QCOMPARE(end.section(',', 0, 0), QString("0:"));
    else
        QCOMPARE(end, result);
    QVERIFY(bus.finished()); // no abort is sent
    uint32_t told = 0;
    QVERIFY(sdo_last_abort(&told)); // also where the result hides it
    uint32_t sent = 0;
    memcpy(&sent, QByteArray::fromHex(code).constData(), sizeof sent);
    QCOMPARE(told, sent);
}

void TestCopSdoAnswers::abortIsToldOfTheLastTransferOnly()
{
    uint8_t byte = 0;
    uint16_t word = 0;
    const std::function<int32_t()> others[] = {
        [&] { return sdo_read_8bit(5, 0x2008, 1, &byte); }, // nobody answers
        [&] { return sdo_read_8bit(0, 0x2008, 1, &byte); }, // a wrong node-id
        [&] { return sdo_read_16bit(5, 0x2008, 1, nullptr); }, // null pointers
        [&] { return sdo_read_32bit(5, 0x2008, 1, nullptr); }, [&] { return sdo_write(5, 0x2008, 1, 1, nullptr); },
    };
    for (const auto& other : others) {
        CSdoBus bus;
        bus.talk("40 08 20 01 00 00 00 00", "80 08 20 01 00 00 00 00");
        QCOMPARE(sdo_read_16bit(5, 0x2008, 1, &word), -60); // no error of its own
        QVERIFY(sdo_last_abort(nullptr));
        QVERIFY(other() < 0);
        uint32_t code = 1234;
        QVERIFY(!sdo_last_abort(&code));
        QCOMPARE(code, 1234U);
    }
}

// Segments carry no index: there the same bytes are data or unused.
void TestCopSdoAnswers::everyBitOfTheMultiplexorIsCompared()
{
    const tSdoPhase& phase = fetchedPhase();
    for (int bit = 8; bit < 32; ++bit) {
        QByteArray answer = QByteArray::fromHex(phase.answer());
        answer[bit / 8] = char(answer[bit / 8] ^ (1 << (bit % 8)));
        CPhaseBus bus(phase);
        bus.request->answer(0x585, answer.toHex());
        if (phase.multiplexed)
            bus.request->after(10).answer(0x585, phase.answer());
        bus.talkFrom(phase.place + 1);
        const QString end = phase.transfer.run();
        QVERIFY2(phase.multiplexed ? end == phase.transfer.success : end.startsWith("0"), qPrintable(end));
        QVERIFY(bus.finished());
        QCOMPARE(bus.milliseconds(), phase.multiplexed ? 10 : 0);
    }
}

void TestCopSdoAnswers::answersAboutOtherObjectsArePassedOver()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    for (const char* answer :
         { "80 09 20 01 02 00 01 06", "60 08 21 01 00 00 00 00", "4F 08 20 02 FF 00 00 00", "FF 00 00 00 00 00 00 00",
           "80 08 20 00 00 00 00 08", "00 08 20 81 00 00 00 00", "20 20 08 01 00 00 00 00" })
        bus.request->answer(0x585, answer).after(10);
    bus.request->answer(0x585, phase.answer());
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
    QCOMPARE(bus.milliseconds(), 70);
    QCOMPARE(can_queue_empty(), 1);
}

void TestCopSdoAnswers::answersOfOtherNodesAreQueued()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    for (const uint32_t id : { 0x586u, 0x584u, 0x605u, 0x505u, 0x58u })
        bus.request->answer(id, "80 08 20 01 02 00 01 06");
    bus.request->after(10).answer(0x585, phase.answer());
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
    for (const uint32_t id : { 0x586u, 0x584u, 0x605u, 0x505u, 0x58u }) {
        uint32_t queued = 0;
        short length = 0;
        BYTE data[8] = {};
        QCOMPARE(cop_queue_read(&queued, &length, data), 0);
        QCOMPARE(queued, id);
        QCOMPARE(hexText(QByteArray(reinterpret_cast<char*>(data), length)), QString("80 08 20 01 02 00 01 06"));
    }
    QCOMPARE(can_queue_empty(), 1);
}

void TestCopSdoAnswers::answerOfAnotherLengthIsRefused_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QByteArray>("answer");
    for (const tSdoPhase& phase : sdoPhases) {
        QTest::addRow("%s, no data", phase.name) << int(&phase - sdoPhases) << QByteArray();
        for (const char* first : { phase.answer(), "80 08 20 01 02 00 01", "60 FF FF FF FF FF FF", "FF 08 20 01 0 0" })
            for (int length = 1; length < 8; ++length)
                QTest::addRow("%s, %.2s, %d bytes", phase.name, first, length)
                    << int(&phase - sdoPhases) << QByteArray::fromHex(first).leftJustified(8).left(length).toHex();
    }
}

// The length is checked first: also of aborts, of answers about another object and of unexpected ones.
void TestCopSdoAnswers::answerOfAnotherLengthIsRefused()
{
    const tSdoPhase& phase = fetchedPhase();
    QFETCH(QByteArray, answer);
    CPhaseBus bus(phase);
    bus.request->answer(0x585, answer).after(10).answer(0x585, phase.answer());
    bus.CSdoBus::talk("80 08 20 01 00 00 00 08");
    QCOMPARE(phase.transfer.run(), QString("-60"));
    QVERIFY(bus.finished());
    QCOMPARE(bus.milliseconds(), 0);
}

void TestCopSdoAnswers::remoteFrameIsAnAnswerAndAnExtendedOneIsNot()
{
    const tSdoPhase& phase = fetchedPhase();
    CPhaseBus bus(phase);
    bus.request->answer(0x80000585, "80 08 20 01 02 00 01 06"); // extended
    bus.request->answer(0x20000585, "80 08 20 01 02 00 01 06"); // an error frame
    bus.request->after(10).answer(0x40000585, phase.answer());  // remote
    bus.talkFrom(phase.place + 1);
    QCOMPARE(phase.transfer.run(), QString(phase.transfer.success));
    QVERIFY(bus.finished());
    QCOMPARE(bus.milliseconds(), 10);
    QCOMPARE(can_queue_empty(), 1);
}

QTEST_GUILESS_MAIN(TestCopSdoAnswers)
#include "TestCopSdoAnswers.moc"
