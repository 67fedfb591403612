// Sending a parameter: the command for each data type and text, what is refused, and what is shown afterwards.
// SPDX-License-Identifier: MIT
#include "OnlineDocument.h"
#include "Patience.h"

#include "BoxCatcher.h"
#include "TempSettings.h"

using TEntry = CCANopenObjectEntry;

// Write-only variables, so that selecting them is no transfer.
class TestMDIWindowSend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "Europe/Berlin"); } // dates are local
    void init();

    void valuesAreSentAndShown_data();
    void valuesAreSentAndShown();
    void invalidTextsAreNotSent_data();
    void invalidTextsAreNotSent();
    void invalidDataAreReportedAlsoAfterAnotherFailure();
    void otherTypesAreNotSupported_data();
    void otherTypesAreNotSupported();
    void unsupportedTypesAreReportedAlsoAfterAnotherFailure();
    void aFailedSendShowsItsReason_data();
    void aFailedSendShowsItsReason();
    void aFailureLeavesTheValueAsItWas();
    void sendingAStringEmptiesTheValue();
    void aStringIsSentUpTo256Characters_data();
    void aStringIsSentUpTo256Characters();
    void anEmptyDateIsTheCurrentMoment();
    void theReturnKeyInTheNewValueSends_data();
    void theReturnKeyInTheNewValueSends();
    void subIndexesAreAddressed();
    void leavingTheFieldSendsNothing();
    void namesWithPlaceholdersAreShownAsTheyAre();

private:
    static QByteArray base64(const QByteArray& data) { return data.toBase64(); }
    void checkRefused(const COnlineDocument& document, const QString& text) const
    {
        QCOMPARE(m_boxes.only().title, QString("Velmora - Send parameter"));
        QCOMPARE(m_boxes.only().text, text);
        QCOMPARE(m_boxes.only().icon, QMessageBox::Warning);
        QCOMPARE(m_boxes.only().format, Qt::PlainText);
        QVERIFY(!m_boxes.only().waitCursor);
        QCOMPARE(document.value(), QString());
        QCOMPARE(document.statuses(), QStringList{ "Parameter 'Value' could not be sent to node #5" });
    }

    CBoxCatcher m_boxes;
    std::unique_ptr<CTempSettings> m_settings;
};

void TestMDIWindowSend::init()
{
    m_settings = std::make_unique<CTempSettings>();
    m_boxes.clear();
}

void TestMDIWindowSend::valuesAreSentAndShown_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<QString>("octal");
    QTest::addColumn<QString>("hexadecimal");
    const auto row = [](int type, const char* text, const QByteArray& wire, const char* decimal, const char* octal,
                        const char* hexadecimal) {
        QTest::addRow("%s as type %d", text, type) << type << text << wire << decimal << octal << hexadecimal;
    };
    row(TEntry::typeInteger8, "5", "u8 0x5", "+5", "005", "0x05");
    row(TEntry::typeInteger8, " -1 ", "u8 0xFF", "-1", "377", "0xFF");
    row(TEntry::typeInteger8, "0x80", "u8 0x80", "-128", "200", "0x80");
    row(TEntry::typeInteger8, "0", "u8 0x0", "+0", "000", "0x00");
    row(TEntry::typeInteger16, "-2", "u16 0xFFFE", "-2", "177776", "0xFFFE");
    row(TEntry::typeInteger16, "+5", "u16 0x5", "+5", "000005", "0x0005");
    row(TEntry::typeInteger32, "10", "u32 0xA", "+10", "00000000012", "0x0000000A");
    row(TEntry::typeInteger32, "-1", "u32 0xFFFFFFFF", "-1", "37777777777", "0xFFFFFFFF");
    row(TEntry::typeUnsigned8, "0377", "u8 0xFF", "255", "377", "0xFF");
    row(TEntry::typeUnsigned16, "4660", "u16 0x1234", "4660", "011064", "0x1234");
    row(TEntry::typeUnsigned32, "0xdeadbeef", "u32 0xDEADBEEF", "3735928559", "33653337357", "0xDEADBEEF");
    row(TEntry::typeUnsigned32, "4294967295", "u32 0xFFFFFFFF", "4294967295", "37777777777", "0xFFFFFFFF");
    row(TEntry::typeVisibleString, "AB", "d " + base64("AB"), "", "", "");
    row(TEntry::typeVisibleString, "Brücke",
        "d " + base64("Br\xFC"
                      "cke"),
        "", "", "");
    row(TEntry::typeVisibleString, " %1 <b> ", "d " + base64(" %1 <b> "), "", "", "");
    row(TEntry::typeVisibleString, "", "d ", "", "", "");
    // Only the low byte of the milliseconds within the minute, 15250 = 0x3B92, is sent.
    row(TEntry::typeDate, "2009-12-24 18:30:15.250", "d " + base64(QByteArray::fromHex("92001E12180C09")),
        "2009-12-24 18:30:00.146", "222 000 036 022 030 014 011 ", "0x92 0x00 0x1E 0x12 0x18 0x0C 0x09 ");
    row(TEntry::typeDate, "24.12.2009 18:30:59.999", "d " + base64(QByteArray::fromHex("5F001E12180C09")),
        "2009-12-24 18:30:00.095", "137 000 036 022 030 014 011 ", "0x5F 0x00 0x1E 0x12 0x18 0x0C 0x09 ");
    // 9489 days, 17:30:15.250 in universal time.
    row(TEntry::typeTimeOfDay, "2009-12-24 18:30:15.250", "d " + base64(QByteArray::fromHex("5289C1031125")),
        "2009-12-24 18:30:15.000", "122 211 301 003 021 045 ", "0x52 0x89 0xC1 0x03 0x11 0x25 ");
}

