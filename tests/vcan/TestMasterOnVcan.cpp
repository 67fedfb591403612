// The CAN controller, the master and its NMT commands on a CAN interface, with frames of the test on the other side.
// SPDX-License-Identifier: MIT
#include "MasterQueue.h"
#include "RawCan.h"
#include "cop/can_ctrl.h"
#include "cop/cop_nms.h"
#include "cop/cop_sdo.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <optional>
#include <thread>

namespace
{

_can_param vcan0 = { "vcan0", 29, 3, 1 };

} // namespace

class TestMasterOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void transmitSendsExactlyThis_data();
    void transmitSendsExactlyThis();
    void transmitRefusesWhatIsNoMessage_data();
    void transmitRefusesWhatIsNoMessage();
    void ownMessagesDoNotComeBack();
    void nmtCommandsAreTwoBytesToAll_data();
    void nmtCommandsAreTwoBytesToAll();
    void nmtRefusesNode128();

    void requestTakesTheMessageThatComes();
    void requestGivesUpInItsTime_data();
    void requestGivesUpInItsTime();
    void requestLeavesOtherMessagesToTheQueue();

    void resetWaitsAndStartsAgain();
    void resetToABadIndexStopsTheController();
    void initAgainStartsAnew();
    void nothingIsSentAfterTheExit();

private:
    std::optional<CRawCan> m_bus;
};

void TestMasterOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
}

void TestMasterOnVcan::init()
{
    m_bus.emplace();
    QCOMPARE(cop_init(-1, &vcan0, 0), 0);
}

void TestMasterOnVcan::cleanup()
{
    cop_exit();
}

void TestMasterOnVcan::transmitSendsExactlyThis_data()
{
    QTest::addColumn<uint>("cobId");
    QTest::addColumn<int>("length");
    QTest::newRow("000#") << 0U << 0;
    QTest::newRow("001#D1") << 1U << 1;
    QTest::newRow("185#D1D2") << 0x185U << 2;
    QTest::newRow("205#D1D2D3") << 0x205U << 3;
    QTest::newRow("305#D1D2D3D4") << 0x305U << 4;
    QTest::newRow("605#D1D2D3D4D5") << 0x605U << 5;
    QTest::newRow("701#D1D2D3D4D5D6") << 0x701U << 6;
    QTest::newRow("7FE#D1D2D3D4D5D6D7") << 0x7FEU << 7;
    QTest::newRow("7FF#D1D2D3D4D5D6D7D8") << 0x7FFU << 8;
}

void TestMasterOnVcan::transmitSendsExactlyThis()
{
    QFETCH(const uint, cobId);
    QFETCH(const int, length);
    const BYTE data[] = { 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8 };
    QCOMPARE(cop_transmit(cobId, static_cast<short>(length), data), 0);
    QCOMPARE(cop_error, 0);
    QCOMPARE(m_bus->receiveAll(), QStringList(QTest::currentDataTag()));
    QVERIFY(can_state.b.transmitter_busy == 0);
}

void TestMasterOnVcan::transmitRefusesWhatIsNoMessage_data()
{
    QTest::addColumn<uint>("cobId");
    QTest::addColumn<int>("length");
    QTest::newRow("identifier of 12 bits") << 0x800U << 1;
    QTest::newRow("extended identifier") << 0x80000001U << 1;
    QTest::newRow("nine bytes") << 1U << 9;
    QTest::newRow("less than nothing") << 1U << -1;
}

void TestMasterOnVcan::transmitRefusesWhatIsNoMessage()
{
    QFETCH(const uint, cobId);
    QFETCH(const int, length);
    const BYTE data[16] = {};
    QCOMPARE(cop_transmit(cobId, static_cast<short>(length), data), -93);
    QCOMPARE(m_bus->receiveAll(), QStringList());
}

void TestMasterOnVcan::ownMessagesDoNotComeBack()
{
    const BYTE data[] = { 1 };
    QCOMPARE(cop_transmit(0x123, 1, data), 0);
    QCOMPARE(m_bus->receive(), "123#01");
    QCOMPARE(masterQueue::read().result, -30);
}

void TestMasterOnVcan::nmtCommandsAreTwoBytesToAll_data()
{
    using tCommand = int32_t (*)(BYTE);
    QTest::addColumn<tCommand>("command");
    QTest::addColumn<uint>("node");
    QTest::newRow("000#0105") << tCommand(nmt_start_remote_node) << 5U;
    QTest::newRow("000#0205") << tCommand(nmt_stop_remote_node) << 5U;
    QTest::newRow("000#8005") << tCommand(nmt_enter_preoperational) << 5U;
    QTest::newRow("000#8105") << tCommand(nmt_reset_node) << 5U;
    QTest::newRow("000#8205") << tCommand(nmt_reset_communication) << 5U;
    QTest::newRow("000#8100") << tCommand(nmt_reset_node) << 0U;
    QTest::newRow("000#017F") << tCommand(nmt_start_remote_node) << 127U;
}

