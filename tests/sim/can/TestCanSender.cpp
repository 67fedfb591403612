// Frames on their way to the bus: their order and their pace.
// SPDX-License-Identifier: MIT
#include "Patience.h"
#include "can/CanSender.h"

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>

#include <algorithm>

namespace
{

tCanFrames framesFrom(quint32 first, qsizetype count)
{
    tCanFrames frames;
    for (qsizetype i = 0; i < count; ++i)
        frames += { first + static_cast<quint32>(i), QByteArray() };
    return frames;
}

} // namespace

class TestCanSender : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fewFramesGoAtOnce();
    void manyFramesTakeTheTimeOfABus();
    void laterFramesWaitForTheirTurn();
    void moreThanMayWaitAreLost();
    void timerStopsWhenNoFrameWaits();

private:
    QList<quint32> m_sent;
};

void TestCanSender::fewFramesGoAtOnce()
{
    m_sent.clear();
    CCanSender sender([this](const tCanFrame& frame) { m_sent += frame.cobId; });
    sender.send(framesFrom(1, 3));
    QCOMPARE(m_sent, (QList<quint32>{ 1, 2, 3 }));
}

void TestCanSender::manyFramesTakeTheTimeOfABus()
{
    m_sent.clear();
    qsizetype burst = 0; // frames since the event loop ran
    qsizetype longest = 0;
    CCanSender sender([&](const tCanFrame& frame) {
        m_sent += frame.cobId;
        longest = std::max(longest, ++burst);
    });
    QElapsedTimer timer;
    timer.start();
    sender.send(framesFrom(0, 1000));
    QCOMPARE(m_sent.size(), 0);
    while (m_sent.size() < 1000 && timer.elapsed() < patience) {
        burst = 0;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCOMPARE(m_sent.size(), 1000);
    QVERIFY2(timer.elapsed() >= 1000 / CCanSender::framesPerMillisecond - 10, "no faster than a bus");
    QVERIFY(longest <= CCanSender::longestBurst);
    for (qsizetype i = 0; i < 1000; ++i)
        QCOMPARE(m_sent[i], static_cast<quint32>(i));
}

void TestCanSender::laterFramesWaitForTheirTurn()
{
    m_sent.clear();
    CCanSender sender([this](const tCanFrame& frame) { m_sent += frame.cobId; });
    sender.send(framesFrom(0, 50));
    sender.send(framesFrom(50, 1));
    QCOMPARE(m_sent.size(), 0);
    AWAIT_COMPARE(m_sent.size(), 51);
    QCOMPARE(m_sent.last(), 50U);
    sender.send(framesFrom(60, 1));
    QCOMPARE(m_sent.last(), 60U);
}

void TestCanSender::moreThanMayWaitAreLost()
{
    m_sent.clear();
    CCanSender sender([this](const tCanFrame& frame) { m_sent += frame.cobId; });
    sender.send(framesFrom(0, static_cast<qsizetype>(CCanSender::waitingLimit) + 1));
    sender.send(framesFrom(7, 11));
    AWAIT_VERIFY(m_sent.size() >= 11);
    QCOMPARE(m_sent, (QList<quint32>{ 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17 })); // all others would have come before
}

void TestCanSender::timerStopsWhenNoFrameWaits()
{
    m_sent.clear();
    CCanSender sender([this](const tCanFrame& frame) { m_sent += frame.cobId; });
    sender.send(framesFrom(0, 50));
    AWAIT_COMPARE(m_sent.size(), 50);
    int awakenings = 0;
    QObject context;
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, &context,
            [&awakenings] { ++awakenings; });
    QEventLoop loop;
    QTimer::singleShot(100, &loop, &QEventLoop::quit);
    loop.exec();
    QVERIFY2(awakenings < 20, QByteArray::number(awakenings));
}

QTEST_GUILESS_MAIN(TestCanSender)
#include "TestCanSender.moc"