void TestMDIWindowSend::valuesAreSentAndShown()
{
    QFETCH(const int, type);
    QFETCH(const QString, text);
    QFETCH(const QByteArray, wire);
    COnlineDocument document(sheetOf(0x2A01, type, "wo"));
    for (int transfer = 0; transfer < 3; ++transfer)
        document.gateway.expect(("[#] 5 write 0x2A01 0x0 " + wire + "\r\n").toStdString(), "[#] OK\r\n");
    document.press("2a01: Value");
    document.send(text);
    QTEST(document.value(), "hexadecimal");
    document.choose("dec");
    document.send();
    QTEST(document.value(), "decimal");
    document.choose("oct");
    document.send();
    QTEST(document.value(), "octal");
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
    QCOMPARE(document.newValue()->text(), text);
    const QString success = "Parameter 'Value' successfully sent to node #5";
    QCOMPARE(document.statuses(), QStringList({ success, success, success }));
    QCOMPARE(m_boxes.count(), 0);
}

void TestMDIWindowSend::invalidTextsAreNotSent_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("text");
    const auto rows = [](int type, std::initializer_list<const char*> texts) {
        for (const char* text : texts)
            QTest::addRow("\"%s\" as type %d", text, type) << type << text;
    };
    rows(TEntry::typeInteger8, { "abc", "", " ", "128", "-129", "0x100", "5.0", "1 2" });
    rows(TEntry::typeInteger16, { "abc", "", "32768", "-32769", "0x10000" });
    rows(TEntry::typeInteger32, { "abc", "", "2147483648", "-2147483649", "0x100000000" });
    rows(TEntry::typeUnsigned8, { "abc", "", "256", "-1", "0400", "5ü", "%1" });
    rows(TEntry::typeUnsigned16, { "abc", "", "65536", "-1" });
    rows(TEntry::typeUnsigned32, { "abc", "", "4294967296", "-1" });
    rows(TEntry::typeDate, { "abc", "12:30", "1969-12-31", "2009-13-01", "2009-12-24 25:00" });
    rows(TEntry::typeTimeOfDay, { "abc", "12:30", "1983-12-31", "2038-01-01" });
}

void TestMDIWindowSend::invalidTextsAreNotSent()
{
    QFETCH(const int, type);
    QFETCH(const QString, text);
    COnlineDocument document(sheetOf(0x2000, type, "wo"));
    document.press("2000: Value");
    document.send(text);
    checkRefused(document, "Invalid data entered.\n\nPlease, try again!");
    QCOMPARE(document.gateway.received(), std::string());
    QCOMPARE(document.newValue()->text(), text);
}

