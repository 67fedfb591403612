// Tests of every command of the gateway client: its line, and its result for each way an exchange can end.
// SPDX-License-Identifier: MIT
#include "GatewaySession.h"
#include "SystemCalls.h"

#include <QtTest>

namespace
{

constexpr int32_t noRow = 1;
constexpr int32_t abortCode = 0x06020000;

/// The result of an answer for each kind of command.
struct tOutcome {
    const char* answer;
    int32_t written, ok, number, domain, text, message;

    int32_t of(tAwaited awaited) const
    {
        switch (awaited) {
        case awaitsOK:
            return ok;
        case awaitsWritten:
            return written;
        case awaitsNumber:
            return number;
        case awaitsDomain:
            return domain;
        case awaitsText:
            return text;
        case awaitsMessage:
            return message;
        case awaitsNothing:
            return 0;
        }
        return noRow;
    }
};

// The error number -604 gives 4, which transfers take for an abort; its code is 0, since none was stored.
const tOutcome outcomes[] = {
    // answer                       written    ok                 number     domain     text       message
    { "[#] OK\r\n", 0, 0, -70, 0, 0, -30 },
    { "[#] okay\n", 0, 0, -70, 0, 0, -30 },
    { "[#] 7\r\n", -70, -70, 0, 0, 0, -70 },
    { "[#] 7 1 0x7\r\n", -70, -70, 0, 0, 0, 0 },
    { "[#] word\r\n", -70, -70, -70, 0, 0, -70 },
    { "[#]\r\n", -70, -70, -70, 0, 0, -70 },
    { "[#] Error: 103\r\n", -703, -703, -703, -703, -703, -703 },
    { "[#] Error: 0\r\n", -600, -600, -600, -600, -600, -600 },
    { "[#] Error: 0x06020000\r\n", abortCode, -600 - abortCode, abortCode, abortCode, abortCode, -600 - abortCode },
    { "[#] Error: 0x05000000\r\n", 0x5000000, -600 - 0x5000000, 0x5000000, 0x5000000, 0x5000000, -600 - 0x5000000 },
    { "[#] Error: 0x04FFFFFF\r\n", -83886679, -83886679, -83886679, -83886679, -83886679, -83886679 },
    { "[#] Error: -604\r\n", 0, 4, 0, 0, 0, 4 },
    { "[#] Error:\r\n", -70, -70, -70, -70, -70, -70 },
};
// Without any answer the command itself is evaluated: a read gives the node-id, an info query the word "info".
const tOutcome noAnswer = { "", -70, -70, 0, 0, 0, -70 };

} // namespace

class TestTcpCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyAnswerHasItsResult_data();
    void everyAnswerHasItsResult();
    void commandWithoutConnectionIsNotSent_data() { addCommands(); }
    void commandWithoutConnectionIsNotSent();
    void failedSendReadsNothingAndConsumesANumber_data() { addCommands(); }
    void failedSendReadsNothingAndConsumesANumber();
    void commandIsSentWholeInOneCallWithoutFlags_data() { addCommands(); }
    void commandIsSentWholeInOneCallWithoutFlags();
    void shortSendIsNotDetected();
    void afterATimeOutTheCommandItselfIsEvaluated_data() { addCommands(); }
    void afterATimeOutTheCommandItselfIsEvaluated();
    void failedSelectEndsTheWaitLikeATimeOut_data() { addCommands(); }
    void failedSelectEndsTheWaitLikeATimeOut();
    void afterAHangUpTheCommandItselfIsEvaluated_data() { addCommands(); }
    void afterAHangUpTheCommandItselfIsEvaluated();
    void afterAResetAnEmptyLineIsEvaluated_data() { addCommands(); }
    void afterAResetAnEmptyLineIsEvaluated();
    void firstReadAfterAHangUpYieldsTheNodeId();
    void unansweredReadsYieldTheNodeId_data();
    void unansweredReadsYieldTheNodeId();
    void unansweredInfoYieldsTheWordInfo();
    void nullPointersAreRefusedWhenAValueArrives();
    void resetSucceedsWhateverTheAnswer();
    void timeoutAlwaysClearsThePreviousTimeOut();

private:
    static void addCommands()
    {
        QTest::addColumn<int>("place");
        for (const tCommand& command : commands)
            QTest::newRow(command.line) << static_cast<int>(&command - commands);
    }
    static const tCommand& fetched()
    {
        QFETCH(int, place);
        return commands[place];
    }
};

void TestTcpCommands::everyAnswerHasItsResult_data()
{
    addCommands();
}

