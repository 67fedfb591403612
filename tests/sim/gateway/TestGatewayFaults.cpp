// Faults of the gateway: how they are written, which commands they hit, and what the client receives.
// SPDX-License-Identifier: MIT
#include "DemoSheet.h"
#include "FaultList.h"
#include "LineClient.h"
#include "gateway/GatewayThread.h"

#include <QElapsedTimer>
#include <QTest>

#include <memory>

class TestGatewayFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void faultsAreRead_data();
    void faultsAreRead();
    void wrongFaultsAreRefused_data();
    void wrongFaultsAreRefused();
    void faultsHitTheirEntryOnly_data();
    void faultsHitTheirEntryOnly();
    void clientGetsWhatTheFaultsMake_data();
    void clientGetsWhatTheFaultsMake();
    void delayAnswersLate();
    void dropClosesTheConnection();
    void overlongLineBeginsWithTheAnswer();

private:
    void serve(const QStringList& faults);

    std::unique_ptr<CGatewayThread> m_gateway;
    std::unique_ptr<CLineClient> m_client;
};

// A gateway with these faults, and its client.
void TestGatewayFaults::serve(const QStringList& faults)
{
    m_gateway = std::make_unique<CGatewayThread>();
    QString error = m_gateway->addNode(5, demoSheet());
    QCOMPARE(error, QString());
    const tFaultKind onCanOnly{ "toggle", "", numberOptional, 1, 100000 };
    m_gateway->setFaults(faultList(faults, kindsWith(gatewayFaultKinds(), onCanOnly), &error));
    QCOMPARE(error, QString());
    QCOMPARE(m_gateway->start(), QString());
    m_client = std::make_unique<CLineClient>(m_gateway->port());
}

void TestGatewayFaults::cleanup()
{
    m_client.reset();
    m_gateway.reset();
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
    const auto fault = readFault(QString::fromLatin1(QTest::currentDataTag()), gatewayFaultKinds(), &message);
    QVERIFY2(fault, qPrintable(message));
    QCOMPARE(QByteArray(fault->kind.name), kind);
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
             { "silence=1", "wrong number after '='" },
             { "delay=", "wrong number after '='" },
             { "delay=-1", "wrong number after '='" },
             { "delay=3600001", "wrong number after '='" },
             { "error", "a number is missing, as in error=103" },
             { "abort@2000", "a number is missing, as in error=103" },
             { "abort=0x100000000", "wrong number after '='" },
             { "drop@", "wrong index after '@'" },
             { "drop@0", "wrong index after '@'" },
             { "drop@10000", "wrong index after '@'" },
             { "drop@xyz", "wrong index after '@'" },
             { "drop@2000:", "wrong sub-index after ':'" },
             { "drop@2000:100", "wrong sub-index after ':'" },
         })
        QTest::newRow(text) << QString::fromLatin1(reason);
}

void TestGatewayFaults::wrongFaultsAreRefused()
{
    QFETCH(QString, reason);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    QString message;
    QVERIFY(!readFault(text, gatewayFaultKinds(), &message));
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
    const QList<tFault> faults{ *readFault(text, gatewayFaultKinds(), &message) };
    QCOMPARE(findFault(faults, readRequest(line)) == faults.constData(), hit);
    QCOMPARE(findFault(faults, readRequest(line)) == nullptr, !hit);
}

