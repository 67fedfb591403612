// The facade as CANopen master on vcan0 with the simulator: every value of the sample sheet, frame by frame, and NMT.
// SPDX-License-Identifier: MIT
#include "CANopenAccess.h"
#include "Candump.h"
#include "DemoEntries.h"
#include "RawCan.h"
#include "SdoTranscript.h"
#include "SimulatorProcess.h"

#include <QElapsedTimer>
#include <QTest>

#include <optional>

Q_DECLARE_METATYPE(tDemoEntry)

namespace
{

constexpr BYTE node = 5;

} // namespace

class TestAccessOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_bus->forget(); }

    void everyValueReads_data();
    void everyValueReads();
    void everyWritableValueWritesAndReadsBack_data();
    void everyWritableValueWritesAndReadsBack();
    void everyOtherValueRefusesToBeWritten_data();
    void everyOtherValueRefusesToBeWritten();
    void whatDoesNotExistIsAnAbort();
    void candumpHasSeenTheSameFrames();
    void numbersOfAllWidths();
    void shortBufferIsFilledAndNoMore();
    void nmtCommandsChangeTheState();
    void nmtResetsPutValuesBack();
    void nmtForAnotherNodeIsNotForThisOne();
    void messagesGoToTheQueue();
    void timeOutIsSetAndGiven();
    void versionTextsAreThoseOfTheMaster();
    void cleanupTestCase();

private:
    QStringList transfer(qsizetype count);
    bool read(const tDemoEntry& entry, QByteArray* data);
    bool write(const tDemoEntry& entry, const QByteArray& data);
    void setHeartbeat(WORD milliseconds) { QVERIFY(m_access.writeUnsigned16(node, 0x1017, 0, milliseconds)); }

    CCANopenAccess m_access;
    std::optional<CRawCan> m_bus;
    std::optional<CSimulatorProcess> m_simulator;
    std::optional<CCandump> m_candump;
    QStringList m_frames; // of all transfers
};

void TestAccessOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
    m_simulator.emplace(QStringList{ "--can", "vcan0" }, CSimulatorProcess::silent);
    QVERIFY2(m_simulator->hasLogged("velmora-sim: CAN on vcan0"), m_simulator->log());
    _can_param param = { "vcan0", 29, 3, 1 };
    QVERIFY(m_access.initialize(0, -1, &param, 0));
    QVERIFY(m_access.setSDOTimeout(sdoPatience, nullptr));
    m_candump.emplace();
    QVERIFY2(m_candump->isRunning(), "candump does not run (package can-utils)");
    m_bus.emplace();
}

void TestAccessOnVcan::cleanupTestCase()
{
    m_access.terminate();
}

// Waits for `count` frames. @return these and any that came after them, without heartbeats
QStringList TestAccessOnVcan::transfer(qsizetype count)
{
    const auto isHeartbeat = [](const QString& frame) { return frame.startsWith("705#"); };
    QStringList frames;
    for (QString frame; frames.size() < count && !(frame = m_bus->receive()).isEmpty();)
        if (!isHeartbeat(frame))
            frames += frame;
    frames += m_bus->receiveAll();
    frames.removeIf(isHeartbeat);
    m_frames += frames;
    return frames;
}

bool TestAccessOnVcan::read(const tDemoEntry& entry, QByteArray* data)
{
    data->resize(1000);
    short length = 0;
    const bool well = m_access.read(node, static_cast<WORD>(entry.index), static_cast<BYTE>(entry.subIndex), &length,
                                    reinterpret_cast<BYTE*>(data->data()), static_cast<short>(data->size()));
    data->resize(length);
    return well;
}

bool TestAccessOnVcan::write(const tDemoEntry& entry, const QByteArray& data)
{
    return m_access.write(node, static_cast<WORD>(entry.index), static_cast<BYTE>(entry.subIndex),
                          static_cast<short>(data.size()), reinterpret_cast<const BYTE*>(data.constData()));
}

void TestAccessOnVcan::everyValueReads_data()
{
    QTest::addColumn<tDemoEntry>("entry");
    for (const tDemoEntry& entry : CDemoEntries::all())
        QTest::newRow(entry.section) << entry;
}

