// Integers from text: one grammar at six types.
// SPDX-License-Identifier: MIT
#include "CANopenTypes.h"

#include "AssertionLog.h"

#include <QRegularExpression>
#include <QTest>

#include <optional>

namespace
{

using tResult = std::optional<qint64>; // none: refused

template <typename Value>
tResult read(bool (*convert)(const char*, Value*), const char* text)
{
    Value value = 77;
    return convert(text, &value) ? tResult(value) : std::nullopt;
}

struct tRow {
    const char* text;
    tResult value;
};

constexpr tResult refused = std::nullopt;

void addRows(std::initializer_list<tRow> rows)
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<tResult>("value");
    for (const tRow& row : rows)
        QTest::newRow(row.text) << QByteArray(row.text) << row.value;
}

QRegularExpression assertion(const char* name)
{
    return QRegularExpression(QString("^ASSERT: \"%1\" in CANopenTypes \\([0-9]+\\)$").arg(name));
}

} // namespace

class TestCANopenTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void versionIsPinned()
    {
        QCOMPARE(QByteArray(CCANopenTypes::version()), QByteArray("Velmora value types, revision 2026-11-21"));
    }
    void unsigned8WithinItsLimits_data();
    void unsigned8WithinItsLimits() { check(CCANopenTypes::ascii2unsigned8); }
    void integer8WithinItsLimits_data();
    void integer8WithinItsLimits() { check(CCANopenTypes::ascii2integer8); }
    void unsigned16WithinItsLimits_data();
    void unsigned16WithinItsLimits() { check(CCANopenTypes::ascii2unsigned16); }
    void integer16WithinItsLimits_data();
    void integer16WithinItsLimits() { check(CCANopenTypes::ascii2integer16); }
    void unsigned32WithinItsLimits_data();
    void unsigned32WithinItsLimits() { check(CCANopenTypes::ascii2unsigned32); }
    void integer32WithinItsLimits_data();
    void integer32WithinItsLimits() { check(CCANopenTypes::ascii2integer32); }
    void aSignIsNoPartOfTheLimits();
    void aNullTextIsReportedAndCountsAsEmpty();
    void aNullResultIsReportedAndNotStored();
    void whatWasReadBeforeAFailureIsStored_data();
    void whatWasReadBeforeAFailureIsStored();
    void blanksAndTabsMayStandAround();
    void everyReportNamesTheLineOfItsOperation();

private:
    template <typename Value>
    static void check(bool (*convert)(const char*, Value*))
    {
        QFETCH(const QByteArray, text);
        QFETCH(const tResult, value);
        const tResult result = read(convert, text.constData());
        QCOMPARE(result.has_value(), value.has_value());
        QCOMPARE(result.value_or(0), value.value_or(0));
    }
};

void TestCANopenTypes::unsigned8WithinItsLimits_data()
{
    addRows({
        { "255", 255 },       { "256", refused }, { "260", refused },  { "1000", refused }, { "0", 0 },
        { "1", 1 },           { "+7", 7 },        { "+007", 7 },       { "+", refused },    { "+ ", 0 },
        { "-1", refused },    { "-0", refused },  { "0377", 255 },     { "0400", refused }, { "00377", 255 },
        { "00", 0 },          { "08", refused },  { "0xff", 255 },     { "0XFf", 255 },     { "0x0ff", 255 },
        { "0x100", refused }, { "0x", 0 },        { "0x ", 0 },        { "0xg", refused },  { " 12 ", 12 },
        { "\t12\t ", 12 },    { "12a", refused }, { "12 3", refused }, { "12\n", refused }, { "1.5", refused },
        { "", refused },      { "   ", refused }, { "\t", refused },   { "0 ", 0 },         { " 0", 0 },
        { "0 1", refused },   { "abc", refused }, { "000000012", 10 }, { "+0000255", 255 }, { "+0x10", refused },
        { "\xB2", refused },
    });
}

