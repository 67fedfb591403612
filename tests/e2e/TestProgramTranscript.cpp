// What the program writes on the wire and makes of the answers: transcripts with a scripted gateway.
// SPDX-License-Identifier: MIT
#include "BoxCatcher.h"
#include "DocumentDriver.h"
#include "FakeGateway.h"
#include "FrameDriver.h"
#include "SheetFile.h"
#include "TempSettings.h"

#include <QTest>

#include <optional>

namespace
{

const QByteArray sheetText = "[MandatoryObjects]\n1=0x1000\n"
                             "[OptionalObjects]\n1=0x1008\n2=0x1018\n"
                             "[ManufacturerObjects]\n1=0x2000\n2=0x2001\n"
                             "[1000]\nParameterName=Device Type\nObjectType=0x7\nDataType=0x0007\nAccessType=ro\n"
                             "[1008]\nParameterName=Name\nObjectType=0x7\nDataType=0x0009\nAccessType=rw\n"
                             "[1018]\nParameterName=Identity\nObjectType=0x9\n"
                             "[1018sub0]\nParameterName=Count\nDataType=0x0005\nAccessType=ro\n"
                             "[1018sub1]\nParameterName=Vendor\nDataType=0x0007\nAccessType=ro\n"
                             "[2000]\nParameterName=Offset\nObjectType=0x7\nDataType=0x0002\nAccessType=rw\n"
                             "[2001]\nParameterName=Position\nObjectType=0x7\nDataType=0x0004\nAccessType=rw\n";

} // namespace

class TestProgramTranscript : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void initialisingAndOpeningSendNothing();
    void aSession();
    void highestNodeAndSubIndex();
    void numbersGoOnOverConnections();
    void answersToEarlierCommandsAreSkipped();
    void gatewayThatHangsUp_data();
    void gatewayThatHangsUp();

private:
    static QString loopback(const CFakeGateway& gateway) { return "localhost:" + QString::number(gateway.port()); }

    std::optional<CTempSettings> m_store;
    std::optional<CSheetFile> m_sheet;
};

void TestProgramTranscript::init()
{
    m_store.emplace();
    m_sheet.emplace(sheetText);
}

void TestProgramTranscript::initialisingAndOpeningSendNothing()
{
    CFakeGateway gateway;
    {
        CFrameDriver driver;
        driver.initialize(loopback(gateway));
        driver.open(m_sheet->name(), 5);
        const CDocumentDriver document(driver.document(0));
        document.reach("CANopen: Node #5");
        document.reach("CiA DS-301");
        document.reach("1018: Identity"); // an object with entries is not read
        driver.press(Qt::Key_Q);
    }
    QVERIFY(gateway.awaitClosed());
    QCOMPARE(QByteArray::fromStdString(gateway.received()), QByteArray());
}

