// The command grammar of the gateway: which lines are commands, with which arguments.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayGrammar.h"

#include <QTest>

class TestGatewayGrammar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCommandIsRead_data();
    void everyCommandIsRead();
    void argumentsAreRead();
    void linesThatAreNoCommandsGetAnErrorNumber_data();
    void linesThatAreNoCommandsGetAnErrorNumber();
    void sendAwaitsADataLine_data();
    void sendAwaitsADataLine();
    void errorOfTheCommandOutlivesItsDataLine();
    void dataLinesAreRead_data();
    void dataLinesAreRead();
};

// The command is named by the words of its rule.
void TestGatewayGrammar::everyCommandIsRead_data()
{
    QTest::addColumn<QByteArray>("words");
    for (auto [line, words] : std::initializer_list<std::pair<const char*, const char*>>{
             { "[1] 5 read 0x1000 0x0 u32", "read|r" },
             { "[1] 5 R 0x1000 0x0 d", "read|r" },
             { "[1] 5 write 0x2000 0x1 u8 0x1", "write|w" },
             { "[1] 5 w 8192 01 d QUJD", "write|w" },
             { "[1] 5 write 0x2000 0x1 d ", "write|w" },
             { "[1] 5 start", "start" },
             { "[1] 0 Stop", "stop" },
             { "[1] 5 preoperational", "preoperational|preop" },
             { "[1] 5 preop", "preoperational|preop" },
             { "[1] 5 reset node", "reset node" },
             { "[1] 5 reset communication", "reset communication|comm" },
             { "[1] 5 RESET COMM", "reset communication|comm" },
             { "[1] init 3", "init" },
             { "[1] set sdo_timeout 1000", "set sdo_timeout" },
             { "[1] info hardware", "info hardware" },
             { "[1] info software", "info software" },
             { "[1] info firmware", "info firmware" },
             { "[1] info copyright", "info copyright" },
             { "[1] info version", "info version" },
             { "[1] send 0x181 2", "send" },
             { "[1] send 0x181 rtr 2", "send" },
             { "[1] receive", "receive|recv" },
             { "[1] recv", "receive|recv" },
             { " [ 1 ]\t5\tstart\t", "start" },
             { "[1]5 start", "start" },
         })
        QTest::newRow(line) << QByteArray(words);
}

void TestGatewayGrammar::everyCommandIsRead()
{
    QFETCH(QByteArray, words);
    const tGatewayRequest request = readRequest(QTest::currentDataTag());
    QCOMPARE(request.error, gatewayNoError);
    QCOMPARE(request.sequence, 1U);
    QVERIFY(request.rule != nullptr);
    QCOMPARE(QByteArray(request.rule->words), words);
}

void TestGatewayGrammar::argumentsAreRead()
{
    const tGatewayRequest write = readRequest("[4294967295] 127 write 0x1A00 017 U16 4660");
    QCOMPARE(write.error, gatewayNoError);
    QCOMPARE(write.sequence, 4294967295U);
    QCOMPARE(write.node, 127U);
    QCOMPARE(write.index, 0x1A00U);
    QCOMPARE(write.subIndex, 15U);
    QCOMPARE(write.type, findTypeWord("u16"));
    QCOMPARE(write.data, QByteArray("\x34\x12"));
    QVERIFY(write.isSdo());
    const tGatewayRequest remote = readRequest("[1] send 0x701 rtr 8");
    QCOMPARE(remote.identifier, 0x701U);
    QCOMPARE(remote.number, 8U);
    QVERIFY(!remote.isSdo());
}

void TestGatewayGrammar::linesThatAreNoCommandsGetAnErrorNumber_data()
{
    QTest::addColumn<quint32>("sequence");
    QTest::addColumn<int>("error");
    struct tRow {
        const char* line;
        quint32 sequence;
        int error;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "", 0, 101 },
             { "5 start", 0, 101 },
             { "[", 0, 101 },
             { "[]", 0, 101 },
             { "[x] 5 start", 0, 101 },
             { "[-1] 5 start", 0, 101 },
             { "[4294967296] 5 start", 0, 101 },
             { "[1 5 start", 0, 101 },
             { "[1]", 1, 101 },
             { "[2] 5", 2, 100 },
             { "[2] 5 jump", 2, 100 },
             { "[2] enable guarding", 2, 100 },
             { "[2] 5 starts", 2, 100 },
             { "[2] 5 read", 2, 101 },
             { "[2] read 0x1000 0 u8", 2, 101 },
             { "[2] 5 read 0x10000 0 u8", 2, 101 },
             { "[2] 5 read 0x1000 256 u8", 2, 101 },
             { "[2] 5 read 0x1000 0", 2, 101 },
             { "[2] 5 read 0x1000 0 u12", 2, 101 },
             { "[2] 5 read 0x1000 0 os", 2, 100 },
             { "[2] 5 read 0x1000 0 td", 2, 100 },
             { "[2] 5 read 0x1000 0 u8 1", 2, 101 },
             { "[2] 5 write 0x1000 0 us abc", 2, 100 },
             { "[2] 5 write 0x1000 0 u8", 2, 101 },
             { "[2] 5 write 0x1000 0 u8 256", 2, 101 },
             { "[2] 5 write 0x1000 0 u8 1 2", 2, 101 },
             { "[2] 5 write 0x1000 0 d !", 2, 101 },
             { "[2] start", 2, 101 },
             { "[2] 5 start now", 2, 101 },
             { "[2] 5 reset", 2, 100 },
             { "[2] 5 init 3", 2, 101 },
             { "[2] init", 2, 101 },
             { "[2] init 9", 2, 101 },
             { "[2] set sdo_timeout 65536", 2, 101 },
             { "[2] info colour", 2, 100 },
             { "[2] send 0x181", 2, 101 },
             { "[2] send 0x181 -1", 2, 101 },
             { "[2] send 0x181 rtr", 2, 101 },
             { "[2] receive 1", 2, 101 },
         })
        QTest::newRow(row.line) << row.sequence << row.error;
}

