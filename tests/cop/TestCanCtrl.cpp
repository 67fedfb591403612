// The CAN controller: opening and closing the socket, starting and stopping, its texts and its timer.
// SPDX-License-Identifier: MIT
#include "ClosedInput.h"
#include "StartedBus.h"

#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/select.h>

class TestCanCtrl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openingBindsARawSocketToTheInterface();
    void socketDoesNotBlock(); // for sending and reading
    void descriptorZeroIsASocket();
    void familyTypeAndProtocolAreThoseOfTheRecord();
    void openingChecksInThisOrder();
    void socketThatFailsIsReportedAndNothingElseIsTried();
    void descriptorThatSelectCannotTakeIsNoSocket();
    void unknownInterfaceFailsAtItsPresetIndex_data();
    void unknownInterfaceFailsAtItsPresetIndex();
    void failedIndexQueryIsLeftToTheBind();
    void socketOfAFailedBindStaysOpenUntilTheExit();
    void nameIsCutAfter16Characters_data();
    void nameIsCutAfter16Characters();
    void nameOfAFailedOpeningIsForgotten();
    void exitClosesAndRestoresTheDefaults();
    void exitOnlySetsTheStoppedBit();
    void failedCloseIsNoErrorAndClosesOnce();
    void openingFreesAllMessageObjects();
    void startTakesIndexes_data();
    void startTakesIndexes();
    void secondStartIsRefusedWhateverTheIndex();
    void resetStopsAlsoWhenStopped();
    void statusAndBusLoadAreNotSupported();
    void timerRunsOutAtItsTime_data();
    void timerRunsOutAtItsTime();
    void clockThatIsSetBackLengthensTheWait();
    void timerOfZeroHasRunOut();
    void textsArePinned();
};

void TestCanCtrl::openingBindsARawSocketToTheInterface()
{
    CFakeBus bus;
    bus.interfaces = { { "can0", 7 }, { "vcan1", 12 } };
    bus.param.ifname = "vcan1";
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(bus.calls(), (QStringList{ "socket(29, 3, 1)", "ioctl(\"vcan1\", -1)", "bind(29, 12, 16)" }));
    QCOMPARE(bus.descriptors(), 1);
    QCOMPARE(can_state.byte, 0x80);
}

void TestCanCtrl::socketDoesNotBlock()
{
    CStartedBus bus;
    QCOMPARE(can_config(0, 0x123, 0x0001), 0);
    bus.expect(0x123, "").answer(0x456, "01");
    QCOMPARE(can_transmit(0, 0, nullptr), 0);
    QCOMPARE(queued(), "456 0: 01");
    QVERIFY(bus.finished()); // the fake bus checks this in each write and read
    can_exit();
    bus.lowestDescriptor = 100; // also with a larger descriptor
    QCOMPARE(can_init(-1, &bus.param), 0);
    QVERIFY((fcntl(100, F_GETFL) & O_NONBLOCK) != 0);
}

void TestCanCtrl::descriptorZeroIsASocket()
{
    const CClosedInput closed;
    CFakeBus bus;
    QCOMPARE(can_init(-1, &bus.param), 0);
    QVERIFY(fcntl(0, F_GETFL) != -1);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.descriptors(), 0);
    QCOMPARE(fcntl(0, F_GETFL), -1);
}

void TestCanCtrl::familyTypeAndProtocolAreThoseOfTheRecord()
{
    CFakeBus bus;
    bus.param = { "can0", 30, 2, 7 };
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(bus.calls(), (QStringList{ "socket(30, 2, 7)", "ioctl(\"can0\", -1)", "bind(30, 7, 16)" }));
    QCOMPARE(can_hardware(), "interface=\"can0\", family=30, type=2, protocol=7");
}

void TestCanCtrl::openingChecksInThisOrder()
{
    CFakeBus bus;
    _can_param nameless = { nullptr, 29, 3, 1 };
    QCOMPARE(can_init(0, nullptr), -93);
    QCOMPARE(can_init(-2, &bus.param), -93);
    QCOMPARE(can_init(1, &bus.param), -93);
    QCOMPARE(can_init(-1, nullptr), -94);
    QCOMPARE(can_init(-1, &nameless), -94);
    QCOMPARE(bus.calls(), QStringList());
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_init(0, nullptr), -96);
    QCOMPARE(can_init(-1, &bus.param), -96);
    QCOMPARE(can_state.byte, 0x00); // still started
    QCOMPARE(bus.descriptors(), 1);
}

