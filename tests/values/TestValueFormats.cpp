// The texts of values in the three display modes.
// SPDX-License-Identifier: MIT
#include "values/ValueFormats.h"

#include <QTest>

constexpr auto asRead = valueFormats::read;
constexpr auto asSent = valueFormats::sent;

class TestValueFormats : public QObject
{
    Q_OBJECT

    enum { integer8 = 2, integer16 = 3, integer32 = 4, unsigned8 = 5, unsigned16 = 6, unsigned32 = 7 };
    static constexpr auto hex = valueFormats::modeHex;
    static constexpr auto dec = valueFormats::modeDec;
    static constexpr auto oct = valueFormats::modeOct;

private Q_SLOTS:
    void integersShowInTheirFormat_data();
    void integersShowInTheirFormat();
    void integer32HasItsWidthsExchangedWhenRead_data();
    void integer32HasItsWidthsExchangedWhenRead();
    void onlyTheBitsOfTheTypeCount();
    void unknownModesAreHexadecimal_data();
    void unknownModesAreHexadecimal();
    void otherTypesHaveNoIntegerText_data();
    void otherTypesHaveNoIntegerText();
    void everyByteIsFollowedByABlank();
    void noBytesAreNoText();
};

void TestValueFormats::integersShowInTheirFormat_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<QString>("octal");
    QTest::addColumn<QString>("hexadecimal");
    const auto row = [](const char* name, int type, qint64 value, const char* decimal, const char* octal,
                        const char* hexadecimal) {
        QTest::newRow(name) << type << static_cast<quint32>(value) << QString(decimal) << QString(octal)
                            << QString(hexadecimal);
    };
    row("Integer8 0", integer8, 0, "+0", "000", "0x00");
    row("Integer8 5", integer8, 5, "+5", "005", "0x05");
    row("Integer8 127", integer8, 127, "+127", "177", "0x7F");
    row("Integer8 -1", integer8, -1, "-1", "377", "0xFF");
    row("Integer8 -128", integer8, -128, "-128", "200", "0x80");
    row("Integer16 5", integer16, 5, "+5", "000005", "0x0005");
    row("Integer16 32767", integer16, 32767, "+32767", "077777", "0x7FFF");
    row("Integer16 -2", integer16, -2, "-2", "177776", "0xFFFE");
    row("Integer16 -32768", integer16, -32768, "-32768", "100000", "0x8000");
    row("Unsigned8 0", unsigned8, 0, "0", "000", "0x00");
    row("Unsigned8 200", unsigned8, 200, "200", "310", "0xC8");
    row("Unsigned8 255", unsigned8, 255, "255", "377", "0xFF");
    row("Unsigned16 4660", unsigned16, 4660, "4660", "011064", "0x1234");
    row("Unsigned16 65535", unsigned16, 65535, "65535", "177777", "0xFFFF");
    row("Unsigned32 10", unsigned32, 10, "10", "00000000012", "0x0000000A");
    row("Unsigned32 4294967295", unsigned32, 4294967295, "4294967295", "37777777777", "0xFFFFFFFF");
}

void TestValueFormats::integersShowInTheirFormat()
{
    QFETCH(const int, type);
    QFETCH(const quint32, bits);
    for (const auto direction : { asRead, asSent }) {
        QTEST(valueFormats::integer(type, direction, bits, dec), "decimal");
        QTEST(valueFormats::integer(type, direction, bits, oct), "octal");
        QTEST(valueFormats::integer(type, direction, bits, hex), "hexadecimal");
    }
}

