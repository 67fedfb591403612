// How the gateway client waits for its response line: time-outs, closed connections, other, long and broken lines.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

#include <sys/time.h>

class TestTcpLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesWithOtherNumbersAreSkipped_data();
    void linesWithOtherNumbersAreSkipped();
    void numberOfALineIsReadInAllForms_data();
    void numberOfALineIsReadInAllForms();
    void lateAnswerIsSkippedByTheNextCommand();
    void lineAheadAnswersTheNextCommand();
    void answerOneByteAtATime();
    void delayedAnswer();
    void floodOfOtherLinesIsReadToItsEnd();
    void longLineIsCutAt1023Characters_data();
    void longLineIsCutAt1023Characters();
    void hangUpAfterEachByte_data();
    void hangUpAfterEachByte();
    void hangUpAfterAnotherLineEvaluatesThatLine();
    void timeOutWithinALineEvaluatesWhatHasArrived();
    void timeOutAfterAnotherLineEvaluatesThatLine();
    void oneTimeOutOf66SecondsBoundsTheWholeLine();
    void everyLineHasItsOwnTimeOut();
    void onlyTheConnectionIsWaitedFor();
    void oneByteIsReceivedAtATime();
    void failedReceiveStoresTheLastByteAgain_data();
    void failedReceiveStoresTheLastByteAgain();
    void receiveThatKeepsFailingEndsWithTheTimeOut();
    void resetWithoutAnAnswerEndsTheWait();
    void anyBytesAreSurvived();
};

void TestTcpLines::linesWithOtherNumbersAreSkipped_data()
{
    QTest::addColumn<QByteArray>("before");
    for (const char* line :
         { "[#-1] 99", "[#+1] 99", "[#+1000] Error: 5", "99", "", " ", "[", "[]", "[x] 99", "OK", "Error: 5", "[0] 99",
           "[-1] 99", "gateway says [#] 99", " [#] 99", "\t[#] 99", "([#] 99" })
        QTest::newRow(line) << QByteArray(line);
}

void TestTcpLines::linesWithOtherNumbersAreSkipped()
{
    QFETCH(QByteArray, before);
    for (const char* end : { "\r\n", "\n" }) {
        CGatewaySession gateway;
        gateway.expect("[#] 5 read 0x1017 0x0 u8\r\n", before.toStdString() + end + "[#] 31\r\n");
        uint8_t value = 0;
        QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
        QCOMPARE(value, uint8_t(31));
    }
}

void TestTcpLines::numberOfALineIsReadInAllForms_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("[0x%lX] OK\r\n") << 0;
    QTest::newRow("[0x%lx]OK\r\n") << 0;
    QTest::newRow("[0%lo] OK\r\n") << 0;
    QTest::newRow("[ %ld ] OK\r\n") << 0;
    QTest::newRow("[+%ld] OK\r\n") << int(ERR_FORMAT); // the number is right, but no answer has a sign
    QTest::newRow("[%ld OK\r\n") << int(ERR_FORMAT);
    QTest::newRow("[%ld\r\n") << int(ERR_FORMAT);
}

void TestTcpLines::numberOfALineIsReadInAllForms()
{
    CGatewaySession gateway;
    const char* form = QTest::currentDataTag();
    gateway.answerWith(
        [=](const std::string& line) { return QString::asprintf(form, gatewayText::numberOf(line)).toStdString(); });
    QTEST(top_start_remote_node(5), "result");
}

