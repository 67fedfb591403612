// Connecting to a gateway, disconnecting, and what a gateway does not support.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

#include <csignal>
#include <cstring>
#include <filesystem>

namespace
{

/// The open sockets of this process, including those of the fake gateway.
int openSockets()
{
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code closed;
        count += std::filesystem::read_symlink(entry, closed).string().starts_with("socket:");
    }
    return count;
}

} // namespace

class TestTcpOpen : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { top_exit(); }

    void connectsAndExits();
    void exitWithoutConnectionIsNotInitialized();
    void refusedConnectionFailsAndLeavesNothingOpen();
    void failedConnectClosesItsSocket();
    void failedSocketIsNoConnection();
    void socketIsATcpSocketWithoutOptions();
    void addressAndPortAreTakenInHostByteOrder();
    void settingsMayBeNullAndReachNoCommand();
    void everyBitRateIsAccepted();
    void openConnectionStaysOpenWhenAnotherIsMade();
    void failedSocketOverAnOpenConnectionLeavesNone();
    void failedConnectOverAnOpenConnectionLeavesNone();
    void noSocketLeaksOverManyConnections();
    void pipeSignalIsIgnored();
    void gatewayThatHangsUpIsAnErrorCode();
    void sequenceNumbersGoOnOverANewConnection();
    void unsupportedFunctionsLeaveTheirArguments();
    void unsupportedFunctionsTakeNullPointers();
    void remoteFrameIsRefusedWithAValidLength();
    void versionIsPinned()
    {
        QCOMPARE(QByteArray(top_version()), QByteArray("Velmora gateway client, tcp_open, 2026-11-21"));
    }
};

void TestTcpOpen::connectsAndExits()
{
    CFakeGateway gateway;
    _top_settings settings = { 2, 3, 4 };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), &settings, 0), 0);
    QCOMPARE(top_exit(), 0);
    QVERIFY(gateway.awaitClosed());
    QVERIFY(gateway.received().empty());
    QCOMPARE(settings.net, BYTE(2));
    QCOMPARE(settings.node, BYTE(3));
    QCOMPARE(settings.master, BYTE(4));
}

void TestTcpOpen::exitWithoutConnectionIsNotInitialized()
{
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    {
        CGatewaySession gateway;
        QCOMPARE(top_exit(), 0);
        QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    }
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
}

void TestTcpOpen::refusedConnectionFailsAndLeavesNothingOpen()
{
    CFakeGateway gateway;
    QVERIFY(gateway.refuse());
    const int before = openSockets();
    for (int attempt = 0; attempt < 50; ++attempt)
        QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), notConnected);
    QCOMPARE(openSockets(), before);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    QCOMPARE(top_start_remote_node(5), notSent);

    CGatewaySession next;
    QVERIFY(next.connected());
    next.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QCOMPARE(top_start_remote_node(5), 0);
}

void TestTcpOpen::failedConnectClosesItsSocket()
{
    CSystemCalls calls;
    QList<int> opened, closed;
    calls.socket = [&](auto... arguments) { return opened.emplaceBack(__real_socket(arguments...)); };
    calls.connect = [](auto...) { return -1; };
    calls.close = [&](int descriptor) { return __real_close(closed.emplaceBack(descriptor)); };
    QCOMPARE(top_init(0x7F000001, 60000, nullptr, 0), notConnected);
    QCOMPARE(opened.size(), 1);
    QCOMPARE(closed, opened);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
}

void TestTcpOpen::failedSocketIsNoConnection()
{
    CSystemCalls calls;
    int connects = 0;
    calls.socket = [](auto...) { return -1; };
    calls.connect = [&](auto...) { return ++connects; };
    QCOMPARE(top_init(0x7F000001, 60000, nullptr, 0), notConnected);
    QCOMPARE(connects, 0);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
}