void TestCANopenTypes::integer8WithinItsLimits_data()
{
    addRows({
        { "127", 127 },       { "128", refused },  { "130", refused }, { "-128", -128 }, { "-129", refused },
        { "-130", refused },  { "-0128", -128 },   { "-0", 0 },        { "-", refused }, { "--1", refused },
        { "-+1", refused },   { "+127", 127 },     { "0x80", -128 },   { "0xFF", -1 },   { "0x7F", 127 },
        { "0x100", refused }, { "-0x1", refused }, { "0377", -1 },     { "0200", -128 }, { "0400", refused },
        { " -5 ", -5 },       { "- 5", refused },  { "", refused },    { "0", 0 },
    });
}

void TestCANopenTypes::unsigned16WithinItsLimits_data()
{
    addRows({
        { "65535", 65535 },
        { "65536", refused },
        { "65540", refused },
        { "100000", refused },
        { "0177777", 65535 },
        { "0200000", refused },
        { "0xFFFF", 65535 },
        { "0x00FFFF", 65535 },
        { "0x10000", refused },
        { "-1", refused },
        { "", refused },
    });
}

void TestCANopenTypes::integer16WithinItsLimits_data()
{
    addRows({
        { "32767", 32767 },
        { "32768", refused },
        { "-32768", -32768 },
        { "-32769", refused },
        { "0x8000", -32768 },
        { "0xFFFF", -1 },
        { "0177777", -1 },
        { "0200000", refused },
        { "0x10000", refused },
        { "", refused },
    });
}

void TestCANopenTypes::unsigned32WithinItsLimits_data()
{
    addRows({
        { "4294967295", 4294967295 },
        { "4294967296", refused },
        { "4294967300", refused },
        { "10000000000", refused },
        { "037777777777", 4294967295 },
        { "040000000000", refused },
        { "0xFFFFFFFF", 4294967295 },
        { "0x100000000", refused },
        { "00000000012", 10 },
        { "-1", refused },
        { "", refused },
    });
}

void TestCANopenTypes::integer32WithinItsLimits_data()
{
    addRows({
        { "2147483647", 2147483647 },
        { "2147483648", refused },
        { "-2147483648", -2147483648 },
        { "-2147483649", refused },
        { "-9999999999", refused },
        { "0xFFFFFFFF", -1 },
        { "0x80000000", -2147483648 },
        { "037777777777", -1 },
        { "040000000000", refused },
        { "0x100000000", refused },
        { "", refused },
    });
}

void TestCANopenTypes::aSignIsNoPartOfTheLimits()
{
    QCOMPARE(read(CCANopenTypes::ascii2unsigned8, "+255"), tResult(255));
    QCOMPARE(read(CCANopenTypes::ascii2unsigned8, "+256"), refused);
    QCOMPARE(read(CCANopenTypes::ascii2integer8, "+127"), tResult(127));
    QCOMPARE(read(CCANopenTypes::ascii2integer8, "+128"), refused);
    QCOMPARE(read(CCANopenTypes::ascii2unsigned16, "+65535"), tResult(65535));
    QCOMPARE(read(CCANopenTypes::ascii2unsigned16, "+65536"), refused);
    QCOMPARE(read(CCANopenTypes::ascii2integer16, "+32767"), tResult(32767));
    QCOMPARE(read(CCANopenTypes::ascii2integer16, "+32768"), refused);
    QCOMPARE(read(CCANopenTypes::ascii2unsigned32, "+4294967295"), tResult(4294967295));
    QCOMPARE(read(CCANopenTypes::ascii2unsigned32, "+4294967296"), refused);
    QCOMPARE(read(CCANopenTypes::ascii2integer32, "+2147483647"), tResult(2147483647));
    QCOMPARE(read(CCANopenTypes::ascii2integer32, "+2147483648"), refused);
    QCOMPARE(read(CCANopenTypes::ascii2integer32, "-0002147483648"), tResult(-2147483648));
}

void TestCANopenTypes::aNullTextIsReportedAndCountsAsEmpty()
{
    SDO_t_UNSIGNED8 value = 5;
    QTest::ignoreMessage(QtWarningMsg, assertion("string"));
    QCOMPARE(CCANopenTypes::ascii2unsigned8(nullptr, &value), false);
    QCOMPARE(int(value), 0);
}