void TestProgramTranscript::aSession()
{
    CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] 5 read 0x1000 0x0 u32\r\n", "[#] 0x000F0191\r\n");
    gateway.expect("[#] 5 read 0x1018 0x1 u32\r\n", "[#] 61621\r\n");
    gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 0xFB\r\n");
    gateway.expect("[#] 5 write 0x2000 0x0 u8 0xFE\r\n", "[#] OK\r\n");
    gateway.expect("[#] 5 read 0x2001 0x0 u32\r\n", "[#] 10\r\n");
    gateway.expect("[#] 5 write 0x2001 0x0 u32 0xA\r\n", "[#] ok\r\n");
    gateway.expect("[#] 5 write 0x2001 0x0 u32 0xFFFFFFFF\r\n", "[#] ERROR: 0x06090032\r\n");
    gateway.expect("[#] 5 read 0x1008 0x0 d\r\n", "[#] QUJD\r\n");
    gateway.expect("[#] 5 write 0x1008 0x0 d QUJDRA==\r\n", "[#] OK\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(m_sheet->name(), 5);
    const CDocumentDriver document(driver.document(0));
    document.reach("1000: Device Type");
    QCOMPARE(document.value(), QString("0x000F0191"));
    document.hit(document.item("1018: Identity"), Qt::Key_Return); // opens it and sends nothing
    document.reach(" 1: Vendor");
    QCOMPARE(document.value(), QString("0x0000F0B5"));
    document.choose("dec");
    document.reach("2000: Offset");
    QCOMPARE(document.value(), QString("-5"));
    document.send("-2");
    QCOMPARE(document.value(), QString("-2"));
    document.choose("hex");
    document.reach("2001: Position");
    QCOMPARE(document.value(), QString("0x0000000000A"));
    document.send("10");
    QCOMPARE(document.value(), QString("0x0000000A"));
    QCOMPARE(catcher.count(), 0);
    document.send("-1");
    QCOMPARE(catcher.only().text, QString("Parameter could not be sent.\n\nSDO transfer aborted: 0x6090032"));
    document.reach("1008: Name");
    QCOMPARE(document.value(), QString("ABC"));
    document.send("ABCD");
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
}

void TestProgramTranscript::highestNodeAndSubIndex()
{
    const CSheetFile sheet("[ManufacturerObjects]\n1=0xFFFF\n[FFFF]\nParameterName=Last\nObjectType=0x8\n"
                           "[FFFFsubFE]\nParameterName=Entry\nDataType=0x0006\nAccessType=rw\n");
    CFakeGateway gateway;
    gateway.expect("[#] 127 read 0xFFFF 0xFE u16\r\n", "[#] 65535\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(sheet.name(), 127);
    const CDocumentDriver document(driver.document(0));
    document.reach("fe: Entry");
    QVERIFY2(gateway.finished(), gateway.problem().c_str());
    QCOMPARE(document.value(), QString("0xFFFF"));
}

void TestProgramTranscript::numbersGoOnOverConnections()
{
    CFakeGateway gateway;
    gateway.answerWith([](const std::string&) { return "[#] 1\r\n"; });
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(m_sheet->name(), 5);
    const CDocumentDriver document(driver.document(0));
    document.reach("1000: Device Type");
    const long first = gateway.lastNumber();
    document.read();
    QCOMPARE(gateway.lastNumber(), first + 1);
    driver.initialize(loopback(gateway));
    document.read();
    QCOMPARE(gateway.lastNumber(), first + 2);
}

void TestProgramTranscript::answersToEarlierCommandsAreSkipped()
{
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] 5 read 0x1000 0x0 u32\r\n",
                   { "[#-1] 1\r\nhello\r\n\r\n[#+1] 2\r\n[] 3\r\n[#] 4\r\n", tGatewayAnswer::byteByByte });
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(m_sheet->name(), 5);
    const CDocumentDriver document(driver.document(0));
    document.reach("1000: Device Type");
    QCOMPARE(document.value(), QString("0x00000004"));
    QCOMPARE(catcher.count(), 0);
}

void TestProgramTranscript::gatewayThatHangsUp_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (const char* answer : { "", "[", "[#", "[#] ", "[#] 0x1", "[#] 0x1\r" })
        QTest::newRow(*answer != '\0' ? answer : "(nothing)") << QByteArray(answer);
}

void TestProgramTranscript::gatewayThatHangsUp()
{
    QFETCH(const QByteArray, answer);
    const CBoxCatcher catcher;
    CFakeGateway gateway;
    gateway.expect("[#] 5 read 0x1000 0x0 u32\r\n", { answer.toStdString(), tGatewayAnswer::hangUp });
    gateway.expect("[#] 5 read 0x1000 0x0 u32\r\n", "[#] 7\r\n");
    CFrameDriver driver;
    driver.initialize(loopback(gateway));
    driver.open(m_sheet->name(), 5);
    const CDocumentDriver document(driver.document(0));
    document.reach("1000: Device Type");
    const qsizetype boxes = catcher.count();
    driver.initialize(loopback(gateway));
    QCOMPARE(driver.statusText(), QString("CAN interface successfully initialized"));
    document.read();
    QCOMPARE(document.value(), QString("0x00000007"));
    QCOMPARE(catcher.count(), boxes);
}

QTEST_MAIN(TestProgramTranscript)
#include "TestProgramTranscript.moc"