void TestTcpCommands::everyAnswerHasItsResult()
{
    const tCommand& command = fetched();
    CGatewaySession gateway;
    for (const tOutcome& outcome : outcomes) {
        gateway.expect(command.line, outcome.answer);
        const int32_t result = command.run();
        QVERIFY2(result == outcome.of(command.awaited),
                 (outcome.answer + std::to_string(result) + gateway.problem()).c_str());
    }
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpCommands::commandWithoutConnectionIsNotSent()
{
    QCOMPARE(fetched().run(), notSent);
}

void TestTcpCommands::failedSendReadsNothingAndConsumesANumber()
{
    CGatewaySession gateway;
    gateway.answerWith([](const std::string&) { return "[#] OK\r\n"; });
    QCOMPARE(top_start_remote_node(5), 0);
    const long before = gateway.lastNumber();
    {
        CSystemCalls calls;
        int waits = 0;
        calls.send = [](auto...) { return ssize_t(-1); };
        calls.select = [&](auto...) { return ++waits * 0; };
        calls.recv = [&](auto...) { return ssize_t(++waits * 0); };
        QCOMPARE(fetched().run(), notSent);
        QCOMPARE(waits, 0);
    }
    QCOMPARE(top_start_remote_node(5), 0);
    QCOMPARE(gateway.lastNumber(), before + 2);
}

void TestTcpCommands::commandIsSentWholeInOneCallWithoutFlags()
{
    const tCommand& command = fetched();
    CGatewaySession gateway;
    gateway.expect(command.line, "[#] OK\r\n");
    CSystemCalls calls;
    int sends = 0, allFlags = 0;
    calls.send = [&](int socket, const void* data, size_t length, int flags) {
        ++sends;
        allFlags |= flags;
        return __real_send(socket, data, length, flags);
    };
    command.run();
    QCOMPARE(sends, 1);
    QCOMPARE(allFlags, 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpCommands::shortSendIsNotDetected()
{
    for (const ssize_t sent : { 0, 3 }) {
        CGatewaySession gateway;
        CSystemCalls calls;
        int sends = 0, waits = 0;
        calls.send = [&](auto...) { return ++sends, sent; };
        calls.select = [&](auto...) { return ++waits * 0; };
        QCOMPARE(top_start_remote_node(5), int32_t(ERR_FORMAT));
        QCOMPARE(sends, 1);
        QCOMPARE(waits, 1);
    }
}

void TestTcpCommands::afterATimeOutTheCommandItselfIsEvaluated()
{
    CGatewaySession gateway;
    CSystemCalls calls;
    calls.select = [](auto...) { return 0; };
    const tCommand& command = fetched();
    QCOMPARE(command.run(), noAnswer.of(command.awaited));
}

void TestTcpCommands::failedSelectEndsTheWaitLikeATimeOut()
{
    CGatewaySession gateway;
    CSystemCalls calls;
    calls.select = [](auto...) { return -1; };
    const tCommand& command = fetched();
    QCOMPARE(command.run(), noAnswer.of(command.awaited));
}

void TestTcpCommands::afterAHangUpTheCommandItselfIsEvaluated()
{
    const tCommand& command = fetched();
    CGatewaySession gateway;
    gateway.expect(command.line, { "", tGatewayAnswer::hangUp });
    QCOMPARE(command.run(), noAnswer.of(command.awaited));
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpCommands::afterAResetAnEmptyLineIsEvaluated()
{
    const tCommand& command = fetched();
    CGatewaySession gateway;
    gateway.expect(command.line, { "", tGatewayAnswer::reset });
    QCOMPARE(command.run(), command.awaited == awaitsNothing ? 0 : int32_t(ERR_FORMAT));
    QCOMPARE(top_last_answer(), int(top_answer_closed));
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpCommands::firstReadAfterAHangUpYieldsTheNodeId()
{
    CGatewaySession gateway;
    gateway.expect("[#] 5 start\r\n", { "[#] OK\r\n", tGatewayAnswer::hangUp });
    QCOMPARE(top_start_remote_node(5), 0);
    QVERIFY(gateway.awaitClosed());
    uint8_t value = 77;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), 0);
    QCOMPARE(value, uint8_t(5));
    value = 77;
    QCOMPARE(top_read_8bit(5, 0x1017, 0, &value), notSent);
    QCOMPARE(value, uint8_t(77));
}

void TestTcpCommands::unansweredReadsYieldTheNodeId_data()
{
    QTest::addColumn<int>("node");
    QTest::addColumn<QByteArray>("domain"); // its digits, decoded as base64
    QTest::newRow("0") << 0 << QByteArray("\xD0");
    QTest::newRow("5") << 5 << QByteArray("\xE4");
    QTest::newRow("12") << 12 << QByteArray("\xD7\x60");
    QTest::newRow("127") << 127 << QByteArray("\xD7\x6E\xC0");
    QTest::newRow("255") << 255 << QByteArray("\xDB\x9E\x40");
}

void TestTcpCommands::unansweredReadsYieldTheNodeId()
{
    QFETCH(int, node);
    const auto nodeId = static_cast<BYTE>(node);
    CGatewaySession gateway;
    gateway.answerWith([](const std::string&) { return ""; });
    CSystemCalls calls;
    calls.select = [](auto...) { return 0; };

    uint8_t byte = 77;
    uint16_t word = 77;
    uint32_t longWord = 77;
    QCOMPARE(top_read_8bit(nodeId, 0x1017, 0, &byte), 0);
    QCOMPARE(top_read_16bit(nodeId, 0x1017, 0, &word), 0);
    QCOMPARE(top_read_32bit(nodeId, 0x1017, 0, &longWord), 0);
    QCOMPARE(static_cast<int>(byte), node);
    QCOMPARE(static_cast<int>(word), node);
    QCOMPARE(static_cast<int>(longWord), node);

    short length = 77;
    BYTE data[16] = {};
    QCOMPARE(top_read(nodeId, 0x1017, 0, &length, data, sizeof data), 0);
    QTEST(QByteArray(reinterpret_cast<const char*>(data), length), "domain");
}

void TestTcpCommands::unansweredInfoYieldsTheWordInfo()
{
    CGatewaySession gateway;
    gateway.answerWith([](const std::string&) { return ""; });
    CSystemCalls calls;
    calls.select = [](auto...) { return 0; };
    for (auto* query : { &top_hardware, &top_software, &top_copyright }) {
        char text[16] = "before";
        QCOMPARE(query(text, sizeof text), 0);
        QCOMPARE(QByteArray(text), QByteArray("info"));
    }
}

void TestTcpCommands::nullPointersAreRefusedWhenAValueArrives()
{
    CGatewaySession gateway;
    gateway.answerWith([](const std::string&) { return "[#] 5 1 5\r\n"; });
    WORD id = 0;
    short length = 0;
    BYTE data[8];
    QCOMPARE(top_read(5, 0x1017, 0, nullptr, data, 8), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_read(5, 0x1017, 0, &length, nullptr, 8), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_read_8bit(5, 0x1017, 0, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_read_16bit(5, 0x1017, 0, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_read_32bit(5, 0x1017, 0, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_queue_read(nullptr, &length, data), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_queue_read(&id, nullptr, data), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_queue_read(&id, &length, nullptr), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_hardware(nullptr, 8), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_software(nullptr, 8), int32_t(ERR_NULL_POINTER));
    QCOMPARE(top_copyright(nullptr, 8), int32_t(ERR_NULL_POINTER));
}

void TestTcpCommands::resetSucceedsWhateverTheAnswer()
{
    CGatewaySession gateway;
    gateway.expect("[#] init 0\r\n", "[#] OK\r\n");
    gateway.expect("[#] init 8\r\n", "[#] Error: 103\r\n");
    gateway.expect("[#] init 255\r\n", "[#-1] OK\r\n[#] nonsense\r\n");
    gateway.expect("[#] init 3\r\n", { "", tGatewayAnswer::hangUp });
    for (const BYTE index : { BYTE(0), BYTE(8), BYTE(255), BYTE(3) })
        QCOMPARE(top_reset(index), 0);
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestTcpCommands::timeoutAlwaysClearsThePreviousTimeOut()
{
    CGatewaySession gateway;
    const std::pair<const char*, int32_t> answers[] = {
        { "[#] OK\r\n", 0 }, { "[#] Error: 5\r\n", -605 }, { "[#] OK 100\r\n", 0 }, { "[#] 100\r\n", ERR_FORMAT }
    };
    for (const auto& [answer, result] : answers) {
        gateway.expect("[#] set sdo_timeout 65535\r\n", answer);
        WORD previous = 1234;
        QCOMPARE(top_timeout(65535, &previous), result);
        QCOMPARE(previous, WORD(0));
    }
    gateway.expect("[#] set sdo_timeout 0\r\n", "[#] OK\r\n");
    QCOMPARE(top_timeout(0, nullptr), 0);
    gateway.expect("[#] set sdo_timeout 1\r\n", { "", tGatewayAnswer::hangUp });
    WORD previous = 1234;
    QCOMPARE(top_timeout(1, &previous), int32_t(ERR_FORMAT));
    QCOMPARE(previous, WORD(0));
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
    top_exit();
    previous = 1234;
    QCOMPARE(top_timeout(1, &previous), notSent);
    QCOMPARE(previous, WORD(0));
}

QTEST_GUILESS_MAIN(TestTcpCommands)
#include "TestTcpCommands.moc"
