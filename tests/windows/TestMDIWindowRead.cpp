// Reading a parameter: the command for each data type and what the answer shows in each display mode.
// SPDX-License-Identifier: MIT
#include "OnlineDocument.h"

#include "BoxCatcher.h"
#include "TempSettings.h"

using TEntry = CCANopenObjectEntry;

class TestMDIWindowRead : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "Europe/Berlin"); } // dates are local
    void init();

    void valuesShowInTheDisplayMode_data();
    void valuesShowInTheDisplayMode();
    void aFailedReadShowsItsReason_data();
    void aFailedReadShowsItsReason();
    void wrongAnswersToATypedRead_data();
    void wrongAnswersToATypedRead();
    void afterAFailureTheDocumentReadsOn();
    void namesWithPlaceholdersAreShownAsTheyAre();
    void readingAWriteOnlyEntryOnlyEmptiesTheValue();
    void aWriteOnlyEntryIsQuietAfterAFailure();
    void everyReadableAccessReads_data();
    void everyReadableAccessReads();
    void aStringIsReadUpTo256Characters();
    void aDomainIsCutToTheLine();
    void selectingAnEntryReadsIt();
    void theLowestIndexIsRead();
    void whatHasNoEntryIsNotRead_data();
    void whatHasNoEntryIsNotRead();
    void returnReadsAndCursorKeysDoNot();
    void aDoubleClickReadsOnce();

private:
    static QByteArray base64(const QByteArray& data) { return data.toBase64(); }

    CBoxCatcher m_boxes;
    std::unique_ptr<CTempSettings> m_settings;
};

void TestMDIWindowRead::init()
{
    m_settings = std::make_unique<CTempSettings>();
    m_boxes.clear();
}

void TestMDIWindowRead::valuesShowInTheDisplayMode_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QByteArray>("wireType");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<QString>("octal");
    QTest::addColumn<QString>("hexadecimal");
    const auto row = [](const char* name, int type, const char* wireType, const QByteArray& answer, const char* decimal,
                        const char* octal, const char* hexadecimal) {
        QTest::newRow(name) << type << QByteArray(wireType) << answer << decimal << octal << hexadecimal;
    };
    row("Integer8 5", TEntry::typeInteger8, "u8", "5", "+5", "005", "0x05");
    row("Integer8 0", TEntry::typeInteger8, "u8", "0", "+0", "000", "0x00");
    row("Integer8 -1", TEntry::typeInteger8, "u8", "0xFF", "-1", "377", "0xFF");
    row("Integer8 -128", TEntry::typeInteger8, "u8", "0x80", "-128", "200", "0x80");
    row("Integer16 5", TEntry::typeInteger16, "u16", "5", "+5", "000005", "0x0005");
    row("Integer16 -2", TEntry::typeInteger16, "u16", "0xFFFE", "-2", "177776", "0xFFFE");
    row("Integer32 10", TEntry::typeInteger32, "u32", "10", "+10", "000012", "0x0000000000A");
    row("Integer32 -1", TEntry::typeInteger32, "u32", "0xFFFFFFFF", "-1", "37777777777", "0x000FFFFFFFF");
    row("Unsigned8 200", TEntry::typeUnsigned8, "u8", "200", "200", "310", "0xC8");
    row("Unsigned16 4660", TEntry::typeUnsigned16, "u16", "0x1234", "4660", "011064", "0x1234");
    row("Unsigned32 10", TEntry::typeUnsigned32, "u32", "012", "10", "00000000012", "0x0000000A");
    row("Unsigned32 max", TEntry::typeUnsigned32, "u32", "4294967295", "4294967295", "37777777777", "0xFFFFFFFF");
    row("Visible String", TEntry::typeVisibleString, "d",
        base64("Br\xFC"
               "cke 1"),
        "Brücke 1", "Brücke 1", "Brücke 1");
    row("Visible String to its zero", TEntry::typeVisibleString, "d", base64(QByteArray("AB\0CD", 5)), "AB", "AB",
        "AB");
    row("Visible String %1", TEntry::typeVisibleString, "d", base64("%1 <b>"), "%1 <b>", "%1 <b>", "%1 <b>");
    row("Date", TEntry::typeDate, "d", base64("\x92\x3B\x1E\x12\x18\x0C\x09"), "2009-12-24 18:30:15.250",
        "222 073 036 022 030 014 011 ", "0x92 0x3B 0x1E 0x12 0x18 0x0C 0x09 ");
    row("Date of zeros", TEntry::typeDate, "d", base64(QByteArray(7, '\0')), "1970-01-01 00:00:00.000",
        "000 000 000 000 000 000 000 ", "0x00 0x00 0x00 0x00 0x00 0x00 0x00 ");
    row("Date too long", TEntry::typeDate, "d", base64("\x92\x3B\x1E\x12\x18\x0C\x09\x01\x02"),
        "2009-12-24 18:30:15.250", "222 073 036 022 030 014 011 ", "0x92 0x3B 0x1E 0x12 0x18 0x0C 0x09 ");
    row("Date too short", TEntry::typeDate, "d", base64("\x92\x3B\x1E"), "1970-01-01 00:30:15.250", "222 073 036 ",
        "0x92 0x3B 0x1E ");
    row("Time Of Day", TEntry::typeTimeOfDay, "d", base64(QByteArray::fromHex("0000000000 00")),
        "1984-01-01 01:00:00.000", "000 000 000 000 000 000 ", "0x00 0x00 0x00 0x00 0x00 0x00 ");
    row("Time Of Day too long", TEntry::typeTimeOfDay, "d", base64(QByteArray::fromHex("E803000001000203")),
        "1984-01-02 01:00:01.000", "350 003 000 000 001 000 ", "0xE8 0x03 0x00 0x00 0x01 0x00 ");
    for (const int type : { 0, 1, 8, 10, 13, 14, 15, 16, 17, 21, 22, 23, 27, 32, 35, 0x60, 0xFFFF })
        row(qPrintable("type " + QString::number(type)), type, "d", base64(QByteArray::fromHex("0107FF80")),
            "1 7 255 128 ", "001 007 377 200 ", "0x01 0x07 0xFF 0x80 ");
    row("Boolean", TEntry::typeBoolean, "d", base64("\x01"), "1 ", "001 ", "0x01 ");
    row("Domain without data", TEntry::typeDomain, "d", "=", "", "", "");
}

