// The words for data types: texts of values to bytes and back.
// SPDX-License-Identifier: MIT
#include "device/TypeWords.h"

#include <QTest>

namespace
{

QByteArray hex(const char* digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

class TestTypeWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreEncodedAndDecoded_data();
    void valuesAreEncodedAndDecoded();
    void wrongValuesAreRefused_data();
    void wrongValuesAreRefused();
    void wordsAreFoundInAnyCase();
    void unsupportedWordsAreKnown_data();
    void unsupportedWordsAreKnown();
    void textIsAnsweredOnOneLine();
    void base64WithoutPaddingIsTaken();
    void bytesAreShownAsTextOrOctets();
    void entriesHaveTheTypeThatClientsAskFor_data();
    void entriesHaveTheTypeThatClientsAskFor();
};

void TestTypeWords::valuesAreEncodedAndDecoded_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("answer");
    struct tRow {
        const char* word;
        const char* text;
        QByteArray bytes;
        const char* answer;
    };
    for (const tRow& row : std::initializer_list<tRow>{
             { "b", "1", hex("01"), "1" },
             { "u8", "0xF", hex("0F"), "0x0F" },
             { "u8", "255", hex("FF"), "0xFF" },
             { "u16", "0x1234", hex("3412"), "0x1234" },
             { "u24", "0x10203", hex("030201"), "0x010203" },
             { "u32", "0xFFFFFFFF", hex("FFFFFFFF"), "0xFFFFFFFF" },
             { "u40", "1", hex("0100000000"), "0x0000000001" },
             { "u48", "1", hex("010000000000"), "0x000000000001" },
             { "u56", "1", hex("01000000000000"), "0x00000000000001" },
             { "u64", "0xFFFFFFFFFFFFFFFF", hex("FFFFFFFFFFFFFFFF"), "0xFFFFFFFFFFFFFFFF" },
             { "i8", "-128", hex("80"), "-128" },
             { "i8", "0xFF", hex("FF"), "-1" },
             { "i8", "+127", hex("7F"), "127" },
             { "i16", "-2", hex("FEFF"), "-2" },
             { "i24", "-2", hex("FEFFFF"), "-2" },
             { "i32", "-2147483648", hex("00000080"), "-2147483648" },
             { "i40", "-2", hex("FEFFFFFFFF"), "-2" },
             { "i48", "-2", hex("FEFFFFFFFFFF"), "-2" },
             { "i56", "-2", hex("FEFFFFFFFFFFFF"), "-2" },
             { "i64", "-9223372036854775808", hex("0000000000000080"), "-9223372036854775808" },
             { "r32", "1.5", hex("0000C03F"), "1.5" },
             { "r32", "0x3FC00000", hex("0000C03F"), "1.5" },
             { "r64", "2.5", hex("0000000000000440"), "2.5" },
             { "d", "QUJD", "ABC", "QUJD" },
             { "d", "QQ==", "A", "QQ==" },
             { "d", "QUI=", "AB", "QUI=" },
             { "d", "AP+/", hex("00FFBF"), "AP+/" },
             { "d", "", "", "=" },
             { "vs", "word", "word", "\"word\"" },
             { "vs", "\"two words\"", "two words", "\"two words\"" },
             { "vs", "\"a \"\"quote\"\"\"", "a \"quote\"", "\"a \"\"quote\"\"\"" },
             { "vs", "\"\"", "", "\"\"" },
         })
        QTest::addRow("%s %s", row.word, row.text)
            << QByteArray(row.word) << QByteArray(row.text) << row.bytes << QByteArray(row.answer);
}

void TestTypeWords::valuesAreEncodedAndDecoded()
{
    QFETCH(QByteArray, word);
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, answer);
    const tTypeWord* type = findTypeWord(word);
    QVERIFY(type != nullptr);
    const auto encoded = type->encode(text, type->type);
    QVERIFY(encoded.has_value());
    QCOMPARE(*encoded, bytes);
    QCOMPARE(type->decode(bytes, type->type), answer);
}

void TestTypeWords::wrongValuesAreRefused_data()
{
    QTest::addColumn<QByteArray>("word");
    QTest::addColumn<QByteArray>("text");
    for (auto [word, text] :
         std::initializer_list<std::pair<const char*, const char*>>{ { "u8", "256" },       { "u8", "-1" },
                                                                     { "u8", "" },          { "u8", "1 2" },
                                                                     { "u8", "x" },         { "u16", "0x10000" },
                                                                     { "i8", "128" },       { "i8", "-129" },
                                                                     { "i8", "0x100" },     { "b", "256" },
                                                                     { "b", "true" },       { "r32", "one" },
                                                                     { "d", "QUJD!" },      { "d", "QUJD QUJD" },
                                                                     { "d", "Q=U=" },       { "vs", "" },
                                                                     { "vs", "two words" }, { "vs", "\"" },
                                                                     { "vs", "\"open" },    { "vs", "\"a\" b\"" } })
        QTest::addRow("%s %s", word, text) << QByteArray(word) << QByteArray(text);
}

