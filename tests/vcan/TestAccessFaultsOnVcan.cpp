// The facade as CANopen master on vcan0 with a node that misbehaves: each fault is the stated error, in time, and the
// next transfer succeeds.
// SPDX-License-Identifier: MIT
#include "CANopenAccess.h"
#include "DemoEntries.h"
#include "RawCan.h"
#include "SdoTranscript.h"
#include "SimulatorProcess.h"

#include <QElapsedTimer>
#include <QTest>

#include <optional>

namespace
{

constexpr BYTE node = 5;
constexpr WORD shortTimeout = 1000; // milliseconds; answers normally come sooner
constexpr int late = 8000;          // milliseconds; an answer that comes after the short time-out
constexpr int room = 100;

// One object for each fault. Values of up to four bytes go in one answer, others in segments.
const char* const faults[] = {
    "silence@2000",   "delay=8000@2001",    "double@2002",        "abort=0x06060000@2003", "command@2004",
    "short@2005",     "foreign@2006",       "flood=200@2007",     "stall=2@2008",          "toggle@2009",
    "command=2@200A", "short=2@200B",       "segment=2@200D",     "toggle=2@200E",         "flood=50@200F",
    "filler@2010",    "filler@2014",        "last@2017",          "empty=3@2100:1",        "stall=3@2101:4",
    "segment@2102:2", "surplus=500@2102:3", "endless=300@2102:4", "last@2102:8",
};

} // namespace

class TestAccessFaultsOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void read_data();
    void read();
    void write_data();
    void write();
    void slowNodeIsWaitedFor();
    void answerAfterTheTimeOutIsNotTaken();
    void abortAfterTheLastSegmentMayReplaceIt();
    void lostSimulatorIsATimeOut();

    void cleanupTestCase();

private:
    enum tOutcome { good = 0, aborted = 4, timeOut = -50, badLength = -60, badFormat = -70 };

    struct tPlace {
        WORD index;
        BYTE subIndex;
    };
    tPlace prepare();
    void checkOutcome(bool well, qint64 elapsed);
    void checkAbortSent(const CSdoTranscript& transcript, uint sent);
    void followGoodTransfer();

    CCANopenAccess m_access;
    std::optional<CRawCan> m_bus;
    std::optional<CSimulatorProcess> m_simulator;
};

void TestAccessFaultsOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
    QStringList options = { "--can", "vcan0" };
    for (const char* fault : faults)
        options << "--fault" << fault;
    m_simulator.emplace(options, CSimulatorProcess::silent);
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0"), m_simulator->log());
    _can_param param = { "vcan0", 29, 3, 1 };
    QVERIFY(m_access.initialize(0, -1, &param, 0));
    QVERIFY(m_access.setSDOTimeout(sdoPatience, nullptr));
    QVERIFY(m_access.writeUnsigned16(node, 0x1017, 0, 0)); // no heartbeats
    m_bus.emplace();
}

void TestAccessFaultsOnVcan::cleanupTestCase()
{
    m_access.terminate();
}

// The next transfer succeeds.
void TestAccessFaultsOnVcan::followGoodTransfer()
{
    std::uint32_t value = 0;
    QVERIFY(m_access.setSDOTimeout(sdoPatience, nullptr));
    QVERIFY2(m_access.readUnsigned32(node, 0x1000, 0, &value), m_access.getErrorText(0));
    QCOMPARE(value, 0x000F0191U);
    QCOMPARE(m_access.getLastAbort(), 0L);
}

// The abort that we have sent; `sent` is its code, 0: none.
void TestAccessFaultsOnVcan::checkAbortSent(const CSdoTranscript& transcript, uint sent)
{
    const QStringList aborts = m_bus->receiveAll().filter("605#80");
    QCOMPARE(aborts, sent != 0 ? QStringList(transcript.abort(sent)) : QStringList());
}

// Prepares the row. @return the entry with the fault, which the name of the row gives
TestAccessFaultsOnVcan::tPlace TestAccessFaultsOnVcan::prepare()
{
    QFETCH(const int, outcome);
    m_bus->forget();
    m_access.setSDOTimeout(outcome == timeOut ? shortTimeout : sdoPatience, nullptr);
    const QString place = QString(QTest::currentDataTag()).section('@', 1);
    return { place.section(':', 0, 0).toUShort(nullptr, 16),
             static_cast<BYTE>(place.section(':', 1).toUInt(nullptr, 16)) };
}