void TestMDIWindowRead::valuesShowInTheDisplayMode()
{
    QFETCH(const int, type);
    QFETCH(const QByteArray, wireType);
    QFETCH(const QByteArray, answer);
    QFETCH(const QString, decimal);
    QFETCH(const QString, octal);
    QFETCH(const QString, hexadecimal);
    COnlineDocument document(sheetOf(0x2A01, type));
    const QByteArray command = "[#] 5 read 0x2A01 0x0 " + wireType + "\r\n";
    for (int transfer = 0; transfer < 3; ++transfer)
        document.gateway.expect(command.toStdString(), ("[#] " + answer + "\r\n").toStdString());
    document.press("2a01: Value");
    QCOMPARE(document.value(), hexadecimal);
    document.choose("dec");
    QCOMPARE(document.value(), hexadecimal); // until the next transfer
    document.read();
    QCOMPARE(document.value(), decimal);
    document.choose("oct");
    document.read();
    QCOMPARE(document.value(), octal);
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
    const QString success = "Parameter 'Value' successfully read from node #5";
    QCOMPARE(document.statuses(), QStringList({ success, success, success }));
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowRead::aFailedReadShowsItsReason_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("reason");
    QTest::newRow("abort 0x06020000") << QByteArray("ERROR: 0x06020000") << "SDO transfer aborted: 0x6020000";
    QTest::newRow("abort 0x06090011") << QByteArray("Error: 0x06090011") << "SDO transfer aborted: 0x6090011";
    QTest::newRow("abort 0x0800002F") << QByteArray("error:0x0800002F") << "SDO transfer aborted: 0x800002f";
    QTest::newRow("abort 0x05000000") << QByteArray("ERROR: 0x05000000") << "SDO transfer aborted: 0x5000000";
    QTest::newRow("error 103") << QByteArray("ERROR: 103") << "Error code -703";
    QTest::newRow("error 0") << QByteArray("ERROR: 0") << "Error code -600";
    QTest::newRow("error without number") << QByteArray("Error:") << "Error code -70";
}

void TestMDIWindowRead::aFailedReadShowsItsReason()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const QString, reason);
    const QString text = "Parameter could not be read.\n\n" + reason;
    for (const int type : { TEntry::typeInteger8, TEntry::typeInteger16, TEntry::typeInteger32, TEntry::typeUnsigned8,
                            TEntry::typeUnsigned16, TEntry::typeUnsigned32, TEntry::typeVisibleString, TEntry::typeDate,
                            TEntry::typeTimeOfDay, TEntry::typeDomain }) {
        COnlineDocument document(sheetOf(0x2000, type));
        m_boxes.clear();
        document.gateway.answerWith([&](auto&) { return ("[#] " + answer + "\r\n").toStdString(); });
        document.press("2000: Value");
        QCOMPARE(m_boxes.only().title, QString("Velmora - Read parameter"));
        QCOMPARE(m_boxes.only().text, text);
        QCOMPARE(m_boxes.only().icon, QMessageBox::Warning);
        QCOMPARE(m_boxes.only().format, Qt::PlainText);
        QVERIFY(!m_boxes.only().waitCursor);
        QCOMPARE(document.value(), text);
        QCOMPARE(document.statuses(), QStringList{ "Parameter 'Value' could not be read from node #5" });
    }
}