void TestTcpOpen::socketIsATcpSocketWithoutOptions()
{
    CFakeGateway gateway;
    CSystemCalls calls;
    int sockets = 0, options = 0, family = 0, type = 0, protocol = -1;
    calls.socket = [&](int wantedFamily, int wantedType, int wantedProtocol) {
        ++sockets;
        family = wantedFamily;
        type = wantedType & ~SOCK_CLOEXEC;
        protocol = wantedProtocol;
        return __real_socket(wantedFamily, wantedType, wantedProtocol);
    };
    calls.setsockopt = [&](auto... arguments) {
        ++options;
        return __real_setsockopt(arguments...);
    };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(sockets, 1);
    QCOMPARE(family, AF_INET);
    QCOMPARE(type, int(SOCK_STREAM));
    QCOMPARE(protocol, 0);
    QCOMPARE(options, 0);
}

void TestTcpOpen::addressAndPortAreTakenInHostByteOrder()
{
    CSystemCalls calls;
    QByteArray wanted;
    int family = 0;
    calls.connect = [&](int, const sockaddr* address, socklen_t size) {
        sockaddr_in copy = {};
        std::memcpy(&copy, address, std::min<std::size_t>(size, sizeof copy));
        family = copy.sin_family;
        wanted = QByteArray(reinterpret_cast<const char*>(&copy.sin_addr), 4) +
                 QByteArray(reinterpret_cast<const char*>(&copy.sin_port), 2);
        return -1;
    };
    QCOMPARE(top_init(0xC0000201, 0xEA60, nullptr, 0), notConnected);
    QCOMPARE(family, AF_INET);
    QCOMPARE(wanted.toHex(' '), QByteArray("c0 00 02 01 ea 60"));
    QCOMPARE(top_init(0x01020304, 1, nullptr, 0), notConnected);
    QCOMPARE(wanted.toHex(' '), QByteArray("01 02 03 04 00 01"));
}

void TestTcpOpen::settingsMayBeNullAndReachNoCommand()
{
    for (const bool given : { false, true }) {
        CFakeGateway gateway;
        _top_settings settings = { 9, 77, 88 };
        QCOMPARE(top_init(CFakeGateway::address, gateway.port(), given ? &settings : nullptr, 0), 0);
        gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
        QCOMPARE(top_start_remote_node(5), 0);
        QVERIFY2(gateway.finished(), gateway.problem().c_str());
        QCOMPARE(top_exit(), 0);
    }
}

void TestTcpOpen::everyBitRateIsAccepted()
{
    for (const int index : { 0, 8, 9, 255 }) {
        CFakeGateway gateway;
        QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, static_cast<BYTE>(index)), 0);
        QCOMPARE(top_exit(), 0);
        QVERIFY(gateway.awaitClosed());
        QVERIFY(gateway.received().empty());
    }
}

void TestTcpOpen::openConnectionStaysOpenWhenAnotherIsMade()
{
    CFakeGateway first;
    CFakeGateway second;
    CSystemCalls calls;
    QList<int> opened, closed;
    calls.socket = [&](auto... arguments) { return opened.emplaceBack(__real_socket(arguments...)); };
    calls.close = [&](int descriptor) { return __real_close(closed.emplaceBack(descriptor)); };
    QCOMPARE(top_init(CFakeGateway::address, first.port(), nullptr, 0), 0);
    QCOMPARE(top_init(CFakeGateway::address, second.port(), nullptr, 0), 0);
    second.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QCOMPARE(top_start_remote_node(5), 0);
    QVERIFY(closed.isEmpty());
    QCOMPARE(top_exit(), 0);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    QCOMPARE(closed, opened.mid(1));
    QVERIFY(first.received().empty());
    __real_close(opened.constFirst());
}

void TestTcpOpen::failedSocketOverAnOpenConnectionLeavesNone()
{
    CFakeGateway gateway;
    CSystemCalls calls;
    int opened = -1, closed = 0;
    calls.socket = [&](auto... arguments) { return opened = __real_socket(arguments...); };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    calls.socket = [](auto...) { return -1; };
    calls.close = [&](int) { return ++closed * 0; };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), notConnected);
    QCOMPARE(top_start_remote_node(5), notSent);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    QCOMPARE(closed, 0);
    __real_close(opened);
}