void TestTcpLines::lateAnswerIsSkippedByTheNextCommand()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "");
    gateway.expect("[#] 5 stop\r\n", "[#-1] Error: 7\r\n[#] OK\r\n");
    {
        CSystemCalls calls;
        calls.select = [](auto...) { return 0; };
        QCOMPARE(top_start_remote_node(5), int32_t(ERR_FORMAT));
    }
    QCOMPARE(top_stop_remote_node(5), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpLines::lineAheadAnswersTheNextCommand()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n[#+1] 31\r\n");
    gateway.expect("[#] 5 read 0x1017 0x0 u8\r\n", "");
    QCOMPARE(top_start_remote_node(5), 0);
    uint8_t value = 0;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
    QCOMPARE(value, uint8_t(31));
}

void TestTcpLines::answerOneByteAtATime()
{
    CGatewaySession gateway;
    gateway.expect("[#] info hardware\r\n", { "[#-1] OK\r\n[#] \"Rev. 2\"\r\n", tGatewayAnswer::byteByByte });
    char text[20];
    QCOMPARE(top_hardware(text, sizeof text), 0);
    QCOMPARE(QByteArray(text), QByteArray("Rev. 2"));
}

void TestTcpLines::delayedAnswer()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", { "[#] OK\r\n", tGatewayAnswer::together, std::chrono::milliseconds(50) });
    QCOMPARE(top_start_remote_node(5), 0);
}

void TestTcpLines::floodOfOtherLinesIsReadToItsEnd()
{
    CGatewaySession gateway;
    std::string flood;
    for (int line = 0; line < 20000; ++line)
        flood += line % 2 == 0 ? "[#-1] OK\r\n" : "noise\n";
    gateway.expect("[#] 5 start\r\n", flood + "[#] OK\r\n");
    gateway.expect("[#] 5 stop\r\n", "[#] Error: 3\r\n");
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(top_stop_remote_node(5), -603);
}

void TestTcpLines::longLineIsCutAt1023Characters_data()
{
    QTest::addColumn<int>("length"); // of the line without its end
    for (const int length : { 1000, 1020, 1021, 1022, 1023, 1024, 1025, 1100, 5000, 100000 })
        QTest::addRow("%d", length) << length;
}

void TestTcpLines::longLineIsCutAt1023Characters()
{
    QFETCH(int, length);
    CGatewaySession gateway;
    QByteArray line;
    gateway.answerWith([&](const std::string& command) {
        line = "[" + QByteArray::number(static_cast<qlonglong>(gatewayText::numberOf(command))) + "] ";
        while (line.size() < length)
            line += static_cast<char>('a' + line.size() % 26);
        return (line + "\r\n").toStdString();
    });
    QByteArray text(2000, '~');
    QCOMPARE(top_hardware(text.data(), 2000), 0);
    QCOMPARE(QByteArray(text.constData()), line.left(1023).mid(line.indexOf(' ') + 1));
    gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; }); // nothing of the long line is left
    QCOMPARE(top_start_remote_node(5), 0);
}

void TestTcpLines::hangUpAfterEachByte_data()
{
    QTest::addColumn<int>("missing"); // bytes at the end of "[n] 42\r\n" that never come
    for (int missing = 0; missing <= 9; ++missing)
        QTest::addRow("%d bytes missing", missing) << missing;
}

void TestTcpLines::hangUpAfterEachByte()
{
    QFETCH(int, missing);
    QByteArray sent;
    CGatewaySession gateway;
    gateway.answerWith([&](const std::string& line) {
        sent = "[" + QByteArray::number(static_cast<qlonglong>(gatewayText::numberOf(line))) + "] 42\r\n";
        sent.truncate(std::max<qsizetype>(sent.size() - missing, 0));
        return tGatewayAnswer(sent.toStdString(), tGatewayAnswer::hangUp);
    });
    uint8_t value = 77;
    const int32_t result = top_read_8bit(5, 0x1017, 0, &value);
    if (sent.isEmpty()) { // the command, whose first word is the node-id
        QCOMPARE(result, 0);
        QCOMPARE(value, uint8_t(5));
    } else if (missing > 3) {
        QCOMPARE(result, int32_t(ERR_FORMAT));
    } else {
        QCOMPARE(result, 0);
        QCOMPARE(value, uint8_t(missing == 3 ? 4 : 42));
    }
}

void TestTcpLines::hangUpAfterAnotherLineEvaluatesThatLine()
{
    for (const char* line : { "[#-1] 9\r\n", "[#-1] 9" }) {
        CGatewaySession gateway;
        gateway.expect("[#] 5 read 0x1017 0x0 u8\r\n", { line, tGatewayAnswer::hangUp });
        uint8_t value = 77;
        QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
        QCOMPARE(value, uint8_t(9));
    }
}

