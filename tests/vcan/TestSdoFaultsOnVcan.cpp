// The SDO client on a real CAN interface against nodes that answer badly, late, twice, without end or not at all.
// SPDX-License-Identifier: MIT
#include "ScriptedNode.h"
#include "SdoClient.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"

#include <QElapsedTimer>
#include <QTest>

#include <optional>

using namespace sdoClient;

namespace
{

constexpr int shortTimeout = 100; // milliseconds

_can_param vcan0 = { "vcan0", 29, 3, 1 };

} // namespace

class TestSdoFaultsOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void badAnswerEndsTheTransfer_data();
    void badAnswerEndsTheTransfer();
    void silentNodeIsATimeOut_data();
    void silentNodeIsATimeOut();
    void slowNodeIsWaitedFor();
    void foreignAnswersAreSkipped();
    void lateAnswerIsNotTakenForAnother();
    void doubleAnswersDoNoHarm();
    void segmentsWithoutEndAreReadUntilTheNodeStops();

private:
    void followGoodTransfer();

    std::optional<CScriptedNode> m_node;
};

void TestSdoFaultsOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
}

void TestSdoFaultsOnVcan::init()
{
    m_node.emplace();
    QCOMPARE(cop_init(-1, &vcan0, 0), 0);
    sdo_timeout(sdoPatience);
}

void TestSdoFaultsOnVcan::cleanup()
{
    m_node.reset();
    cop_exit();
}

// The next transfer succeeds.
void TestSdoFaultsOnVcan::followGoodTransfer()
{
    m_node.emplace();
    m_node->expectInTurns(entry.upload("all is well"));
    m_node->play();
    sdo_timeout(sdoPatience);
    tRead read(32);
    QCOMPARE(read(), 0);
    QCOMPARE(read.data(), QByteArray("all is well"));
    QCOMPARE(m_node->difference(), QString());
}

// The answers of a node to the requests of a transfer; the last one is bad.
void TestSdoFaultsOnVcan::badAnswerEndsTheTransfer_data()
{
    QTest::addColumn<bool>("reads");
    QTest::addColumn<QStringList>("frames");
    QTest::addColumn<int>("result");
    QTest::addColumn<uint>("abort"); // of the client; 0: none
    const QByteArray data = pattern(10);
    // The frames up to the request number `count`, then the bad answer.
    const auto row = [&data](const char* name, bool reads, int count, const QString& bad, int result, uint abort = 0) {
        const QStringList good = reads ? entry.upload(data) : entry.download(data);
        QTest::newRow(name) << reads << good.first(2 * count - 1) + QStringList(bad) << result << abort;
    };
    const auto segment = [](int command) { return CSdoTranscript::answerSegment(command, "1234567"); };
    const QString cut = "585#41002103140000";
    row("read: abort", true, 1, entry.abortByServer(0x06020000), 0x06020000);
    row("read: abort with other low bits", true, 1, entry.answer(0x9F, CSdoTranscript::number(7, 4)), 7);
    row("read: short answer", true, 1, cut, -60, 0x08000000);
    row("read: empty answer", true, 1, "585#", -60, 0x08000000);
    row("read: answer of a write", true, 1, entry.answer(0x60), -70, 0x05040001);
    row("read segment: abort", true, 2, entry.abortByServer(0x08000000), 0x08000000);
    row("read segment: short answer", true, 2, "585#00", -60, 0x08000000);
    row("read segment: other command", true, 2, segment(0x20), -70, 0x05040001);
    row("read segment: wrong toggle", true, 2, segment(0x10), -70, 0x05030000);
    row("read second segment: wrong toggle", true, 3, segment(0x00), -70, 0x05030000);
    row("write: abort", false, 1, entry.abortByServer(0x06010002), 0x06010002);
    row("write: abort with other low bits", false, 1, entry.answer(0x81), -70, 0x05040001);
    row("write: short answer", false, 1, "585#60002103000000", -60, 0x08000000);
    row("write: answer with other low bits", false, 1, entry.answer(0x61), -70, 0x05040001);
    row("write segment: abort", false, 2, entry.abortByServer(0x06090030), 0x06090030);
    row("write segment: short answer", false, 2, "585#20000000000000", -60, 0x08000000);
    row("write segment: other command", false, 2, segment(0x60), -70, 0x05040001);
    row("write segment: wrong toggle", false, 2, segment(0x30), -70, 0x05030000);
    row("write last segment: abort", false, 3, entry.abortByServer(0x08000020), 0x08000020);
    row("write last segment: wrong toggle", false, 3, segment(0x20), -70, 0x05030000);
}

void TestSdoFaultsOnVcan::badAnswerEndsTheTransfer()
{
    QFETCH(const bool, reads);
    QFETCH(const QStringList, frames);
    QFETCH(const int, result);
    QFETCH(const uint, abort);
    m_node->expectInTurns(frames);
    if (abort != 0)
        m_node->expect(entry.abort(abort));
    m_node->play();
    tRead read(100);
    QCOMPARE(reads ? read() : write(pattern(10)), result);
    QCOMPARE(cop_error, result);
    if (reads)
        QCOMPARE(int(read.length), 0);
    QCOMPARE(m_node->difference(), QString());
    followGoodTransfer();
}

void TestSdoFaultsOnVcan::silentNodeIsATimeOut_data()
{
    QTest::addColumn<bool>("reads");
    QTest::addColumn<int>("requests"); // the node does not answer this one
    QTest::newRow("read") << true << 1;
    QTest::newRow("read segment") << true << 2;
    QTest::newRow("write") << false << 1;
    QTest::newRow("write segment") << false << 2;
    QTest::newRow("write last segment") << false << 3;
}

