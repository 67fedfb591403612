// Tests of the numbers in response lines: every width, every form, and their limits.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_eval.h"

#include <QByteArray>
#include <QtTest>

namespace
{

struct tNumber {
    const char* text;
    qint64 value; // stored, also when the number is refused
    bool fits = true;
};

const tNumber unsigned8[] = {
    { "0", 0 },
    { "1", 1 },
    { "31", 31 },
    { "99", 99 },
    { "100", 100 },
    { "199", 199 },
    { "249", 249 },
    { "250", 250 },
    { "255", 255 },
    { "255x", 255 },
    { "12a", 12 },
    { "25 6", 25 },
    { " \t31\r\n", 31 },
    { "1.5", 1 },
    { "1-1", 1 },
    { "00", 0 },
    { "0377", 255 },
    { "00377", 255 },
    { "000000000000017", 15 },
    { "07", 7 },
    { "08", 0 },
    { "018", 1 },
    { "0379", 31 },
    { "0x1F", 31 },
    { "0X1f", 31 },
    { "0xaF", 175 },
    { "0xff", 255 },
    { "0x", 0 },
    { "0xG", 0 },
    { "0x0", 0 },
    { "0x00000000000000FF", 255 },
    { "0xFg", 15 },
    { "0x 5", 0 },
    { "0x0x5", 0 },
    { "0 x5", 0 },
    { "256", 0, false },
    { "257", 1, false },
    { "260", 4, false },
    { "300", 44, false },
    { "999", 231, false },
    { "0400", 0, false },
    { "0777", 255, false },
    { "01000", 0, false },
    { "0x100", 0, false },
    { "0x1FF", 255, false },
};
const tNumber unsigned16[] = {
    { "256", 256 },
    { "65535", 65535 },
    { "65529", 65529 },
    { "59999", 59999 },
    { "0177777", 65535 },
    { "000177777", 65535 },
    { "0xFFFF", 65535 },
    { "0x0000FFFF", 65535 },
    { "0x1234", 0x1234 },
    { "0x", 0 },
    { "09", 0 },
    { "65536", 0, false },
    { "65540", 4, false },
    { "70000", 4464, false },
    { "0200000", 0, false },
    { "0777777", 65535, false },
    { "01000000", 0, false },
    { "0x10000", 0, false },
    { "0x1FFFF", 65535, false },
};
const tNumber unsigned32[] = {
    { "65536", 65536 },
    { "4294967295", 4294967295 },
    { "4294967289", 4294967289 },
    { "3999999999", 3999999999 },
    { "037777777777", 4294967295 },
    { "00037777777777", 4294967295 },
    { "0xFFFFFFFF", 4294967295 },
    { "0x00FFFFFFFF", 4294967295 },
    { "0xDEADbeef", 0xDEADBEEF },
    { "0x06020000", 0x06020000 },
    { "4294967296", 0, false },
    { "4294967300", 4, false },
    { "5000000000", 705032704, false },
    { "040000000000", 0, false },
    { "077777777777", 4294967295, false },
    { "0100000000000", 0, false },
    { "0x100000000", 0, false },
    { "0x1FFFFFFFF", 4294967295, false },
};
const tNumber integer8[] = {
    { "0", 0 },
    { "127", 127 },
    { "119", 119 },
    { "+127", 127 },
    { "+0", 0 },
    { "-0", 0 },
    { "-1", -1 },
    { "-128", -128 },
    { "-119", -119 },
    { "-99", -99 },
    { "-128x", -128 },
    { "-1-1", -1 },
    { " \t-5\r\n", -5 },
    { "0x7F", 127 },
    { "0x80", -128 },
    { "0xFF", -1 },
    { "0x", 0 },
    { "0177", 127 },
    { "0200", -128 },
    { "0377", -1 },
    { "00", 0 },
    { "-010", -10 },
    { "+010", 10 },
    { "-0x10", 0 },
    { "+0x10", 0 },
    { "09", 0 },
    { "128", -128, false },
    { "130", -126, false },
    { "200", -56, false },
    { "+128", -128, false },
    { "-129", 127, false },
    { "-130", 126, false },
    { "0x100", 0, false },
    { "0400", 0, false },
    { "01000", 0, false },
};
const tNumber integer16[] = {
    { "128", 128 },
    { "32767", 32767 },
    { "+32767", 32767 },
    { "29999", 29999 },
    { "-32768", -32768 },
    { "-29999", -29999 },
    { "0x7FFF", 32767 },
    { "0x8000", -32768 },
    { "0xFFFF", -1 },
    { "077777", 32767 },
    { "0100000", -32768 },
    { "0177777", -1 },
    { "32768", -32768, false },
    { "+32768", -32768, false },
    { "-32769", 32767, false },
    { "32770", -32766, false },
    { "-32770", 32766, false },
    { "0x10000", 0, false },
    { "0200000", 0, false },
    { "01000000", 0, false },
};
const tNumber integer32[] = {
    { "32768", 32768 },
    { "2147483647", 2147483647 },
    { "+2147483647", 2147483647 },
    { "1999999999", 1999999999 },
    { "-2147483648", -2147483648LL },
    { "-1999999999", -1999999999 },
    { "0x7FFFFFFF", 2147483647 },
    { "0x80000000", -2147483648LL },
    { "0xFFFFFFFF", -1 },
    { "017777777777", 2147483647 },
    { "020000000000", -2147483648LL },
    { "037777777777", -1 },
    { "2147483648", -2147483648LL, false },
    { "-2147483649", 2147483647, false },
    { "+2147483648", -2147483648LL, false },
    { "2147483650", -2147483646, false },
    { "-2147483650", 2147483646, false },
    { "0x100000000", 0, false },
    { "040000000000", 0, false },
    { "0100000000000", 0, false },
};

} // namespace

