// The gateway over real sockets, as transcripts: what a client sends and what it gets.
// SPDX-License-Identifier: MIT
#include "DemoSheet.h"
#include "LineClient.h"
#include "base/Product.h"
#include "gateway/GatewayThread.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QTest>

#include <memory>
#include <vector>

class TestSimulatedGateway : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void sdoAnswers_data();
    void sdoAnswers();
    void writtenValueReadsBack();
    void domainsOfAnyLengthThatALineCarries();
    void stoppedDeviceIsATimeOut();
    void timeOutsComeAfterTheSdoTimeOut();
    void resetBringsDefaultsBack();
    void nodeZeroCommandsAllDevices();
    void everyInfoTopicIsAnswered();
    void initAnswersOk();
    void sentMessagesAreReceivedInOrder();
    void sendTakesTheEmptyDataLineToo();
    void refusedSendTakesItsDataLineToo_data();
    void refusedSendTakesItsDataLineToo();
    void messageQueueIsBounded();
    void remoteFrameIsAnsweredWithTheLastMessage();
    void initKeepsTheMessages();
    void syntaxErrorsAreAnswered();
    void emptyLinesAreSkipped();
    void severalCommandsInOnePieceAreAnsweredInOrder();
    void commandInSinglePiecesIsAnswered();
    void lineFeedAloneEndsALine();
    void lineWithoutEndIsAnErrorAndTheNextIsRead();
    void clientsSideBySideShareTheDevices();
    void clientsComeAndGo();
    void clientsBeyondTheLimitAreRefused();
    void occupiedPortIsReported();
    void logShowsRequestsAndAnswers();

private:
    std::unique_ptr<CGatewayThread> m_gateway;
    std::unique_ptr<CLineClient> m_client;
    QMutex m_logMutex;
    QList<QByteArray> m_log;
};

void TestSimulatedGateway::init()
{
    m_log.clear();
    m_gateway = std::make_unique<CGatewayThread>();
    QCOMPARE(m_gateway->addNode(5, demoSheet()), QString());
    QCOMPARE(m_gateway->addNode(7, demoSheet()), QString());
    m_gateway->setLog([this](const QByteArray& line) {
        const QMutexLocker lock(&m_logMutex);
        m_log += line;
    });
    QCOMPARE(m_gateway->start(), QString());
    QVERIFY(m_gateway->port() != 0);
    m_client = std::make_unique<CLineClient>(m_gateway->port());
    QCOMPARE(m_client->ask("[1] set sdo_timeout 1"), QByteArray("[1] OK"));
}

void TestSimulatedGateway::cleanup()
{
    m_client.reset();
    m_gateway.reset();
}

