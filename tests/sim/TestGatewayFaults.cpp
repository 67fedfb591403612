// Misbehaviour on request: how faults are written, what they hit and what arrives at the client.
// SPDX-License-Identifier: MIT
#include "GatewayThread.h"
#include "SheetFile.h"

#include <QElapsedTimer>
#include <QTest>

class TestGatewayFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faultsAreRead_data();
    void faultsAreRead();
    void wrongFaultsAreRefused_data();
    void wrongFaultsAreRefused();
    void faultsHitTheirEntryOnly_data();
    void faultsHitTheirEntryOnly();
    void firstFaultThatHitsCounts();
    void silenceWithholdsTheAnswer();
    void delayAnswersLate();
    void dropClosesTheConnection();
    void garbageIsNoAnswer();
    void sequenceCarriesTheNumberBefore();
    void doubleSendsTwoLines();
    void bytewiseSendsTheWholeAnswer();
    void overlongLineBeginsWithTheAnswer();
    void errorAndAbortReplaceTheCommand();
    void otherCommandsAreLeftAlone();

private:
    std::unique_ptr<CLineClient> client(std::initializer_list<const char*> faults);

    std::unique_ptr<CGatewayThread> m_gateway;
};

// A client of a gateway with these faults.
std::unique_ptr<CLineClient> TestGatewayFaults::client(std::initializer_list<const char*> faults)
{
    m_gateway = std::make_unique<CGatewayThread>();
    m_gateway->addNode(5, QStringLiteral(VELMORA_SHARE "/velmora-demo.eds"));
    for (const char* fault : faults)
        m_gateway->addFault(QLatin1String(fault));
    m_gateway->start();
    return std::make_unique<CLineClient>(m_gateway->port());
}

void TestGatewayFaults::faultsAreRead_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<quint32>("argument");
    QTest::addColumn<int>("index");    // -1: any
    QTest::addColumn<int>("subIndex"); // -1: any
    QTest::newRow("silence") << QByteArray("silence") << 0U << -1 << -1;
    QTest::newRow("delay") << QByteArray("delay") << 1500U << -1 << -1;
    QTest::newRow("delay=20") << QByteArray("delay") << 20U << -1 << -1;
    QTest::newRow("drop@2000") << QByteArray("drop") << 0U << 0x2000 << -1;
    QTest::newRow("garbage@0x1008:0") << QByteArray("garbage") << 0U << 0x1008 << 0;
    QTest::newRow("sequence@1A00:a") << QByteArray("sequence") << 0U << 0x1A00 << 10;
    QTest::newRow("double@0X1A00:0x10") << QByteArray("double") << 0U << 0x1A00 << 16;
    QTest::newRow("bytewise") << QByteArray("bytewise") << 0U << -1 << -1;
    QTest::newRow("overlong") << QByteArray("overlong") << 0U << -1 << -1;
    QTest::newRow("error=104") << QByteArray("error") << 104U << -1 << -1;
    QTest::newRow("abort=0x06060000@2000:1") << QByteArray("abort") << 0x06060000U << 0x2000 << 1;
    QTest::newRow("abort=0xFFFFFFFF") << QByteArray("abort") << 0xFFFFFFFFU << -1 << -1;
}

void TestGatewayFaults::faultsAreRead()
{
    QFETCH(QByteArray, kind);
    QFETCH(quint32, argument);
    QFETCH(int, index);
    QFETCH(int, subIndex);
    QString message;
    const auto fault = readFault(QString::fromLatin1(QTest::currentDataTag()), &message);
    QVERIFY2(fault, qPrintable(message));
    QCOMPARE(QByteArray(fault->kind->name), kind);
    QCOMPARE(fault->argument, argument);
    QCOMPARE(fault->index ? static_cast<int>(*fault->index) : -1, index);
    QCOMPARE(fault->subIndex ? static_cast<int>(*fault->subIndex) : -1, subIndex);
}

void TestGatewayFaults::wrongFaultsAreRefused_data()
{
    QTest::addColumn<QString>("reason");
    for (auto [text, reason] : std::initializer_list<std::pair<const char*, const char*>>{
             { "", "unknown kind" },
             { "noise", "unknown kind" },
             { "Silence", "unknown kind" },
             { "silence=1", "wrong number behind '='" },
             { "delay=", "wrong number behind '='" },
             { "delay=-1", "wrong number behind '='" },
             { "delay=3600001", "wrong number behind '='" },
             { "error", "a number is missing, as in error=103" },
             { "abort@2000", "a number is missing, as in error=103" },
             { "abort=0x100000000", "wrong number behind '='" },
             { "drop@", "wrong index behind '@'" },
             { "drop@0", "wrong index behind '@'" },
             { "drop@10000", "wrong index behind '@'" },
             { "drop@xyz", "wrong index behind '@'" },
             { "drop@2000:", "wrong sub-index behind ':'" },
             { "drop@2000:100", "wrong sub-index behind ':'" },
         })
        QTest::newRow(text) << QString::fromLatin1(reason);
}

void TestGatewayFaults::wrongFaultsAreRefused()
{
    QFETCH(QString, reason);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    QString message;
    QVERIFY(!readFault(text, &message));
    QCOMPARE(message, QStringLiteral("fault \"%1\": %2").arg(text, reason));
}