void TestAccessFaultsOnVcan::checkOutcome(bool well, qint64 elapsed)
{
    QFETCH(const int, outcome);
    QFETCH(const uint, abort);
    QCOMPARE(well, outcome == good);
    if (!well)
        QCOMPARE(m_access.getLastError(), outcome);
    if (outcome == timeOut)
        QVERIFY2(elapsed >= shortTimeout - 1 && elapsed < sdoPatience, qPrintable(QString::number(elapsed)));
    if (outcome == aborted)
        QCOMPARE(m_access.getLastAbort(), long(abort));
}

void TestAccessFaultsOnVcan::read_data()
{
    QTest::addColumn<int>("outcome"); // the last error
    QTest::addColumn<uint>("abort");  // code sent by the node
    QTest::addColumn<uint>("sent");   // abort code sent by us
    QTest::newRow("silence@2000") << int(timeOut) << 0U << 0x05040000U;
    QTest::newRow("double@2002") << int(good) << 0U << 0U;
    QTest::newRow("abort=0x06060000@2003") << int(aborted) << 0x06060000U << 0U;
    QTest::newRow("command@2004") << int(badFormat) << 0U << 0x05040001U;
    QTest::newRow("short@2005") << int(badLength) << 0U << 0x08000000U;
    QTest::newRow("foreign@2006") << int(good) << 0U << 0U;
    QTest::newRow("flood=200@2007") << int(good) << 0U << 0U;
    QTest::newRow("stall=2@2008") << int(timeOut) << 0U << 0x05040000U;
    QTest::newRow("toggle@2009") << int(badFormat) << 0U << 0x05030000U;
    QTest::newRow("command=2@200A") << int(badFormat) << 0U << 0x05040001U;
    QTest::newRow("short=2@200B") << int(badLength) << 0U << 0x08000000U;
    QTest::newRow("segment=2@200D") << int(aborted) << 0x08000000U << 0U;
    QTest::newRow("toggle=2@200E") << int(badFormat) << 0U << 0x05030000U;
    QTest::newRow("flood=50@200F") << int(good) << 0U << 0U;
    QTest::newRow("filler@2010") << int(good) << 0U << 0U;
    QTest::newRow("filler@2014") << int(good) << 0U << 0U;
    QTest::newRow("empty=3@2100:1") << int(good) << 0U << 0U;
    QTest::newRow("stall=3@2101:4") << int(timeOut) << 0U << 0x05040000U;
    QTest::newRow("segment@2102:2") << int(aborted) << 0x08000000U << 0U;
    QTest::newRow("surplus=500@2102:3") << int(good) << 0U << 0U;
    QTest::newRow("endless=300@2102:4") << int(aborted) << 0x08000000U << 0U;
}

void TestAccessFaultsOnVcan::read()
{
    QFETCH(const uint, sent);
    const auto [index, subIndex] = prepare();
    QByteArray data(room + 16, '\xEE');
    short length = -1;
    QElapsedTimer timer;
    timer.start();
    const bool well =
        m_access.read(node, index, subIndex, &length, reinterpret_cast<BYTE*>(data.data()), short{ room });
    checkOutcome(well, timer.elapsed());
    QCOMPARE(data.mid(room), QByteArray(16, '\xEE'));
    QByteArray expected;
    for (const tDemoEntry& entry : CDemoEntries::all())
        if (well && entry.index == index && entry.subIndex == subIndex)
            expected = entry.value;
    if (QByteArray(QTest::currentDataTag()).startsWith("surplus"))
        QVERIFY(int(length) == room && data.startsWith(expected));
    else
        QCOMPARE(data.left(length).toHex(' '), expected.toHex(' '));
    checkAbortSent(CSdoTranscript(index, subIndex), sent);
    followGoodTransfer();
}

void TestAccessFaultsOnVcan::write_data()
{
    QTest::addColumn<int>("outcome");
    QTest::addColumn<uint>("abort");
    QTest::addColumn<uint>("sent");
    QTest::newRow("silence@2000") << int(timeOut) << 0U << 0x05040000U;
    QTest::newRow("double@2002") << int(good) << 0U << 0U;
    QTest::newRow("abort=0x06060000@2003") << int(aborted) << 0x06060000U << 0U;
    QTest::newRow("command@2004") << int(badFormat) << 0U << 0x05040001U;
    QTest::newRow("short@2005") << int(badLength) << 0U << 0x08000000U;
    QTest::newRow("foreign@2006") << int(good) << 0U << 0U;
    QTest::newRow("flood=200@2007") << int(good) << 0U << 0U;
    QTest::newRow("stall=2@2008") << int(timeOut) << 0U << 0x05040000U;
    QTest::newRow("toggle@2009") << int(badFormat) << 0U << 0x05030000U;
    QTest::newRow("command=2@200A") << int(badFormat) << 0U << 0x05040001U;
    QTest::newRow("short=2@200B") << int(badLength) << 0U << 0x08000000U;
    QTest::newRow("segment=2@200D") << int(aborted) << 0x08000000U << 0U;
    QTest::newRow("toggle=2@200E") << int(badFormat) << 0U << 0x05030000U;
    QTest::newRow("filler@2010") << int(good) << 0U << 0U;
    QTest::newRow("last@2017") << int(aborted) << 0x08000000U << 0U;
    QTest::newRow("stall=3@2101:4") << int(timeOut) << 0U << 0x05040000U;
    QTest::newRow("last@2102:8") << int(aborted) << 0x08000000U << 0U;
}

