// Lines of the gateway that begin with a failed receive or end with the time-out.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

namespace
{

const char readCommand[] = "[#] 5 read 0x1017 0x0 u8\r\n";

/// The first receive fails, as it does on a connection that breaks.
void failFirstReceive(CSystemCalls& calls)
{
    calls.recv = [failed = false](int socket, void* data, size_t length, int flags) mutable {
        return std::exchange(failed, true) ? __real_recv(socket, data, length, flags) : ssize_t(-1);
    };
}

} // namespace

class TestTcpBrokenLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineAfterAFailedReceiveIsNoAnswer();
    void lineAfterAFailedReceiveIsEvaluatedAsEmpty();
    void failedReceiveInALaterLineHidesThatLineOnly();
    void lineWithoutItsBracketIsNoAnswer();
    void lineThatArrivesAsItsTimeEndsIsRead();
    void timeOutWithinALineEndsTheWait_data();
    void timeOutWithinALineEndsTheWait();
};

void TestTcpBrokenLines::lineAfterAFailedReceiveIsNoAnswer()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, "[#] 42\r\n[#] 31\r\n");
    CSystemCalls calls;
    failFirstReceive(calls);
    uint8_t value = 77;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
    QCOMPARE(value, uint8_t(31)); // the byte in its place keeps the first line from beginning with its number
}

void TestTcpBrokenLines::lineAfterAFailedReceiveIsEvaluatedAsEmpty()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, { "[#] 42\r\n", tGatewayAnswer::hangUp });
    CSystemCalls calls;
    failFirstReceive(calls);
    uint8_t value = 77;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), int32_t(ERR_FORMAT));
    QCOMPARE(value, uint8_t(77));
    QCOMPARE(top_last_answer(), int(top_answer_closed));
}

void TestTcpBrokenLines::failedReceiveInALaterLineHidesThatLineOnly()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, "[#-1] 7\r\n[#] 42\r\n[#] 31\r\n");
    CSystemCalls calls;
    QByteArray received;
    bool failed = false;
    calls.recv = [&](int socket, void* data, size_t length, int flags) {
        if (received.endsWith('\n') && !std::exchange(failed, true))
            return ssize_t(-1);
        const ssize_t result = __real_recv(socket, data, length, flags);
        received += *static_cast<const char*>(data);
        return result;
    };
    uint8_t value = 77;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
    QCOMPARE(value, uint8_t(31));
}

void TestTcpBrokenLines::lineWithoutItsBracketIsNoAnswer()
{
    CGatewaySession gateway;
    for (const char first : { 'x', '<', '-', '#' }) {
        gateway.answerWith([=](const std::string& line) {
            const std::string number = std::to_string(gatewayText::numberOf(line));
            return first + number + "] 42\r\n[#] 31\r\n";
        });
        uint8_t value = 77;
        QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
        QCOMPARE(value, uint8_t(31));
    }
}

void TestTcpBrokenLines::lineThatArrivesAsItsTimeEndsIsRead()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, "[#] 42\r\n");
    CSystemCalls calls;
    calls.select = [](int sockets, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
        timeval whole = { 66, 0 };
        *timeout = { 0, 0 };
        return __real_select(sockets, read, write, except, &whole);
    };
    uint8_t value = 77;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
    QCOMPARE(value, uint8_t(42));
    QCOMPARE(top_last_answer(), int(top_answer_whole));
}

void TestTcpBrokenLines::timeOutWithinALineEndsTheWait_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("value"); // read out of it; -1: none
    QTest::newRow("own number") << QByteArray("[#] 42") << 42;
    QTest::newRow("number of another command") << QByteArray("[#+1] 42") << 42;
    QTest::newRow("no number") << QByteArray("welcome") << -1;
}

// The end of the line does not come; nobody waits for another line then.
void TestTcpBrokenLines::timeOutWithinALineEndsTheWait()
{
    QFETCH(QByteArray, line);
    QFETCH(int, value);
    CGatewaySession gateway;
    gateway.expect(readCommand, line.toStdString());
    CSystemCalls calls;
    int timeOuts = 0;
    qsizetype received = 0;
    calls.recv = [&](auto... arguments) {
        ++received;
        return __real_recv(arguments...);
    };
    calls.select = [&](int sockets, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
        const auto sent = gatewayText::numbered(line.toStdString(), gateway.lastNumber()).size();
        const bool over = received > 0 && received == static_cast<qsizetype>(sent);
        timeOuts += over;
        return over ? 0 : __real_select(sockets, read, write, except, timeout);
    };
    uint8_t number = 77;
    const int32_t result = top_read_8bit(5, 0x1017, 0, &number);
    QCOMPARE(timeOuts, 1);
    QCOMPARE(top_last_answer(), int(top_answer_none));
    QCOMPARE(result == 0 ? int(number) : -1, value);
}

QTEST_GUILESS_MAIN(TestTcpBrokenLines)
#include "TestTcpBrokenLines.moc"
