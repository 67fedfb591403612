// Interfaces that do not exist, are of another kind or down, or go down or vanish while the master uses them.
// SPDX-License-Identifier: MIT
#include "ScriptedNode.h"
#include "SdoTranscript.h"
#include "VcanInterface.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"
#include "cop/cop_nms.h"
#include "cop/cop_sdo.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

namespace
{

constexpr BYTE node = 5;
constexpr int shortTimeout = 2000; // milliseconds; normally enough for what is to happen before it
const CSdoTranscript entry(0x2100);
const char fifteen[] = "vcantest-15char"; // as long as the name of an interface can be
static_assert(sizeof fifteen == 16);

int32_t open(const QByteArray& name, int family = 29, int type = 3, int protocol = 1)
{
    _can_param param = { name.constData(), family, type, protocol };
    return cop_init(-1, &param, 0);
}

qsizetype openDescriptors()
{
    return QDir("/proc/self/fd").entryList(QDir::Files | QDir::System).size();
}

int32_t readByte(uint8_t* value)
{
    return sdo_read_8bit(node, 0x2100, 0, value);
}

} // namespace

class TestInterfaceOnVcan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { sdo_timeout(sdoPatience); }
    void cleanup() { cop_exit(); }

    void whatIsNoCanInterfaceCannotBeOpened_data();
    void whatIsNoCanInterfaceCannotBeOpened();
    void badArgumentsAreRefused();
    void nameOf15CharactersIsTheLongest();
    void noMoreThan16CharactersOfANameCount();
    void failedTriesLeaveNoDescriptor_data();
    void failedTriesLeaveNoDescriptor();
    void tryAfterManyFailuresWorks();
    void eachInterfaceIsABusOfItsOwn();
    void interfaceThatIsDownTakesNoMessage();
    void interfaceThatGoesDownDuringAReadIsATimeOut();
    void interfaceThatGoesDownDuringAWriteIsATimeOut();
    void interfaceThatVanishesIsATimeOut();
    void vanishedInterfaceWorksAgainAfterInit();

private:
    void readsAgain(const CVcanInterface& interface);
};

void TestInterfaceOnVcan::initTestCase()
{
    QVERIFY2(CRawCan::problem().isEmpty(), CRawCan::problem());
    const CVcanInterface interface;
    QVERIFY2(interface.exists(), CVcanInterface::problem());
}

// A whole transfer succeeds.
void TestInterfaceOnVcan::readsAgain(const CVcanInterface& interface)
{
    CScriptedNode player(interface.name());
    sdo_timeout(sdoPatience);
    player.expectInTurns(entry.upload("\x2A"));
    player.play();
    uint8_t value = 0;
    QCOMPARE(readByte(&value), 0);
    QCOMPARE(value, 0x2A);
    QCOMPARE(player.difference(), QString());
}

void TestInterfaceOnVcan::whatIsNoCanInterfaceCannotBeOpened_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("family");
    QTest::addColumn<int>("protocol");
    for (const char* name :
         { "nocan0", "nul", "lo", "", " vcan0", "vcan0 ", "vcan", "VCAN0", "vcan00", "10.0.0.1", "no-such-inter15",
           "no-such-interf16", "no-such-interfa17", "no such interface, and a name that does not fit anywhere at all" })
        QTest::addRow("\"%s\"", name) << QByteArray(name) << 29 << 1;
    QTest::newRow("family that does not exist") << QByteArray("vcan0") << 9999 << 1;
    QTest::newRow("protocol that does not exist") << QByteArray("vcan0") << 29 << 99;
}

void TestInterfaceOnVcan::whatIsNoCanInterfaceCannotBeOpened()
{
    QFETCH(const QByteArray, name);
    QFETCH(const int, family);
    QFETCH(const int, protocol);
    QCOMPARE(open(name, family, 3, protocol), -10000);
    QCOMPARE(cop_error, -10000);
    QCOMPARE(nmt_start_remote_node(1), -95);
    QCOMPARE(cop_hardware(), "interface=\"\", family=29, type=3, protocol=1");
}

