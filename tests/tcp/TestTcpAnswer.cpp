// What the gateway client tells about the answer to its last command: silence and cut lines are no values.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

#include <sys/time.h>

namespace
{

const char readCommand[] = "[#] 5 read 0x1017 0x0 u16\r\n";

int32_t readHeartbeat()
{
    uint16_t value = 0;
    return top_read_16bit(5, 0x1017, 0, &value);
}

} // namespace

class TestTcpAnswer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answerIsWhole_data();
    void answerIsWhole();
    void valueThatIsNoneIsOdd_data();
    void valueThatIsNoneIsOdd();
    void errorIsToldWithAllItsBits_data();
    void errorIsToldWithAllItsBits();
    void errorOfADomainReadIsTold();
    void answerOfADomainReadIsOddOnlyWhenWhole_data();
    void answerOfADomainReadIsOddOnlyWhenWhole();
    void whatIsNoWholeErrorIsNotTold_data();
    void whatIsNoWholeErrorIsNotTold();
    void hangUpIsTold();
    void lineOfAnotherNumberIsNoAnswer();
    void silenceIsNoAnswer();
    void partOfALineIsNoAnswer();
    void commandThatCannotBeSentHasNoAnswer();
    void lineCutByTheConnectionIsCut();
    void lineLongerThanTheBufferIsCut_data();
    void lineLongerThanTheBufferIsCut();
    void lineTimeoutIsSetInMilliseconds();
    void longestWriteReachesTheGatewayWhole();
};

void TestTcpAnswer::answerIsWhole_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (const char* answer : { "[#] 10\r\n", "[#] Error: 5\n", "[#-1] 3\r\n[#] 10\r\n", "[#] nonsense\r\n" })
        QTest::newRow(answer) << QByteArray(answer);
}

void TestTcpAnswer::answerIsWhole()
{
    QFETCH(QByteArray, answer);
    CGatewaySession gateway;
    gateway.expect(readCommand, answer.toStdString());
    readHeartbeat();
    QCOMPARE(top_last_answer(), int(top_answer_whole));
}

void TestTcpAnswer::valueThatIsNoneIsOdd_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("how");
    for (const char* answer : { "", "=", "6AM=", " 6AM= \t", "\t 6AM=", "6AMAAA==" })
        QTest::addRow("value \"%s\"", answer) << QByteArray(answer) << int(top_answer_whole);
    for (const char* answer :
         { "OK", "0x03E8", "100", "6AM", "6AM= x", "?", "6AM =", "6AM=6AM=", "]", "]6AM=", "6===", "6AMA====" })
        QTest::addRow("no value \"%s\"", answer) << QByteArray(answer) << int(top_answer_odd);
}

void TestTcpAnswer::valueThatIsNoneIsOdd()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, how);
    CGatewaySession gateway;
    gateway.expect("[#] 5 read 0x1017 0x0 d\r\n", "[#] " + answer.toStdString() + "\r\n");
    BYTE data[16];
    short length = 0;
    QCOMPARE(top_read(5, 0x1017, 0, &length, data, sizeof data), 0);
    QCOMPARE(top_last_answer(), how);
}

void TestTcpAnswer::errorIsToldWithAllItsBits_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<uint32_t>("number");
    QTest::addColumn<int>("result"); // which does not tell all of them
    const auto row = [](const char* answer, uint32_t number, int result) {
        QTest::newRow(answer) << QByteArray(answer) << number << result;
    };
    row("Error: 103", 103, -703);
    row("e:0", 0, -600);
    row("ERROR: 0x06020000", 0x06020000, 0x06020000);
    row("ERROR: 0xFFFFFFFF", 0xFFFFFFFF, -599);
    row("ERROR: 0xFFFFFDA8", 0xFFFFFDA8, 0);
    row("ERROR: -600", 0xFFFFFDA8, 0);
    row("ERROR: 0xFFFFFDA4", 0xFFFFFDA4, 0);
    row("ERROR: 0x80000000", 0x80000000, 0x7FFFFDA8);
}