void TestCANopenTypes::aNullResultIsReportedAndNotStored()
{
    QTest::ignoreMessage(QtWarningMsg, assertion("value"));
    QCOMPARE(CCANopenTypes::ascii2integer32("12", nullptr), true);
    QTest::ignoreMessage(QtWarningMsg, assertion("value"));
    QCOMPARE(CCANopenTypes::ascii2integer32("x", nullptr), false);
    QTest::ignoreMessage(QtWarningMsg, assertion("value"));
    QCOMPARE(CCANopenTypes::ascii2date("2009-12-24", nullptr), true);
}

void TestCANopenTypes::whatWasReadBeforeAFailureIsStored_data()
{
    QTest::addColumn<int>("stored8");
    QTest::addColumn<int>("stored16");
    const auto row = [](const char* text, int stored8, int stored16) {
        QTest::addRow("\"%s\"", text) << stored8 << stored16;
    };
    row("", 0, 0);
    row(" \t", 0, 0);
    row("x", 0, 0);
    row("+", 0, 0);
    row("12x", 12, 12);
    row("12 x", 12, 12);
    row("99999", 99, 9999);
    row("0x12345", 0x12, 0x1234);
    row("0x12g", 0x12, 0x12);
    row("0700000", 070, 070000);
    row("019", 1, 1);
}

void TestCANopenTypes::whatWasReadBeforeAFailureIsStored()
{
    const QByteArray text = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    SDO_t_UNSIGNED8 byte = 77;
    SDO_t_INTEGER8 signedByte = 77;
    SDO_t_UNSIGNED16 word = 77;
    SDO_t_INTEGER16 signedWord = 77;
    QVERIFY(!CCANopenTypes::ascii2unsigned8(text, &byte));
    QVERIFY(!CCANopenTypes::ascii2integer8(text, &signedByte));
    QVERIFY(!CCANopenTypes::ascii2unsigned16(text, &word));
    QVERIFY(!CCANopenTypes::ascii2integer16(text, &signedWord));
    QTEST(int(byte), "stored8");
    QTEST(int(signedByte), "stored8");
    QTEST(int(word), "stored16");
    QTEST(int(signedWord), "stored16");
}

void TestCANopenTypes::blanksAndTabsMayStandAround()
{
    for (const char* text : { " 12", "\t12", " \t 12", "12 ", "12\t", "\t 12 \t", "\t014", "\t0xC\t", "\t+12" }) {
        QCOMPARE(read(CCANopenTypes::ascii2unsigned8, text), tResult(12));
        QCOMPARE(read(CCANopenTypes::ascii2integer32, text), tResult(12));
    }
    for (const char* text : { "\n12", "12\n", "\v12", "12\r" })
        QCOMPARE(read(CCANopenTypes::ascii2unsigned8, text), refused);
}

void TestCANopenTypes::everyReportNamesTheLineOfItsOperation()
{
    const CAssertionLog log;
    CCANopenTypes::ascii2integer8(nullptr, nullptr);
    CCANopenTypes::ascii2integer16(nullptr, nullptr);
    CCANopenTypes::ascii2integer32(nullptr, nullptr);
    CCANopenTypes::ascii2unsigned8(nullptr, nullptr);
    CCANopenTypes::ascii2unsigned16(nullptr, nullptr);
    CCANopenTypes::ascii2unsigned32(nullptr, nullptr);
    CCANopenTypes::ascii2date(nullptr, nullptr);
    CCANopenTypes::ascii2timeOfDay(nullptr, nullptr);
    const QList<int> lines = log.lines();
    QCOMPARE(lines.size(), 16); // for the text and for the value, in the same line
    int last = 0;
    for (int operation = 0; operation < 8; ++operation) { // in the order of the source
        QCOMPARE(lines[2 * operation + 1], lines[2 * operation]);
        QVERIFY(lines[2 * operation] > last);
        last = lines[2 * operation];
    }
}

QTEST_APPLESS_MAIN(TestCANopenTypes)
#include "TestCANopenTypes.moc"
