// The values of parameters as texts of the command line: what is read of them, and how they are shown.
// SPDX-License-Identifier: MIT
#include "network/TypedValue.h"

#include "dic/CANopenObjectEntry.h"
#include "dic/ValueTypes.h"

#include <QTest>

#include <random>

using valueFormats::TDisplayMode;
using enum valueFormats::TDisplayMode;
using entry = CCANopenObjectEntry;

class TestTypedValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyWordIsAType_data();
    void everyWordIsAType();
    void otherWordsAreNone();
    void aTextIsReadAndShown_data();
    void aTextIsReadAndShown();
    void whatIsNoValueIsRefused_data();
    void whatIsNoValueIsRefused();
    void textsAreShownWithoutControlCharacters_data();
    void textsAreShownWithoutControlCharacters();
    void bytesOfAnotherSizeAreShownOneByOne_data();
    void bytesOfAnotherSizeAreShownOneByOne();
    void momentsThatAreNoneAreShownAsBytes_data();
    void momentsThatAreNoneAreShownAsBytes();
    void whatIsShownIsReadAgain_data();
    void whatIsShownIsReadAgain();
    void typesOfUnknownNumbersAreBytes();
};

void TestTypedValue::everyWordIsAType_data()
{
    QTest::addColumn<int>("type");
    const auto row = [](const char* word, int type) { QTest::newRow(word) << type; };
    row("bool", 1);
    row("i8", 2);
    row("i16", 3);
    row("i24", 0x10);
    row("i32", 4);
    row("i40", 0x12);
    row("i48", 0x13);
    row("i56", 0x14);
    row("i64", 0x15);
    row("u8", 5);
    row("u16", 6);
    row("u24", 0x16);
    row("u32", 7);
    row("u40", 0x18);
    row("u48", 0x19);
    row("u56", 0x1A);
    row("u64", 0x1B);
    row("r32", 8);
    row("r64", 0x11);
    row("vs", 9);
    row("os", 0xA);
    row("d", 0xF);
    row("date", 0xB);
    row("time", 0xC);
}

void TestTypedValue::everyWordIsAType()
{
    QFETCH(int, type);
    const QString word = QTest::currentDataTag();
    QCOMPARE(typedValue::typeOfWord(word), std::optional(type));
    QCOMPARE(typedValue::typeOfWord(word.toUpper()), std::optional(type));
    QVERIFY(typedValue::words().split(", ").contains(word));
}

void TestTypedValue::otherWordsAreNone()
{
    for (const char* word : { "", "u", "u7", "u16 ", "int", "0x0005" })
        QCOMPARE(typedValue::typeOfWord(word), std::nullopt);
    QCOMPARE(typedValue::words().count(','), 23);
}