void TestMDIWindowSend::invalidDataAreReportedAlsoAfterAnotherFailure()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo"));
    document.press("2000: Value");
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x5\r\n", "[#] ERROR: 0x06010002\r\n");
    document.send("5");
    m_boxes.clear();
    document.forgetStatuses();
    document.send("abc");
    checkRefused(document, "Invalid data entered.\n\nPlease, try again!");
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowSend::otherTypesAreNotSupported_data()
{
    QTest::addColumn<int>("type");
    for (const int type : { 0, 1, 8, 10, 13, 14, 15, 16, 17, 21, 22, 23, 27, 32, 35, 0x60, 0xFFFF })
        QTest::addRow("%d", type) << type;
}

void TestMDIWindowSend::otherTypesAreNotSupported()
{
    QFETCH(const int, type);
    COnlineDocument document(sheetOf(0x2000, type, "wo"));
    document.press("2000: Value");
    document.send("1");
    checkRefused(document, "Specified data type is not supported.\n\nSorry, not realized yet!");
    QCOMPARE(document.gateway.received(), std::string());
}

void TestMDIWindowSend::unsupportedTypesAreReportedAlsoAfterAnotherFailure()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeBoolean));
    document.gateway.expect("[#] 5 read 0x2000 0x0 d\r\n", "[#] ERROR: 0x06020000\r\n");
    document.press("2000: Value");
    QCOMPARE(m_boxes.count(), 1);
    m_boxes.clear();
    document.forgetStatuses();
    const QString before = document.value();
    document.send("1");
    QCOMPARE(m_boxes.only().text, QString("Specified data type is not supported.\n\nSorry, not realized yet!"));
    QCOMPARE(document.value(), before);
}

void TestMDIWindowSend::aFailedSendShowsItsReason_data()
{
    QTest::addColumn<std::string>("answer");
    QTest::addColumn<QString>("reason");
    QTest::newRow("abort 0x06010002") << std::string("[#] ERROR: 0x06010002\r\n") << "SDO transfer aborted: 0x6010002";
    QTest::newRow("abort 0x0800002F") << std::string("[#] error: 0x0800002F\r\n") << "SDO transfer aborted: 0x800002f";
    QTest::newRow("error 103") << std::string("[#] ERROR: 103\r\n") << "Error code -703";
    QTest::newRow("a number") << std::string("[#] 7\r\n") << "Error code -70";
}

void TestMDIWindowSend::aFailedSendShowsItsReason()
{
    QFETCH(const std::string, answer);
    QFETCH(const QString, reason);
    const QString text = "Parameter could not be sent.\n\n" + reason;
    for (const int type : { TEntry::typeInteger8, TEntry::typeInteger16, TEntry::typeInteger32, TEntry::typeUnsigned8,
                            TEntry::typeUnsigned16, TEntry::typeUnsigned32, TEntry::typeVisibleString, TEntry::typeDate,
                            TEntry::typeTimeOfDay }) {
        COnlineDocument document(sheetOf(0x2000, type, "wo"));
        m_boxes.clear();
        document.press("2000: Value");
        document.gateway.answerWith([&](auto&) { return answer; });
        document.send("15");
        checkRefused(document, text);
    }
}

void TestMDIWindowSend::aFailureLeavesTheValueAsItWas()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "ro"));
    document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 7\r\n");
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x5\r\n", "[#] ERROR: 0x06010002\r\n"); // the device decides
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x6\r\n", "[#] OK\r\n");
    document.press("2000: Value");
    document.send("5");
    QCOMPARE(document.value(), QString("0x07"));
    QCOMPARE(m_boxes.only().text, QString("Parameter could not be sent.\n\nSDO transfer aborted: 0x6010002"));
    document.send("abc");
    QCOMPARE(document.value(), QString("0x07"));
    document.send("6");
    QCOMPARE(document.value(), QString("0x06"));
    QCOMPARE(m_boxes.count(), 2);
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowSend::sendingAStringEmptiesTheValue()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeVisibleString));
    document.gateway.expect("[#] 5 read 0x2000 0x0 d\r\n", "[#] QUJD\r\n");
    document.gateway.expect("[#] 5 write 0x2000 0x0 d QQ==\r\n", "[#] OK\r\n");
    document.press("2000: Value");
    QCOMPARE(document.value(), QString("ABC"));
    document.send("A");
    QCOMPARE(document.value(), QString());
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowSend::aStringIsSentUpTo256Characters_data()
{
    QTest::addColumn<int>("length");
    for (const int length : { 255, 256, 257, 300, 32767 })
        QTest::addRow("%d", length) << length;
}