void TestAccessOnVcan::everyValueReads()
{
    QFETCH(const tDemoEntry, entry);
    const CSdoTranscript transcript(entry.index, entry.subIndex);
    QByteArray data;
    QCOMPARE(read(entry, &data), entry.readable());
    if (entry.readable()) {
        QCOMPARE(data.toHex(' '), entry.value.toHex(' '));
        const QStringList expected = transcript.upload(entry.value);
        QCOMPARE(transfer(expected.size()), expected);
    } else {
        QCOMPARE(m_access.getLastAbort(), 0x06010001L);
        QCOMPARE(transfer(2), QStringList({ transcript.request(0x40), transcript.abortByServer(0x06010001) }));
    }
}

void TestAccessOnVcan::everyWritableValueWritesAndReadsBack_data()
{
    QTest::addColumn<tDemoEntry>("entry");
    for (const tDemoEntry& entry : CDemoEntries::all())
        if (entry.writable())
            QTest::newRow(entry.section) << entry;
}

void TestAccessOnVcan::everyWritableValueWritesAndReadsBack()
{
    QFETCH(const tDemoEntry, entry);
    const CSdoTranscript transcript(entry.index, entry.subIndex);
    const QStringList download = transcript.download(entry.other);
    QVERIFY2(write(entry, entry.other), m_access.getErrorText(0));
    QCOMPARE(transfer(download.size()), download);
    if (!entry.readable())
        return;
    QByteArray data;
    const QByteArray expected = entry.keeps ? entry.other : entry.value;
    const QStringList upload = transcript.upload(expected);
    QVERIFY2(read(entry, &data), m_access.getErrorText(0));
    QCOMPARE(data.toHex(' '), expected.toHex(' '));
    QCOMPARE(transfer(upload.size()), upload);
}

void TestAccessOnVcan::everyOtherValueRefusesToBeWritten_data()
{
    QTest::addColumn<tDemoEntry>("entry");
    for (const tDemoEntry& entry : CDemoEntries::all())
        if (!entry.writable())
            QTest::newRow(entry.section) << entry;
}

void TestAccessOnVcan::everyOtherValueRefusesToBeWritten()
{
    QFETCH(const tDemoEntry, entry);
    const CSdoTranscript transcript(entry.index, entry.subIndex);
    const QString request = transcript.download(entry.value).first();
    QVERIFY(!write(entry, entry.value));
    QCOMPARE(m_access.getLastError(), 4);
    QCOMPARE(m_access.getLastAbort(), 0x06010002L);
    QCOMPARE(m_access.getAbortText(0), "Attempt to write a read only object.");
    QCOMPARE(transfer(2), QStringList({ request, transcript.abortByServer(0x06010002) }));
}

void TestAccessOnVcan::whatDoesNotExistIsAnAbort()
{
    std::uint32_t value = 0;
    QVERIFY(!m_access.readUnsigned32(node, 0x3000, 0, &value));
    QCOMPARE(m_access.getLastAbort(), 0x06020000L);
    QVERIFY(!m_access.readUnsigned32(node, 0x1018, 9, &value));
    QCOMPARE(m_access.getLastAbort(), 0x06090011L);
    QVERIFY(!m_access.writeUnsigned16(node, 0x1017, 0, 30001));
    QCOMPARE(m_access.getLastAbort(), 0x06090031L);
    QVERIFY(!m_access.writeUnsigned32(node, 0x1017, 0, 1));
    QCOMPARE(m_access.getLastAbort(), 0x06070012L);
    QCOMPARE(transfer(8), QStringList({ "605#4000300000000000", "585#8000300000000206", "605#4018100900000000",
                                        "585#8018100911000906", "605#2B17100031750000", "585#8017100031000906",
                                        "605#2317100001000000", "585#8017100012000706" }));
    QVERIFY(m_access.readUnsigned32(node, 0x1000, 0, &value));
    QCOMPARE(m_access.getLastAbort(), 0L);
    QCOMPARE(transfer(2), CSdoTranscript(0x1000).upload(QByteArray::fromHex("91010F00")));
}