class TestTcpEvalNumbers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readUnsigned8WithinItsLimits_data() { addRows(unsigned8); }
    void readUnsigned8WithinItsLimits() { checkRow(&tcp_eval_sdo_unsigned8); }
    void readUnsigned16WithinItsLimits_data() { addRows(unsigned16); }
    void readUnsigned16WithinItsLimits() { checkRow(&tcp_eval_sdo_unsigned16); }
    void readUnsigned32WithinItsLimits_data() { addRows(unsigned32); }
    void readUnsigned32WithinItsLimits() { checkRow(&tcp_eval_sdo_unsigned32); }
    void readInteger8WithinItsLimits_data() { addRows(integer8); }
    void readInteger8WithinItsLimits() { checkRow(&tcp_eval_sdo_integer8); }
    void readInteger16WithinItsLimits_data() { addRows(integer16); }
    void readInteger16WithinItsLimits() { checkRow(&tcp_eval_sdo_integer16); }
    void readInteger32WithinItsLimits_data() { addRows(integer32); }
    void readInteger32WithinItsLimits() { checkRow(&tcp_eval_sdo_integer32); }
    void everyNumberOfTheNarrowWidthsIsReadInAllForms();
    void endlessDigitsAreRefused();
    void numbersThatFitOnlyAfterTheyWrapAreRefused();
    void unreadableNumberBecomesZero();
    void unsignedNumbersHaveNoSign();

private:
    template <std::size_t Count>
    static void addRows(const tNumber (&numbers)[Count])
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<qint64>("value");
        QTest::addColumn<bool>("fits");
        for (const tNumber& number : numbers)
            QTest::newRow(number.text) << QByteArray(number.text) << number.value << number.fits;
    }
    template <typename Value>
    static void checkRow(int32_t (*evaluate)(const char*, Value*, uint32_t*))
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, fits);
        Value value = 77;
        uint32_t abort = 77;
        QCOMPARE(evaluate(("[12] " + text).constData(), &value, &abort), fits ? 0 : int32_t(ERR_FORMAT));
        QTEST(static_cast<qint64>(value), "value");
        QCOMPARE(abort, 0u);
    }
};