void TestAccessFaultsOnVcan::write()
{
    QFETCH(const uint, sent);
    const auto [index, subIndex] = prepare();
    QByteArray data;
    for (const tDemoEntry& entry : CDemoEntries::all())
        if (entry.index == index && entry.subIndex == subIndex)
            data = entry.other;
    QElapsedTimer timer;
    timer.start();
    const bool well = m_access.write(node, index, subIndex, static_cast<short>(data.size()),
                                     reinterpret_cast<const BYTE*>(data.constData()));
    checkOutcome(well, timer.elapsed());
    checkAbortSent(CSdoTranscript(index, subIndex), sent);
    followGoodTransfer();
}

void TestAccessFaultsOnVcan::slowNodeIsWaitedFor()
{
    QVERIFY(m_access.setSDOTimeout(sdoPatience, nullptr));
    std::int8_t value = 0;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(m_access.readInteger8(node, 0x2001, 0, &value)); // delay
    QVERIFY(timer.elapsed() >= late - 1);
    QCOMPARE(int(value), 70);
}

// The answer to the first read comes during the others and is taken for none of them. A read whose own answer comes at
// the same moment may lose it, since the later message overwrites the earlier one.
void TestAccessFaultsOnVcan::answerAfterTheTimeOutIsNotTaken()
{
    QVERIFY(m_access.setSDOTimeout(shortTimeout, nullptr));
    m_bus->forget();
    std::int8_t missed = 0;
    QVERIFY(!m_access.readInteger8(node, 0x2001, 0, &missed)); // delay
    QCOMPARE(m_access.getLastError(), int(timeOut));
    checkAbortSent(CSdoTranscript(0x2001), 0x05040000);
    QVERIFY(m_access.setSDOTimeout(10 * shortTimeout, nullptr)); // keeps the read that may fail short
    int failures = 0;
    QStringList frames;
    const QDeadlineTimer deadline(patience);
    for (; !frames.contains("585#4F01200046000000") && !deadline.hasExpired(); frames = m_bus->receiveAll()) {
        std::uint8_t value = 0;
        const bool well = m_access.readUnsigned8(node, 0x2101, 7, &value);
        QCOMPARE(int(value), well ? 3 : 0);
        if (!well)
            QCOMPARE(m_access.getLastError(), int(timeOut));
        failures += well ? 0 : 1;
    }
    QVERIFY2(failures <= 1, qPrintable(QString::number(failures)));
    QVERIFY(!deadline.hasExpired()); // the late answer has come
    followGoodTransfer();
}

// Of two messages at once, the later one overwrites the earlier one.
void TestAccessFaultsOnVcan::abortAfterTheLastSegmentMayReplaceIt()
{
    QVERIFY(m_access.setSDOTimeout(sdoPatience, nullptr));
    BYTE data[room];
    short length = 0;
    const bool well = m_access.read(node, 0x2102, 8, &length, data, room); // last
    QCOMPARE(int(length), well ? 7 : 0);
    QCOMPARE(m_access.getLastAbort(), well ? 0L : 0x08000000L);
    followGoodTransfer();
}

void TestAccessFaultsOnVcan::lostSimulatorIsATimeOut()
{
    m_simulator.reset();
    QVERIFY(m_access.setSDOTimeout(shortTimeout, nullptr));
    std::uint32_t value = 0;
    QVERIFY(!m_access.readUnsigned32(node, 0x1000, 0, &value));
    QCOMPARE(m_access.getLastError(), -50);
    m_simulator.emplace(QStringList{ "--can", "vcan0" }, CSimulatorProcess::silent);
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0"), m_simulator->log());
    followGoodTransfer();
}

QTEST_GUILESS_MAIN(TestAccessFaultsOnVcan)
#include "TestAccessFaultsOnVcan.moc"