void TestAccessOnVcan::candumpHasSeenTheSameFrames()
{
    QStringList seen = m_candump->end();
    seen.removeIf([](const QString& frame) { return frame.startsWith("705#") || frame == "7FF#" || frame == "7FE#"; });
    QVERIFY(m_frames.size() > 500);
    QCOMPARE(seen, m_frames);
}

void TestAccessOnVcan::numbersOfAllWidths()
{
    QVERIFY(m_access.writeInteger8(node, 0x2001, 0, -1));
    QVERIFY(m_access.writeInteger16(node, 0x2002, 0, -2));
    QVERIFY(m_access.writeInteger32(node, 0x2003, 0, -3));
    QVERIFY(m_access.writeUnsigned8(node, 0x2004, 0, 99));
    QCOMPARE(transfer(8), QStringList({ "605#2F012000FF000000", "585#6001200000000000", "605#2B022000FEFF0000",
                                        "585#6002200000000000", "605#23032000FDFFFFFF", "585#6003200000000000",
                                        "605#2F04200063000000", "585#6004200000000000" }));
    std::int8_t value8 = 0;
    std::int16_t value16 = 0;
    std::int32_t value32 = 0;
    QVERIFY(m_access.readInteger8(node, 0x2001, 0, &value8));
    QVERIFY(m_access.readInteger16(node, 0x2002, 0, &value16));
    QVERIFY(m_access.readInteger32(node, 0x2003, 0, &value32));
    QCOMPARE(int(value8), -1);
    QCOMPARE(int(value16), -2);
    QCOMPARE(value32, -3);
    std::uint16_t wrong = 0;
    QVERIFY(!m_access.readUnsigned16(node, 0x1000, 0, &wrong)); // delivers four bytes
    QCOMPARE(m_access.getLastError(), -60);
}

void TestAccessOnVcan::shortBufferIsFilledAndNoMore()
{
    BYTE buffer[8];
    std::fill(std::begin(buffer), std::end(buffer), BYTE{ 0xEE });
    short length = 0;
    QVERIFY(m_access.read(node, 0x1008, 0, &length, buffer, 7)); // Velmora Demo I/O
    QCOMPARE(int(length), 7);
    QCOMPARE(QByteArray(reinterpret_cast<char*>(buffer), 7), QByteArray("Velmora"));
    QCOMPARE(buffer[7], BYTE{ 0xEE });
}

void TestAccessOnVcan::nmtCommandsChangeTheState()
{
    std::uint32_t value = 0;
    setHeartbeat(100);
    QVERIFY(m_access.startRemoteNode(node));
    QVERIFY(m_bus->waitFor("000#0105"));
    QVERIFY(m_bus->waitFor("705#05"));
    QVERIFY(m_access.readUnsigned32(node, 0x1000, 0, &value));
    QVERIFY(m_access.stopRemoteNode(node));
    QVERIFY(m_bus->waitFor("000#0205"));
    QVERIFY(m_bus->waitFor("705#04"));
    QVERIFY(m_access.setSDOTimeout(200, nullptr));
    QVERIFY(!m_access.readUnsigned32(node, 0x1000, 0, &value)); // a stopped node does not answer
    QCOMPARE(m_access.getLastError(), -50);
    QVERIFY(m_bus->waitFor("605#8000100000000405"));
    QVERIFY(m_access.setSDOTimeout(sdoPatience, nullptr));
    QVERIFY(m_access.enterPreOperationalState(0));
    QVERIFY(m_bus->waitFor("000#8000"));
    QVERIFY(m_bus->waitFor("705#7F"));
    QVERIFY(m_access.readUnsigned32(node, 0x1000, 0, &value));
    QCOMPARE(value, 0x000F0191U);
    QVERIFY(!m_access.startRemoteNode(128));
    QCOMPARE(m_access.getLastError(), -90);
}