void TestMDIWindowRead::wrongAnswersToATypedRead_data()
{
    QTest::addColumn<QByteArray>("answer");
    for (const char* answer : { "OK", "256", "0x100", "-1", "ABC", "" })
        QTest::newRow(answer) << QByteArray(answer);
}

void TestMDIWindowRead::wrongAnswersToATypedRead()
{
    QFETCH(const QByteArray, answer);
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.answerWith([&](auto&) { return ("[#] " + answer + "\r\n").toStdString(); });
    document.press("2000: Value");
    QCOMPARE(m_boxes.only().text, QString("Parameter could not be read.\n\nError code -70"));
    QCOMPARE(document.value(), m_boxes.only().text);
}

void TestMDIWindowRead::afterAFailureTheDocumentReadsOn()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] ERROR: 0x06020000\r\n");
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.press("2000: Value");
    document.read();
    QCOMPARE(document.value(), QString("0x07"));
    QCOMPARE(m_boxes.count(), 1);
    QCOMPARE(document.statuses(), QStringList({ "Parameter 'Value' could not be read from node #5",
                                                "Parameter 'Value' successfully read from node #5" }));
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowRead::namesWithPlaceholdersAreShownAsTheyAre()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "rw", "%1 'of' %2 <b>"), 127);
    document.gateway.expect("[#] 127 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.gateway.expect("[#] 127 read 0x2000 0x0 u8\r\n", "[#] ERROR: 1\r\n");
    document.press("2000: %1 'of' %2 <b>");
    document.read();
    QCOMPARE(document.statuses(), QStringList({ "Parameter '%1 'of' %2 <b>' successfully read from node #127",
                                                "Parameter '%1 'of' %2 <b>' could not be read from node #127" }));
}

void TestMDIWindowRead::readingAWriteOnlyEntryOnlyEmptiesTheValue()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo"));
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x7\r\n", "[#] OK\r\n");
    document.press("2000: Value");
    document.send("7");
    QCOMPARE(document.value(), QString("0x07"));
    document.forgetStatuses();
    document.read();
    QCOMPARE(document.value(), QString());
    QCOMPARE(document.statuses(), QStringList());
    QCOMPARE(m_boxes.count(), 0);
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowRead::aWriteOnlyEntryIsQuietAfterAFailure()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo"));
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x7\r\n", "[#] ERROR: 0x06020000\r\n");
    document.press("2000: Value");
    document.send("7");
    m_boxes.clear();
    document.forgetStatuses();
    document.read();
    QCOMPARE(m_boxes.count(), 0);
    QCOMPARE(document.statuses(), QStringList());
}

void TestMDIWindowRead::everyReadableAccessReads_data()
{
    QTest::addColumn<QByteArray>("access");
    for (const char* access : { "const", "ro", "rw", "rwr", "rww", "unknown" })
        QTest::newRow(access) << QByteArray(access);
}

void TestMDIWindowRead::everyReadableAccessReads()
{
    QFETCH(const QByteArray, access);
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, access));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.press("2000: Value");
    QCOMPARE(document.value(), QString("0x07"));
}

void TestMDIWindowRead::aStringIsReadUpTo256Characters()
{
    const QByteArray text = QByteArray(250, 'a') + "bcdefg" + QByteArray(44, 'h');
    COnlineDocument document(sheetOf(0x2000, TEntry::typeVisibleString));
    document.gateway.expect("[#] 5 read 0x2000 0x0 d\r\n", ("[#] " + base64(text) + "\r\n").toStdString());
    document.press("2000: Value");
    QCOMPARE(document.value(), QString(text.first(256)));
    QCOMPARE(document.find<QLineEdit>("actual value line edit")->cursorPosition(), 0); // shows its beginning
}

