// The facade over the SocketCAN master: opening and closing it, and its texts.
// SPDX-License-Identifier: MIT
#include "MasterExchanges.h"
#include "cop/cop_api.h"

#include <QByteArray>
#include <QtTest>

#include <cerrno>
#include <cstring>

class TestCANopenAccessSocketCAN : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initializeOpensTheInterface();
    void initializeFails_data();
    void initializeFails();
    void failedSystemCallLeavesNothingOpen();
    void secondInitializeTouchesNothing();
    void versionsAreCopiedUpToTheSize_data();
    void versionsAreCopiedUpToTheSize();
    void versionsNeedABuffer();
    void openingClosingAndTextsKeepTheLastAbort();
    void resetStopsAndStartsAgain();
    void terminateAndDestructorClose();
    void revisionLineIsThatOfTheMaster();
};

void TestCANopenAccessSocketCAN::initializeOpensTheInterface()
{
    {
        tBoundMaster on;
        QVERIFY(on.bound);
        QCOMPARE(on.access.getLastError(), 0);
        QCOMPARE(on.bus.calls().mid(0, 3),
                 QStringList({ "socket(29, 3, 1)", "ioctl(\"can0\", -1)", "bind(29, 7, 16)" }));
    }
    CFakeBus bus;
    bus.interfaces["slcan1"] = 9;
    _can_param param = { "slcan1", 28, 2, 7 };
    CCANopenAccess access;
    QVERIFY(access.initialize(0, -1, &param, 8));
    QCOMPARE(bus.calls().mid(0, 3), QStringList({ "socket(28, 2, 7)", "ioctl(\"slcan1\", -1)", "bind(28, 9, 16)" }));
}

void TestCANopenAccessSocketCAN::initializeFails_data()
{
    QTest::addColumn<int>("library");
    QTest::addColumn<long>("board");
    QTest::addColumn<QByteArray>("interface");
    QTest::addColumn<int>("baudrate");
    QTest::addColumn<int>("error");
    QTest::newRow("board 0") << 0 << 0L << QByteArray("can0") << 0 << -93;
    QTest::newRow("board 1") << 0 << 1L << QByteArray("can0") << 0 << -93;
    QTest::newRow("board 4294967295") << 0 << 4294967295L << QByteArray("can0") << 0 << -93;
    QTest::newRow("board 1 without a parameter") << 0 << 1L << QByteArray() << 0 << -93;
    QTest::newRow("no parameter") << 0 << -1L << QByteArray() << 0 << -94;
    QTest::newRow("no such interface") << 0 << -1L << QByteArray("can1") << 0 << -10000;
    QTest::newRow("an interface without a name") << 0 << -1L << QByteArray("") << 0 << -10000;
    QTest::newRow("index 1") << 0 << -1L << QByteArray("can0") << 1 << -91;
    QTest::newRow("index 9") << 0 << -1L << QByteArray("can0") << 9 << -91;
    QTest::newRow("index 255") << 0 << -1L << QByteArray("can0") << 255 << -91;
    QTest::newRow("library 5") << 5 << -1L << QByteArray("can0") << 0 << -98;
    QTest::newRow("library 5 without a parameter") << 5 << -1L << QByteArray() << 0 << -98;
}

void TestCANopenAccessSocketCAN::initializeFails()
{
    QFETCH(int, library);
    QFETCH(long, board);
    QFETCH(QByteArray, interface);
    QFETCH(int, baudrate);
    QFETCH(int, error);
    CFakeBus bus;
    CCANopenAccess access;
    _can_param param = { interface.constData(), 29, 3, 1 };
    for (int turn = 0; turn < 20; ++turn) {
        QVERIFY(!access.initialize(short(library), board, interface.isNull() ? nullptr : &param, BYTE(baudrate)));
        QCOMPARE(access.getLastError(), error);
    }
    QCOMPARE(bus.descriptors(), 0);
    QVERIFY(!access.resetNode(5));
    QCOMPARE(access.getLastError(), -95);
    QVERIFY(access.initialize(0, -1, &bus.param, 0));
    QCOMPARE(bus.descriptors(), 1);
}