void TestCanCtrl::socketThatFailsIsReportedAndNothingElseIsTried()
{
    CFakeBus bus;
    bus.fail(CFakeBus::Socket, EAFNOSUPPORT);
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(bus.calls(), QStringList{ "socket(29, 3, 1)" });
    QCOMPARE(can_start(0), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
}

void TestCanCtrl::descriptorThatSelectCannotTakeIsNoSocket()
{
    CFakeBus bus;
    const int before = CFakeBus::descriptorsOfProcess();
    rlimit limit = {};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit wider = { limit.rlim_max, limit.rlim_max }; // with a limit of 1024 the socket cannot be opened at all
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &wider), 0);
    bus.lowestDescriptor = FD_SETSIZE;
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(bus.calls(), QStringList{ "socket(29, 3, 1)" });
    QCOMPARE(can_exit(), 0);
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before);
    bus.lowestDescriptor = FD_SETSIZE - 1;
    QCOMPARE(can_init(-1, &bus.param), 0);
    bus.inject(0x123, "01");
    QCOMPARE(can_read_queue(100), 1);
    can_queue_clear();
    QCOMPARE(can_exit(), 0);
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &limit), 0);
}

void TestCanCtrl::unknownInterfaceFailsAtItsPresetIndex_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char* name : { "can1", "", "can", "can0 ", "CAN0" })
        QTest::newRow(name) << QByteArray(name);
}

void TestCanCtrl::unknownInterfaceFailsAtItsPresetIndex()
{
    QFETCH(QByteArray, name);
    CFakeBus bus;
    bus.param.ifname = name.constData();
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(bus.calls().at(1), QString("ioctl(\"%1\", -1)").arg(QString(name)));
    QCOMPARE(bus.calls().at(2), "bind(29, -1, 16)");
}

void TestCanCtrl::failedIndexQueryIsLeftToTheBind()
{
    CFakeBus bus;
    bus.fail(CFakeBus::Ioctl, EPERM);
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(bus.calls(), (QStringList{ "socket(29, 3, 1)", "ioctl(\"can0\", -1)", "bind(29, -1, 16)" }));
}

void TestCanCtrl::socketOfAFailedBindStaysOpenUntilTheExit()
{
    CFakeBus bus;
    const int before = CFakeBus::descriptorsOfProcess();
    bus.fail(CFakeBus::Bind, ENODEV);
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(bus.descriptors(), 1);
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before + 1);
    QCOMPARE(can_start(0), -95);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.descriptors(), 0);
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before);
    QCOMPARE(can_init(-1, &bus.param), 0);
}

void TestCanCtrl::nameIsCutAfter16Characters_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("kept");
    QTest::newRow("15") << QByteArray("abcdefghijklmno") << "abcdefghijklmno";
    QTest::newRow("16") << QByteArray("abcdefghijklmnop") << "abcdefghijklmnop";
    QTest::newRow("17") << QByteArray("abcdefghijklmnopq") << "abcdefghijklmnop";
    QTest::newRow("300") << QByteArray(300, 'x') << QString(16, 'x');
}

void TestCanCtrl::nameIsCutAfter16Characters()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, kept);
    CFakeBus bus;
    bus.param.ifname = name.constData();
    QCOMPARE(can_init(-1, &bus.param), -10000);
    QCOMPARE(can_hardware(), QString("interface=\"%1\", family=29, type=3, protocol=1").arg(kept));
    QVERIFY2(bus.calls().at(1).startsWith("ioctl(\"" + kept.left(15)), qPrintable(bus.calls().at(1)));
    QCOMPARE(can_exit(), 0);
    bus.param.ifname = "can0"; // nothing of the long name is left after the short one
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_hardware(), "interface=\"can0\", family=29, type=3, protocol=1");
}

void TestCanCtrl::nameOfAFailedOpeningIsForgotten()
{
    CFakeBus bus;
    bus.param.ifname = "missing";
    QCOMPARE(can_init(-1, &bus.param), -10000);
    bus.param.ifname = "can0";
    QCOMPARE(can_init(-1, &bus.param), 0); // without an exit
    QCOMPARE(can_hardware(), "interface=\"can0\", family=29, type=3, protocol=1");
}

void TestCanCtrl::exitClosesAndRestoresTheDefaults()
{
    CFakeBus bus;
    bus.param = { "can0", 30, 2, 7 };
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_state.byte, 0);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.calls().last(), "close()");
    QCOMPARE(bus.descriptors(), 0);
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(can_hardware(), "interface=\"\", family=29, type=3, protocol=1");
    QCOMPARE(can_start(0), -95);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.count(CFakeBus::Close), 1);
}

void TestCanCtrl::exitOnlySetsTheStoppedBit()
{
    CStartedBus bus;
    QCOMPARE(can_config(3, 0x10, 0x0003), 0);
    QCOMPARE(received(3), "-30");
    QCOMPARE(can_state.byte, 0x04);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(can_state.byte, 0x84);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_state.byte, 0x80);
}

void TestCanCtrl::failedCloseIsNoErrorAndClosesOnce()
{
    CFakeBus bus;
    QCOMPARE(can_init(-1, &bus.param), 0);
    bus.fail(CFakeBus::Close, EINTR);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(can_exit(), 0);
    QCOMPARE(bus.count(CFakeBus::Close), 1);
    QCOMPARE(can_init(-1, &bus.param), 0);
}