void TestGatewayGrammar::linesThatAreNoCommandsGetAnErrorNumber()
{
    QFETCH(quint32, sequence);
    QFETCH(int, error);
    const tGatewayRequest request = readRequest(QTest::currentDataTag());
    QCOMPARE(static_cast<int>(request.error), error);
    QCOMPARE(request.sequence, sequence);
    QVERIFY(request.rule == nullptr);
}

void TestGatewayGrammar::sendAwaitsADataLine_data()
{
    QTest::addColumn<bool>("awaited");
    for (auto [line, awaited] : std::initializer_list<std::pair<const char*, bool>>{
             { "[1] send 0x181 2", true },
             { "[1] SEND 0x181 0", true },
             { "[1] send 0x181 abc", true },
             { "[1] send 0x181 -1", true },
             { "[1] send 0x181 2 2", true },
             { "[1] send x 2", true },
             { "[1] send 0x181", true },
             { "[1] send", true },
             { "[1] 5 send 0x181 2", true },
             { "[1] send 0x181 rtr 2", false },
             { "[1] send 0x181 RTR x", false },
             { "[1] send 0x181 rtr", false },
             { "[1] send x rtr 2", false },
             { "[1] sent 0x181 2", false },
             { "send 0x181 2", false },
             { "[1] receive", false },
             { "[1] 5 write 0x2000 0 u8", false },
         })
        QTest::newRow(line) << awaited;
}

void TestGatewayGrammar::sendAwaitsADataLine()
{
    QFETCH(bool, awaited);
    QCOMPARE(readRequest(QTest::currentDataTag()).awaitsData, awaited);
}

void TestGatewayGrammar::errorOfTheCommandOutlivesItsDataLine()
{
    tGatewayRequest request = readRequest("[1] send 0x181 abc");
    readDataLine("", request);
    QCOMPARE(request.error, gatewaySyntax);
    QVERIFY(!request.awaitsData);
}

void TestGatewayGrammar::dataLinesAreRead_data()
{
    QTest::addColumn<QByteArray>("length");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QByteArray>("data");
    struct tRow {
        const char* length;
        const char* line;
        bool accepted;
        QByteArray data;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "2", " 0x11 0x22", true, "\x11\x22" },
             { "0", "", true, "" },
             { "0", "  ", true, "" },
             { "8", "1 2 3 4 5 6 7 010", true, "\1\2\3\4\5\6\7\10" },
             { "1", " 0xFF", true, "\xFF" },
             { "2", " 0x11", false, "" },
             { "1", " 0x11 0x22", false, "" },
             { "1", "", false, "" },
             { "1", " 256", false, "" },
             { "1", " x", false, "" },
             { "9", "1 2 3 4 5 6 7 8 9", false, "" },
         })
        QTest::addRow("%s:%s", row.length, row.line)
            << QByteArray(row.length) << QByteArray(row.line) << row.accepted << row.data;
}

void TestGatewayGrammar::dataLinesAreRead()
{
    QFETCH(QByteArray, length);
    QFETCH(QByteArray, line);
    QFETCH(bool, accepted);
    QFETCH(QByteArray, data);
    tGatewayRequest request = readRequest("[1] send 0x181 " + length);
    QCOMPARE(request.error, gatewayNoError);
    readDataLine(line, request);
    QCOMPARE(request.error, accepted ? gatewayNoError : gatewaySyntax);
    if (accepted)
        QCOMPARE(request.data, data);
}

QTEST_GUILESS_MAIN(TestGatewayGrammar)
#include "TestGatewayGrammar.moc"
