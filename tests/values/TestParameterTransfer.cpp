// Reading and sending parameters by their data type, without a window.
// SPDX-License-Identifier: MIT
#include "values/ParameterTransfer.h"

#include "GatewayLink.h"
#include "dic/CANopenObjectEntry.h"

#include <QDateTime>
#include <QTest>

using TEntry = CCANopenObjectEntry;
using namespace parameterTransfer;
using valueFormats::TDisplayMode;
using enum valueFormats::TDisplayMode;

namespace
{

QByteArray base64(const QByteArray& data)
{
    return data.toBase64();
}

// Types whose values are bytes: those that have no text of their own, and numbers that are no type.
constexpr int otherTypes[] = {
    TEntry::typeVoid, TEntry::typeBoolean, 8, 10, 13, 14, TEntry::typeDomain, 16, 27, 0xFFFF
};

} // namespace

class TestParameterTransfer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qputenv("TZ", "Europe/Berlin"); } // dates are local
    void init() { m_link.emplace(); }
    void cleanup() { QVERIFY2(m_link->difference().isEmpty(), qPrintable(m_link->difference())); }

    void aValueIsReadAsText_data();
    void aValueIsReadAsText();
    void aTextIsSentAsAValue_data();
    void aTextIsSentAsAValue();
    void anEmptyTextIsTheCurrentMoment_data();
    void anEmptyTextIsTheCurrentMoment();
    void longValuesAreCut();
    void aFailedTransferLeavesItsReasonToTheFacade_data();
    void aFailedTransferLeavesItsReasonToTheFacade();
    void whatIsNoValueOfTheTypeIsNotSent_data();
    void whatIsNoValueOfTheTypeIsNotSent();
    void otherTypesAreNotSent_data();
    void otherTypesAreNotSent();

private:
    tParameter parameter(int type, TDisplayMode mode = modeHex)
    {
        return { m_link->access, 127, 0x2A01, 0xFE, type, mode };
    }

    std::optional<CGatewayLink> m_link;
};

void TestParameterTransfer::aValueIsReadAsText_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QByteArray>("wireType");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("text");
    const auto row = [](int type, TDisplayMode mode, const char* wireType, const QByteArray& answer, const char* text) {
        QTest::addRow("type %d, mode %d: %s", type, mode, text)
            << type << int{ mode } << QByteArray(wireType) << answer << text;
    };
    row(TEntry::typeInteger8, modeDec, "u8", "0xFF", "-1");
    row(TEntry::typeInteger16, modeOct, "u16", "0xFFFE", "177776");
    row(TEntry::typeInteger32, modeHex, "u32", "10", "0x0000000000A");
    row(TEntry::typeUnsigned8, modeDec, "u8", "200", "200");
    row(TEntry::typeUnsigned16, modeHex, "u16", "10", "0x000A");
    row(TEntry::typeUnsigned32, modeOct, "u32", "10", "00000000012");
    row(TEntry::typeUnsigned8, TDisplayMode(7), "u8", "200", "0xC8");
    row(TEntry::typeVisibleString, modeHex, "d",
        base64(QByteArray("Br\xFC"
                          "cke\0x",
                          8)),
        "Brücke");
    for (const char* text : { "A", "AB", "ABC", "ABCD" }) // no zero byte after them
        row(TEntry::typeVisibleString, modeDec, "d", base64(text), text);
    row(TEntry::typeVisibleString, modeDec, "d", "=", "");
    row(TEntry::typeVisibleString, modeDec, "d", base64(" A  B\n "), " A  B\n ");
    const QByteArray date = QByteArray::fromHex("923B1E12180C09");
    row(TEntry::typeDate, modeDec, "d", base64(date), "2009-12-24 18:30:15.250");
    row(TEntry::typeDate, modeHex, "d", base64(date), "0x92 0x3B 0x1E 0x12 0x18 0x0C 0x09 ");
    row(TEntry::typeDate, modeHex, "d", base64(date.left(3)), "0x92 0x3B 0x1E ");
    row(TEntry::typeDate, modeDec, "d", base64(date.left(3)), "1970-01-01 00:30:15.250"); // the rest is 0
    row(TEntry::typeTimeOfDay, modeDec, "d", base64(QByteArray(6, '\0')), "1984-01-01 01:00:00.000");
    row(TEntry::typeTimeOfDay, modeOct, "d", base64(QByteArray(6, '\x09')), "011 011 011 011 011 011 ");
    row(TEntry::typeDate, modeHex, "d", "=", ""); // no bytes
    row(TEntry::typeDomain, modeHex, "d", "=", "");
    for (const int type : otherTypes)
        row(type, modeDec, "d", base64(QByteArray::fromHex("00FF07")), "0 255 7 ");
}