void TestSimulatedGateway::sdoAnswers_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (auto [command, answer] : std::initializer_list<std::pair<const char*, const char*>>{
             { "[2] 5 read 0x1000 0x0 u32", "[2] 0x000F0191" },
             { "[2] 5 READ 0x1000 0x0 U32", "[2] 0x000F0191" },
             { "[2] 5 read 4096 00 d", "[2] kQEPAA==" },
             { "[2] 5 read 0x1001 0x0 u8", "[2] 0x00" },
             { "[2] 5 read 0x1008 0x0 d", "[2] VmVsbW9yYSBEZW1vIEkvTw==" },
             { "[2] 5 read 0x1008 0x0 vs", "[2] \"Velmora Demo I/O\"" },
             { "[2] 5 read 0x1017 0x0 u16", "[2] 0x03E8" },
             { "[2] 5 read 0x1800 0x1 u32", "[2] 0x00000185" },
             { "[2] 7 read 0x1800 0x1 u32", "[2] 0x00000187" },
             { "[2] 7 read 0x1801 0x1 u32", "[2] 0x00000287" },
             { "[2] 5 read 0x2000 0x0 b", "[2] 0" },
             { "[2] 5 read 0x2001 0x0 u8", "[2] 0x46" },
             { "[2] 5 read 0x2002 0x0 u16", "[2] 0xFFE7" },
             { "[2] 5 read 0x2002 0x0 i16", "[2] -25" },
             { "[2] 5 read 0x2003 0x0 u32", "[2] 0x0000000A" },
             { "[2] 5 read 0x2007 0x0 r32", "[2] 1.5" },
             { "[2] 5 read 0x2009 0x0 d", "[2] ASNFZ4mrze8=" },
             { "[2] 5 read 0x200A 0x0 d", "[2] kjseDNwCGg==" },
             { "[2] 5 read 0x200C 0x0 d", "[2] QHcbAAoB" },
             { "[2] 5 read 0x200E 0x0 i64", "[2] -1" },
             { "[2] 5 read 0x200F 0x0 u64", "[2] 0x0123456789ABCDEF" },
             { "[2] 5 read 0x2017 0x0 d", "[2] =" },
             { "[2] 5 read 0x2017 0x0 vs", "[2] \"\"" },
             { "[2] 5 write 0x2001 0x0 u8 0xF6", "[2] OK" },
             { "[2] 5 write 0x2001 0x0 i8 -40", "[2] OK" },
             { "[2] 5 write 0x2008 0x0 d ", "[2] OK" },
             { "[2] 5 read 0x5FFF 0x0 u8", "[2] ERROR: 0x06020000" },
             { "[2] 5 read 0x1018 0x5 u32", "[2] ERROR: 0x06090011" },
             { "[2] 5 read 0x2011 0x0 u16", "[2] ERROR: 0x06010001" },
             { "[2] 5 read 0x1000 0x0 u16", "[2] ERROR: 0x06070012" },
             { "[2] 5 read 0x1001 0x0 u16", "[2] ERROR: 0x06070013" },
             { "[2] 5 read 0x1008 0x0 u32", "[2] ERROR: 0x06070012" },
             { "[2] 5 write 0x5FFF 0x0 u8 0x0", "[2] ERROR: 0x06020000" },
             { "[2] 5 write 0x1018 0x5 u32 0x0", "[2] ERROR: 0x06090011" },
             { "[2] 5 write 0x1000 0x0 u32 0x0", "[2] ERROR: 0x06010002" },
             { "[2] 5 write 0x1008 0x0 d QUJD", "[2] ERROR: 0x06010002" },
             { "[2] 5 write 0x2005 0x0 u32 0x20", "[2] ERROR: 0x06070012" },
             { "[2] 5 write 0x2005 0x0 u8 0x20", "[2] ERROR: 0x06070013" },
             { "[2] 5 write 0x2005 0x0 u16 0x9", "[2] ERROR: 0x06090032" },
             { "[2] 5 write 0x2005 0x0 u16 0x7531", "[2] ERROR: 0x06090031" },
             { "[2] 5 write 0x2001 0x0 u8 0x56", "[2] ERROR: 0x06090031" },
             { "[2] 5 write 0x2001 0x0 u8 0xD7", "[2] ERROR: 0x06090032" },
             { "[2] 5 write 0x1010 0x1 u32 0x12345678", "[2] ERROR: 0x08000020" },
             { "[2] 5 write 0x1010 0x1 u32 0x65766173", "[2] OK" },
             { "[2] 6 read 0x1000 0x0 u32", "[2] ERROR: 103" },
             { "[2] 6 write 0x1000 0x0 u32 0x1", "[2] ERROR: 103" },
             { "[2] 0 read 0x1000 0x0 u32", "[2] ERROR: 107" },
             { "[2] 128 read 0x1000 0x0 u32", "[2] ERROR: 107" },
             { "[2] 128 start", "[2] ERROR: 107" },
             { "[2] 6 start", "[2] OK" },
         })
        QTest::newRow(command) << QByteArray(answer);
}

void TestSimulatedGateway::sdoAnswers()
{
    QFETCH(QByteArray, answer);
    QCOMPARE(m_client->ask(QTest::currentDataTag()), answer);
}