void TestTcpLines::timeOutWithinALineEvaluatesWhatHasArrived()
{
    CGatewaySession gateway;
    for (const auto& [count, result, number] :
         std::initializer_list<std::tuple<int, int32_t, int>>{ { 3, ERR_FORMAT, 77 }, { 1, 0, 4 }, { 0, 0, 42 } }) {
        gateway.expect("[#] 5 read 0x1017 0x0 u8\r\n", "[#] 42\r\n");
        CSystemCalls calls;
        QByteArray arrived;
        // The line end and `count` characters come too late.
        calls.recv = [&](int socket, void* data, size_t length, int flags) {
            const ssize_t received = __real_recv(socket, data, length, flags);
            arrived += *static_cast<const char*>(data);
            return received;
        };
        calls.select = [&, late = count](int sockets, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
            const bool over = arrived.endsWith(QByteArray("] 42").chopped(late));
            return over ? 0 : __real_select(sockets, read, write, except, timeout);
        };
        uint8_t value = 77;
        QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), result);
        QCOMPARE(static_cast<int>(value), number);
        gateway.expect("[#] 5 start\r\n", "[#] OK\r\n"); // skips the rest of the late line
        calls.select = nullptr;
        QCOMPARE(top_start_remote_node(5), 0);
    }
}

void TestTcpLines::timeOutAfterAnotherLineEvaluatesThatLine()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "[#-1] OK\r\n");
    CSystemCalls calls;
    int received = 0;
    calls.recv = [&](int socket, void* data, size_t length, int flags) {
        const ssize_t result = __real_recv(socket, data, length, flags);
        received += *static_cast<const char*>(data) == '\n';
        return result;
    };
    calls.select = [&](auto... arguments) { return received > 0 ? 0 : __real_select(arguments...); };
    QCOMPARE(top_start_remote_node(5), 0);
}

void TestTcpLines::oneTimeOutOf66SecondsBoundsTheWholeLine()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    CSystemCalls calls;
    std::vector<std::pair<long, long>> given;
    calls.select = [&](int sockets, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
        given.push_back({ timeout->tv_sec, timeout->tv_usec });
        const int result = __real_select(sockets, read, write, except, timeout);
        *timeout = { 50 - static_cast<long>(given.size()), 123 }; // the remaining time, as the system stores it
        return result;
    };
    QCOMPARE(top_start_remote_node(5), 0);
    QVERIFY(given.size() > 5);
    QCOMPARE(given[0], std::make_pair(66L, 0L));
    for (std::size_t call = 1; call < given.size(); ++call)
        QCOMPARE(given[call], std::make_pair(50L - static_cast<long>(call), 123L));
}

void TestTcpLines::everyLineHasItsOwnTimeOut()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "[#-1] OK\r\nnoise\n[#] OK\r\n");
    CSystemCalls calls;
    int fresh = 0;
    calls.select = [&](int sockets, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
        fresh += timeout->tv_sec == 66 && timeout->tv_usec == 0;
        const int result = __real_select(sockets, read, write, except, timeout);
        *timeout = { 65, 0 };
        return result;
    };
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(fresh, 3);
}

void TestTcpLines::onlyTheConnectionIsWaitedFor()
{
    CFakeGateway gateway;
    CSystemCalls calls;
    int client = -1, wrong = 0;
    calls.socket = [&](auto... arguments) { return client = __real_socket(arguments...); };
    calls.select = [&](int sockets, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
        int waiting = 0;
        for (int socket = 0; socket < FD_SETSIZE; ++socket)
            waiting += FD_ISSET(socket, read) ? 1 : 0;
        wrong += waiting != 1 || !FD_ISSET(client, read) || write != nullptr || except != nullptr || sockets <= client;
        return __real_select(sockets, read, write, except, timeout);
    };
    QCOMPARE(top_init(CFakeGateway::address, gateway.port(), nullptr, 0), 0);
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(wrong, 0);
    QCOMPARE(top_exit(), 0);
}

