// The SDO client on a real CAN interface against nodes that the test plays frame by frame, good ones and bad ones.
// SPDX-License-Identifier: MIT
#include "MasterQueue.h"
#include "ScriptedNode.h"
#include "SdoClient.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"

#include <QTest>

#include <optional>

using namespace sdoClient;

namespace
{

_can_param vcan0 = { "vcan0", 29, 3, 1 };

} // namespace

class TestSdoOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void readsInExactlyTheseFrames_data();
    void readsInExactlyTheseFrames();
    void writesInExactlyTheseFrames_data();
    void writesInExactlyTheseFrames();
    void numbersAreReadAndWritten();
    void otherNumberOfBytesIsNoNumber();

    void uploadIgnoresTheSizeAnnounced();
    void uploadBeyondTheBufferIsClipped();
    void segmentsWithoutDataAreWaitedThrough();

    void readsOnAFullBus();

private:
    std::optional<CScriptedNode> m_node;
};

void TestSdoOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
}

void TestSdoOnVcan::init()
{
    m_node.emplace();
    QCOMPARE(cop_init(-1, &vcan0, 0), 0);
    sdo_timeout(sdoPatience);
}

void TestSdoOnVcan::cleanup()
{
    m_node.reset();
    cop_exit();
}

void TestSdoOnVcan::readsInExactlyTheseFrames_data()
{
    QTest::addColumn<QByteArray>("data");
    for (const int size : { 0, 1, 2, 3, 4, 5, 6, 7, 8, 13, 14, 15, 28, 700 })
        QTest::addRow("%d bytes", size) << pattern(size);
}

