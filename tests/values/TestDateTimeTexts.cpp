// DATE and TIME_OF_DAY from text and to text.
// SPDX-License-Identifier: MIT
#include "CANopenTypes.h"

#include <QDateTime>
#include <QTest>

#include <cstring>
#include <ctime>

namespace
{

using tBytes = QByteArray;

tBytes dateOf(const char* text)
{
    SDO_t_DATE date;
    std::memset(&date, 0xAA, sizeof date);
    const bool good = CCANopenTypes::ascii2date(text, &date);
    const tBytes bytes(reinterpret_cast<const char*>(date.data), sizeof date.data);
    if (!good && bytes != tBytes(7, '\xAA'))
        return "failed, but changed";
    return good ? bytes.toHex(' ') : "refused";
}

tBytes timeOf(const char* text)
{
    SDO_t_TIME_OF_DAY time;
    std::memset(&time, 0xAA, sizeof time);
    const bool good = CCANopenTypes::ascii2timeOfDay(text, &time);
    const tBytes bytes(reinterpret_cast<const char*>(time.data), sizeof time.data);
    if (!good && bytes != tBytes(6, '\xAA'))
        return "failed, but changed";
    return good ? bytes.toHex(' ') : "refused";
}

QString textOfDate(const char* hex)
{
    SDO_t_DATE date;
    std::memcpy(date.data, tBytes::fromHex(hex).constData(), sizeof date.data);
    QString text = "old";
    return CCANopenTypes::date2ascii(date, text) ? text : QString("false");
}

QString textOfTime(quint32 milliseconds, quint16 days)
{
    SDO_t_TIME_OF_DAY time = {};
    time.member.msec = milliseconds;
    time.member.days = days;
    QString text = "old";
    return CCANopenTypes::timeOfDay2ascii(time, text) ? text : QString("false");
}

void setZone(const char* zone)
{
    qputenv("TZ", zone);
    tzset();
}

// Converts a text that leaves fields to the present moment, and the same moment written out: both in the same second,
// so the conversion is made again when that passes.
std::pair<tBytes, tBytes> convertNow(tBytes (*convert)(const char*), const char* text, const QString& pattern)
{
    const auto now = [&pattern] { return QDateTime::currentDateTime().toString(pattern); };
    while (true) {
        const QString moment = now();
        const tBytes converted = convert(text);
        if (now() == moment)
            return { converted, convert(moment.toLatin1()) };
    }
}

void addRows(std::initializer_list<std::pair<const char*, const char*>> rows)
{
    QTest::addColumn<tBytes>("text");
    QTest::addColumn<tBytes>("bytes");
    for (auto [text, bytes] : rows)
        QTest::newRow(text) << tBytes(text) << tBytes(bytes);
}

} // namespace

class TestDateTimeTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setZone("Europe/Berlin"); }

    void datesAreReadInThreeLayouts_data();
    void datesAreReadInThreeLayouts();
    void onlyTheLowByteOfTheMillisecondsIsPacked();
    void theTextMayEndAfterAnyField_data();
    void theTextMayEndAfterAnyField();
    void timesOfDayAreReadAsLocalTime_data();
    void timesOfDayAreReadAsLocalTime();
    void aTimeOfDayBeforeDay0WrapsToTheLastOne();
    void datesShowInIsoOrder_data();
    void datesShowInIsoOrder();
    void theByteOfADateIsItsYear();
    void timesOfDayShowInLocalTime_data();
    void timesOfDayShowInLocalTime();
};