void TestGatewayFaults::faultsHitTheirEntryOnly_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("hit");
    struct tRow {
        const char* fault;
        const char* line;
        bool hit;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "drop", "[1] 5 read 0x2000 0x0 u8", true },
             { "drop", "[1] 5 write 0x2000 0x0 u8 1", true },
             { "drop", "[1] 5 start", false },
             { "drop", "[1] receive", false },
             { "drop", "[1] 5 read", false },
             { "drop@2100", "[1] 5 read 0x2100 0x3 u32", true },
             { "drop@2100", "[1] 5 read 0x2101 0x3 u32", false },
             { "drop@2100:3", "[1] 5 read 0x2100 0x3 u32", true },
             { "drop@2100:3", "[1] 5 read 0x2100 0x0 u32", false },
             { "drop@2100:0", "[1] 5 read 0x2100 0x0 u32", true },
         })
        QTest::addRow("%s %s", row.fault, row.line) << QByteArray(row.line) << row.hit;
}

void TestGatewayFaults::faultsHitTheirEntryOnly()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, hit);
    QString message;
    const QString text = QString::fromLatin1(QTest::currentDataTag()).section(u' ', 0, 0);
    QCOMPARE(readFault(text, &message)->hits(readRequest(line)), hit);
}

void TestGatewayFaults::firstFaultThatHitsCounts()
{
    const auto c = client({ "error=104@2000", "error=105" });
    QCOMPARE(c->ask("[1] 5 read 0x2000 0x0 u8"), QByteArray("[1] ERROR: 104"));
    QCOMPARE(c->ask("[2] 5 read 0x2001 0x0 u8"), QByteArray("[2] ERROR: 105"));
}

void TestGatewayFaults::silenceWithholdsTheAnswer()
{
    const auto c = client({ "silence@2005" });
    c->send("[1] 5 write 0x2005 0x0 u16 0x20\r\n[2] 5 read 0x2005 0x0 u16\r\n[3] receive\r\n");
    QCOMPARE(c->line(), QByteArray("[3] OK"));
}

void TestGatewayFaults::delayAnswersLate()
{
    const auto c = client({ "delay=300@2005" });
    QElapsedTimer timer;
    timer.start();
    c->send("[1] 5 read 0x2005 0x0 u16\r\n[2] receive\r\n");
    QCOMPARE(c->line(), QByteArray("[1] 0x01F4"));
    QVERIFY(timer.elapsed() >= 290);
    QCOMPARE(c->line(), QByteArray("[2] OK"));
}

void TestGatewayFaults::dropClosesTheConnection()
{
    const auto c = client({ "drop@2005" });
    QCOMPARE(c->ask("[1] 5 read 0x2004 0x0 u8"), QByteArray("[1] 0x32"));
    QCOMPARE(c->ask("[2] 5 read 0x2005 0x0 u16"), QByteArray("(closed)"));
    CLineClient again(m_gateway->port());
    QCOMPARE(again.ask("[3] 5 read 0x2004 0x0 u8"), QByteArray("[3] 0x32"));
}

void TestGatewayFaults::garbageIsNoAnswer()
{
    const auto c = client({ "garbage@2005" });
    QCOMPARE(c->ask("[1] 5 read 0x2005 0x0 u16"), QByteArray("[1] ?%\x80\xFF\x01&*~"));
    QCOMPARE(c->ask("[2] 5 read 0x2004 0x0 u8"), QByteArray("[2] 0x32"));
}

void TestGatewayFaults::sequenceCarriesTheNumberBefore()
{
    const auto c = client({ "sequence@2005" });
    QCOMPARE(c->ask("[7] 5 read 0x2005 0x0 u16"), QByteArray("[6] 0x01F4"));
    QCOMPARE(c->ask("[8] receive"), QByteArray("[8] OK"));
}

void TestGatewayFaults::doubleSendsTwoLines()
{
    const auto c = client({ "double@2005" });
    QCOMPARE(c->ask("[7] 5 read 0x2005 0x0 u16"), QByteArray("[6] 0x01F4"));
    QCOMPARE(c->line(), QByteArray("[7] 0x01F4"));
}

void TestGatewayFaults::bytewiseSendsTheWholeAnswer()
{
    const auto c = client({ "bytewise@1008" });
    c->send("[1] 5 read 0x1008 0x0 d\r\n[2] receive\r\n");
    QCOMPARE(c->line(), QByteArray("[1] VmVsbW9yYSBEZW1vIEkvTw=="));
    QCOMPARE(c->line(), QByteArray("[2] OK"));
}

void TestGatewayFaults::overlongLineBeginsWithTheAnswer()
{
    const auto c = client({ "overlong@2005" });
    const QByteArray line = c->ask("[1] 5 read 0x2005 0x0 u16");
    QVERIFY(line.size() > 1023);
    QCOMPARE(line.trimmed(), QByteArray("[1] 0x01F4"));
    QCOMPARE(c->ask("[2] receive"), QByteArray("[2] OK"));
}

void TestGatewayFaults::errorAndAbortReplaceTheCommand()
{
    const auto c = client({ "error=104@2005", "abort=0x6060000@2004" });
    QCOMPARE(c->ask("[1] 5 write 0x2005 0x0 u16 0x20"), QByteArray("[1] ERROR: 104"));
    QCOMPARE(c->ask("[2] 5 write 0x2004 0x0 u8 0x20"), QByteArray("[2] ERROR: 0x06060000"));
}

void TestGatewayFaults::otherCommandsAreLeftAlone()
{
    const auto c = client({ "drop" });
    QCOMPARE(c->ask("[1] 5 start"), QByteArray("[1] OK"));
    QCOMPARE(c->ask("[2] send 0x181 0\r\n"), QByteArray("[2] OK"));
    QCOMPARE(c->ask("[3] 5 read 0x1000 0x0 u32"), QByteArray("(closed)"));
}

QTEST_GUILESS_MAIN(TestGatewayFaults)
#include "TestGatewayFaults.moc"
