// Numbers in commands and data sheets.
// SPDX-License-Identifier: MIT
#include "dic/NumberText.h"

#include <QTest>

class TestNumberText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreDecimalHexadecimalOrOctal_data();
    void numbersAreDecimalHexadecimalOrOctal();
    void signAndFormAreKept();
    void termsAreAddedUp_data();
    void termsAreAddedUp();
    void hexadecimalNumbersHaveAllTheirDigits();
};

void TestNumberText::numbersAreDecimalHexadecimalOrOctal_data()
{
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<quint64>("bits");
    struct tRow {
        const char* text;
        bool accepted;
        quint64 bits;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "0", true, 0 },
             { "10", true, 10 },
             { " 10\t", true, 10 },
             { "+7", true, 7 },
             { "-1", true, ~quint64{ 0 } },
             { "-0", true, 0 },
             { "-00", true, 0 },
             { "0x1F", true, 31 },
             { "0X1f", true, 31 },
             { "017", true, 15 },
             { "00", true, 0 },
             { "18446744073709551615", true, ~quint64{ 0 } },
             { "18446744073709551616", false, 0 },
             { "-9223372036854775808", true, quint64{ 1 } << 63 },
             { "-9223372036854775809", false, 0 },
             { "0xFFFFFFFFFFFFFFFF", true, ~quint64{ 0 } },
             { "0x10000000000000000", false, 0 },
             { "", false, 0 },
             { " ", false, 0 },
             { "-", false, 0 },
             { "+-1", false, 0 },
             { "0x", false, 0 },
             { "0xG", false, 0 },
             { "0x-1", false, 0 },
             { "-0x1", false, 0 },
             { "08", false, 0 },
             { "12a", false, 0 },
             { "1 2", false, 0 },
         })
        QTest::newRow(row.text) << row.accepted << row.bits;
}

void TestNumberText::numbersAreDecimalHexadecimalOrOctal()
{
    QFETCH(bool, accepted);
    QFETCH(quint64, bits);
    const auto number = readNumber(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(number.has_value(), accepted);
    if (accepted)
        QCOMPARE(number->bits, bits);
}

void TestNumberText::signAndFormAreKept()
{
    QVERIFY(readNumber(u"-5")->negative);
    QVERIFY(!readNumber(u"5")->negative);
    QVERIFY(!readNumber(u"-0")->negative); // 0, of unsigned types, too
    QVERIFY(readNumber(u"0x5")->pattern);
    QVERIFY(readNumber(u"05")->pattern);
    QVERIFY(!readNumber(u"5")->pattern);
    QVERIFY(!readNumber(u"0")->pattern);
}

void TestNumberText::termsAreAddedUp_data()
{
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<quint64>("bits");
    QTest::newRow("$NODEID") << true << quint64{ 5 };
    QTest::newRow("$NODEID+0x180") << true << quint64{ 0x185 };
    QTest::newRow("0x180+$NODEID") << true << quint64{ 0x185 };
    QTest::newRow(" 0x180 + $nodeid ") << true << quint64{ 0x185 };
    QTest::newRow("$NODEID+0x40000180") << true << quint64{ 0x40000185 };
    QTest::newRow("$NODEID+$NODEID+1") << true << quint64{ 11 };
    QTest::newRow("12") << true << quint64{ 12 };
    QTest::newRow("-3") << true << ~quint64{ 2 };
    QTest::newRow("$NODEID+") << false << quint64{ 0 };
    QTest::newRow("$NODEID-1") << false << quint64{ 0 };
    QTest::newRow("$NODEID+-1") << false << quint64{ 0 };
    QTest::newRow("$NODE") << false << quint64{ 0 };
    QTest::newRow("") << false << quint64{ 0 };
}

void TestNumberText::termsAreAddedUp()
{
    QFETCH(bool, accepted);
    QFETCH(quint64, bits);
    const auto number = readTerms(QString::fromLatin1(QTest::currentDataTag()), 5);
    QCOMPARE(number.has_value(), accepted);
    if (accepted)
        QCOMPARE(number->bits, bits);
}

void TestNumberText::hexadecimalNumbersHaveAllTheirDigits()
{
    QCOMPARE(hexadecimalText(0, 0), "0x0");
    QCOMPARE(hexadecimalText(0, 1), "0x0");
    QCOMPARE(hexadecimalText(0, 4), "0x0000");
    QCOMPARE(hexadecimalText(0x9AF, 1), "0x9AF");
    QCOMPARE(hexadecimalText(0x10, 1), "0x10");
    QCOMPARE(hexadecimalText(0x10, 8), "0x00000010");
    QCOMPARE(hexadecimalText(0xFEDCBA9876543210, 16), "0xFEDCBA9876543210");
    QCOMPARE(hexadecimalText(~quint64{ 0 }, 2), "0xFFFFFFFFFFFFFFFF");
}

QTEST_GUILESS_MAIN(TestNumberText)
#include "TestNumberText.moc"