void TestInterfaceOnVcan::badArgumentsAreRefused()
{
    _can_param param = { "vcan0", 29, 3, 1 };
    QCOMPARE(cop_init(0, &param, 0), -93);
    QCOMPARE(cop_init(-1, nullptr, 0), -94);
    QCOMPARE(cop_init(-1, &param, 1), -91);
    QCOMPARE(cop_init(-1, &param, 9), -91);
    QCOMPARE(nmt_start_remote_node(1), -95);
    QCOMPARE(cop_init(-1, &param, 8), 0);
    QCOMPARE(cop_hardware(), "interface=\"vcan0\", family=29, type=3, protocol=1");
    QCOMPARE(int(can_init(-1, &param)), -96);
}

void TestInterfaceOnVcan::nameOf15CharactersIsTheLongest()
{
    const CVcanInterface interface(fifteen);
    QVERIFY(interface.exists());
    QCOMPARE(open(fifteen), 0);
    QCOMPARE(cop_hardware(), "interface=\"vcantest-15char\", family=29, type=3, protocol=1");
    readsAgain(interface);
}

// The system looks up only 15 of the 16 characters.
void TestInterfaceOnVcan::noMoreThan16CharactersOfANameCount()
{
    const CVcanInterface interface(fifteen);
    QVERIFY(interface.exists());
    for (const char* longer : { "vcantest-15char!", "vcantest-15char!?", "vcantest-15char! and so on and so on" }) {
        QCOMPARE(open(longer), 0);
        QCOMPARE(cop_hardware(), "interface=\"vcantest-15char!\", family=29, type=3, protocol=1");
        readsAgain(interface);
    }
}

void TestInterfaceOnVcan::failedTriesLeaveNoDescriptor_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("family");
    QTest::addColumn<int>("baudrate");
    QTest::newRow("no interface") << QByteArray("nocan0") << 29 << 0;
    QTest::newRow("no CAN interface") << QByteArray("lo") << 29 << 0;
    QTest::newRow("no socket") << QByteArray("vcan0") << 9999 << 0;
    QTest::newRow("no baud rate") << QByteArray("vcan0") << 29 << 1;
}

void TestInterfaceOnVcan::failedTriesLeaveNoDescriptor()
{
    QFETCH(const QByteArray, name);
    QFETCH(const int, family);
    QFETCH(const int, baudrate);
    _can_param param = { name.constData(), family, 3, 1 };
    const qsizetype before = openDescriptors();
    for (int n = 0; n < 200; ++n)
        QVERIFY(cop_init(-1, &param, static_cast<BYTE>(baudrate)) != 0);
    QCOMPARE(openDescriptors(), before);
    // Alone, a failed can_init leaves its socket to can_exit.
    if (family == 29 && baudrate == 0) {
        QCOMPARE(int(can_init(-1, &param)), -10000);
        QCOMPARE(openDescriptors(), before + 1);
        QCOMPARE(int(can_exit()), 0);
        QCOMPARE(openDescriptors(), before);
    }
}

void TestInterfaceOnVcan::tryAfterManyFailuresWorks()
{
    const qsizetype before = openDescriptors();
    for (int n = 0; n < 1200; ++n) // more than a process may have open
        QCOMPARE(open("nocan0"), -10000);
    QCOMPARE(open("vcan0"), 0);
    QCOMPARE(open("vcan0"), 0);
    QCOMPARE(openDescriptors(), before + 1);
    QCOMPARE(nmt_start_remote_node(1), 0);
}

void TestInterfaceOnVcan::eachInterfaceIsABusOfItsOwn()
{
    const CRawCan first("vcan0"), second("vcan1");
    QVERIFY2(second.isOpen(), CRawCan::problem("vcan1"));
    QCOMPARE(open("vcan1"), 0);
    QCOMPARE(nmt_start_remote_node(1), 0);
    QCOMPARE(second.receiveAll(), QStringList("000#0101"));
    QCOMPARE(first.receiveAll(), QStringList());
    first.send("123#01");
    short length = 0;
    uint32_t cobId = 0;
    BYTE data[8];
    QCOMPARE(cop_queue_read(&cobId, &length, data), -30);
}