void TestMDIWindowRead::aDomainIsCutToTheLine()
{
    // A line holds 1023 characters: blanks bring what is left for base64 to whole groups.
    const QByteArray data(1100, '\x05');
    qsizetype bytes = 0;
    COnlineDocument document(sheetOf(0x2000, TEntry::typeDomain));
    document.gateway.answerWith([&](const std::string& line) {
        std::string answer = '[' + std::to_string(gatewayText::numberOf(line)) + "] ";
        while ((1023 - answer.size()) % 4 != 0)
            answer += ' ';
        bytes = qsizetype(1023 - answer.size()) / 4 * 3;
        return answer + base64(data).toStdString() + "\r\n";
    });
    document.press("2000: Value");
    QVERIFY(bytes > 750);
    QCOMPARE(document.value(), QString("0x05 ").repeated(bytes));
    QCOMPARE(document.statuses(), QStringList{ "Parameter 'Value' successfully read from node #5" });
}

void TestMDIWindowRead::selectingAnEntryReadsIt()
{
    COnlineDocument document("[OptionalObjects]\n1=0x1018\n[1018]\nParameterName=Identity\nObjectType=9\n"
                             "[1018sub1]\nParameterName=Vendor Id\nDataType=7\nAccessType=ro\n"
                             "[1018sub1F]\nParameterName=Other\nDataType=6\nAccessType=ro\n"
                             "[1018subFF]\nParameterName=Structure\nDataType=7\nAccessType=ro\n");
    document.press("1018: Identity");
    QCOMPARE(document.gateway.received(), std::string()); // the object itself has no value
    document.gateway.expect("[#] 5 read 0x1018 0x1 u32\r\n", "[#] 0x5678\r\n");
    document.gateway.expect("[#] 5 read 0x1018 0x1F u16\r\n", "[#] 0x9A\r\n");
    document.gateway.expect("[#] 5 read 0x1018 0x1F u16\r\n", "[#] 0x9B\r\n");
    document.press("1018: Identity", " 1: Vendor Id");
    QCOMPARE(document.value(), QString("0x00005678"));
    document.press("1018: Identity", "1f: Other");
    QCOMPARE(document.value(), QString("0x009A"));
    document.type("12");
    document.press("1018: Identity", "1f: Other"); // pressed again, it is read again but not refilled
    QCOMPARE(document.value(), QString("0x009B"));
    QCOMPARE(document.newValue()->text(), QString("12"));
    QCOMPARE(document.box("data access"), QString("Data access: #5"));
    document.press("1018: Identity", "ff: Structure");
    QCOMPARE(document.value(), QString());
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowRead::theLowestIndexIsRead()
{
    COnlineDocument document(sheetOf(0x0001, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x1 0x0 u8\r\n", "[#] 7\r\n");
    document.press("1: Value");
    QCOMPARE(document.value(), QString("0x07"));
    document.gateway.expect("[#] 5 read 0x1 0x0 u8\r\n", "[#] 8\r\n");
    document.read();
    QCOMPARE(document.value(), QString("0x08"));
}

void TestMDIWindowRead::whatHasNoEntryIsNotRead_data()
{
    QTest::addColumn<QByteArray>("section");
    QTest::newRow("RECORD without entries") << QByteArray("ObjectType=9\n");
    QTest::newRow("no class at all") << QByteArray("DataType=5\n");
    QTest::newRow("entry ff only") << QByteArray("ObjectType=9\n[2000subFF]\nParameterName=Structure\nDataType=7\n");
}

void TestMDIWindowRead::whatHasNoEntryIsNotRead()
{
    QFETCH(const QByteArray, section);
    COnlineDocument document("[ManufacturerObjects]\n1=0x2000\n[2000]\nParameterName=Value\n" + section);
    document.press("2000: Value");
    document.press("2000: Value");
    QCOMPARE(document.gateway.received(), std::string());
    QCOMPARE(m_boxes.count(), 0);
    document.read();
    QCOMPARE(m_boxes.only().text, QString("No parameter is selected!\n\nSelect one and try again."));
}

void TestMDIWindowRead::returnReadsAndCursorKeysDoNot()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.hit(document.item("Manufacturer specific"), Qt::Key_Right); // opens the group
    QTest::keyClick(document.tree(), Qt::Key_Down);
    QCOMPARE(document.tree()->currentItem(), document.item("2000: Value"));
    QCOMPARE(document.gateway.received(), std::string());
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    QTest::keyClick(document.tree(), Qt::Key_Return);
    QCOMPARE(document.value(), QString("0x07"));
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowRead::aDoubleClickReadsOnce()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.doubleClick(document.item("2000: Value"));
    QCOMPARE(document.value(), QString("0x07"));
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

QTEST_MAIN(TestMDIWindowRead)
#include "TestMDIWindowRead.moc"