void TestSdoOnVcan::readsInExactlyTheseFrames()
{
    QFETCH(const QByteArray, data);
    m_node->expectInTurns(entry.upload(data));
    m_node->play();
    tRead read(1000);
    QCOMPARE(read(), 0);
    QCOMPARE(read.data(), data);
    const bool segmented = data.isEmpty() || data.size() > 4;
    QCOMPARE(read.bytes[data.size()], segmented ? '\0' : '\xEE');
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoOnVcan::writesInExactlyTheseFrames_data()
{
    readsInExactlyTheseFrames_data();
}

void TestSdoOnVcan::writesInExactlyTheseFrames()
{
    QFETCH(const QByteArray, data);
    m_node->expectInTurns(entry.download(data));
    m_node->play();
    QCOMPARE(write(data), 0);
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoOnVcan::numbersAreReadAndWritten()
{
    for (const QStringList& frames : { QStringList{ "605#2F00210381000000", "585#6000210300000000" },
                                       { "605#2B00210382810000", "585#6000210300000000" },
                                       { "605#2300210384838281", "585#6000210300000000" },
                                       { "605#4000210300000000", "585#4F00210381000000" },
                                       { "605#4000210300000000", "585#4B00210382810000" },
                                       { "605#4000210300000000", "585#4300210384838281" } })
        m_node->expectInTurns(frames);
    m_node->play();
    QCOMPARE(sdo_write_8bit(node, entryIndex, entrySub, 0x81), 0);
    QCOMPARE(sdo_write_16bit(node, entryIndex, entrySub, 0x8182), 0);
    QCOMPARE(sdo_write_32bit(node, entryIndex, entrySub, 0x81828384), 0);
    uint8_t value8 = 0;
    uint16_t value16 = 0;
    uint32_t value32 = 0;
    QCOMPARE(sdo_read_8bit(node, entryIndex, entrySub, &value8), 0);
    QCOMPARE(sdo_read_16bit(node, entryIndex, entrySub, &value16), 0);
    QCOMPARE(sdo_read_32bit(node, entryIndex, entrySub, &value32), 0);
    QCOMPARE(value8, 0x81);
    QCOMPARE(value16, 0x8182);
    QCOMPARE(value32, 0x81828384U);
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoOnVcan::otherNumberOfBytesIsNoNumber()
{
    m_node->expectInTurns(entry.upload(pattern(4)));
    m_node->expectInTurns(entry.upload(pattern(2)));
    m_node->expectInTurns(entry.upload(pattern(5)));
    m_node->expectInTurns({ entry.request(0x40), entry.answer(0x42, pattern(2)) }); // without a size: four bytes
    m_node->play();
    uint8_t value8 = 0;
    uint16_t value16 = 0;
    uint32_t value32 = 0;
    QCOMPARE(sdo_read_16bit(node, entryIndex, entrySub, &value16), -60);
    QCOMPARE(sdo_read_32bit(node, entryIndex, entrySub, &value32), -60);
    QCOMPARE(sdo_read_32bit(node, entryIndex, entrySub, &value32), -60);
    QCOMPARE(sdo_read_8bit(node, entryIndex, entrySub, &value8), -60);
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoOnVcan::uploadIgnoresTheSizeAnnounced()
{
    QStringList frames = entry.upload(pattern(10));
    frames[1] = entry.answer(0x41, CSdoTranscript::number(0xFFFFFFFF, 4));
    m_node->expectInTurns(frames);
    frames[1] = entry.answer(0x40);
    m_node->expectInTurns(frames);
    m_node->play();
    for (int n = 0; n < 2; ++n) {
        tRead read(32);
        QCOMPARE(read(), 0);
        QCOMPARE(read.data(), pattern(10));
    }
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoOnVcan::uploadBeyondTheBufferIsClipped()
{
    m_node->expectInTurns(entry.upload(pattern(100)));
    m_node->expectInTurns(entry.upload(pattern(4)));
    m_node->play();
    tRead segmented(10), expedited(3);
    QCOMPARE(segmented(), 0);
    QCOMPARE(segmented.data(), pattern(10));
    QVERIFY(segmented.guarded());
    QCOMPARE(expedited(), 0);
    QCOMPARE(expedited.data(), pattern(3));
    QVERIFY(expedited.guarded());
    QCOMPARE(m_node->difference(), QString());
}

void TestSdoOnVcan::segmentsWithoutDataAreWaitedThrough()
{
    QStringList frames = { entry.request(0x40), entry.answer(0x41) };
    for (int n = 0; n < 100; ++n)
        frames << entry.requestSegment(n % 2 == 0 ? 0x60 : 0x70) << entry.answerSegment(n % 2 == 0 ? 0x0E : 0x1E);
    frames << entry.requestSegment(0x60) << entry.answerSegment(0x09, "abc");
    m_node->expectInTurns(frames);
    m_node->play();
    tRead read(3);
    QCOMPARE(read(), 0);
    QCOMPARE(read.data(), QByteArray("abc"));
    QVERIFY(read.guarded());
    QCOMPARE(m_node->difference(), QString());
}

// Each answer comes after as many other messages as a bus of 1000 kbit/s carries in about 17 ms.
void TestSdoOnVcan::readsOnAFullBus()
{
    constexpr int rounds = 10, others = 150;
    const auto flood = [](const CRawCan& bus) {
        for (int n = 0; n < others; ++n)
            bus.send("185#1122334455667788");
    };
    const QStringList frames = entry.upload(pattern(20));
    for (int n = 0; n < rounds; ++n)
        for (qsizetype i = 0; i < frames.size(); i += 2)
            m_node->expect(frames[i]).act(flood).answer(frames[i + 1]);
    m_node->play();
    for (int n = 0; n < rounds; ++n) {
        tRead read(100);
        QCOMPARE(read(), 0);
        QCOMPARE(read.data(), pattern(20));
    }
    QCOMPARE(m_node->difference(), QString());
    QCOMPARE(masterQueue::readAll(), QStringList(rounds * frames.size() / 2 * others, "185#1122334455667788"));
}

QTEST_GUILESS_MAIN(TestSdoOnVcan)
#include "TestSdoOnVcan.moc"
