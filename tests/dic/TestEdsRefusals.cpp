// What the readers of section names and numbers leave behind when they refuse a text or miss an argument.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "AssertionLog.h"

#include <QList>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

class TestEdsRefusals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void digitsBeforeTheFailureAreStored_data();
    void digitsBeforeTheFailureAreStored();
    void everyReportNamesTheLineOfItsArgument();
};

void TestEdsRefusals::digitsBeforeTheFailureAreStored_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<quint32>("stored");
    const auto row = [](const char* text, int bits, quint32 stored) { QTest::addRow("%s", text) << bits << stored; };
    row("", 8, 0);
    row("x", 8, 0);
    row("-1", 8, 0);
    row("12a", 8, 12);
    row("256", 8, 25);
    row("0x1g", 8, 1);
    row("0x100", 8, 0x10);
    row("0400", 8, 040);
    row("1 2", 16, 1);
    row("65536", 16, 6553);
    row("0x12345", 16, 0x1234);
    row("0200000", 16, 020000);
    row("019", 32, 1);
    row("4294967296", 32, 429496729);
    row("0x123456789", 32, 0x12345678);
    row("040000000000", 32, 04000000000);
}

void TestEdsRefusals::digitsBeforeTheFailureAreStored()
{
    QFETCH(int, bits);
    const char* text = QTest::currentDataTag();
    unsigned char value8 = 77;
    unsigned short value16 = 77;
    unsigned long value32 = 77;
    QVERIFY(!(bits == 8    ? Ascii2Unsigned8(text, &value8)
              : bits == 16 ? Ascii2Unsigned16(text, &value16)
                           : Ascii2Unsigned32(text, &value32)));
    QTEST(bits == 8 ? quint32(value8) : bits == 16 ? quint32(value16) : quint32(value32), "stored");
}

// The functions are in the source in this order, with a line for each argument of a section name, and one for both
// arguments of a number.
void TestEdsRefusals::everyReportNamesTheLineOfItsArgument()
{
    const CAssertionLog log;
    IsObject(nullptr, nullptr);
    IsObjectEntry(nullptr, nullptr, nullptr);
    const QList<int> ofNames = log.lines();
    Ascii2Unsigned8(nullptr, nullptr);
    Ascii2Unsigned16(nullptr, nullptr);
    Ascii2Unsigned32(nullptr, nullptr);
    const QList<int> ofNumbers = log.lines().sliced(ofNames.size());
    const QRegularExpression report("^ASSERT: \"[a-zA-Z]+\" in dic/CANopenReader$");
    QCOMPARE(log.texts().filter(report), log.texts());

    QCOMPARE(ofNames.size(), 5);
    QVERIFY(ofNames[0] > 0);
    QVERIFY(std::is_sorted(ofNames.begin(), ofNames.end(), std::less_equal<>()));
    QCOMPARE(ofNumbers.size(), 6);
    for (int place = 0; place < 6; place += 2)
        QCOMPARE(ofNumbers[place], ofNumbers[place + 1]);
    QVERIFY(ofNames[4] < ofNumbers[0]);
    QVERIFY(ofNumbers[0] < ofNumbers[2]);
    QVERIFY(ofNumbers[2] < ofNumbers[4]);
}

QTEST_APPLESS_MAIN(TestEdsRefusals)
#include "TestEdsRefusals.moc"