void TestTcpOpen::failedConnectOverAnOpenConnectionLeavesNone()
{
    CFakeGateway gateway;
    CSystemCalls calls;
    QList<int> opened, closed;
    calls.socket = [&](auto... arguments) { return opened.emplaceBack(__real_socket(arguments...)); };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    calls.connect = [](auto...) { return -1; };
    calls.close = [&](int descriptor) { return __real_close(closed.emplaceBack(descriptor)); };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), notConnected);
    QCOMPARE(top_start_remote_node(5), notSent);
    QCOMPARE(top_exit(), int32_t(ERR_NOT_INITIALIZED));
    QCOMPARE(closed, opened.mid(1));
    __real_close(opened.constFirst());
}

void TestTcpOpen::noSocketLeaksOverManyConnections()
{
    CFakeGateway gateway;
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    QCOMPARE(top_exit(), 0);
    QVERIFY(gateway.awaitClosed());
    const int before = openSockets();
    for (int connection = 0; connection < 100; ++connection) {
        QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
        QCOMPARE(top_exit(), 0);
    }
    QVERIFY(gateway.awaitClosed()); // now the gateway has closed its sockets, too
    QCOMPARE(openSockets(), before);
}

void TestTcpOpen::pipeSignalIsIgnored()
{
    std::signal(SIGPIPE, SIG_DFL);
    CGatewaySession gateway;
    struct sigaction action = {};
    QCOMPARE(sigaction(SIGPIPE, nullptr, &action), 0);
    QVERIFY(action.sa_handler == SIG_IGN);
}

void TestTcpOpen::gatewayThatHangsUpIsAnErrorCode()
{
    for (const int how : { tGatewayAnswer::hangUp, tGatewayAnswer::reset }) {
        std::signal(SIGPIPE, SIG_DFL);
        CGatewaySession gateway;
        gateway.expect("[#] 5 start\r\n", { "[#] OK\r\n", how });
        const int32_t first = top_start_remote_node(5);
        QVERIFY(first == 0 || how == tGatewayAnswer::reset); // a reset may overtake the answer
        int32_t result = 0;
        for (int attempt = 0; attempt < 1000 && result != notSent; ++attempt)
            result = top_start_remote_node(5);
        QCOMPARE(result, notSent);
        QCOMPARE(top_exit(), 0);
    }
}

void TestTcpOpen::sequenceNumbersGoOnOverANewConnection()
{
    long last = 0;
    for (int connection = 0; connection < 5; ++connection) {
        CGatewaySession gateway;
        gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
        QCOMPARE(top_start_remote_node(5), 0);
        QVERIFY(last == 0 || gateway.lastNumber() == last + 1);
        last = gateway.lastNumber();
    }
}

void TestTcpOpen::unsupportedFunctionsLeaveTheirArguments()
{
    CGatewaySession gateway;
    BYTE one = 11, two = 22;
    QCOMPARE(top_queue_clear(), int32_t(ERR_NOT_SUPPORTED));
    QCOMPARE(top_status(&one, &two), int32_t(ERR_NOT_SUPPORTED));
    QCOMPARE(top_queue_status(&one, &two), int32_t(ERR_NOT_SUPPORTED));
    QCOMPARE(one, BYTE(11));
    QCOMPARE(two, BYTE(22));
    QCOMPARE(gateway.allReceived(), QByteArray());
    QCOMPARE(top_queue_clear(), int32_t(ERR_NOT_SUPPORTED)); // also while not connected
}

void TestTcpOpen::unsupportedFunctionsTakeNullPointers()
{
    QCOMPARE(top_status(nullptr, nullptr), int32_t(ERR_NOT_SUPPORTED));
    QCOMPARE(top_queue_status(nullptr, nullptr), int32_t(ERR_NOT_SUPPORTED));
}

void TestTcpOpen::remoteFrameIsRefusedWithAValidLength()
{
    CGatewaySession gateway;
    BYTE data[8] = {};
    for (short length : { short(0), short(2), short(8) }) {
        const short before = length;
        QCOMPARE(top_request(0x181, &length, data), int32_t(ERR_NULL_POINTER));
        QCOMPARE(top_request(0x181, &length, nullptr), int32_t(ERR_NULL_POINTER));
        QCOMPARE(length, before);
    }
    QCOMPARE(gateway.allReceived(), QByteArray());
}

QTEST_GUILESS_MAIN(TestTcpOpen)
#include "TestTcpOpen.moc"
