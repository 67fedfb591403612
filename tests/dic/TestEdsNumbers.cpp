// Section names of objects and entries, and numbers in values.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "RowName.h"

#include <QRegularExpression>
#include <QTest>

#include <array>

static void expectAssertion(const char* argument)
{
    const QString pattern = QString("^ASSERT: \"%1\" in dic/CANopenReader \\(\\d+\\)$").arg(argument);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(pattern));
}

// The value that a text reads as at one width; -1 when it is refused.
static qint64 number8(const char* text)
{
    unsigned char value = 0;
    return Ascii2Unsigned8(text, &value) ? qint64(value) : -1;
}

static qint64 number16(const char* text)
{
    unsigned short value = 0;
    return Ascii2Unsigned16(text, &value) ? qint64(value) : -1;
}

static qint64 number32(const char* text)
{
    unsigned long value = 0;
    return Ascii2Unsigned32(text, &value) ? qint64(value) : -1;
}

// The row is named by the text; `values` are the results at 8, 16 and 32 bits.
static void numberRow(const char* text, std::array<qint64, 3> values)
{
    QTest::newRow(rowName(text)) << QByteArray(text) << values[0] << values[1] << values[2];
}

class TestEdsNumbers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void objectSectionNames_data();
    void objectSectionNames();
    void objectNamesThatStartWithZeroAreReadAndRefused_data();
    void objectNamesThatStartWithZeroAreReadAndRefused();
    void entrySectionNames_data();
    void entrySectionNames();
    void subIndexesThatStartWithZeroAreReadAndRefused_data();
    void subIndexesThatStartWithZeroAreReadAndRefused();
    void entryIndexesThatStartWithZeroAreReadAndRefused();
    void numbers_data();
    void numbers();
    void everyNumberOfSixteenBitsIsReadInThreeForms();
    void numbersJustBeyondSixteenBitsAreRefused();
    void nullTextIsReportedAndCountsAsEmpty();
    void nullResultIsReportedAndNotStored();
    void everyNullArgumentIsReported();

