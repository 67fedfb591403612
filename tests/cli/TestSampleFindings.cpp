// What the check says of real data sheets. Every expected finding was judged by a person: there is no false alarm.
// SPDX-License-Identifier: MIT
#include "sheets/FindingsText.h"

#include "FindingLines.h"

#include <QDir>
#include <QFile>
#include <QTest>

static const char expectedFolder[] = VELMORA_TEST_DATA "/check/expected/";

class TestSampleFindings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findingsAreAsExpected_data();
    void findingsAreAsExpected();
    void everySampleHasItsExpectation();
};

void TestSampleFindings::findingsAreAsExpected_data()
{
    QTest::addColumn<QString>("expected");
    for (const QFileInfo& file : QDir(expectedFolder).entryInfoList(QDir::Files))
        QTest::newRow(qPrintable(file.completeBaseName())) << file.filePath();
}

void TestSampleFindings::findingsAreAsExpected()
{
    QFETCH(QString, expected);
    const QString sheet = QDir(VELMORA_SAMPLE_SHEETS).filePath(QTest::currentDataTag());
    if (!QFile::exists(sheet))
        QSKIP("the sample sheets are not here");
    QFile file(expected);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList wanted = QString::fromUtf8(file.readAll()).split('\n');
    const QString found = findingsText(checkSheet(sheet, allRules())).replace(sheet, QTest::currentDataTag());
    QCOMPARE(found.split('\n'), wanted);
}

void TestSampleFindings::everySampleHasItsExpectation()
{
    for (const QString& sheet : QDir(VELMORA_SAMPLE_SHEETS).entryList({ "*.eds", "*.dcf" }))
        QVERIFY2(QFile::exists(expectedFolder + sheet + ".txt"), qPrintable(sheet));
}

QTEST_APPLESS_MAIN(TestSampleFindings)
#include "TestSampleFindings.moc"
