// Data types as bytes: defaults and limits of data sheets, and their order.
// SPDX-License-Identifier: MIT
#include "dic/ValueTypes.h"

#include <QTest>
#include <QTimeZone>

namespace
{

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

class TestValueTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultsBecomeLittleEndianBytes_data();
    void defaultsBecomeLittleEndianBytes();
    void timeOfDayIsLocalTime();
    void limitsOutsideOfTheTypeLimitNothing_data();
    void limitsOutsideOfTheTypeLimitNothing();
    void valuesHaveTheOrderOfTheirType_data();
    void valuesHaveTheOrderOfTheirType();
    void nodeIdIsKnownInAnyCase();
    void textsStandForValues_data();
    void textsStandForValues();
    void wrongTextsAreNoValues_data();
    void wrongTextsAreNoValues();
    void someValuesHaveNoText_data();
    void someValuesHaveNoText();
};

void TestValueTypes::defaultsBecomeLittleEndianBytes_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    struct tRow {
        const char* name;
        int dataType;
        const char* text;
        QByteArray bytes;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "BOOLEAN", 1, "1", hex("01") },
             { "INTEGER8", 2, "-2", hex("FE") },
             { "INTEGER8 as pattern", 2, "0xFE", hex("FE") },
             { "INTEGER16", 3, "-1000", hex("18FC") },
             { "INTEGER32", 4, "-2", hex("FEFFFFFF") },
             { "UNSIGNED8", 5, "0x7F", hex("7F") },
             { "UNSIGNED16", 6, "0x1234", hex("3412") },
             { "UNSIGNED32", 7, "0x12345678", hex("78563412") },
             { "UNSIGNED32 with node-id", 7, "$NODEID+0x180", hex("85010000") },
             { "UNSIGNED32 with node-id at the end", 7, "0x180+$NODEID", hex("85010000") },
             { "REAL32", 8, "1.5", hex("0000C03F") },
             { "REAL32 as pattern", 8, "0x3FC00000", hex("0000C03F") },
             { "REAL32 just below the middle of two", 8, "+1.00000017881393432617187499", hex("0100803F") },
             { "REAL32 too large", 8, "1e99", hex("00000000") },
             { "VISIBLE_STRING", 9, "Velmora", "Velmora" },
             { "VISIBLE_STRING that looks like a number", 9, "0x10", "0x10" },
             { "OCTET_STRING", 10, "01 2a FF", hex("012AFF") },
             { "OCTET_STRING without blanks", 10, "012aFF", hex("012AFF") },
             { "OCTET_STRING of characters", 10, "secret", "secret" },
             { "DATE", 11, "2026-02-28 12:30:15.250", hex("923B1E0CDC021A") },
             { "DATE as octets", 11, "923B1E0CDC021A", hex("923B1E0CDC021A") },
             { "DATE that does not read", 11, "today", hex("00000000000000") },
             { "TIME_OF_DAY as octets", 12, "40 77 1B 00 0A 01", hex("40771B000A01") },
             { "TIME_OF_DAY that does not read", 12, "0", hex("000000000000") },
             { "TIME_DIFFERENCE", 13, "40 77 1B 00 0A 01", hex("40771B000A01") },
             { "DOMAIN", 15, "00 01", hex("0001") },
             { "INTEGER24", 16, "-2", hex("FEFFFF") },
             { "REAL64", 17, "2.5", hex("0000000000000440") },
             { "INTEGER40", 18, "-2", hex("FEFFFFFFFF") },
             { "INTEGER48", 19, "-2", hex("FEFFFFFFFFFF") },
             { "INTEGER56", 20, "-2", hex("FEFFFFFFFFFFFF") },
             { "INTEGER64", 21, "-2", hex("FEFFFFFFFFFFFFFF") },
             { "UNSIGNED24", 22, "0x010203", hex("030201") },
             { "UNSIGNED40", 24, "0x0102030405", hex("0504030201") },
             { "UNSIGNED48", 25, "0x010203040506", hex("060504030201") },
             { "UNSIGNED56", 26, "0x01020304050607", hex("07060504030201") },
             { "UNSIGNED64", 27, "0x0102030405060708", hex("0807060504030201") },
             { "number cut to its width", 5, "0x1234", hex("34") },
             { "missing number", 7, "", hex("00000000") },
             { "number that does not read", 6, "abc", hex("0000") },
             { "missing text", 9, "", "" },
             { "missing octets", 15, "", "" },
             { "missing date", 11, "", hex("00000000000000") },
             { "unknown type", 0x60, "01", hex("01") },
         })
        QTest::newRow(row.name) << row.dataType << QString::fromLatin1(row.text) << row.bytes;
}