void TestParameterTransfer::aValueIsReadAsText()
{
    QFETCH(const int, type);
    QFETCH(const int, mode);
    QFETCH(const QByteArray, wireType);
    QFETCH(const QByteArray, answer);
    m_link->gateway.expect(("[#] 127 read 0x2A01 0xFE " + wireType + "\r\n").toStdString(),
                           ("[#] " + answer + "\r\n").toStdString());
    const tResult result = read(parameter(type, TDisplayMode(mode)));
    QCOMPARE(result.outcome, transferDone);
    QTEST(result.text, "text");
}

void TestParameterTransfer::aTextIsSentAsAValue_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("text");
    const auto row = [](int type, TDisplayMode mode, const char* input, const QByteArray& wire, const char* text) {
        QTest::addRow("type %d, mode %d: %s", type, mode, input) << type << int{ mode } << input << wire << text;
    };
    row(TEntry::typeInteger8, modeHex, " -1 ", "u8 0xFF", "0xFF");
    row(TEntry::typeInteger16, modeDec, "+5", "u16 0x5", "+5");
    row(TEntry::typeInteger32, modeHex, "10", "u32 0xA", "0x0000000A");
    row(TEntry::typeUnsigned8, modeOct, "0377", "u8 0xFF", "377");
    row(TEntry::typeUnsigned16, modeDec, "0x1234", "u16 0x1234", "4660");
    row(TEntry::typeUnsigned32, modeHex, "4294967295", "u32 0xFFFFFFFF", "0xFFFFFFFF");
    row(TEntry::typeVisibleString, modeHex, "Brücke",
        "d " + base64("Br\xFC"
                      "cke"),
        "");
    row(TEntry::typeVisibleString, modeHex, " A  B\t", "d " + base64(" A  B\t"), "");
    row(TEntry::typeVisibleString, modeHex, "  ", "d " + base64("  "), "");
    row(TEntry::typeVisibleString, modeHex, "", "d ", "");
    row(TEntry::typeVisibleString, modeHex, "A\u20acB", "d " + base64("A?B"), ""); // not a character of Latin-1
    row(TEntry::typeDate, modeHex, "2009-12-24 18:30:15.250", "d " + base64(QByteArray::fromHex("92001E12180C09")),
        "0x92 0x00 0x1E 0x12 0x18 0x0C 0x09 ");
    row(TEntry::typeTimeOfDay, modeDec, "2009-12-24 18:30:15.250", "d " + base64(QByteArray::fromHex("5289C1031125")),
        "2009-12-24 18:30:15.000");
}

void TestParameterTransfer::aTextIsSentAsAValue()
{
    QFETCH(const int, type);
    QFETCH(const int, mode);
    QFETCH(const QString, input);
    QFETCH(const QByteArray, wire);
    m_link->gateway.expect(("[#] 127 write 0x2A01 0xFE " + wire + "\r\n").toStdString(), "[#] OK\r\n");
    const tResult result = send(parameter(type, TDisplayMode(mode)), input);
    QCOMPARE(result.outcome, transferDone);
    QTEST(result.text, "text");
}

void TestParameterTransfer::anEmptyTextIsTheCurrentMoment_data()
{
    QTest::addColumn<int>("type");
    for (const int type : { TEntry::typeDate, TEntry::typeTimeOfDay })
        QTest::newRow(type == TEntry::typeDate ? "date" : "time of day") << type;
}