void TestMasterOnVcan::nmtCommandsAreTwoBytesToAll()
{
    using tCommand = int32_t (*)(BYTE);
    QFETCH(const tCommand, command);
    QFETCH(const uint, node);
    QCOMPARE(command(static_cast<BYTE>(node)), 0);
    QCOMPARE(m_bus->receiveAll(), QStringList(QTest::currentDataTag()));
}

void TestMasterOnVcan::nmtRefusesNode128()
{
    for (auto* command : { nmt_start_remote_node, nmt_stop_remote_node, nmt_enter_preoperational, nmt_reset_node,
                           nmt_reset_communication })
        QCOMPARE(command(128), -90);
    QCOMPARE(m_bus->receiveAll(), QStringList());
}

void TestMasterOnVcan::requestTakesTheMessageThatComes()
{
    QCOMPARE(cop_init(-1, &vcan0, 8), 0); // waits for 200 ms
    // The other thread sends again and again, since nothing on the bus shows that the request has begun.
    std::atomic<bool> ended = false;
    std::thread other([&] {
        for (; !ended; usleep(10000)) {
            m_bus->send("184#FF");
            m_bus->send("185#A1A2A3");
        }
    });
    short length = 0;
    BYTE data[8] = {};
    int32_t result = -50;
    for (const QDeadlineTimer deadline(patience); result == -50 && !deadline.hasExpired();) {
        length = 8;
        result = cop_request(0x185, &length, data);
    }
    ended = true;
    other.join();
    QCOMPARE(result, 0);
    QCOMPARE(int(length), 3);
    QCOMPARE(QByteArray(reinterpret_cast<char*>(data), 3).toHex(), QByteArray("a1a2a3"));
    QVERIFY(masterQueue::readAll().contains("184#FF"));
    QCOMPARE(m_bus->receiveAll(), QStringList()); // no remote frame nor any other
}

void TestMasterOnVcan::requestGivesUpInItsTime_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("1000 kbit/s") << 0 << qint64(20);
    QTest::newRow("100 kbit/s") << 5 << qint64(20);
    QTest::newRow("50 kbit/s") << 6 << qint64(50);
    QTest::newRow("20 kbit/s") << 7 << qint64(100);
    QTest::newRow("10 kbit/s") << 8 << qint64(200);
}

void TestMasterOnVcan::requestGivesUpInItsTime()
{
    QFETCH(const int, index);
    QFETCH(const qint64, milliseconds);
    QCOMPARE(cop_init(-1, &vcan0, static_cast<BYTE>(index)), 0);
    short length = 8;
    BYTE data[8];
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(cop_request(0x185, &length, data), -50);
    QVERIFY(timer.elapsed() >= milliseconds - 1 && timer.elapsed() < patience);
    QCOMPARE(m_bus->receiveAll(), QStringList());
}

void TestMasterOnVcan::requestLeavesOtherMessagesToTheQueue()
{
    m_bus->send("185#01"); // before the request: not its answer
    m_bus->send("186#02");
    short length = 1;
    BYTE data[8];
    QCOMPARE(cop_request(0x185, &length, data), -50);
    QCOMPARE(masterQueue::readAll(), QStringList({ "185#01", "186#02" }));
}

void TestMasterOnVcan::resetWaitsAndStartsAgain()
{
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(cop_reset(2), 0);
    QVERIFY(timer.elapsed() >= 100);
    QCOMPARE(nmt_start_remote_node(1), 0);
    QCOMPARE(m_bus->receiveAll(), QStringList("000#0101"));
}

void TestMasterOnVcan::resetToABadIndexStopsTheController()
{
    QCOMPARE(cop_reset(1), -91);
    QCOMPARE(nmt_start_remote_node(1), -9);
    uint8_t value = 0;
    QCOMPARE(sdo_read_8bit(5, 0x1001, 0, &value), -9);
    QCOMPARE(masterQueue::read().result, -9);
    QCOMPARE(m_bus->receiveAll(), QStringList());
    QCOMPARE(cop_reset(0), 0);
    QCOMPARE(nmt_start_remote_node(1), 0);
    QCOMPARE(m_bus->receive(), "000#0101");
}

void TestMasterOnVcan::initAgainStartsAnew()
{
    m_bus->send("123#01");
    QCOMPARE(cop_init(-1, &vcan0, 0), 0); // closes the socket with all frames in it
    m_bus->send("124#02");
    QCOMPARE(masterQueue::readAll(), QStringList("124#02"));
}

void TestMasterOnVcan::nothingIsSentAfterTheExit()
{
    QCOMPARE(cop_exit(), 0);
    const BYTE data[] = { 1 };
    QCOMPARE(cop_transmit(0x123, 1, data), -95);
    QCOMPARE(nmt_reset_node(0), -95);
    QCOMPARE(masterQueue::read().result, -95);
    QCOMPARE(m_bus->receiveAll(), QStringList());
}

QTEST_GUILESS_MAIN(TestMasterOnVcan)
#include "TestMasterOnVcan.moc"