void TestValueTypes::defaultsBecomeLittleEndianBytes()
{
    QFETCH(int, dataType);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QCOMPARE(defaultFromText(text, valueType(dataType), 5), bytes);
}

// 12 h of the local time at the given place, on the 10th day since 1984-01-01.
void TestValueTypes::timeOfDayIsLocalTime()
{
    const QDateTime local(QDate(1984, 1, 11), QTime(12, 0));
    const auto milliseconds = static_cast<quint64>(12 * 3600 - local.offsetFromUtc()) * 1000;
    QCOMPARE(defaultFromText(QStringLiteral("1984-01-11 12:00:00.000"), valueType(12), 5),
             littleEndian(milliseconds, 4) + littleEndian(10, 2));
    QCOMPARE(defaultFromText(QStringLiteral("1983-06-11 12:00:00.000"), valueType(12), 5), QByteArray(6, '\0'));
}

void TestValueTypes::limitsOutsideOfTheTypeLimitNothing_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("100") << 5 << hex("64");
    QTest::newRow("255") << 5 << hex("FF");
    QTest::newRow("256") << 5 << QByteArray();
    QTest::newRow("-1") << 5 << QByteArray();
    QTest::newRow("-0") << 5 << hex("00");
    QTest::newRow("-128") << 2 << hex("80");
    QTest::newRow("-129") << 2 << QByteArray();
    QTest::newRow("127") << 2 << hex("7F");
    QTest::newRow("128") << 2 << QByteArray();
    QTest::newRow("0x80") << 2 << hex("80");
    QTest::newRow("0x7FFFFFFF") << 3 << QByteArray();
    QTest::newRow("-9223372036854775808") << 21 << hex("0000000000000080");
    QTest::newRow("0xFFFFFFFFFFFFFFFF") << 27 << hex("FFFFFFFFFFFFFFFF");
    QTest::newRow("$NODEID+0x100") << 7 << hex("05010000");
    QTest::newRow("1.5") << 8 << hex("0000C03F");
    QTest::newRow("5") << 9 << QByteArray();
    QTest::newRow("") << 7 << QByteArray();
    QTest::newRow("abc") << 7 << QByteArray();
}

void TestValueTypes::limitsOutsideOfTheTypeLimitNothing()
{
    QFETCH(int, dataType);
    QFETCH(QByteArray, bytes);
    QCOMPARE(limitFromText(QString::fromLatin1(QTest::currentDataTag()), valueType(dataType), 5), bytes);
}

void TestValueTypes::valuesHaveTheOrderOfTheirType_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QString>("lower");
    QTest::addColumn<QString>("higher");
    struct tRow {
        int dataType;
        const char* lower;
        const char* higher;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { 2, "-128", "127" },
             { 2, "-1", "0" },
             { 3, "-1000", "-999" },
             { 4, "-2147483648", "2147483647" },
             { 16, "-1", "1" },
             { 20, "-1", "1" },
             { 21, "-9223372036854775808", "9223372036854775807" },
             { 21, "-5", "-3" },
             { 19, "-5", "-3" },
             { 5, "127", "128" },
             { 7, "0x7FFFFFFF", "0x80000000" },
             { 27, "0x7FFFFFFFFFFFFFFF", "0x8000000000000000" },
             { 8, "-1.5", "0.25" },
             { 17, "-2.5", "-2.25" },
         })
        QTest::addRow("%d: %s < %s", row.dataType, row.lower, row.higher)
            << row.dataType << QString::fromLatin1(row.lower) << QString::fromLatin1(row.higher);
}

void TestValueTypes::valuesHaveTheOrderOfTheirType()
{
    QFETCH(int, dataType);
    QFETCH(QString, lower);
    QFETCH(QString, higher);
    const tValueType type = valueType(dataType);
    const QByteArray a = defaultFromText(lower, type, 5);
    const QByteArray b = defaultFromText(higher, type, 5);
    QVERIFY(isBelow(a, b, type));
    QVERIFY(!isBelow(b, a, type));
    QVERIFY(!isBelow(a, a, type));
}

// Each text is what `textFromValue` writes and what `valueFromText` reads.
void TestValueTypes::nodeIdIsKnownInAnyCase()
{
    for (const char* text : { "$NODEID+0x180", "$nodeid+0x180", "0x180+$NodeID", "$NODEID" }) {
        QVERIFY(isRelative(text));
        QCOMPARE(valueFromText(text, valueType(7), 5).value().at(0), char(text[0] == '$' && text[7] == 0 ? 5 : 0x85));
    }
    QVERIFY(!isRelative("NODEID+0x180"));
}