void TestCanCtrl::openingFreesAllMessageObjects()
{
    CStartedBus bus;
    for (short object = 0; object < 15; ++object)
        QCOMPARE(can_config(object, 0x100, 0x0803), 0);
    can_exit();
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(0), 0);
    can_queue_disable();
    for (short object = 0; object < 15; ++object)
        QCOMPARE(received(object), "-93");
    can_queue_enable();
}

void TestCanCtrl::startTakesIndexes_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("result");
    for (const int index : { 0, 2, 3, 4, 5, 6, 7, 8 })
        QTest::addRow("%d", index) << index << 0;
    for (const int index : { 1, 9, 10, 128, 255 })
        QTest::addRow("%d", index) << index << -91;
}

void TestCanCtrl::startTakesIndexes()
{
    QFETCH(int, index);
    QFETCH(int, result);
    CFakeBus bus;
    QCOMPARE(can_start(BYTE(index)), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_start(BYTE(index)), result);
    QCOMPARE(can_state.byte, result == 0 ? 0 : 0x80);
    QCOMPARE(can_reset(), 0);
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(bus.calls().size(), 3); // those of can_init; the bit rate is not set
}

void TestCanCtrl::secondStartIsRefusedWhateverTheIndex()
{
    CStartedBus bus;
    for (const int index : { 0, 1, 8, 9 })
        QCOMPARE(can_start(BYTE(index)), -8);
    QCOMPARE(can_reset(), 0);
    QCOMPARE(can_start(8), 0);
}

void TestCanCtrl::resetStopsAlsoWhenStopped()
{
    CFakeBus bus;
    QCOMPARE(can_reset(), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    QCOMPARE(can_reset(), 0);
    QCOMPARE(can_start(0), 0);
    QCOMPARE(can_reset(), 0);
    QCOMPARE(can_reset(), 0);
    QCOMPARE(can_state.byte, 0x80);
    QCOMPARE(bus.descriptors(), 1);
}

void TestCanCtrl::statusAndBusLoadAreNotSupported()
{
    CFakeBus bus;
    BYTE status = 0x5A;
    BYTE load = 0x5A;
    QCOMPARE(can_status(&status), -95);
    QCOMPARE(can_busload(&load, &status), -95);
    QCOMPARE(can_init(-1, &bus.param), 0);
    for (int started = 0; started < 2; ++started) {
        QCOMPARE(can_status(&status), -98);
        QCOMPARE(can_busload(&load, &status), -98);
        QCOMPARE(can_status(nullptr), -98);
        QCOMPARE(can_busload(nullptr, nullptr), -98);
        QCOMPARE(can_start(0), started == 0 ? 0 : -8);
    }
    QCOMPARE(status, 0x5A);
    QCOMPARE(load, 0x5A);
}

void TestCanCtrl::timerRunsOutAtItsTime_data()
{
    QTest::addColumn<int>("milliseconds");
    for (const int milliseconds : { 1, 20, 999, 1000, 32768, 65535 })
        QTest::addRow("%d", milliseconds) << milliseconds;
}

void TestCanCtrl::timerRunsOutAtItsTime()
{
    QFETCH(int, milliseconds);
    CFakeBus bus; // the timer needs no controller
    bus.step = 0;
    QCOMPARE(can_start_timer(WORD(milliseconds)), 0);
    QCOMPARE(can_is_timeout(), 0);
    bus.advance(milliseconds - 1);
    QCOMPARE(can_is_timeout(), 0);
    bus.advance(1);
    QCOMPARE(can_is_timeout(), 1);
    bus.advance(100000);
    QCOMPARE(can_is_timeout(), 1);
}

void TestCanCtrl::clockThatIsSetBackLengthensTheWait()
{
    CFakeBus bus;
    bus.step = 0;
    QCOMPARE(can_start_timer(100), 0);
    bus.advance(99 - 1000);
    QCOMPARE(can_is_timeout(), 0);
    bus.advance(1000);
    QCOMPARE(can_is_timeout(), 0);
    bus.advance(1);
    QCOMPARE(can_is_timeout(), 1);
}

void TestCanCtrl::timerOfZeroHasRunOut()
{
    CFakeBus bus;
    bus.step = 0;
    QCOMPARE(can_start_timer(0), 0);
    QCOMPARE(can_is_timeout(), 1);
    QCOMPARE(can_start_timer(5), 0);
    QCOMPARE(can_is_timeout(), 0);
}

void TestCanCtrl::textsArePinned()
{
    QCOMPARE(QByteArray(can_software()), QByteArray("SocketCAN, the CAN drivers of the Linux kernel"));
    QCOMPARE(QByteArray(can_version()), QByteArray("Velmora CANopen master, can_ctrl, 2026-11-21"));
}

QTEST_GUILESS_MAIN(TestCanCtrl)
#include "TestCanCtrl.moc"