void TestTcpAnswer::errorIsToldWithAllItsBits()
{
    QFETCH(QByteArray, answer);
    QFETCH(uint32_t, number);
    CGatewaySession gateway;
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0x1\r\n", "[#] " + answer.toStdString() + "\r\n");
    QTEST(top_write_8bit(5, 0x2000, 0, 1), "result");
    uint32_t told = 0;
    QVERIFY(top_last_error(&told));
    QCOMPARE(told, number);
    QVERIFY(top_last_error(nullptr));
}

// The evaluator of domains reads "e:5" as data.
void TestTcpAnswer::errorOfADomainReadIsTold()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 read 0x1017 0x0 d\r\n", "[#] e:5\r\n");
    BYTE data[16];
    short length = 0;
    QCOMPARE(top_read(5, 0x1017, 0, &length, data, sizeof data), 0);
    uint32_t told = 0;
    QVERIFY(top_last_error(&told));
    QCOMPARE(told, 5U);
}

void TestTcpAnswer::answerOfADomainReadIsOddOnlyWhenWhole_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("manner");
    QTest::addColumn<int>("how");
    QTest::newRow("error") << QByteArray("[#] Error: 5\r\n") << int(tGatewayAnswer::together) << int(top_answer_whole);
    QTest::newRow("abort") << QByteArray("[#] Error: 0x06020000\r\n") << int(tGatewayAnswer::together)
                           << int(top_answer_whole);
    QTest::newRow("cut") << QByteArray("[#] OK") << int(tGatewayAnswer::hangUp) << int(top_answer_cut);
    QTest::newRow("closed") << QByteArray() << int(tGatewayAnswer::hangUp) << int(top_answer_closed);
    QTest::newRow("another number") << QByteArray("[#+1] OK\r\n") << int(tGatewayAnswer::hangUp)
                                    << int(top_answer_closed);
}

void TestTcpAnswer::answerOfADomainReadIsOddOnlyWhenWhole()
{
    QFETCH(QByteArray, answer);
    QFETCH(int, manner);
    CGatewaySession gateway;
    gateway.expect("[#] 5 read 0x1017 0x1A d\r\n", { answer.toStdString(), manner });
    runReadDomain();
    QTEST(top_last_answer(), "how");
}

void TestTcpAnswer::whatIsNoWholeErrorIsNotTold_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("hangsUp");
    for (const char* answer :
         { "[#] 10\r\n", "[#] OK\r\n", "[#] Error\r\n", "[#] Error: x\r\n", "[#]\r\n", "[#] Error: 0x100000000\r\n" })
        QTest::newRow(answer) << QByteArray(answer) << false;
    QTest::newRow("cut") << QByteArray("[#] Error: 10") << true;
    QTest::newRow("another number") << QByteArray("[#+1] Error: 103\r\n") << true;
}

void TestTcpAnswer::whatIsNoWholeErrorIsNotTold()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, hangsUp);
    CGatewaySession gateway;
    gateway.expect(readCommand, { answer.toStdString(), hangsUp ? tGatewayAnswer::hangUp : tGatewayAnswer::together });
    readHeartbeat();
    uint32_t told = 1234;
    QVERIFY(!top_last_error(&told));
    QCOMPARE(told, 1234U);
}

void TestTcpAnswer::hangUpIsTold()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, { "", tGatewayAnswer::hangUp });
    QCOMPARE(readHeartbeat(), 0); // with the node-id as the value
    QCOMPARE(top_last_answer(), int(top_answer_closed));
}

void TestTcpAnswer::lineOfAnotherNumberIsNoAnswer()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, { "[#+1] 31\r\n", tGatewayAnswer::hangUp });
    QCOMPARE(readHeartbeat(), 0);
    QCOMPARE(top_last_answer(), int(top_answer_closed));
}