void TestDateTimeTexts::datesAreReadInThreeLayouts_data()
{
    // milliseconds low, 0, minute, hour, day, month, year
    addRows({
        { "24.12.2009 18:30:15.250", "92 00 1e 12 18 0c 09" },
        { "2009-12-24 18:30:15.250", "92 00 1e 12 18 0c 09" },
        { "12/24/2009 18:30:15.250", "92 00 1e 12 18 0c 09" },
        { "  24.12.2009 18:30:15.250", "92 00 1e 12 18 0c 09" },
        { "24.12.2009   18:30:15.250  ", "92 00 1e 12 18 0c 09" },
        { "24.12.09 18:30:15.250", "92 00 1e 12 18 0c 09" },
        { "0024.0012.2009 0018:030:15.0", "98 00 1e 12 18 0c 09" },
        { "1.2.1999 3:4:59.999", "5f 00 04 03 01 02 63" },
        { "31.2.2009 0:0:0.0", "00 00 00 00 1f 02 09" },
        { "2009-02-31 0:0:0.0", "00 00 00 00 1f 02 09" },
        { "4/31/2009 0:0:0.0", "00 00 00 00 1f 04 09" },
        { "1970-1-1 0:0:0.0", "00 00 00 00 01 01 46" },
        { "70-1-1 0:0:0.0", "00 00 00 00 01 01 46" },
        { "2037-12-31 23:59:59.999", "5f 00 3b 17 1f 0c 25" },
        { "37-12-31 23:59:59.999", "5f 00 3b 17 1f 0c 25" },
        { "71-1-1 0:0:0.0", "00 00 00 00 01 01 47" },
        { "99-1-1 0:0:0.0", "00 00 00 00 01 01 63" },
        { "0-1-1 0:0:0.0", "00 00 00 00 01 01 00" },
        { "24.12. 18:30:15.250", "92 00 1e 12 18 0c 00" },
        { "2009-12-24 :30:15.250", "92 00 1e 00 18 0c 09" }, // an empty number is 0
        { "2009-12-24 18::15.250", "92 00 00 12 18 0c 09" },
        { "2009-12-24 18:30:.250", "fa 00 1e 12 18 0c 09" },
        { "2009-12-24 18:30:15.", "98 00 1e 12 18 0c 09" },
        { "2009-12-24 18:30:15. ", "98 00 1e 12 18 0c 09" },
        { "2009-12-24 18:30:", "00 00 1e 12 18 0c 09" },
        { "2009-12-", "refused" },
        { "2009--24", "refused" },
        { "24.", "refused" },
        { ".12.2009", "refused" },
        { "1969-12-31", "refused" },
        { "69-01-01", "refused" },
        { "38-01-01", "refused" },
        { "2038-01-01", "refused" },
        { "100-01-01", "refused" },
        { "12:30", "refused" },
        { ":", "refused" },
        { "15 ", "refused" },
        { "15x", "refused" },
        { "x", "refused" },
        { "0", "refused" },
        { "32", "refused" },
        { "0.1.2009", "refused" },
        { "32.1.2009", "refused" },
        { "1.0.2009", "refused" },
        { "1.13.2009", "refused" },
        { "1.1.2009 24", "refused" },
        { "1.1.2009 0:60", "refused" },
        { "1.1.2009 0:0:60", "refused" },
        { "1.1.2009 0:0:0.1000", "refused" },
        { "24.12-2009", "refused" },
        { "24-12.2009", "refused" },
        { "24/12-2009", "refused" },
        { "24.12.2009T18:30", "refused" },
        { "24.12.2009 18.30", "refused" },
        { "24.12.2009 18:30.15", "refused" },
        { "24.12.2009 18:30:15:250", "refused" },
        { "24.12.2009 18:30:15.250x", "refused" },
        { "24.12.2009 18:30:15.250 x", "refused" },
        { "24.12.2009 18:30:15.250.1", "refused" },
        { "24.12.2009\t18:30", "refused" },
        { "\t24.12.2009 18:30:15.250", "refused" },
        { " \t24.12.2009 18:30:15.250", "refused" },
        { "24.12.2009 18:30:15.250\t", "refused" },
        { "\t", "refused" },
        { "99999999999999999999", "refused" },
        { "4294967297.1.2009", "refused" },
        { "1.1.99999999999", "refused" },
        { "1.1.2009 0:0:0.99999999999", "refused" },
    });
}

void TestDateTimeTexts::datesAreReadInThreeLayouts()
{
    QFETCH(const tBytes, text);
    QTEST(dateOf(text), "bytes");
}

void TestDateTimeTexts::onlyTheLowByteOfTheMillisecondsIsPacked()
{
    QCOMPARE(dateOf("1.1.2009 0:0:59.999"), tBytes("5f 00 00 00 01 01 09")); // 59999 is 0xEA5F
}