void TestValueTypes::textsStandForValues_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<unsigned>("relativeTo");
    QTest::newRow("0x01") << 1 << hex("01") << 0U;
    QTest::newRow("0xFE") << 2 << hex("FE") << 0U;
    QTest::newRow("0xFC18") << 3 << hex("18FC") << 0U;
    QTest::newRow("0x00ABCD") << 22 << hex("CDAB00") << 0U;
    QTest::newRow("0x0102030405060708") << 27 << hex("0807060504030201") << 0U;
    QTest::newRow("$NODEID+0x00000180") << 7 << hex("85010000") << 5U;
    QTest::newRow("$NODEID+0x80000180") << 7 << hex("85010080") << 5U;
    QTest::newRow("$NODEID+0xFFFFFFFC") << 7 << hex("01000000") << 5U;
    QTest::newRow("1.5") << 8 << hex("0000C03F") << 0U;
    QTest::newRow("0.1") << 8 << hex("CDCCCC3D") << 0U;
    QTest::newRow("-0") << 8 << hex("00000080") << 0U;
    QTest::newRow("0x7F800000") << 8 << hex("0000807F") << 0U;
    QTest::newRow("0x7FC00001") << 8 << hex("0100C07F") << 0U;
    QTest::newRow("1e+300") << 17 << hex("9C7500883CE4377E") << 0U;
    QTest::newRow("0x7FF0000000000000") << 17 << hex("000000000000F07F") << 0U;
    QTest::newRow("Velmora Demo") << 9 << QByteArray("Velmora Demo") << 0U;
    QTest::newRow("01 2A FF") << 10 << hex("012AFF") << 0U;
    QTest::newRow("61 62 63") << 15 << QByteArray("abc") << 0U;
    QTest::newRow("92 3B 1E 0C DC 02 1A") << 11 << hex("923B1E0CDC021A") << 0U;
    QTest::newRow("40 77 1B 00 0A 01") << 12 << hex("40771B000A01") << 0U;
    QTest::newRow("01") << 0x60 << hex("01") << 0U;
    QTest::newRow("01 02") << 0x60 << hex("0102") << 0U;
}

void TestValueTypes::textsStandForValues()
{
    QFETCH(int, dataType);
    QFETCH(QByteArray, bytes);
    QFETCH(unsigned, relativeTo);
    const QString text = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(textFromValue(bytes, valueType(dataType), relativeTo), text);
    QCOMPARE(valueFromText(text, valueType(dataType), 5), bytes);
}

void TestValueTypes::wrongTextsAreNoValues_data()
{
    QTest::addColumn<int>("dataType");
    QTest::newRow("256") << 5;
    QTest::newRow("-1") << 5;
    QTest::newRow("abc") << 7;
    QTest::newRow("$NODEID+abc") << 7;
    QTest::newRow("0x100000000") << 8;
    QTest::newRow("1e99") << 8;
    QTest::newRow("1,5") << 8;
    QTest::newRow("today") << 11;
    QTest::newRow("0") << 12;
    QTest::newRow("") << 9;
    QTest::newRow("") << 7;
    for (const int dataType : { 9, 10, 15 }) // Latin-1 has no such character
        QTest::newRow("\u20AC") << dataType;
}

void TestValueTypes::wrongTextsAreNoValues()
{
    QFETCH(int, dataType);
    QCOMPARE(valueFromText(QString::fromUtf8(QTest::currentDataTag()), valueType(dataType), 5), std::nullopt);
}

void TestValueTypes::someValuesHaveNoText_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("no bytes") << 9 << QByteArray();
    QTest::newRow("number of another width") << 6 << hex("01");
    QTest::newRow("comment") << 9 << QByteArray("a;b");
    QTest::newRow("blank at the end") << 9 << QByteArray("a ");
    QTest::newRow("line feed") << 9 << QByteArray("a\nb");
    QTest::newRow("zero byte") << 9 << QByteArray("a\0b", 3);
}

void TestValueTypes::someValuesHaveNoText()
{
    QFETCH(int, dataType);
    QFETCH(QByteArray, bytes);
    QCOMPARE(textFromValue(bytes, valueType(dataType)), std::nullopt);
}

QTEST_GUILESS_MAIN(TestValueTypes)
#include "TestValueTypes.moc"