private:
    static void decimalRows()
    {
        numberRow("1", { 1, 1, 1 });
        numberRow("9", { 9, 9, 9 });
        numberRow("249", { 249, 249, 249 });
        numberRow("255", { 255, 255, 255 });
        numberRow("256", { -1, 256, 256 });
        numberRow("260", { -1, 260, 260 });
        numberRow("999", { -1, 999, 999 });
        numberRow("1000", { -1, 1000, 1000 });
        numberRow("65535", { -1, 65535, 65535 });
        numberRow("65536", { -1, -1, 65536 });
        numberRow("65540", { -1, -1, 65540 });
        numberRow("100000", { -1, -1, 100000 });
        numberRow("4294967295", { -1, -1, 4294967295 });
        for (const char* text : { "4294967296", "4294967300", "9999999999", "10000000000", "18446744073709551617" })
            numberRow(text, { -1, -1, -1 });
        numberRow("+5", { 5, 5, 5 });
        numberRow("+0", { 0, 0, 0 });
        numberRow("+000", { 0, 0, 0 });
        numberRow("+010", { 10, 10, 10 });
        numberRow("+0000000000255", { 255, 255, 255 });
        numberRow("+00000000000256", { -1, 256, 256 });
        numberRow("+", { -1, -1, -1 });
        numberRow(" +", { -1, -1, -1 });
        numberRow("+ ", { 0, 0, 0 });
        numberRow("\t+ \t", { 0, 0, 0 });
        for (const char* text :
             { "+ x", "++1", "+ 1", "+-1", "+0x10", "-1", "-0", "12a", "a", "x10", "1.0", "1,0", "Yes", "$NODEID+1" })
            numberRow(text, { -1, -1, -1 });
        numberRow("/", { -1, -1, -1 }); // just outside the digits
        numberRow(":", { -1, -1, -1 });
        numberRow("\xC2\xB2", { -1, -1, -1 });     // superscript two
        numberRow("\xD9\xA1", { -1, -1, -1 });     // Arabic-Indic one
        numberRow("\xEF\xBC\x91", { -1, -1, -1 }); // full-width one
    }

    static void hexadecimalRows()
    {
        numberRow("0x0", { 0, 0, 0 });
        numberRow("0x", { 0, 0, 0 });
        numberRow("0X", { 0, 0, 0 });
        numberRow("0x000000000000", { 0, 0, 0 });
        numberRow("0x1f", { 31, 31, 31 });
        numberRow("0X1F", { 31, 31, 31 });
        numberRow("0xFF", { 255, 255, 255 });
        numberRow("0x00000000000FF", { 255, 255, 255 });
        numberRow("0x100", { -1, 256, 256 });
        numberRow("0xfFfF", { -1, 65535, 65535 });
        numberRow("0x10000", { -1, -1, 65536 });
        numberRow("0xFFFFFFFF", { -1, -1, 4294967295 });
        numberRow("0x0FFFFFFFF", { -1, -1, 4294967295 });
        for (const char* text :
             { "0x100000000", "0xFFFFFFFFFFFFFFFFF", "0xG", "0x1G", "0x@", "0x`", "0x+1", "0xx1", "0x1h", "00x1" })
            numberRow(text, { -1, -1, -1 });
    }

    static void octalRows()
    {
        numberRow("0", { 0, 0, 0 });
        numberRow("00", { 0, 0, 0 });
        numberRow("000000000000000", { 0, 0, 0 });
        numberRow("07", { 7, 7, 7 });
        numberRow("010", { 8, 8, 8 });
        numberRow("0377", { 255, 255, 255 });
        numberRow("0000000000000377", { 255, 255, 255 });
        numberRow("0400", { -1, 256, 256 });
        numberRow("0777", { -1, 511, 511 });
        numberRow("01000", { -1, 512, 512 });
        numberRow("0177777", { -1, 65535, 65535 });
        numberRow("0200000", { -1, -1, 65536 });
        numberRow("01000000", { -1, -1, 262144 });
        numberRow("037777777777", { -1, -1, 4294967295 });
        for (const char* text : { "040000000000", "077777777777", "0100000000000", "08", "018", "0a", "0+1", "0-1" })
            numberRow(text, { -1, -1, -1 });
    }

    static void spaceRows()
    {
        for (const char* text : { "", " ", " \t \t" })
            numberRow(text, { -1, -1, -1 });
        numberRow(" 12 ", { 12, 12, 12 });
        numberRow("\t12\t", { 12, 12, 12 });
        numberRow(" \t+12 \t", { 12, 12, 12 });
        numberRow("\t 0x1F \t", { 31, 31, 31 });
        numberRow(" 017 ", { 15, 15, 15 });
        numberRow(" 0 ", { 0, 0, 0 });
        numberRow("0x ", { 0, 0, 0 });
        for (const char* text : { "1 2", "0x1 2", "01 2", "0 1", "0x 1", "12\n", "\n12", "\r12" })
            numberRow(text, { -1, -1, -1 });
        numberRow("12\xC2\xA0", { -1, -1, -1 }); // a no-break space is no blank
    }
};

void TestEdsNumbers::objectSectionNames_data()
{
    QTest::addColumn<int>("index"); // -1: refused
    for (auto [name, index] : std::initializer_list<std::pair<const char*, int>>{
             { "1000", 0x1000 }, { "6040", 0x6040 }, { "1a00", 0x1A00 }, { "1A00", 0x1A00 }, { "A0", 0xA0 },
             { "1", 1 },         { "9", 9 },         { "a", 10 },        { "F", 15 },        { "f", 15 },
             { "FFFF", 0xFFFF }, { "ffff", 0xFFFF }, { "100", 0x100 },   { "10000", -1 },    { "FFFFF", -1 },
             { "", -1 },         { "0", -1 },        { "G", -1 },        { "g000", -1 },     { "100G", -1 },
             { "1000 ", -1 },    { " 1000", -1 },    { "+1000", -1 },    { "-1", -1 },       { "1x00", -1 },
             { "01000", -1 },    { "00", -1 },       { "0x1000", -1 },   { "0X1000", -1 },   { "001000", -1 },
             { "0x", -1 },       { "1000sub1", -1 }, { "1018_", -1 },    { "\xC3\xA4", -1 }, { "100\xC3\xA4", -1 },
             { "Comments", -1 } })
        QTest::addRow("\"%s\"", name) << index;
    QTest::newRow("\"@ABC\"") << -1; // just outside the digits and letters
    QTest::newRow("\"1/:@\"") << -1;
    QTest::newRow("\"1`\"") << -1;
}

void TestEdsNumbers::objectSectionNames()
{
    const QByteArray name = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    unsigned short index = 0;
    const bool accepted = IsObject(name, &index);
    QTEST(accepted ? int(index) : -1, "index");
}

