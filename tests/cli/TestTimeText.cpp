// Times on the command line.
// SPDX-License-Identifier: MIT
#include "network/TimeText.h"

#include <QTest>

class TestTimeText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timesHaveAUnit_data();
    void timesHaveAUnit();
    void otherTextsAreNone_data();
    void otherTextsAreNone();
};

void TestTimeText::timesHaveAUnit_data()
{
    QTest::addColumn<int>("milliseconds");
    QTest::newRow("0ms") << 0;
    QTest::newRow("100ms") << 100;
    QTest::newRow("010ms") << 10;
    QTest::newRow("1.9ms") << 1;
    QTest::newRow("2s") << 2000;
    QTest::newRow("1.5s") << 1500;
    QTest::newRow("1min") << 60000;
    QTest::newRow("1440min") << 86400000;
}

void TestTimeText::timesHaveAUnit()
{
    QFETCH(int, milliseconds);
    QCOMPARE(millisecondsOf(QTest::currentDataTag()), std::optional(milliseconds));
}

void TestTimeText::otherTextsAreNone_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text :
         { "",    "100", "ms",  "1h",   "1 s",   " 1s",    "1s ",  "1s\n",  "1S",      "-1s",
           "+1s", ".5s", "1.s", "1,5s", "1e3ms", "0x10ms", "infs", "nanms", "1441min", "99999999999999999999s" })
        QTest::addRow("\"%s\"", text) << QString(text);
}

void TestTimeText::otherTextsAreNone()
{
    QFETCH(QString, text);
    QCOMPARE(millisecondsOf(text), std::nullopt);
}

QTEST_APPLESS_MAIN(TestTimeText)
#include "TestTimeText.moc"
