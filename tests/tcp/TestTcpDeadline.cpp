// Reading a line whose bytes never stop ends after its time.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_open.h"

#include "FakeGateway.h"

#include <QElapsedTimer>
#include <QTest>

#include <ctime>

namespace
{

int millisecondsPerLook = 0; // by which the client's clock moves each time it is read
long millisecondsPassed = 0;
int looksAtOtherClocks = 0;

} // namespace

extern "C" int __real_clock_gettime(clockid_t clock, timespec* now);
extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now);

extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now)
{
    const int result = __real_clock_gettime(clock, now);
    looksAtOtherClocks += clock != CLOCK_MONOTONIC;
    millisecondsPassed += millisecondsPerLook;
    const long nanoseconds = now->tv_nsec + millisecondsPassed % 1000 * 1000000;
    now->tv_sec += millisecondsPassed / 1000 + nanoseconds / 1000000000;
    now->tv_nsec = nanoseconds % 1000000000;
    return result;
}

class TestTcpDeadline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { millisecondsPerLook = 0; }
    void cleanup();

    void aFloodWithoutLineEndIsLeftAfterItsTime_data();
    void aFloodWithoutLineEndIsLeftAfterItsTime();
    void wallClockDoesNotCount();
    void aLineWithinItsTimeIsReadToItsEnd();
};

void TestTcpDeadline::cleanup()
{
    millisecondsPerLook = 0;
    top_line_timeout(66000);
    top_exit();
}

void TestTcpDeadline::aFloodWithoutLineEndIsLeftAfterItsTime_data()
{
    QTest::addColumn<int>("time");
    QTest::addColumn<int>("perLook");
    QTest::newRow("66 s") << 66000 << 1000;
    QTest::newRow("1.5 s") << 1500 << 10;
    QTest::newRow("0.3 s") << 300 << 10;
}

void TestTcpDeadline::aFloodWithoutLineEndIsLeftAfterItsTime()
{
    QFETCH(int, time);
    QFETCH(int, perLook);
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n", std::string(1000, 'x'));
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    top_line_timeout(time);
    millisecondsPerLook = perLook;
    millisecondsPassed = 0;
    QElapsedTimer clock; // what has really passed counts, too
    clock.start();
    QCOMPARE(top_start_remote_node(5), -70);
    const long passed = millisecondsPassed;
    QVERIFY2(passed + clock.elapsed() > time && passed <= time + 4 * perLook, qPrintable(QString::number(passed)));
}

void TestTcpDeadline::wallClockDoesNotCount()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    looksAtOtherClocks = 0;
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(looksAtOtherClocks, 0);
}

void TestTcpDeadline::aLineWithinItsTimeIsReadToItsEnd()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n", "[#] OK" + std::string(500, ' ') + "\r\n");
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(top_start_remote_node(5), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

QTEST_APPLESS_MAIN(TestTcpDeadline)
#include "TestTcpDeadline.moc"