void TestTypedValue::aTextIsReadAndShown_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");  // hexadecimal
    QTest::addColumn<QStringList>("texts"); // in the three modes
    const auto row = [](const char* word, const char* text, const char* bytes, const QStringList& texts) {
        QTest::addRow("%s %s", word, text) << QString(word) << QString::fromUtf8(text) << QByteArray(bytes) << texts;
    };
    row("bool", "1", "01", { "0x01", "1", "001" });
    row("bool", "0", "00", { "0x00", "0", "000" });
    row("i8", "-1", "ff", { "0xFF", "-1", "0377" });
    row("i8", "0xFE", "fe", { "0xFE", "-2", "0376" });
    row("i16", "-5", "fbff", { "0xFFFB", "-5", "0177773" });
    row("i32", "1000", "e8030000", { "0x000003E8", "+1000", "00000001750" });
    row("i24", "-1", "ffffff", { "0xFFFFFF", "-1", "077777777" });
    row("i40", "-2", "feffffffff", { "0xFFFFFFFFFE", "-2", "017777777777776" });
    row("i48", "5", "050000000000", { "0x000000000005", "+5", "0000000000000005" });
    row("i56", "-36028797018963968", "00000000000080",
        { "0x80000000000000", "-36028797018963968", "02000000000000000000" });
    row("i64", "-9223372036854775808", "0000000000000080",
        { "0x8000000000000000", "-9223372036854775808", "01000000000000000000000" });
    row("u8", "64", "40", { "0x40", "64", "0100" });
    row("u8", "0xff", "ff", { "0xFF", "255", "0377" });
    row("u16", "1000", "e803", { "0x03E8", "1000", "001750" });
    row("u16", "010", "0800", { "0x0008", "8", "000010" });
    row("u24", "010", "080000", { "0x000008", "8", "00000010" });
    row("u32", "4294967295", "ffffffff", { "0xFFFFFFFF", "4294967295", "037777777777" });
    row("u40", "1", "0100000000", { "0x0000000001", "1", "00000000000001" });
    row("u48", "1", "010000000000", { "0x000000000001", "1", "0000000000000001" });
    row("u56", "1", "01000000000000", { "0x00000000000001", "1", "0000000000000000001" });
    row("u64", "18446744073709551615", "ffffffffffffffff",
        { "0xFFFFFFFFFFFFFFFF", "18446744073709551615", "01777777777777777777777" });
    row("r32", "1.5", "0000c03f", { "1.5", "1.5", "1.5" });
    row("r32", "0x3FC00000", "0000c03f", { "1.5", "1.5", "1.5" });
    row("r64", "-2.5", "00000000000004c0", { "-2.5", "-2.5", "-2.5" });
    row("vs", "Boiler \xC3\xA4", "426f696c657220e4", { "Boiler \u00E4", "Boiler \u00E4", "Boiler \u00E4" });
    row("vs", "", "", { "", "", "" });
    row("os", "01 2A ff", "012aff", { "0x01 0x2A 0xFF", "0x01 0x2A 0xFF", "0x01 0x2A 0xFF" });
    row("os", "0x01 0x2A", "012a", { "0x01 0x2A", "0x01 0x2A", "0x01 0x2A" });
    row("d", "012AFF", "012aff", { "0x01 0x2A 0xFF", "0x01 0x2A 0xFF", "0x01 0x2A 0xFF" });
    row("d", "", "", { "", "", "" });
    row("date", "2026-02-28 12:30:05.250", "82141e0cdc021a",
        { "0x82 0x14 0x1E 0x0C 0xDC 0x02 0x1A", "2026-02-28 12:30:05.250", "0x82 0x14 0x1E 0x0C 0xDC 0x02 0x1A" });
    row("date", "82 14 1E 0C DC 02 1A", "82141e0cdc021a",
        { "0x82 0x14 0x1E 0x0C 0xDC 0x02 0x1A", "2026-02-28 12:30:05.250", "0x82 0x14 0x1E 0x0C 0xDC 0x02 0x1A" });
    row("time", "1984-01-02 01:00:00.000", "000000000100",
        { "0x00 0x00 0x00 0x00 0x01 0x00", "1984-01-02 01:00:00.000", "0x00 0x00 0x00 0x00 0x01 0x00" });
    row("time", "1984-01-02 01:00:59.999", "5fea00000100",
        { "0x5F 0xEA 0x00 0x00 0x01 0x00", "1984-01-02 01:00:59.999", "0x5F 0xEA 0x00 0x00 0x01 0x00" });
    row("time", "0x00 0x00 0x00 0x00 0x01 0x00", "000000000100",
        { "0x00 0x00 0x00 0x00 0x01 0x00", "1984-01-02 01:00:00.000", "0x00 0x00 0x00 0x00 0x01 0x00" });
    row("time", "2026-07-01 12:00:00.000", "00512502a23c",
        { "0x00 0x51 0x25 0x02 0xA2 0x3C", "2026-07-01 12:00:00.000", "0x00 0x51 0x25 0x02 0xA2 0x3C" });
}

void TestTypedValue::aTextIsReadAndShown()
{
    QFETCH(QString, word);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, texts);
    const int type = typedValue::typeOfWord(word).value_or(-1);
    const auto read = typedValue::bytesOf(type, text);
    QVERIFY(read);
    QCOMPARE(read->toHex(), bytes);
    const TDisplayMode modes[] = { modeHex, modeDec, modeOct };
    for (int mode = 0; mode < 3; ++mode) {
        QCOMPARE(typedValue::textOf(type, *read, modes[mode]), texts[mode]);
        QCOMPARE(typedValue::exactTextOf(type, *read, modes[mode]), texts[mode]);
    }
}