void TestCANopenAccessSocketCAN::failedSystemCallLeavesNothingOpen()
{
    for (const auto call : { CFakeBus::Socket, CFakeBus::Bind, CFakeBus::Ioctl }) {
        CFakeBus bus;
        CCANopenAccess access;
        bus.fail(call, EPERM);
        QVERIFY(!access.initialize(0, -1, &bus.param, 0));
        QCOMPARE(access.getLastError(), -10000);
        QCOMPARE(QByteArray(access.getErrorText(0)), QByteArray("Resistance is futile, prepare to assimilate!"));
        QCOMPARE(bus.descriptors(), 0);
        QVERIFY(access.initialize(0, -1, &bus.param, 0));
        QCOMPARE(access.getLastError(), 0);
    }
}

void TestCANopenAccessSocketCAN::secondInitializeTouchesNothing()
{
    tBoundMaster on;
    const QStringList calls = on.bus.calls();
    for (const short library : { short(0), short(700), short(5) }) {
        QVERIFY(!on.access.initialize(library, -1, &on.bus.param, 0));
        QCOMPARE(on.access.getLastError(), -96);
        QVERIFY(!on.access.initialize(library, 0, nullptr, 0));
        QCOMPARE(on.access.getLastError(), -96);
    }
    QCOMPARE(on.bus.calls(), calls);
    on.bus.expect(0x000, "01 05");
    QVERIFY(on.access.startRemoteNode(5));
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessSocketCAN::versionsAreCopiedUpToTheSize_data()
{
    QTest::addColumn<bool>("hardware");
    QTest::newRow("hardware") << true;
    QTest::newRow("firmware") << false;
}

void TestCANopenAccessSocketCAN::versionsAreCopiedUpToTheSize()
{
    QFETCH(bool, hardware);
    tBoundMaster on;
    on.abortOnce(); // sets an error, which stays
    const QByteArray text = hardware ? cop_hardware() : cop_software();
    if (hardware)
        QCOMPARE(text, QByteArray("interface=\"can0\", family=29, type=3, protocol=1"));
    QVERIFY(text.size() > 5 && text.size() < 200);
    const auto read = [&](int size) {
        QByteArray buffer(220, '~');
        const auto version = hardware ? &CCANopenAccess::getHardwareVersion : &CCANopenAccess::getFirmwareVersion;
        const bool done = (on.access.*version)(buffer.data(), short(size));
        return done && on.access.getLastError() == 4 ? buffer : QByteArray("failed");
    };
    for (const int size : { 1, 5, int(text.size()) - 1, int(text.size()) }) // a full buffer has no terminator
        QCOMPARE(read(size), text.left(size).leftJustified(220, '~'));
    for (const int size : { 0, -1, -32768 })
        QCOMPARE(read(size), QByteArray(220, '~'));
    for (const int size : { int(text.size()) + 1, int(text.size()) + 5, 220 })
        QCOMPARE(read(size), (text + '\0').leftJustified(220, '~')); // nothing is padded
}

void TestCANopenAccessSocketCAN::versionsNeedABuffer()
{
    tBoundMaster on;
    QVERIFY(!on.access.getHardwareVersion(nullptr, 100));
    QCOMPARE(on.access.getLastError(), -94);
    on.abortOnce();
    QVERIFY(!on.access.getFirmwareVersion(nullptr, 0));
    QCOMPARE(on.access.getLastError(), -94);
    QCOMPARE(on.access.getLastAbort(), readOnly);
}

void TestCANopenAccessSocketCAN::openingClosingAndTextsKeepTheLastAbort()
{
    tBoundMaster on;
    on.abortOnce();
    char text[100];
    const std::pair<bool (*)(tBoundMaster&, char*), bool> steps[] = {
        { [](tBoundMaster& bound, char*) { return bound.access.initialize(0, -1, &bound.bus.param, 0); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.getCopyright(nullptr, 100); }, false },
        { [](tBoundMaster& bound, char* buffer) { return bound.access.getCopyright(buffer, 100); }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.getHardwareVersion(nullptr, 100); }, false },
        { [](tBoundMaster& bound, char* buffer) { return bound.access.getHardwareVersion(buffer, 100); }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.getAPIVersion() != nullptr; }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.setSDOTimeout(500, nullptr); }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.setLineTimeout(500, nullptr); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.endTransfersWhen(nullptr); }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.clearQueue(); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.reset(1); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.reset(0); }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.startRemoteNode(128); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.terminate(); }, true },
        { [](tBoundMaster& bound, char*) { return bound.access.terminate(); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.getAPIVersion() != nullptr; }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.initialize(5, -1, &bound.bus.param, 0); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.initialize(0, 0, &bound.bus.param, 0); }, false },
        { [](tBoundMaster& bound, char*) { return bound.access.initialize(0, -1, &bound.bus.param, 0); }, true },
    };
    for (const auto& [step, success] : steps) {
        QCOMPARE(step(on, text), success);
        QCOMPARE(on.access.getLastAbort(), readOnly);
    }
    on.bus.expect(0x605, "2F 00 20 01 FF 00 00 00").answer(0x585, "60 00 20 01 00 00 00 00");
    QVERIFY(on.access.writeUnsigned8(5, 0x2000, 1, 255));
    QCOMPARE(on.access.getLastAbort(), 0L);
}