void TestSimulatedGateway::writtenValueReadsBack()
{
    QCOMPARE(m_client->ask("[2] 5 write 0x2005 0x0 u16 0x1234"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] 5 read 0x2005 0x0 u16"), QByteArray("[3] 0x1234"));
    QCOMPARE(m_client->ask("[4] 7 read 0x2005 0x0 u16"), QByteArray("[4] 0x01F4"));
}

void TestSimulatedGateway::domainsOfAnyLengthThatALineCarries()
{
    for (int length : { 1, 2, 3, 4, 700, 48000 }) {
        QByteArray data;
        for (int i = 0; i < length; ++i)
            data.append(static_cast<char>(i % 256));
        QCOMPARE(m_client->ask("[2] 5 write 0x200D 0x0 d " + data.toBase64()), QByteArray("[2] OK"));
        QCOMPARE(m_client->ask("[3] 5 read 0x200D 0x0 d"), "[3] " + data.toBase64());
    }
}

void TestSimulatedGateway::stoppedDeviceIsATimeOut()
{
    QCOMPARE(m_client->ask("[2] 5 stop"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] 5 read 0x1000 0x0 u32"), QByteArray("[3] ERROR: 103"));
    QCOMPARE(m_client->ask("[4] 5 write 0x2005 0x0 u16 0x20"), QByteArray("[4] ERROR: 103"));
    QCOMPARE(m_client->ask("[5] 7 read 0x1000 0x0 u32"), QByteArray("[5] 0x000F0191"));
    QCOMPARE(m_client->ask("[6] 5 preoperational"), QByteArray("[6] OK"));
    QCOMPARE(m_client->ask("[7] 5 read 0x1000 0x0 u32"), QByteArray("[7] 0x000F0191"));
    QCOMPARE(m_client->ask("[8] 5 start"), QByteArray("[8] OK"));
    QCOMPARE(m_client->ask("[9] 5 read 0x1000 0x0 u32"), QByteArray("[9] 0x000F0191"));
}

void TestSimulatedGateway::timeOutsComeAfterTheSdoTimeOut()
{
    QCOMPARE(m_client->ask("[2] set sdo_timeout 200"), QByteArray("[2] OK"));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_client->ask("[3] 6 read 0x1000 0x0 u32"), QByteArray("[3] ERROR: 103"));
    QVERIFY(timer.elapsed() >= 190);
}

void TestSimulatedGateway::resetBringsDefaultsBack()
{
    QCOMPARE(m_client->ask("[2] 5 write 0x2005 0x0 u16 0x20"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] 5 write 0x1017 0x0 u16 0x20"), QByteArray("[3] OK"));
    QCOMPARE(m_client->ask("[4] 5 reset communication"), QByteArray("[4] OK"));
    QCOMPARE(m_client->ask("[5] 5 read 0x2005 0x0 u16"), QByteArray("[5] 0x0020"));
    QCOMPARE(m_client->ask("[6] 5 read 0x1017 0x0 u16"), QByteArray("[6] 0x03E8"));
    QCOMPARE(m_client->ask("[7] 5 reset node"), QByteArray("[7] OK"));
    QCOMPARE(m_client->ask("[8] 5 read 0x2005 0x0 u16"), QByteArray("[8] 0x01F4"));
}

void TestSimulatedGateway::nodeZeroCommandsAllDevices()
{
    QCOMPARE(m_client->ask("[2] 0 stop"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] 5 read 0x1000 0x0 u32"), QByteArray("[3] ERROR: 103"));
    QCOMPARE(m_client->ask("[4] 7 read 0x1000 0x0 u32"), QByteArray("[4] ERROR: 103"));
    QCOMPARE(m_client->ask("[5] 0 reset node"), QByteArray("[5] OK"));
    QCOMPARE(m_client->ask("[6] 7 read 0x1000 0x0 u32"), QByteArray("[6] 0x000F0191"));
}

void TestSimulatedGateway::everyInfoTopicIsAnswered()
{
    const QByteArray version = product::version;
    QCOMPARE(m_client->ask("[2] info hardware"), QByteArray("[2] \"Simulated CANopen gateway\""));
    QCOMPARE(m_client->ask("[3] info software"), "[3] \"velmora-sim " + version + '"');
    QCOMPARE(m_client->ask("[4] info firmware"), "[4] \"velmora-sim " + version + '"');
    QCOMPARE(m_client->ask("[5] info copyright"), QByteArray("[5] \"2009-2026 Brask Works\""));
    QCOMPARE(m_client->ask("[6] INFO VERSION"), "[6] \"" + version + '"');
}

void TestSimulatedGateway::initAnswersOk()
{
    QCOMPARE(m_client->ask("[2] init 0"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] init 8"), QByteArray("[3] OK"));
}

void TestSimulatedGateway::sentMessagesAreReceivedInOrder()
{
    m_client->send("[7] send 0x181 2\r\n 0x11 0x22\r\n");
    QCOMPARE(m_client->line(), QByteArray("[7] OK"));
    CLineClient other(m_gateway->port());
    QCOMPARE(other.ask("[1] send 0x000 8\r\n 0x1 0x2 0x3 0x4 0x5 0x6 0x7 0x8"), QByteArray("[1] OK"));
    QCOMPARE(m_client->ask("[8] receive"), QByteArray("[8] 0x181 2 0x11 0x22"));
    QCOMPARE(m_client->ask("[9] recv"), QByteArray("[9] 0x000 8 0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08"));
    QCOMPARE(m_client->ask("[10] receive"), QByteArray("[10] OK"));
}

void TestSimulatedGateway::sendTakesTheEmptyDataLineToo()
{
    m_client->send("[7] send 0x7FF 0\r\n\r\n[8] receive\r\n");
    QCOMPARE(m_client->line(), QByteArray("[7] OK"));
    QCOMPARE(m_client->line(), QByteArray("[8] 0x7FF 0"));
}

void TestSimulatedGateway::refusedSendTakesItsDataLineToo_data()
{
    QTest::addColumn<QByteArray>("dataLine");
    QTest::newRow("0x181 2") << QByteArray(" 0x11");
    QTest::newRow("0x182 1") << QByteArray(" 0x11 0x22");
    QTest::newRow("0x183 1") << QByteArray(" 0x100");
    QTest::newRow("0x184 1") << QByteArray();
    QTest::newRow("0x185 9") << QByteArray(" 1 2 3 4 5 6 7 8 9");
    QTest::newRow("0x800 1") << QByteArray(" 0x11");
    QTest::newRow("0x186 abc") << QByteArray(" 0x11");
    QTest::newRow("0x187 -1") << QByteArray("[9] receive");
    QTest::newRow("0x188") << QByteArray("[9] receive");
    QTest::newRow("0x189 1 1") << QByteArray(" 0x11");
    QTest::newRow("x 1") << QByteArray(" 0x11");
    QTest::newRow("") << QByteArray(" 0x11");
}

void TestSimulatedGateway::refusedSendTakesItsDataLineToo()
{
    QFETCH(QByteArray, dataLine);
    QCOMPARE(m_client->ask(QByteArray("[2] send ") + QTest::currentDataTag() + "\r\n" + dataLine),
             QByteArray("[2] ERROR: 101"));
    QCOMPARE(m_client->ask("[3] receive"), QByteArray("[3] OK"));
}

void TestSimulatedGateway::messageQueueIsBounded()
{
    for (std::size_t i = 0; i < CGatewayCommands::queueLimit; ++i)
        QCOMPARE(m_client->ask("[2] send 0x181 0\r\n"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] send 0x181 0\r\n"), QByteArray("[3] ERROR: 102"));
    QCOMPARE(m_client->ask("[4] receive"), QByteArray("[4] 0x181 0"));
    QCOMPARE(m_client->ask("[5] send 0x181 0\r\n"), QByteArray("[5] OK"));
}

void TestSimulatedGateway::remoteFrameIsAnsweredWithTheLastMessage()
{
    QCOMPARE(m_client->ask("[2] send 0x181 rtr 2"), QByteArray("[2] ERROR: 103"));
    QCOMPARE(m_client->ask("[3] send 0x181 1\r\n 0x10"), QByteArray("[3] OK"));
    QCOMPARE(m_client->ask("[4] send 0x181 2\r\n 0x11 0x22"), QByteArray("[4] OK"));
    QCOMPARE(m_client->ask("[5] send 0x181 RTR 2"), QByteArray("[5] 2 0x11 0x22"));
    QCOMPARE(m_client->ask("[6] send 0x182 rtr 2"), QByteArray("[6] ERROR: 103"));
    QCOMPARE(m_client->ask("[7] send 0x800 rtr 2"), QByteArray("[7] ERROR: 101"));
    QCOMPARE(m_client->ask("[8] send 0x181 rtr 9"), QByteArray("[8] ERROR: 101"));
    QCOMPARE(m_client->ask("[9] send 0x181 rtr x"), QByteArray("[9] ERROR: 101"));
    QCOMPARE(m_client->ask("[10] receive"), QByteArray("[10] 0x181 1 0x10"));
}

void TestSimulatedGateway::initKeepsTheMessages()
{
    QCOMPARE(m_client->ask("[2] send 0x181 1\r\n 0x11"), QByteArray("[2] OK"));
    QCOMPARE(m_client->ask("[3] init 4"), QByteArray("[3] OK"));
    QCOMPARE(m_client->ask("[4] send 0x181 rtr 1"), QByteArray("[4] 1 0x11"));
    QCOMPARE(m_client->ask("[5] receive"), QByteArray("[5] 0x181 1 0x11"));
}

void TestSimulatedGateway::syntaxErrorsAreAnswered()
{
    QCOMPARE(m_client->ask("hello"), QByteArray("[0] ERROR: 101"));
    QCOMPARE(m_client->ask("[2] 5 read"), QByteArray("[2] ERROR: 101"));
    QCOMPARE(m_client->ask("[3] network 1"), QByteArray("[3] ERROR: 100"));
    QCOMPARE(m_client->ask(QByteArray("[4] \0\xFF", 6)), QByteArray("[4] ERROR: 100"));
    QCOMPARE(m_client->ask("[5] info version").left(4), QByteArray("[5] "));
}

void TestSimulatedGateway::emptyLinesAreSkipped()
{
    m_client->send("\r\n\n  \r\n[2] receive\r\n");
    QCOMPARE(m_client->line(), QByteArray("[2] OK"));
}

void TestSimulatedGateway::severalCommandsInOnePieceAreAnsweredInOrder()
{
    m_client->send("[2] 6 read 0x1000 0x0 u32\r\n[3] 5 read 0x1000 0x0 u32\r\n[4] receive\r\n");
    QCOMPARE(m_client->line(), QByteArray("[2] ERROR: 103"));
    QCOMPARE(m_client->line(), QByteArray("[3] 0x000F0191"));
    QCOMPARE(m_client->line(), QByteArray("[4] OK"));
}

void TestSimulatedGateway::commandInSinglePiecesIsAnswered()
{
    for (char byte : QByteArray("[2] 5 read 0x1000 0x0 u32\r\n"))
        m_client->send(QByteArray(1, byte));
    QCOMPARE(m_client->line(), QByteArray("[2] 0x000F0191"));
}

void TestSimulatedGateway::lineFeedAloneEndsALine()
{
    m_client->send("[2] receive\n");
    QCOMPARE(m_client->line(), QByteArray("[2] OK"));
}

void TestSimulatedGateway::lineWithoutEndIsAnErrorAndTheNextIsRead()
{
    m_client->send("[2] 5 write 0x200D 0x0 d " + QByteArray(300000, 'A') + "\r\n[3] receive\r\n");
    QCOMPARE(m_client->line(), QByteArray("[2] ERROR: 101"));
    QCOMPARE(m_client->line(), QByteArray("[3] OK"));
}

void TestSimulatedGateway::clientsSideBySideShareTheDevices()
{
    CLineClient other(m_gateway->port());
    QCOMPARE(m_client->ask("[2] 5 write 0x2005 0x0 u16 0x20"), QByteArray("[2] OK"));
    QCOMPARE(other.ask("[1] 5 read 0x2005 0x0 u16"), QByteArray("[1] 0x0020"));
    other.send("[2] 5 read 0x2005"); // half a command delays no other client
    QCOMPARE(m_client->ask("[3] 5 read 0x2005 0x0 u16"), QByteArray("[3] 0x0020"));
    other.send(" 0x0 u16\r\n");
    QCOMPARE(other.line(), QByteArray("[2] 0x0020"));
}

void TestSimulatedGateway::clientsComeAndGo()
{
    for (int i = 0; i < 20; ++i) {
        CLineClient other(m_gateway->port());
        QCOMPARE(other.ask("[1] 5 read 0x1001 0x0 u8"), QByteArray("[1] 0x00"));
        other.send("[2] 6 read 0x1001 0x0 u8\r\n[3] 5 re"); // disconnects before the answer
    }
    QCOMPARE(m_client->ask("[2] 5 read 0x1001 0x0 u8"), QByteArray("[2] 0x00"));
}

void TestSimulatedGateway::clientsBeyondTheLimitAreRefused()
{
    std::vector<std::unique_ptr<CLineClient>> others;
    while (others.size() < CSimulatedGateway::clientLimit - 1) {
        others.push_back(std::make_unique<CLineClient>(m_gateway->port()));
        QCOMPARE(others.back()->ask("[1] 5 read 0x1001 0x0 u8"), QByteArray("[1] 0x00"));
    }
    CLineClient refused(m_gateway->port());
    QCOMPARE(refused.line(), QByteArray("(closed)"));
    QCOMPARE(m_client->ask("[2] 5 read 0x1001 0x0 u8"), QByteArray("[2] 0x00"));

    others.pop_back();
    // The gateway may hear of the new client before it hears of the one that has left.
    const auto isServed = [this] { return CLineClient(m_gateway->port()).ask("[1] info version") != "(closed)"; };
    QVERIFY(QTest::qWaitFor(isServed, patience));
}

void TestSimulatedGateway::occupiedPortIsReported()
{
    CGatewayThread second;
    QVERIFY(!second.start(m_gateway->port()).isEmpty());
}

void TestSimulatedGateway::logShowsRequestsAndAnswers()
{
    m_client->ask("[2] 5 write 0x2005 0x0 u16 0x20");
    m_client->ask("[3] 5 read 0x1008 0x0 d");
    m_client->ask("[4] 5 read 0x5FFF 0x1 u8");
    m_client->ask("[5] info version");
    m_client.reset();
    m_gateway.reset();
    QCOMPARE(m_log.mid(1, 13),
             (QList<QByteArray>{
                 "client 1 < [1] set sdo_timeout 1", "client 1 > [1] OK", "client 1 < [2] 5 write 0x2005 0x0 u16 0x20",
                 "node 5 write 0x2005 0x00 u16 0x0020 = OK", "client 1 > [2] OK", "client 1 < [3] 5 read 0x1008 0x0 d",
                 "node 5 read 0x1008 0x00 d = \"Velmora Demo I/O\"",
                 "client 1 > [3] VmVsbW9yYSBEZW1vIEkvTw==", "client 1 < [4] 5 read 0x5FFF 0x1 u8",
                 "node 5 read 0x5FFF 0x01 u8 = ERROR: 0x06020000", "client 1 > [4] ERROR: 0x06020000",
                 "client 1 < [5] info version", "client 1 > [5] \"" + QByteArray(product::version) + '"' }));
    QVERIFY(m_log.first().startsWith("client 1 connected from 127.0.0.1:"));
}

QTEST_GUILESS_MAIN(TestSimulatedGateway)
#include "TestSimulatedGateway.moc"