void TestMDIWindowSend::aStringIsSentUpTo256Characters()
{
    QFETCH(const int, length);
    const QByteArray text = QByteArray("0123456789abcdef").repeated(2048).first(length);
    COnlineDocument document(sheetOf(0x2000, TEntry::typeVisibleString, "wo"));
    document.gateway.expect("[#] 5 write 0x2000 0x0 d " + base64(text.first(qMin(length, 256))).toStdString() + "\r\n",
                            "[#] OK\r\n");
    document.press("2000: Value");
    document.send(QString(text));
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
    QCOMPARE(document.statuses(), QStringList{ "Parameter 'Value' successfully sent to node #5" });
}

void TestMDIWindowSend::anEmptyDateIsTheCurrentMoment()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeTimeOfDay, "wo"));
    document.choose("dec");
    document.press("2000: Value");
    document.gateway.answerWith([](auto&) { return "[#] OK\r\n"; });
    const QDateTime before = QDateTime::currentDateTime().addSecs(-3601); // standard time is sent
    document.send("");
    const auto sent = QDateTime::fromString(document.value(), "yyyy-MM-dd hh:mm:ss.zzz");
    QVERIFY2(sent >= before && sent <= before.addSecs(2 * 3601 + 30), qPrintable(document.value()));
}

void TestMDIWindowSend::theReturnKeyInTheNewValueSends_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void TestMDIWindowSend::theReturnKeyInTheNewValueSends()
{
    QFETCH(const Qt::Key, key);
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo"));
    document.gateway.expect("[#] 5 write 0x2000 0x0 u8 0x2A\r\n", "[#] OK\r\n");
    document.press("2000: Value");
    QTest::keyClicks(document.newValue(), "42");
    QTest::keyClick(document.newValue(), key);
    QCOMPARE(document.value(), QString("0x2A"));
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowSend::subIndexesAreAddressed()
{
    COnlineDocument document("[OptionalObjects]\n1=0x1AFF\n[1AFF]\nParameterName=Mapping\nObjectType=9\n"
                             "[1AFFsub1F]\nParameterName=Value\nDataType=7\nAccessType=wo\n");
    document.gateway.expect("[#] 5 write 0x1AFF 0x1F u32 0x60000108\r\n", "[#] OK\r\n");
    document.press("1aff: Mapping", "1f: Value");
    document.send("0x60000108");
    QVERIFY2(document.gateway.finished(), qPrintable(document.difference()));
}

void TestMDIWindowSend::namesWithPlaceholdersAreShownAsTheyAre()
{
    COnlineDocument document(sheetOf(0x2000, TEntry::typeUnsigned8, "wo", "%2 & %1"), 127);
    document.gateway.expect("[#] 127 write 0x2000 0x0 u8 0x1\r\n", "[#] OK\r\n");
    document.press("2000: %2 & %1");
    document.send("1");
    document.send("x");
    QCOMPARE(document.statuses(), QStringList({ "Parameter '%2 & %1' successfully sent to node #127",
                                                "Parameter '%2 & %1' could not be sent to node #127" }));
}

void TestMDIWindowSend::leavingTheFieldSendsNothing()
{
    COnlineDocument document(sheetOf(0x2000, CCANopenObjectEntry::typeUnsigned8, "wo"));
    document.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(document.window, patience));
    document.press("2000: Value");
    document.type("5");
    QTest::keyClick(document.newValue(), Qt::Key_Tab);
    QVERIFY(!document.newValue()->hasFocus());
    document.window->hide();
    QCOMPARE(document.gateway.received(), std::string());
    QCOMPARE(document.statuses(), QStringList());
}

QTEST_MAIN(TestMDIWindowSend)
#include "TestMDIWindowSend.moc"