void TestTypeWords::wrongValuesAreRefused()
{
    QFETCH(QByteArray, word);
    QFETCH(QByteArray, text);
    const tTypeWord* type = findTypeWord(word);
    QVERIFY(type != nullptr);
    QVERIFY(!type->encode(text, type->type).has_value());
}

void TestTypeWords::wordsAreFoundInAnyCase()
{
    QCOMPARE(findTypeWord("U16"), findTypeWord("u16"));
    QVERIFY(findTypeWord("D") != nullptr);
    for (const char* word : { "", "u", "u12", "u160", "x" })
        QVERIFY(findTypeWord(word) == nullptr);
}

void TestTypeWords::unsupportedWordsAreKnown_data()
{
    QTest::addColumn<QByteArray>("word");
    for (const char* word : { "os", "us", "t", "td" })
        QTest::newRow(word) << QByteArray(word);
}

void TestTypeWords::unsupportedWordsAreKnown()
{
    QFETCH(QByteArray, word);
    const tTypeWord* type = findTypeWord(word);
    QVERIFY(type != nullptr);
    QVERIFY(type->encode == nullptr);
}

// Other data types write any bytes: a line end in the answer would be two lines for the client.
void TestTypeWords::textIsAnsweredOnOneLine()
{
    const tTypeWord* type = findTypeWord("vs");
    QCOMPARE(type->decode(QByteArray("a\r\n[7] OK\0\t~\x7F\xE4", 14), type->type),
             QByteArray("\"a??[7] OK??~\x7F\xE4\""));
}

void TestTypeWords::base64WithoutPaddingIsTaken()
{
    const tTypeWord* type = findTypeWord("d");
    QCOMPARE(type->encode("QQ", type->type).value(), QByteArray("A"));
}

void TestTypeWords::bytesAreShownAsTextOrOctets()
{
    QCOMPARE(readable("Velmora"), QByteArray("\"Velmora\""));
    QCOMPARE(readable(""), QByteArray("\"\""));
    QCOMPARE(readable(hex("00FF41")), QByteArray("00 FF 41"));
}

void TestTypeWords::entriesHaveTheTypeThatClientsAskFor_data()
{
    QTest::addColumn<int>("dataType");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("shown");
    const auto row = [](const char* word, int dataType, const char* digits, const char* shown) {
        QTest::addRow("%s %d", word, dataType) << dataType << hex(digits) << QByteArray(shown);
    };
    row("b", 0x01, "01", "1");
    row("i8", 0x02, "FF", "-1");
    row("i16", 0x03, "FEFF", "-2");
    row("i32", 0x04, "FEFFFFFF", "-2");
    row("u8", 0x05, "32", "0x32");
    row("u16", 0x06, "E803", "0x03E8");
    row("u32", 0x07, "91010F00", "0x000F0191");
    row("r32", 0x08, "0000C03F", "1.5");
    row("d", 0x09, "4142", "\"AB\"");
    row("d", 0x0A, "01FF", "01 FF");
    row("d", 0x0B, "01020304050607", "01 02 03 04 05 06 07");
    row("d", 0x0C, "010203040506", "01 02 03 04 05 06");
    row("d", 0x0D, "010203040506", "01 02 03 04 05 06");
    row("d", 0x0F, "", "\"\"");
    row("i24", 0x10, "FEFFFF", "-2");
    row("r64", 0x11, "0000000000000440", "2.5");
    row("i64", 0x15, "FFFFFFFFFFFFFFFF", "-1");
    row("u40", 0x18, "0504030201", "0x0102030405");
    row("u64", 0x1B, "EFCDAB8967452301", "0x0123456789ABCDEF");
    row("d", 0x7F, "00", "00");
}

void TestTypeWords::entriesHaveTheTypeThatClientsAskFor()
{
    QFETCH(int, dataType);
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, shown);
    const tTypeWord& type = typeWordFor(valueType(dataType));
    QCOMPARE(QByteArray(type.word), QByteArray(QTest::currentDataTag()).split(' ').first());
    QCOMPARE(shownValue(type, bytes), shown);
    QCOMPARE(QByteArray(typeWordFor(std::nullopt).word), QByteArray("d"));
}

QTEST_GUILESS_MAIN(TestTypeWords)
#include "TestTypeWords.moc"