void TestDateTimeTexts::theTextMayEndAfterAnyField_data()
{
    QTest::addColumn<tBytes>("text");
    QTest::addColumn<QString>("full"); // pattern of the moment it stands for, milliseconds 0
    QTest::newRow("nothing") << tBytes("") << "yyyy-MM-dd hh:mm:ss.0";
    QTest::newRow("blanks") << tBytes("   ") << "yyyy-MM-dd hh:mm:ss.0";
    QTest::newRow("day alone") << tBytes("15") << "yyyy-MM-15 hh:mm:ss.0";
    QTest::newRow("day and month") << tBytes("15.3") << "yyyy-03-15 hh:mm:ss.0";
    QTest::newRow("day and month and blanks") << tBytes("15.3 ") << "yyyy-03-15 hh:mm:ss.0";
    QTest::newRow("month and day") << tBytes("3/15") << "yyyy-03-15 hh:mm:ss.0";
    QTest::newRow("year and month") << tBytes("2009-3") << "2009-03-dd hh:mm:ss.0";
    QTest::newRow("date") << tBytes("2009-12-24") << "2009-12-24 hh:mm:ss.0";
    QTest::newRow("date and blanks") << tBytes("2009-12-24   ") << "2009-12-24 hh:mm:ss.0";
    QTest::newRow("hour") << tBytes("2009-12-24 7") << "2009-12-24 07:mm:ss.0";
    QTest::newRow("minute") << tBytes("2009-12-24 7:8") << "2009-12-24 07:08:ss.0";
    QTest::newRow("minute and blanks") << tBytes("2009-12-24 7:8  ") << "2009-12-24 07:08:ss.0";
    QTest::newRow("second") << tBytes("2009-12-24 7:8:9") << "2009-12-24 07:08:09.0";
}

void TestDateTimeTexts::theTextMayEndAfterAnyField()
{
    QFETCH(const tBytes, text);
    QFETCH(const QString, full);
    for (auto* convert : { dateOf, timeOf }) {
        const auto [converted, expected] = convertNow(convert, text, full);
        QCOMPARE(converted, expected);
    }
}

void TestDateTimeTexts::timesOfDayAreReadAsLocalTime_data()
{
    // milliseconds after midnight and days since 1984, both in UTC; the texts are Berlin standard time
    addRows({
        { "1984-01-02 01:00:00.000", "00 00 00 00 01 00" },
        { "84-01-02 01:00:00.000", "00 00 00 00 01 00" },
        { "1984-01-01 01:00:00.123", "7b 00 00 00 00 00" },
        { "24.12.2009 18:30:15.250", "52 89 c1 03 11 25" },
        { "12/24/2009 18:30:15.250", "52 89 c1 03 11 25" },
        { "2009-07-01 12:00:00.0", "80 3f 5c 02 61 24" }, // standard time in summer, too
        { "2037-12-31 23:59:59.999", "7f 6d ef 04 0b 4d" },
        { "84-12-31 01:00:00.0", "00 00 00 00 6d 01" },
        { "99-01-01 01:00:00.0", "00 00 00 00 67 15" },
        { "0-01-01 01:00:00.0", "00 00 00 00 d4 16" }, // 2000
        { "37-01-01 01:00:00.0", "00 00 00 00 9f 4b" },
        { "2009-02-31 01:00:00.0", "00 00 00 00 e9 23" }, // 3 March
        { "2009-03-03 01:00:00.0", "00 00 00 00 e9 23" },
        { "38-01-01", "refused" },
        { "83-01-01", "refused" }, // 2083
        { "\t2009-12-24", "refused" },
        { "1983-12-31", "refused" },
        { "2038-01-01", "refused" },
        { "12:30", "refused" },
        { "1.13.2009", "refused" },
        { "32.1.2009", "refused" },
        { "1.1.2009 24:0", "refused" },
    });
}

void TestDateTimeTexts::timesOfDayAreReadAsLocalTime()
{
    QFETCH(const tBytes, text);
    QTEST(timeOf(text), "bytes");
}

void TestDateTimeTexts::aTimeOfDayBeforeDay0WrapsToTheLastOne()
{
    QCOMPARE(timeOf("1984-01-01 00:00:00.000").right(5), tBytes("ff ff"));
}