void TestTypedValue::whatIsNoValueIsRefused_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* word, const char* text) {
        QTest::addRow("%s \"%s\"", word, text) << QString(word) << QString::fromUtf8(text);
    };
    for (const char* text : { "2", "-1", "-0", "", "yes", "0x100", "0x", "0x02" })
        row("bool", text);
    for (const char* word : { "i8", "i16", "i24", "i32", "i64", "u8", "u16", "u24", "u32", "u64", "r32", "r64" })
        for (const char* text : { "", " ", "0x", "0X ", "+", "+ ", "-", "- ", "- 1", "12abc", "0b1", "0x1G", "1+1",
                                  "1 2", "$NODEID", "$NODEID+1", "\xD9\xA1" })
            row(word, text);
    for (const char* word : { "u8", "u16", "u24", "u32", "u64" })
        row(word, "-0");
    for (const char* word : { "i8", "u8", "u24" })
        row(word, "08");
    for (const char* text : { "010", "00", "0x1FFFFFFFF0", "1e-60" })
        row("r32", text);
    for (const char* text : { "128", "-129", "0x100", "1x", "1.0" })
        row("i8", text);
    for (const char* text : { "32768", "-32769" })
        row("i16", text);
    for (const char* text : { "2147483648", "-2147483649" })
        row("i32", text);
    for (const char* text : { "8388608", "-8388609", "0x1000000" })
        row("i24", text);
    row("i64", "9223372036854775808");
    for (const char* text : { "256", "-1", "0x100" })
        row("u8", text);
    for (const char* text : { "65536", "-1" })
        row("u16", text);
    for (const char* text : { "4294967296", "0x100000000" })
        row("u32", text);
    for (const char* text : { "16777216", "-1", "abc" })
        row("u24", text);
    row("u40", "1099511627776");
    row("u64", "18446744073709551616");
    for (const char* text : { "1e39", "one", "0x1FFFFFFFF" })
        row("r32", text);
    row("r64", "1e400");
    row("r64", "0x3FC00000"); // of 32 bits
    row("r32", "0x3FC0");
    row("r32", "0x03FC00000");
    row("vs", "\xE2\x82\xAC"); // Latin-1 has no such character
    for (const char* text :
         { "0", "1 23", "0x", "gg", "01,02", "012", "1 42 255", "001 052 377", "0x0x01", "+1", "-1" })
        row("os", text);
    for (const char* text :
         { "2026-13-01 12:00:00.000", "2126-02-01 12:00:00.000", "yesterday", "", "01 02", "2026-02-28",
           "202 024 036 014 334 002 032", "2026-02-28 12:30:05.250 ", "2026-02-29 12:00:00.000" })
        row("date", text);
    for (const char* text : { "1983-12-31 12:00:00.000", "2126-02-01 12:00:00.000", "01 02 03 04 05 06 07",
                              "2026-03-29 02:30:00.000" }) // summer time skips it
        row("time", text);
}

void TestTypedValue::whatIsNoValueIsRefused()
{
    QFETCH(QString, word);
    QFETCH(QString, text);
    QCOMPARE(typedValue::bytesOf(typedValue::typeOfWord(word).value_or(-1), text), std::nullopt);
}

void TestTypedValue::textsAreShownWithoutControlCharacters_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("exact");
    QTest::newRow("colour") << QByteArray("\x1B[31mred") << "\\x1B[31mred"
                            << "\x1B[31mred";
    QTest::newRow("line") << QByteArray("a\r\nb\tc") << "a\\r\\x0Ab\\tc"
                          << "a\r\nb\tc";
    QTest::newRow("above 7F") << QByteArray("\x7F\x9B\xE4") << QString("\\x7F\\x9B\u00E4")
                              << QString("\u007F\u009B\u00E4");
    QTest::newRow("zero byte") << QByteArray("pump\0x", 6) << "pump" << QString::fromLatin1("pump\0x", 6);
    QTest::newRow("zeroes") << QByteArray(4, '\0') << "" << QString(4, QChar(0));
    QTest::newRow("longer than a line") << QByteArray(300, 'x') << QString(300, u'x') << QString(300, u'x');
}

void TestTypedValue::textsAreShownWithoutControlCharacters()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QFETCH(QString, exact);
    QCOMPARE(typedValue::textOf(entry::typeVisibleString, bytes, modeHex), text);
    QCOMPARE(typedValue::exactTextOf(entry::typeVisibleString, bytes, modeHex), exact);
}

void TestTypedValue::bytesOfAnotherSizeAreShownOneByOne_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("too many") << "u16" << QByteArray("\1\2\3") << "0x01 0x02 0x03";
    QTest::newRow("too few") << "u32" << QByteArray("\1\2") << "0x01 0x02";
    QTest::newRow("none") << "i8" << QByteArray() << "";
    QTest::newRow("wide") << "u64" << QByteArray("\1\2\3\4\5\6\7") << "0x01 0x02 0x03 0x04 0x05 0x06 0x07";
    QTest::newRow("real") << "r32" << QByteArray("\1\2\3\4\5") << "0x01 0x02 0x03 0x04 0x05";
    QTest::newRow("date") << "date" << QByteArray("\1\2") << "0x01 0x02";
    QTest::newRow("time") << "time" << QByteArray("\1\2\3\4\5\6\7") << "0x01 0x02 0x03 0x04 0x05 0x06 0x07";
}

void TestTypedValue::bytesOfAnotherSizeAreShownOneByOne()
{
    QFETCH(QString, word);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    const int type = typedValue::typeOfWord(word).value_or(-1);
    QVERIFY(typedValue::sizeDiffers(type, bytes.size()));
    QCOMPARE(typedValue::textOf(type, bytes, modeHex), text);
}