void TestTcpAnswer::silenceIsNoAnswer()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, "[#] 10\r\n");
    gateway.expect(readCommand, "");
    readHeartbeat();
    CSystemCalls calls;
    calls.select = [](auto...) { return 0; };
    QCOMPARE(readHeartbeat(), 0);
    QCOMPARE(top_last_answer(), int(top_answer_none));
}

void TestTcpAnswer::partOfALineIsNoAnswer()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, "[#] 10");
    CSystemCalls calls;
    int bytes = 0;
    calls.select = [&](int count, fd_set* read, fd_set* write, fd_set* except, timeval* timeout) {
        return ++bytes > 5 ? 0 : __real_select(count, read, write, except, timeout);
    };
    readHeartbeat();
    QCOMPARE(top_last_answer(), int(top_answer_none));
}

void TestTcpAnswer::commandThatCannotBeSentHasNoAnswer()
{
    {
        CGatewaySession gateway;
        gateway.expect(readCommand, "[#] 10\r\n");
        readHeartbeat();
        QCOMPARE(top_last_answer(), int(top_answer_whole));
    }
    QCOMPARE(readHeartbeat(), -793);
    QCOMPARE(top_last_answer(), int(top_answer_none));
}

void TestTcpAnswer::lineCutByTheConnectionIsCut()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, { "[#] 1", tGatewayAnswer::hangUp });
    QCOMPARE(readHeartbeat(), 0);
    QCOMPARE(top_last_answer(), int(top_answer_cut));
}

void TestTcpAnswer::lineLongerThanTheBufferIsCut_data()
{
    QTest::addColumn<int>("length"); // with its line feed
    QTest::addColumn<int>("answer");
    QTest::newRow("it fits") << 1023 << int(top_answer_whole);
    QTest::newRow("one character more") << 1024 << int(top_answer_cut);
    QTest::newRow("much more") << 5000 << int(top_answer_cut);
}

void TestTcpAnswer::lineLongerThanTheBufferIsCut()
{
    QFETCH(int, length);
    QFETCH(int, answer);
    CGatewaySession gateway;
    gateway.answerWith([length](const std::string& command) {
        std::string line = "[" + std::to_string(gatewayText::numberOf(command)) + "] ";
        line.resize(static_cast<std::size_t>(length) - 1, ' ');
        return line + '\n';
    });
    short size = 0;
    BYTE data[2000];
    top_read(5, 0x2000, 0, &size, data, sizeof data);
    QCOMPARE(top_last_answer(), answer);
}

void TestTcpAnswer::lineTimeoutIsSetInMilliseconds()
{
    CGatewaySession gateway;
    gateway.expect(readCommand, "");
    QCOMPARE(top_line_timeout(1500), 66000);
    CSystemCalls calls;
    timeval given = {};
    calls.select = [&](int, fd_set*, fd_set*, fd_set*, timeval* timeout) {
        given = *timeout;
        return 0;
    };
    readHeartbeat();
    QCOMPARE(top_line_timeout(0), 1500);
    QCOMPARE(std::make_pair(long(given.tv_sec), long(given.tv_usec)), std::make_pair(1L, 500000L));
    QCOMPARE(top_line_timeout(66000), 1);
}

void TestTcpAnswer::longestWriteReachesTheGatewayWhole()
{
    CGatewaySession gateway;
    const QByteArray data(top_write_max + 1, 'x');
    gateway.expect("[#] 127 write 0xFFFF 0xFF d " + data.left(top_write_max).toBase64().toStdString() + "\r\n",
                   "[#] OK\r\n");
    QCOMPARE(top_write(127, 0xFFFF, 0xFF, top_write_max, reinterpret_cast<const BYTE*>(data.constData())), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

QTEST_APPLESS_MAIN(TestTcpAnswer)
#include "TestTcpAnswer.moc"