void TestDateTimeTexts::datesShowInIsoOrder_data()
{
    addRows({
        { "c2 eb 1e 12 18 0c 09", "2009-12-24 " },   // 60354 ms: no such time
        { "7a 3c 1e 12 1f 02 09", " 18:30:15.482" }, // 31 February: no such date
        { "7a 3c 1e 12 18 0c 09", "2009-12-24 18:30:15.482" },
        { "7a 3c 1e f2 f8 0c 09", "2009-12-24 18:30:15.482" }, // summer time, reserved bits and weekday
        { "00 00 00 00 01 01 46", "1970-01-01 00:00:00.000" },
        { "e8 03 02 01 01 00 00", " 01:02:01.000" }, // a date only without day, weekday, month and year is 1970
        { "e8 03 02 01 20 00 00", " 01:02:01.000" },
        { "e8 03 02 01 80 00 00", " 01:02:01.000" },
        { "e8 03 02 01 00 01 00", " 01:02:01.000" },
        { "e8 03 02 01 00 00 01", " 01:02:01.000" },
        { "00 00 00 00 01 01 45", "2069-01-01 00:00:00.000" },
        { "00 00 00 00 01 01 c7", "2099-01-01 00:00:00.000" },
        { "e8 03 02 01 00 00 00", "1970-01-01 01:02:01.000" },
        { "5f ea 3b 17 1f 0c 25", "2037-12-31 23:59:59.999" },
        { "00 00 1e 02 1d 03 0f", "2015-03-29 02:30:00.000" }, // skipped in Berlin when summer time began
    });
}

void TestDateTimeTexts::datesShowInIsoOrder()
{
    QFETCH(const tBytes, text);
    QFETCH(const tBytes, bytes);
    QCOMPARE(textOfDate(text), QString(bytes));
}

void TestDateTimeTexts::theByteOfADateIsItsYear()
{
    QCOMPARE(textOfDate("00 00 00 00 01 01 ff").left(4), QString("2155"));
    QCOMPARE(textOfDate("00 00 00 00 01 01 63").left(4), QString("1999"));
}

void TestDateTimeTexts::timesOfDayShowInLocalTime_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<quint32>("milliseconds");
    QTest::addColumn<quint16>("days");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* zone, quint32 milliseconds, quint16 days, const char* text) {
        QTest::newRow(name) << QByteArray(zone) << milliseconds << days << QString(text);
    };
    row("day 0", "UTC", 0, 0, "1984-01-01 00:00:00.000");
    row("day 0 in Berlin", "Europe/Berlin", 0, 0, "1984-01-01 01:00:00.000");
    row("milliseconds show as 000", "UTC", 1999, 1, "1984-01-02 00:00:01.000");
    row("summer in Berlin", "Europe/Berlin", 36000000, 9313, "2009-07-01 12:00:00.000");
    row("2038-01-01 still shows", "UTC", 0, 19724, "2038-01-01 00:00:00.000");
    row("a second later does not", "UTC", 1000, 19724, "1970-01-01 00:00:00.000");
    row("2038-01-01 shows in Berlin by its UTC", "Europe/Berlin", 0, 19724, "2038-01-01 01:00:00.000");
    row("a second later does not in Berlin", "Europe/Berlin", 1000, 19724, "1970-01-01 01:00:00.000");
    row("2038-01-01 shows in New York by its UTC", "America/New_York", 0, 19724, "2037-12-31 19:00:00.000");
    row("a second later does not in New York", "America/New_York", 1000, 19724, "1969-12-31 19:00:00.000");
    row("the last day", "UTC", 4294967295U, 65535, "1970-01-01 00:00:00.000");
}

void TestDateTimeTexts::timesOfDayShowInLocalTime()
{
    QFETCH(const QByteArray, zone);
    QFETCH(const quint32, milliseconds);
    QFETCH(const quint16, days);
    setZone(zone);
    QTEST(textOfTime(milliseconds, days), "text");
}

QTEST_APPLESS_MAIN(TestDateTimeTexts)
#include "TestDateTimeTexts.moc"