void TestParameterTransfer::anEmptyTextIsTheCurrentMoment()
{
    QFETCH(const int, type);
    // In standard time: a TIME_OF_DAY is taken so, also in summer.
    qputenv("TZ", "UTC");
    const auto restore = qScopeGuard([] { qputenv("TZ", "Europe/Berlin"); });
    m_link->gateway.answerWith([](auto&) { return "[#] OK\r\n"; });
    const auto minute = [] { return QDateTime::currentDateTime().toString("yyyy-MM-dd hh:mm"); };
    const QString before = minute();
    const tResult result = send(parameter(type, modeDec), "");
    QCOMPARE(result.outcome, transferDone);
    QVERIFY2(before <= result.text.left(16) && result.text.left(16) <= minute(), qPrintable(result.text));
}

void TestParameterTransfer::longValuesAreCut()
{
    const QByteArray string(longestString + 1, 's');
    m_link->gateway.expect("[#] 127 read 0x2A01 0xFE d\r\n", ("[#] " + base64(string) + "\r\n").toStdString());
    QCOMPARE(read(parameter(TEntry::typeVisibleString)).text, QString(string.first(longestString)));
    m_link->gateway.expect(
        ("[#] 127 write 0x2A01 0xFE d " + base64(string.first(longestString)) + "\r\n").toStdString(), "[#] OK\r\n");
    QCOMPARE(send(parameter(TEntry::typeVisibleString), string).outcome, transferDone);
}

void TestParameterTransfer::aFailedTransferLeavesItsReasonToTheFacade_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("input"); // null: read
    for (const int type : { TEntry::typeInteger8, TEntry::typeUnsigned32, TEntry::typeVisibleString, TEntry::typeDate,
                            TEntry::typeTimeOfDay, TEntry::typeDomain })
        QTest::addRow("read type %d", type) << type << QString();
    QTest::newRow("send a number") << int{ TEntry::typeUnsigned16 } << "1";
    QTest::newRow("send a string") << int{ TEntry::typeVisibleString } << "1";
    QTest::newRow("send a date") << int{ TEntry::typeDate } << "1";
    QTest::newRow("send a time") << int{ TEntry::typeTimeOfDay } << "1";
}

void TestParameterTransfer::aFailedTransferLeavesItsReasonToTheFacade()
{
    QFETCH(const int, type);
    QFETCH(const QString, input);
    m_link->gateway.answerWith([](auto&) { return "[#] ERROR: 0x06010002\r\n"; });
    const tResult result = input.isNull() ? read(parameter(type)) : send(parameter(type), input);
    QCOMPARE(result.outcome, transferFailed);
    QCOMPARE(result.text, QString());
    QCOMPARE(m_link->access.getLastAbort(), 0x06010002L);
}

void TestParameterTransfer::whatIsNoValueOfTheTypeIsNotSent_data()
{
    QTest::addColumn<int>("type");
    for (const int type : { TEntry::typeInteger8, TEntry::typeInteger16, TEntry::typeInteger32, TEntry::typeUnsigned8,
                            TEntry::typeUnsigned16, TEntry::typeUnsigned32, TEntry::typeDate, TEntry::typeTimeOfDay })
        QTest::addRow("type %d", type) << type;
}

void TestParameterTransfer::whatIsNoValueOfTheTypeIsNotSent()
{
    QFETCH(const int, type);
    for (const char* text : { "abc", "5\n", "\u00a05", "5\u00a0" }) { // white space other than blanks and tabs
        const tResult result = send(parameter(type), QString::fromUtf8(text));
        QCOMPARE(result.outcome, textInvalid);
        QCOMPARE(result.text, QString());
    }
    QCOMPARE(m_link->gateway.received(), std::string());
}

void TestParameterTransfer::otherTypesAreNotSent_data()
{
    QTest::addColumn<int>("type");
    for (const int type : otherTypes)
        QTest::addRow("type %d", type) << type;
}

void TestParameterTransfer::otherTypesAreNotSent()
{
    QFETCH(const int, type);
    const tResult result = send(parameter(type), "1");
    QCOMPARE(result.outcome, typeNotSupported);
    QCOMPARE(result.text, QString());
    QCOMPARE(m_link->gateway.received(), std::string());
}

QTEST_APPLESS_MAIN(TestParameterTransfer)
#include "TestParameterTransfer.moc"