void TestSdoFaultsOnVcan::silentNodeIsATimeOut()
{
    QFETCH(const bool, reads);
    QFETCH(const int, requests);
    const QStringList frames = reads ? entry.upload(pattern(10)) : entry.download(pattern(10));
    // The time-out is short from the last answer on only, so that no earlier answer is missed.
    const auto hurry = [](const CRawCan&) { sdo_timeout(shortTimeout); };
    for (int request = 0; request < requests - 1; ++request) {
        auto& step = m_node->expect(frames[2 * request]);
        if (request == requests - 2)
            step.act(hurry);
        step.answer(frames[2 * request + 1]);
    }
    m_node->expect(frames[2 * requests - 2]);
    m_node->expect(entry.abort(0x05040000));
    if (requests == 1)
        sdo_timeout(shortTimeout);
    m_node->play();
    tRead read(100);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(reads ? read() : write(pattern(10)), -50);
    const qint64 elapsed = timer.elapsed();
    QVERIFY2(elapsed >= shortTimeout - 1 && elapsed < sdoPatience, qPrintable(QString::number(elapsed)));
    QCOMPARE(m_node->difference(), QString());
    followGoodTransfer();
}

// tests/cop shows, with a clock of its own, that the time-out is that of each answer and not of the transfer.
void TestSdoFaultsOnVcan::slowNodeIsWaitedFor()
{
    const QStringList frames = entry.upload(pattern(28));
    for (qsizetype i = 0; i < frames.size(); i += 2)
        m_node->expect(frames[i]).wait(400).answer(frames[i + 1]);
    m_node->play();
    tRead read(100);
    QCOMPARE(read(), 0);
    QCOMPARE(read.data(), pattern(28));
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoFaultsOnVcan::foreignAnswersAreSkipped()
{
    m_node->expect(entry.request(0x40))
        .answer("586#4F00210377000000")      // of another node
        .answer("00000585#4F00210377000000") // with an extended identifier
        .answer("585#4F00210477000000")      // of another sub-index
        .answer("585#8001210300000206")      // an abort of another index
        .answer("705#05")                    // no SDO answer
        .wait(20)
        .answer("585#4F00210301000000");
    m_node->play();
    tRead read(100);
    QCOMPARE(read(), 0);
    QCOMPARE(read.data(), QByteArray("\1"));
    QCOMPARE(m_node->difference(), QString());

    m_node.emplace();
    m_node->expect(entry.request(0x2F, "\1"))
        .answer("585#6000210400000000")
        .answer("585#8000220300000206")
        .wait(20)
        .answer(entry.answer(0x60));
    m_node->expect(entry.download("12345").at(0)).answer("585#8000220300000206").wait(20).answer(entry.answer(0x60));
    m_node->expect(entry.download("12345").at(2)).answer("585#2000000000000000");
    m_node->play();
    QCOMPARE(write("\1"), 0);
    QCOMPARE(write("12345"), 0);
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoFaultsOnVcan::lateAnswerIsNotTakenForAnother()
{
    const CSdoTranscript other(0x2200);
    m_node->expect(entry.request(0x40));
    m_node->expect(entry.abort(0x05040000));
    m_node->expect(other.request(0x40))
        .answer(entry.answer(0x4F, "\x77")) // the late one
        .wait(20)
        .answer(other.answer(0x4F, "\x01"));
    m_node->play();
    sdo_timeout(shortTimeout);
    tRead read(100);
    QCOMPARE(read(), -50);
    sdo_timeout(sdoPatience);
    QCOMPARE(read(0x2200, 0), 0);
    QCOMPARE(read.data(), QByteArray("\1"));
    QCOMPARE(m_node->difference(), QString());

    // An answer between two transfers belongs to none and goes to the queue.
    m_node.emplace();
    m_node->expect(entry.request(0x40));
    m_node->expect(entry.abort(0x05040000)).answer("585#4F00210377000000");
    m_node->play();
    sdo_timeout(shortTimeout);
    QCOMPARE(read(), -50);
    QCOMPARE(m_node->difference(), QString());
    followGoodTransfer();
    cop_queue_clear();
}

void TestSdoFaultsOnVcan::doubleAnswersDoNoHarm()
{
    constexpr int rounds = 20;
    const CSdoTranscript other(0x2200);
    for (int n = 0; n < rounds; ++n) {
        const QByteArray value(1, static_cast<char>(n));
        for (const CSdoTranscript& asked : { entry, other })
            m_node->expect(asked.request(0x40)).answer(asked.answer(0x4F, value)).answer(asked.answer(0x4F, value));
    }
    m_node->play();
    for (int n = 0; n < rounds; ++n) {
        tRead read(4);
        QCOMPARE(read(), 0);
        QCOMPARE(read.data(), QByteArray(1, static_cast<char>(n)));
        QCOMPARE(read(0x2200, 0), 0);
        QCOMPARE(read.data(), QByteArray(1, static_cast<char>(n)));
    }
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoFaultsOnVcan::segmentsWithoutEndAreReadUntilTheNodeStops()
{
    QStringList frames = { entry.request(0x40), entry.answer(0x41) };
    for (int n = 0; n < 1000; ++n)
        frames << entry.requestSegment(n % 2 == 0 ? 0x60 : 0x70)
               << entry.answerSegment(n % 2 == 0 ? 0x00 : 0x10, "1234567");
    frames << entry.requestSegment(0x60) << entry.abortByServer(0x08000000);
    m_node->expectInTurns(frames);
    m_node->play();
    tRead read(100);
    QCOMPARE(read(), 0x08000000);
    QCOMPARE(int(read.length), 0);
    QVERIFY(read.guarded());
    QCOMPARE(m_node->difference(), QString());
    followGoodTransfer();
}

QTEST_GUILESS_MAIN(TestSdoFaultsOnVcan)
#include "TestSdoFaultsOnVcan.moc"