void TestCANopenAccessSocketCAN::resetStopsAndStartsAgain()
{
    tBoundMaster on;
    QVERIFY(on.access.reset(8));
    QCOMPARE(on.access.getLastError(), 0);
    QCOMPARE(on.bus.calls().last(), QString("usleep(100000)"));
    QVERIFY(!on.access.reset(1));
    QCOMPARE(on.access.getLastError(), -91);
    QVERIFY(!on.access.resetNode(5)); // stopped, but still bound
    QCOMPARE(on.access.getLastError(), -9);
    QVERIFY(on.access.reset(0));
    on.bus.expect(0x000, "81 05");
    QVERIFY(on.access.resetNode(5));
    QVERIFY(on.bus.finished());
}

void TestCANopenAccessSocketCAN::terminateAndDestructorClose()
{
    CFakeBus bus;
    const int before = CFakeBus::descriptorsOfProcess();
    CCANopenAccess access;
    QVERIFY(access.initialize(0, -1, &bus.param, 0));
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before + 1);
    QVERIFY(access.terminate());
    QCOMPARE(access.getLastError(), 0);
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before);
    QVERIFY(!access.terminate());
    QCOMPARE(access.getLastError(), -95);
    {
        CCANopenAccess bound;
        QVERIFY(bound.initialize(0, -1, &bus.param, 0));
        {
            CCANopenAccess unbound; // does not close the interface of the other one
        }
        QCOMPARE(bus.descriptors(), 1);
    }
    QCOMPARE(CFakeBus::descriptorsOfProcess(), before);
    QVERIFY(access.initialize(0, -1, &bus.param, 0));
}

void TestCANopenAccessSocketCAN::revisionLineIsThatOfTheMaster()
{
    tBoundMaster on;
    on.abortOnce();
    QCOMPARE(QByteArray(on.access.getAPIVersion()), QByteArray(cop_version()));
    QCOMPARE(on.access.getLastError(), 4);
    char text[300] = {};
    QVERIFY(on.access.getCopyright(text, sizeof text));
    QVERIFY(std::strlen(text) > 0);
    QCOMPARE(on.access.getLastError(), 4);
    QVERIFY(on.access.terminate());
    QVERIFY(on.access.getAPIVersion() == nullptr);
    QCOMPARE(on.access.getLastError(), -95);
}

QTEST_GUILESS_MAIN(TestCANopenAccessSocketCAN)
#include "TestCANopenAccessSocketCAN.moc"