void TestInterfaceOnVcan::interfaceThatIsDownTakesNoMessage()
{
    const CVcanInterface interface;
    QVERIFY(interface.down());
    QCOMPARE(open(interface.name()), 0);
    const BYTE data[] = { 1 };
    uint8_t value = 0;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(cop_transmit(0x123, 1, data), -20);
    QVERIFY(can_state.b.transmitter_busy != 0);
    QCOMPARE(nmt_reset_node(0), -20);
    QCOMPARE(readByte(&value), -20);
    QCOMPARE(sdo_write_8bit(node, 0x2100, 0, 1), -20);
    QVERIFY(timer.elapsed() < sdoPatience); // at once, not after a time-out

    QVERIFY(interface.up());
    const CRawCan bus(interface.name());
    QCOMPARE(cop_transmit(0x123, 1, data), 0);
    QCOMPARE(bus.receive(), "123#01");
    readsAgain(interface);
}

void TestInterfaceOnVcan::interfaceThatGoesDownDuringAReadIsATimeOut()
{
    const CVcanInterface interface;
    QCOMPARE(open(interface.name()), 0);
    CScriptedNode player(interface.name());
    player.expect(entry.request(0x40))
        .act([&interface](CRawCan&) { interface.down(); })
        .answer(entry.answer(0x4F, "\1"));
    player.play();
    sdo_timeout(shortTimeout);
    uint8_t value = 0;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(readByte(&value), -50);
    QVERIFY(timer.elapsed() >= shortTimeout - 1 && timer.elapsed() < sdoPatience);
    player.finish();
    QCOMPARE(readByte(&value), -20);
    QVERIFY(interface.up());
    readsAgain(interface);
}

void TestInterfaceOnVcan::interfaceThatGoesDownDuringAWriteIsATimeOut()
{
    const CVcanInterface interface;
    QCOMPARE(open(interface.name()), 0);
    const QByteArray data(7000, 'x');
    const QStringList frames = entry.download(data);
    CScriptedNode player(interface.name());
    player.expectInTurns(frames.first(18));
    player.expect(frames[18]).act([](CRawCan&) { sdo_timeout(shortTimeout); }).answer(frames[19]);
    player.expect(frames[20]).act([&interface](CRawCan&) { interface.down(); });
    player.play();
    const int32_t result =
        sdo_write(node, 0x2100, 0, static_cast<short>(data.size()), reinterpret_cast<const BYTE*>(data.constData()));
    QCOMPARE(result, -50);
    player.finish();
    QVERIFY(interface.up());
    readsAgain(interface);
}

void TestInterfaceOnVcan::interfaceThatVanishesIsATimeOut()
{
    const CVcanInterface interface;
    QCOMPARE(open(interface.name()), 0);
    CScriptedNode player(interface.name());
    player.expect(entry.request(0x40)).act([&interface](CRawCan&) { interface.remove(); });
    player.play();
    sdo_timeout(shortTimeout);
    uint8_t value = 0;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(readByte(&value), -50);
    QVERIFY(timer.elapsed() >= shortTimeout - 1 && timer.elapsed() < sdoPatience);
    player.finish();
    QVERIFY(!interface.exists());
    QCOMPARE(readByte(&value), -20);
    QCOMPARE(nmt_reset_node(0), -20);
    QCOMPARE(open(interface.name()), -10000);
}

void TestInterfaceOnVcan::vanishedInterfaceWorksAgainAfterInit()
{
    const CVcanInterface interface;
    QCOMPARE(open(interface.name()), 0);
    QVERIFY(interface.remove());
    QVERIFY(interface.create());
    QCOMPARE(nmt_reset_node(0), -20); // the socket belongs to the interface that was removed
    QCOMPARE(open(interface.name()), 0);
    QCOMPARE(nmt_reset_node(0), 0);
    readsAgain(interface);
}

QTEST_GUILESS_MAIN(TestInterfaceOnVcan)
#include "TestInterfaceOnVcan.moc"
