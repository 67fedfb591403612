// The descriptor of the connection: which ones can be used, and what is waited for.
// SPDX-License-Identifier: MIT
#include "ClosedInput.h"
#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

#include <set>

#include <sys/resource.h>

namespace
{

/// How many descriptors this process can open, from now on.
rlim_t mostDescriptors()
{
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
    return limit.rlim_max;
}

} // namespace

class TestTcpDescriptors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { top_exit(); }

    void descriptorZeroIsAConnection();
    void descriptorBeyondTheReadSetDoesNoHarm();
    void descriptorsAreUsedUpToTheSizeOfTheReadSet_data();
    void descriptorsAreUsedUpToTheSizeOfTheReadSet();
    void onlyTheConnectionIsWaitedFor();
};

void TestTcpDescriptors::descriptorZeroIsAConnection()
{
    CFakeGateway gateway;
    const CClosedInput closed;
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(top_exit(), 0);
    QVERIFY(gateway.awaitClosed());
}

void TestTcpDescriptors::descriptorBeyondTheReadSetDoesNoHarm()
{
    if (mostDescriptors() < FD_SETSIZE + 100)
        QSKIP("too few descriptors for this test");
    CFakeGateway gateway;
    gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
    QList<int> opened;
    while (opened.isEmpty() || opened.constLast() < FD_SETSIZE + 10)
        opened += dup(0);
    const int32_t result = top_init(CFakeGateway::address, gateway.port(), nullptr, 0);
    QVERIFY(result == notConnected || top_start_remote_node(5) <= 0);
    top_exit();
    for (const int descriptor : opened)
        __real_close(descriptor);
    CGatewaySession next;
    next.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QCOMPARE(top_start_remote_node(5), 0);
}

void TestTcpDescriptors::descriptorsAreUsedUpToTheSizeOfTheReadSet_data()
{
    QTest::addColumn<int>("descriptor");
    QTest::addColumn<int>("result");
    QTest::newRow("the last one") << FD_SETSIZE - 1 << 0;
    QTest::newRow("one more") << FD_SETSIZE << int(notConnected);
}

void TestTcpDescriptors::descriptorsAreUsedUpToTheSizeOfTheReadSet()
{
    QFETCH(int, descriptor);
    if (mostDescriptors() <= FD_SETSIZE)
        QSKIP("too few descriptors for this test");
    CFakeGateway gateway;
    CSystemCalls calls;
    int closed = 0;
    calls.socket = [=](auto... arguments) {
        const int opened = __real_socket(arguments...);
        dup2(opened, descriptor);
        __real_close(opened);
        return descriptor;
    };
    calls.close = [&](int which) {
        closed += which == descriptor;
        return __real_close(which);
    };
    QTEST(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), "result");
    top_exit();
    QCOMPARE(closed, 1);
}

void TestTcpDescriptors::onlyTheConnectionIsWaitedFor()
{
    CFakeGateway gateway;
    gateway.expect("[#] init 7\r\n", "[#] OK\r\n");
    CSystemCalls calls;
    int socket = -1;
    std::set<int> counts;
    calls.socket = [&](auto... arguments) { return socket = __real_socket(arguments...); };
    calls.select = [&](int count, auto... arguments) {
        counts.insert(count);
        return __real_select(count, arguments...);
    };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(top_reset(7), 0);
    QCOMPARE(counts, std::set<int>{ socket + 1 });
}

QTEST_GUILESS_MAIN(TestTcpDescriptors)
#include "TestTcpDescriptors.moc"