void TestGatewayFaults::clientGetsWhatTheFaultsMake_data()
{
    QTest::addColumn<QStringList>("faults");
    QTest::addColumn<QByteArray>("commands");
    QTest::addColumn<QByteArrayList>("answers");
    struct tRow {
        const char* name;
        QStringList faults;
        const char* commands;
        QByteArrayList answers;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "first fault that hits counts, those of CAN are skipped",
               { "toggle", "error=104@2000", "error=105" },
               "[1] 5 read 0x2000 0x0 u8\r\n[2] 5 read 0x2001 0x0 u8\r\n",
               { "[1] ERROR: 104", "[2] ERROR: 105" } },
             { "silence withholds the answer",
               { "silence@2005" },
               "[1] 5 write 0x2005 0x0 u16 0x20\r\n[2] 5 read 0x2005 0x0 u16\r\n[3] receive\r\n",
               { "[3] OK" } },
             { "garbage is no answer",
               { "garbage@2005" },
               "[1] 5 read 0x2005 0x0 u16\r\n[2] 5 read 0x2004 0x0 u8\r\n",
               { "[1] ?%\x80\xFF\x01&*~", "[2] 0x32" } },
             { "sequence carries the number before",
               { "sequence@2005" },
               "[7] 5 read 0x2005 0x0 u16\r\n[8] receive\r\n",
               { "[6] 0x01F4", "[8] OK" } },
             { "double sends two lines",
               { "double@2005" },
               "[7] 5 read 0x2005 0x0 u16\r\n[8] receive\r\n",
               { "[6] 0x01F4", "[7] 0x01F4", "[8] OK" } },
             { "bytewise sends the whole answer",
               { "bytewise@1008" },
               "[1] 5 read 0x1008 0x0 d\r\n[2] receive\r\n",
               { "[1] VmVsbW9yYSBEZW1vIEkvTw==", "[2] OK" } },
             { "error and abort stand for the answer",
               { "error=104@2005", "abort=0x6060000@2004" },
               "[1] 5 write 0x2005 0x0 u16 0x20\r\n[2] 5 write 0x2004 0x0 u8 0x20\r\n",
               { "[1] ERROR: 104", "[2] ERROR: 0x06060000" } },
             { "other commands are left alone",
               { "drop" },
               "[1] 5 start\r\n[2] send 0x181 0\r\n\r\n[3] 5 read 0x1000 0x0 u32\r\n",
               { "[1] OK", "[2] OK", "(closed)" } },
         })
        QTest::newRow(row.name) << row.faults << QByteArray(row.commands) << row.answers;
}

void TestGatewayFaults::clientGetsWhatTheFaultsMake()
{
    QFETCH(QStringList, faults);
    QFETCH(QByteArray, commands);
    QFETCH(QByteArrayList, answers);
    serve(faults);
    m_client->send(commands);
    for (const QByteArray& answer : answers)
        QCOMPARE(m_client->line(), answer);
}

void TestGatewayFaults::delayAnswersLate()
{
    serve({ "delay=300@2005" });
    QElapsedTimer timer;
    timer.start();
    m_client->send("[1] 5 read 0x2005 0x0 u16\r\n[2] receive\r\n");
    QCOMPARE(m_client->line(), QByteArray("[1] 0x01F4"));
    QVERIFY(timer.elapsed() >= 290);
    QCOMPARE(m_client->line(), QByteArray("[2] OK"));
}

void TestGatewayFaults::dropClosesTheConnection()
{
    serve({ "drop@2005" });
    QCOMPARE(m_client->ask("[1] 5 read 0x2004 0x0 u8"), QByteArray("[1] 0x32"));
    QCOMPARE(m_client->ask("[2] 5 read 0x2005 0x0 u16"), QByteArray("(closed)"));
    CLineClient again(m_gateway->port());
    QCOMPARE(again.ask("[3] 5 read 0x2004 0x0 u8"), QByteArray("[3] 0x32"));
}

void TestGatewayFaults::overlongLineBeginsWithTheAnswer()
{
    serve({ "overlong@2005" });
    const QByteArray line = m_client->ask("[1] 5 read 0x2005 0x0 u16");
    QVERIFY(line.size() > 1023);
    QCOMPARE(line.trimmed(), QByteArray("[1] 0x01F4"));
    QCOMPARE(m_client->ask("[2] receive"), QByteArray("[2] OK"));
}

QTEST_GUILESS_MAIN(TestGatewayFaults)
#include "TestGatewayFaults.moc"