void TestEdsNumbers::objectNamesThatStartWithZeroAreReadAndRefused_data()
{
    QTest::addColumn<int>("stored");
    QTest::newRow("0x1000") << 0x1000;
    QTest::newRow("0X6040") << 0x6040;
    QTest::newRow("0xabCD") << 0xABCD;
    QTest::newRow("001A") << 0x1A;
    QTest::newRow("00ABCD") << 0xABCD;
    QTest::newRow("0012") << 0x12;
}

void TestEdsNumbers::objectNamesThatStartWithZeroAreReadAndRefused()
{
    unsigned short index = 0x5555;
    QVERIFY(!IsObject(QTest::currentDataTag(), &index));
    QTEST(int(index), "stored");
}

void TestEdsNumbers::entrySectionNames_data()
{
    QTest::addColumn<int>("index"); // -1: refused
    QTest::addColumn<int>("subIndex");
    for (auto [name, index, subIndex] :
         std::initializer_list<std::tuple<const char*, int, int>>{ { "1018sub1", 0x1018, 1 },
                                                                   { "1018SUB4", 0x1018, 4 },
                                                                   { "1600sub1A", 0x1600, 0x1A },
                                                                   { "1A00Sub0", 0x1A00, 0 },
                                                                   { "1a00sUb9", 0x1A00, 9 },
                                                                   { "abcdsubaf", 0xABCD, 0xAF },
                                                                   { "FFFFsubFF", 0xFFFF, 0xFF },
                                                                   { "1000sub10", 0x1000, 0x10 },
                                                                   { "9000subA", 0x9000, 10 },
                                                                   { "1018sub", -1, -1 },
                                                                   { "1018sub100", -1, -1 },
                                                                   { "1000sub100", -1, -1 },
                                                                   { "1018subG", -1, -1 },
                                                                   { "1018sub1G", -1, -1 },
                                                                   { "1018sub1 ", -1, -1 },
                                                                   { "1018sub 1", -1, -1 },
                                                                   { "1018 sub1", -1, -1 },
                                                                   { " 1018sub1", -1, -1 },
                                                                   { "1018sub01", -1, -1 },
                                                                   { "1018sub00", -1, -1 },
                                                                   { "1018sub0x1", -1, -1 },
                                                                   { "1018sub0A", -1, -1 },
                                                                   { "1018sub0 ", -1, -1 },
                                                                   { "100sub1", -1, -1 },
                                                                   { "10sub1", -1, -1 },
                                                                   { "1sub1", -1, -1 },
                                                                   { "sub1", -1, -1 },
                                                                   { "0018sub1", -1, -1 },
                                                                   { "0x1018sub1", -1, -1 },
                                                                   { "0X1018sub1", -1, -1 },
                                                                   { "10181sub1", -1, -1 },
                                                                   { "1018sup1", -1, -1 },
                                                                   { "1018su1", -1, -1 },
                                                                   { "1018", -1, -1 },
                                                                   { "101G", -1, -1 },
                                                                   { "G018sub1", -1, -1 },
                                                                   { "1018Name", -1, -1 },
                                                                   { "1018s\xC3\xBC"
                                                                     "b1",
                                                                     -1, -1 },
                                                                   { "", -1, -1 } })
        QTest::addRow("\"%s\"", name) << index << subIndex;
}

void TestEdsNumbers::entrySectionNames()
{
    const QByteArray name = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    unsigned short index = 0;
    unsigned char subIndex = 0;
    const bool accepted = IsObjectEntry(name, &index, &subIndex);
    QTEST(accepted ? int(index) : -1, "index");
    QTEST(accepted ? int(subIndex) : -1, "subIndex");
}

void TestEdsNumbers::subIndexesThatStartWithZeroAreReadAndRefused_data()
{
    QTest::addColumn<int>("stored");
    QTest::newRow("1018sub0x1") << 1;
    QTest::newRow("1018sub0X1a") << 0x1A;
    QTest::newRow("1018SUB0xFF") << 0xFF;
    QTest::newRow("1018sub001") << 1;
}

void TestEdsNumbers::subIndexesThatStartWithZeroAreReadAndRefused()
{
    unsigned short index = 0x5555;
    unsigned char subIndex = 0x55;
    QVERIFY(!IsObjectEntry(QTest::currentDataTag(), &index, &subIndex));
    QCOMPARE(int(index), 0x1018);
    QTEST(int(subIndex), "stored");
}