void TestValueFormats::integer32HasItsWidthsExchangedWhenRead_data()
{
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<QString>("octalRead");
    QTest::addColumn<QString>("hexadecimalRead");
    QTest::addColumn<QString>("octalSent");
    QTest::addColumn<QString>("hexadecimalSent");
    QTest::newRow("10") << 10U << "+10"
                        << "000012"
                        << "0x0000000000A"
                        << "00000000012"
                        << "0x0000000A";
    QTest::newRow("-1") << 0xFFFFFFFFU << "-1"
                        << "37777777777"
                        << "0x000FFFFFFFF"
                        << "37777777777"
                        << "0xFFFFFFFF";
    QTest::newRow("-2147483648") << 0x80000000U << "-2147483648"
                                 << "20000000000"
                                 << "0x00080000000"
                                 << "20000000000"
                                 << "0x80000000";
}

void TestValueFormats::integer32HasItsWidthsExchangedWhenRead()
{
    QFETCH(const quint32, bits);
    QTEST(valueFormats::integer(integer32, asRead, bits, dec), "decimal");
    QTEST(valueFormats::integer(integer32, asSent, bits, dec), "decimal");
    QTEST(valueFormats::integer(integer32, asRead, bits, oct), "octalRead");
    QTEST(valueFormats::integer(integer32, asRead, bits, hex), "hexadecimalRead");
    QTEST(valueFormats::integer(integer32, asSent, bits, oct), "octalSent");
    QTEST(valueFormats::integer(integer32, asSent, bits, hex), "hexadecimalSent");
}

void TestValueFormats::onlyTheBitsOfTheTypeCount()
{
    QCOMPARE(valueFormats::integer(integer8, asRead, 0xABCD05, dec), QString("+5"));
    QCOMPARE(valueFormats::integer(integer16, asRead, 0xABCDFFFF, dec), QString("-1"));
    QCOMPARE(valueFormats::integer(unsigned8, asRead, 0xABCD05, hex), QString("0x05"));
    QCOMPARE(valueFormats::integer(unsigned16, asSent, 0xABCD0005, oct), QString("000005"));
}

void TestValueFormats::unknownModesAreHexadecimal_data()
{
    QTest::addColumn<int>("mode");
    for (const int mode : { -1, 3, 7, 1000000 })
        QTest::addRow("%d", mode) << mode;
}

void TestValueFormats::unknownModesAreHexadecimal()
{
    QFETCH(const int, mode);
    const auto unknown = static_cast<valueFormats::TDisplayMode>(mode);
    const std::uint8_t data[] = { 0x0A };
    QCOMPARE(valueFormats::integer(integer8, asRead, 10, unknown), QString("0x0A"));
    QCOMPARE(valueFormats::bytes(data, 1, unknown), QString("0x0A "));
}

void TestValueFormats::otherTypesHaveNoIntegerText_data()
{
    QTest::addColumn<int>("type");
    for (const int type : { -1, 0, 1, 8, 9, 10, 11, 12, 15, 16, 21, 27, 35, 0x60 })
        QTest::addRow("%d", type) << type;
}

void TestValueFormats::otherTypesHaveNoIntegerText()
{
    QFETCH(const int, type);
    for (const auto mode : { hex, dec, oct })
        QCOMPARE(valueFormats::integer(type, asRead, 1, mode), QString());
}

void TestValueFormats::everyByteIsFollowedByABlank()
{
    const std::uint8_t data[] = { 0, 7, 0x80, 0xFF };
    QCOMPARE(valueFormats::bytes(data, 4, hex), QString("0x00 0x07 0x80 0xFF "));
    QCOMPARE(valueFormats::bytes(data, 4, dec), QString("0 7 128 255 "));
    QCOMPARE(valueFormats::bytes(data, 4, oct), QString("000 007 200 377 "));
    QCOMPARE(valueFormats::bytes(data, 1, dec), QString("0 "));
}

void TestValueFormats::noBytesAreNoText()
{
    const std::uint8_t data[] = { 1 };
    QCOMPARE(valueFormats::bytes(data, 0, dec), QString());
    QCOMPARE(valueFormats::bytes(data, -1, hex), QString());
}

QTEST_APPLESS_MAIN(TestValueFormats)
#include "TestValueFormats.moc"