void TestTcpEvalNumbers::everyNumberOfTheNarrowWidthsIsReadInAllForms()
{
    for (int number = -40000; number < 70000; ++number) {
        const QByteArray line = "[1] " + QByteArray::number(number);
        int16_t narrow = 0;
        QCOMPARE(tcp_eval_sdo_integer16(line.constData(), &narrow, nullptr) == 0,
                 number == static_cast<int16_t>(number));
        QCOMPARE(narrow, static_cast<int16_t>(number));
        if (number < 0)
            continue;
        for (const QByteArray& form :
             { line, "[1] 0x" + QByteArray::number(number, 16), "[1] 0" + QByteArray::number(number, 8) }) {
            uint8_t byte = 0;
            uint16_t word = 0;
            QCOMPARE(tcp_eval_sdo_unsigned8(form.constData(), &byte, nullptr) == 0, number < 256);
            QCOMPARE(tcp_eval_sdo_unsigned16(form.constData(), &word, nullptr) == 0, number < 65536);
            QCOMPARE(word, static_cast<uint16_t>(number));
        }
    }
}

void TestTcpEvalNumbers::endlessDigitsAreRefused()
{
    for (const char* start : { "", "-", "+", "0x", "0" })
        for (const char digit : { '1', '7' }) {
            const QByteArray line = QByteArray("[1] ") + start + QByteArray(1000, digit) + " ";
            int32_t number = 0;
            QCOMPARE(tcp_eval_sdo_integer32(line.constData(), &number, nullptr), int32_t(ERR_FORMAT));
        }
    uint8_t zero = 77;
    QCOMPARE(tcp_eval_sdo_unsigned8(("[1] " + QByteArray(1000, '0')).constData(), &zero, nullptr), 0);
    QCOMPARE(zero, uint8_t(0));
}

// Of each of them, 32 bits are a small number.
void TestTcpEvalNumbers::numbersThatFitOnlyAfterTheyWrapAreRefused()
{
    for (const char* text : { "4294967296", "42949672961", "0x100000000", "0x1000000001", "040000000000",
                              "0400000000001", "18446744073709551617", "0x10000000000000001" }) {
        const QByteArray line = QByteArray("[1] ") + text;
        uint8_t number8 = 0;
        uint16_t number16 = 0;
        uint32_t number32 = 0;
        int8_t signed8 = 0;
        int32_t signed32 = 0;
        QCOMPARE(tcp_eval_sdo_unsigned8(line.constData(), &number8, nullptr), int32_t(ERR_FORMAT));
        QCOMPARE(tcp_eval_sdo_unsigned16(line.constData(), &number16, nullptr), int32_t(ERR_FORMAT));
        QCOMPARE(tcp_eval_sdo_unsigned32(line.constData(), &number32, nullptr), int32_t(ERR_FORMAT));
        QCOMPARE(tcp_eval_sdo_integer8(line.constData(), &signed8, nullptr), int32_t(ERR_FORMAT));
        QCOMPARE(tcp_eval_sdo_integer32(line.constData(), &signed32, nullptr), int32_t(ERR_FORMAT));
    }
}

void TestTcpEvalNumbers::unreadableNumberBecomesZero()
{
    for (const char* line : { "[1] -", "[1] +", "[1] -x", "[1] +x", "[1] +-5", "[1] -+5", "[1] ++5", "[1] --5",
                              "[1] - 5", "[1] +a", "[1] +F", "[1] -a" }) {
        int8_t number = 77;
        QCOMPARE(tcp_eval_sdo_integer8(line, &number, nullptr), int32_t(ERR_FORMAT));
        QCOMPARE(number, int8_t(0));
    }
}

void TestTcpEvalNumbers::unsignedNumbersHaveNoSign()
{
    for (const char* line : { "[1] -5", "[1] +5", "[1] -0", "[1] +0x1F" }) {
        uint8_t number = 77;
        QCOMPARE(tcp_eval_sdo_unsigned8(line, &number, nullptr), int32_t(ERR_FORMAT));
        QCOMPARE(number, uint8_t(77));
    }
}

QTEST_APPLESS_MAIN(TestTcpEvalNumbers)
#include "TestTcpEvalNumbers.moc"