void TestAccessOnVcan::nmtResetsPutValuesBack()
{
    // What was saved before is forgotten first.
    QVERIFY(m_access.writeUnsigned32(node, 0x1011, 1, 0x64616F6C));
    std::uint8_t brightness = 0;
    setHeartbeat(100);
    QVERIFY(m_access.writeUnsigned8(node, 0x2004, 0, 99));
    QVERIFY(m_access.resetCommunication(node));
    QVERIFY(m_bus->waitFor("000#8205"));
    QVERIFY(m_bus->waitFor("705#00"));
    std::uint16_t heartbeat = 0;
    QVERIFY(m_access.readUnsigned16(node, 0x1017, 0, &heartbeat));
    QCOMPARE(int(heartbeat), 1000);
    QVERIFY(m_access.readUnsigned8(node, 0x2004, 0, &brightness));
    QCOMPARE(int(brightness), 99);
    QVERIFY(m_access.resetNode(node));
    QVERIFY(m_bus->waitFor("000#8105"));
    QVERIFY(m_bus->waitFor("705#00"));
    QVERIFY(m_access.readUnsigned8(node, 0x2004, 0, &brightness));
    QCOMPARE(int(brightness), 50);
}

void TestAccessOnVcan::nmtForAnotherNodeIsNotForThisOne()
{
    setHeartbeat(100);
    QVERIFY(m_access.startRemoteNode(6));
    QVERIFY(m_bus->waitFor("000#0106"));
    QVERIFY(m_bus->waitFor("705#7F"));
    QVERIFY(m_access.stopRemoteNode(6));
    std::uint32_t value = 0;
    QVERIFY(m_access.readUnsigned32(node, 0x1000, 0, &value));
}

void TestAccessOnVcan::messagesGoToTheQueue()
{
    std::uint32_t storage = 0xFFFFFFFF; // 32 bits are written
    auto* cobId = reinterpret_cast<WORD*>(&storage);
    short length = 0;
    BYTE received[8] = {};
    setHeartbeat(0);
    while (m_access.readQueue(cobId, &length, received)) { // heartbeats so far
    }
    m_bus->forget();
    QVERIFY(m_bus->send("18A#0102"));
    const BYTE data[] = { 0x99 };
    QVERIFY(m_access.transmitMessage(0x18B, 1, data));
    QVERIFY(m_access.readQueue(cobId, &length, received));
    QCOMPARE(storage, 0x18AU);
    QCOMPARE(int(length), 2);
    QCOMPARE(int(received[1]), 2);
    QVERIFY(!m_access.readQueue(cobId, &length, received));
    QCOMPARE(m_access.getLastError(), -30);
    QVERIFY(!m_access.clearQueue());
    QVERIFY(!m_access.requestMessage(0x18C, &length, received));
    QCOMPARE(m_access.getLastError(), -50);
    QCOMPARE(m_bus->receiveAll(), QStringList("18B#99"));
}

void TestAccessOnVcan::timeOutIsSetAndGiven()
{
    WORD previous = 0;
    QVERIFY(m_access.setSDOTimeout(250, &previous));
    QCOMPARE(int(previous), int(sdoPatience));
    std::uint8_t value = 0;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!m_access.readUnsigned8(6, 0x1001, 0, &value)); // no such node
    QVERIFY(timer.elapsed() >= 249 && timer.elapsed() < sdoPatience);
    QCOMPARE(m_access.getLastError(), -50);
    QCOMPARE(m_bus->receiveAll(), QStringList({ "606#4001100000000000", "606#8001100000000405" }));
    QVERIFY(m_access.setSDOTimeout(sdoPatience, &previous));
    QCOMPARE(int(previous), 250);
    QVERIFY(m_access.readUnsigned8(node, 0x1001, 0, &value));
}

void TestAccessOnVcan::versionTextsAreThoseOfTheMaster()
{
    char text[100] = {};
    QVERIFY(m_access.getHardwareVersion(text, sizeof text));
    QCOMPARE(static_cast<const char*>(text), "interface=\"vcan0\", family=29, type=3, protocol=1");
    QVERIFY(m_access.getFirmwareVersion(text, sizeof text));
    QVERIFY(QByteArray(text).contains("SocketCAN"));
    QVERIFY(m_access.getAPIVersion() != nullptr);
}

QTEST_GUILESS_MAIN(TestAccessOnVcan)
#include "TestAccessOnVcan.moc"