void TestTcpLines::oneByteIsReceivedAtATime()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", "[#] OK\r\n");
    CSystemCalls calls;
    int receives = 0, selects = 0, wrong = 0;
    calls.recv = [&](int socket, void* data, size_t length, int flags) {
        ++receives;
        wrong += length != 1 || flags != 0 || selects != receives;
        return __real_recv(socket, data, length, flags);
    };
    calls.select = [&](auto... arguments) {
        ++selects;
        return __real_select(arguments...);
    };
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(receives, static_cast<int>(gatewayText::numbered("[#] OK\r\n", gateway.lastNumber()).size()));
    QCOMPARE(wrong, 0);
}

void TestTcpLines::failedReceiveStoresTheLastByteAgain_data()
{
    QTest::addColumn<char>("failAfter");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("value");
    QTest::newRow("after the bracket") << '[' << 0 << 4; // "[[" is another line; see below
    QTest::newRow("after the end of the number") << ']' << int(ERR_FORMAT) << 77;
    QTest::newRow("after a blank") << ' ' << 0 << 42;
    QTest::newRow("within the value") << '4' << int(ERR_FORMAT) << 442 % 256;
    QTest::newRow("after the value") << '2' << int(ERR_FORMAT) << 422 % 256;
    QTest::newRow("after the carriage return") << '\r' << 0 << 42;
}

void TestTcpLines::failedReceiveStoresTheLastByteAgain()
{
    QFETCH(char, failAfter);
    CGatewaySession gateway;
    // The second line is the answer when the failure has changed the first one.
    gateway.expect("[#] 5 read 0x1017 0x0 u8\r\n", failAfter == '[' ? "[#] 42\r\n[#] 4\r\n" : "[#] 42\r\n");
    CSystemCalls calls;
    QByteArray received;
    bool failed = false;
    calls.recv = [&](int socket, void* data, size_t length, int flags) {
        // Only digits after the blank: sequence numbers have digits, too.
        const bool there =
            received.endsWith(failAfter) && (received.contains(' ') || failAfter == '[' || failAfter == ']');
        if (there && !std::exchange(failed, true))
            return ssize_t(-1);
        const ssize_t result = __real_recv(socket, data, length, flags);
        received += *static_cast<const char*>(data);
        return result;
    };
    uint8_t value = 77;
    QTEST(top_read_8bit(5, 0x1017, 0, &value), "result");
    QVERIFY(failed);
    QTEST(static_cast<int>(value), "value");
}

void TestTcpLines::receiveThatKeepsFailingEndsWithTheTimeOut()
{
    CGatewaySession gateway;
    CSystemCalls calls;
    int waits = 0;
    calls.recv = [](auto...) { return ssize_t(-1); };
    calls.select = [&](int, fd_set*, fd_set*, fd_set*,
                       timeval* timeout) { // takes a second for each answer
        timeout->tv_sec = std::max(timeout->tv_sec - 1, 0L);
        return ++waits < 1000 ? 1 : 0;
    };
    QCOMPARE(top_start_remote_node(5), int32_t(ERR_FORMAT));
    QCOMPARE(waits, 66);
}

void TestTcpLines::resetWithoutAnAnswerEndsTheWait()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", { "", tGatewayAnswer::reset });
    QCOMPARE(top_start_remote_node(5), int32_t(ERR_FORMAT));
}

void TestTcpLines::anyBytesAreSurvived()
{
    CGatewaySession gateway;
    quint32 random = 1;
    gateway.answerWith([&](const std::string&) {
        std::string text;
        for (int place = 0; place < 3000; ++place)
            text += static_cast<char>((random = random * 1664525 + 1013904223) >> 24);
        return text + "\n[#] " + text.substr(0, 50) + "\n[#] OK\r\n";
    });
    for (int command = 0; command < 20; ++command) {
        char text[20];
        QVERIFY(top_hardware(text, sizeof text) <= 0);
    }
}

QTEST_GUILESS_MAIN(TestTcpLines)
#include "TestTcpLines.moc"
