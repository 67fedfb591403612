// Reading a line whose bytes never stop ends after its time.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_open.h"

#include "FakeGateway.h"

#include <QTest>

#include <ctime>

namespace
{

int secondsPerLook = 0; // by which the client's clock moves each time it is read
time_t secondsPassed = 0;

} // namespace

extern "C" int __real_clock_gettime(clockid_t clock, timespec* now);
extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now);

extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now)
{
    const int result = __real_clock_gettime(clock, now);
    secondsPassed += secondsPerLook;
    now->tv_sec += secondsPassed;
    return result;
}

class TestTcpDeadline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { secondsPerLook = 0; }
    void cleanup() { top_exit(); }

    void aFloodWithoutLineEndIsLeftAfter66Seconds();
    void aLineWithinItsTimeIsReadToItsEnd();
};

void TestTcpDeadline::aFloodWithoutLineEndIsLeftAfter66Seconds()
{
    CFakeGateway gateway;
    gateway.expect("[#] 5 start\r\n", std::string(1000, 'x'));
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    secondsPerLook = 1;
    secondsPassed = 0;
    QCOMPARE(top_start_remote_node(5), -70);
    QVERIFY2(secondsPassed > 66 && secondsPassed < 70, "it has not left the line when its time had passed");
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