void TestEdsNumbers::entryIndexesThatStartWithZeroAreReadAndRefused()
{
    unsigned short index = 0x5555;
    unsigned char subIndex = 0x55;
    QVERIFY(!IsObjectEntry("0x1018sub1", &index, &subIndex));
    QCOMPARE(int(index), 0x1018);
    QCOMPARE(int(subIndex), 1);
    QVERIFY(!IsObjectEntry("001018subfF", &index, &subIndex));
    QCOMPARE(int(index), 0x1018);
    QCOMPARE(int(subIndex), 0xFF);
}

void TestEdsNumbers::numbers_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<qint64>("bits8"); // -1: refused
    QTest::addColumn<qint64>("bits16");
    QTest::addColumn<qint64>("bits32");
    decimalRows();
    hexadecimalRows();
    octalRows();
    spaceRows();
}

void TestEdsNumbers::numbers()
{
    QFETCH(QByteArray, text);
    QTEST(number8(text), "bits8");
    QTEST(number16(text), "bits16");
    QTEST(number32(text), "bits32");
}

void TestEdsNumbers::everyNumberOfSixteenBitsIsReadInThreeForms()
{
    for (int number = 0; number <= 0xFFFF; ++number) {
        const qint64 narrow = number <= 0xFF ? number : -1;
        const QByteArray octal = '0' + QByteArray::number(number, 8);
        for (const QByteArray& text : { QByteArray::number(number), "0x" + QByteArray::number(number, 16), octal }) {
            if (number16(text) != number || number32(text) != number || number8(text) != narrow)
                QFAIL(text);
        }
    }
}

void TestEdsNumbers::numbersJustBeyondSixteenBitsAreRefused()
{
    for (int number = 0x10000; number <= 0x10000 + 2000; ++number) {
        const QByteArray octal = '0' + QByteArray::number(number, 8);
        for (const QByteArray& text : { QByteArray::number(number), "0x" + QByteArray::number(number, 16), octal })
            if (number16(text) != -1 || number32(text) != number)
                QFAIL(text);
    }
}

void TestEdsNumbers::nullTextIsReportedAndCountsAsEmpty()
{
    unsigned short index = 0;
    unsigned char value8 = 0;
    unsigned short value16 = 0;
    unsigned long value32 = 0;
    expectAssertion("lpszAscii");
    QVERIFY(!IsObject(nullptr, &index));
    expectAssertion("lpszAscii");
    QVERIFY(!IsObjectEntry(nullptr, &index, &value8));
    expectAssertion("lpszAscii");
    QVERIFY(!Ascii2Unsigned8(nullptr, &value8));
    expectAssertion("lpszAscii");
    QVERIFY(!Ascii2Unsigned16(nullptr, &value16));
    expectAssertion("lpszAscii");
    QVERIFY(!Ascii2Unsigned32(nullptr, &value32));
}

void TestEdsNumbers::nullResultIsReportedAndNotStored()
{
    unsigned short index = 0;
    unsigned char subIndex = 0;
    expectAssertion("puiIndex");
    QVERIFY(IsObject("1000", nullptr));
    expectAssertion("puiIndex");
    QVERIFY(!IsObject("0x1000", nullptr));
    expectAssertion("puiIndex");
    QVERIFY(IsObjectEntry("1018sub3", nullptr, &subIndex));
    QCOMPARE(int(subIndex), 3);
    expectAssertion("pucSubIndex");
    QVERIFY(IsObjectEntry("1018sub3", &index, nullptr));
    QCOMPARE(int(index), 0x1018);
    expectAssertion("pucSubIndex");
    QVERIFY(!IsObjectEntry("1018sub0x3", &index, nullptr));
    expectAssertion("pValue");
    QVERIFY(Ascii2Unsigned8("255", nullptr));
    expectAssertion("pValue");
    QVERIFY(!Ascii2Unsigned8("256", nullptr));
    expectAssertion("pValue");
    QVERIFY(Ascii2Unsigned16("0xFFFF", nullptr));
    expectAssertion("pValue");
    QVERIFY(Ascii2Unsigned32("037777777777", nullptr));
}

void TestEdsNumbers::everyNullArgumentIsReported()
{
    expectAssertion("lpszAscii");
    expectAssertion("puiIndex");
    expectAssertion("pucSubIndex");
    QVERIFY(!IsObjectEntry(nullptr, nullptr, nullptr));
    expectAssertion("lpszAscii");
    expectAssertion("pValue");
    QVERIFY(!Ascii2Unsigned16(nullptr, nullptr));
}

QTEST_APPLESS_MAIN(TestEdsNumbers)
#include "TestEdsNumbers.moc"