// The window shows 1970 for what is beyond 2037, and nothing for a 13th month.
void TestTypedValue::momentsThatAreNoneAreShownAsBytes_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QByteArray>("bytes"); // hexadecimal
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* word, const char* bytes, const char* text) {
        QTest::newRow(name) << word << QByteArray(bytes) << text;
    };
    row("date", "date", "e8031e0c1c021a", "2026-02-28 12:30:01.000");
    row("13th month", "date", "00001e0c1c0d1a", "0x00 0x00 0x1E 0x0C 0x1C 0x0D 0x1A");
    row("60 seconds", "date", "60ea1e0c1c021a", "0x60 0xEA 0x1E 0x0C 0x1C 0x02 0x1A");
    row("no date", "date", "00001e0c000000", "0x00 0x00 0x1E 0x0C 0x00 0x00 0x00");
    row("mark of summer time", "date", "e8031e8c1c021a", "0xE8 0x03 0x1E 0x8C 0x1C 0x02 0x1A");
    row("another day of the week", "date", "e8031e0c3c021a", "2026-02-28 12:30:01.000");
    row("year 126", "date", "e8031e0c1c027e", "0xE8 0x03 0x1E 0x0C 0x1C 0x02 0x7E");
    row("first 2:30 of two", "time", "40771b00163d", "2026-10-25 02:30:00.000");
    row("second 2:30 of two", "time", "c0655200163d", "0xC0 0x65 0x52 0x00 0x16 0x3D");
    row("last day", "time", "000000000b4d", "2037-12-31 01:00:00.000");
    row("day after it", "time", "000000000c4d", "0x00 0x00 0x00 0x00 0x0C 0x4D");
    row("24 hours", "time", "005c26050100", "0x00 0x5C 0x26 0x05 0x01 0x00");
}

void TestTypedValue::momentsThatAreNoneAreShownAsBytes()
{
    QFETCH(QString, word);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(typedValue::textOf(typedValue::typeOfWord(word).value_or(-1), QByteArray::fromHex(bytes), modeDec), text);
}

void TestTypedValue::whatIsShownIsReadAgain_data()
{
    QTest::addColumn<int>("type");
    for (const QString& word : typedValue::words().split(", "))
        QTest::newRow(word.toLatin1().constData()) << *typedValue::typeOfWord(word);
}

// In each mode, for good values of the type and for bytes at random. A date is read with its day of the week.
void TestTypedValue::whatIsShownIsReadAgain()
{
    QFETCH(int, type);
    const int width = valueType(type).width != 0 ? valueType(type).width : 9;
    std::mt19937 random(1);
    for (int number = 0; number < 3000; ++number) {
        QByteArray bytes(width, number == 0 ? '\0' : '\xFF');
        for (char& byte : bytes)
            if (number > 1 && (number > 300 || random() % 2 == 0))
                byte = static_cast<char>(random() % (number % 3 == 0 ? 32 : 256));
        if (type == entry::typeBoolean)
            bytes[0] = static_cast<char>(number % 2);
        if (type == entry::typeVisibleString)
            for (char& byte : bytes)
                byte = static_cast<char>(' ' + random() % 95);
        for (const TDisplayMode mode : { modeHex, modeDec, modeOct }) {
            const QString text = typedValue::textOf(type, bytes, mode);
            auto again = typedValue::bytesOf(type, text);
            QVERIFY2(again, qPrintable(text));
            if (type == entry::typeDate && text.contains('-'))
                again->data()[4] = char((*again)[4] & 0x1F), bytes[4] = char(bytes[4] & 0x1F);
            QVERIFY2(*again == bytes, qPrintable(text + " for " + bytes.toHex(' ')));
        }
    }
}

void TestTypedValue::typesOfUnknownNumbersAreBytes()
{
    for (const int type : { 0, 14, 0x20, 0xFFFF }) {
        QCOMPARE(typedValue::bytesOf(type, "01 02"), QByteArray("\1\2"));
        QCOMPARE(typedValue::bytesOf(type, "hello"), std::nullopt);
        QCOMPARE(typedValue::textOf(type, "\1\2", modeHex), "0x01 0x02");
        QVERIFY(!typedValue::sizeDiffers(type, 3));
    }
    QCOMPARE(typedValue::bytesOf(entry::typeTimeDifference, "01 02 03 04 05 06"), QByteArray("\1\2\3\4\5\6"));
    QCOMPARE(typedValue::bytesOf(entry::typeTimeDifference, "01 02"), std::nullopt);
}

QTEST_APPLESS_MAIN(TestTypedValue)
#include "TestTypedValue.moc"
