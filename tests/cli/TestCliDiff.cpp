// velmora-cli diff: what it writes, where, and how it ends.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "SheetFile.h"

#include <QDir>
#include <QTest>

class TestCliDiff : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void differenceEndsWith1();
    void differencesInJson();
    void noDifferenceEndsWith0_data();
    void noDifferenceEndsWith0();
    void sheetThatDoesNotLoadEndsWith2();
    void wrongUsageEndsWith2();

private:
    const CSheetFile m_a{ sheetOf(0x1017, 6, "rw", "Heartbeat", "DefaultValue=0\n"), "a.eds" };
    const CSheetFile m_b{ sheetOf(0x1017, 6, "rw", "Heartbeat", "DefaultValue=1000\n"), "b.eds" };
};

void TestCliDiff::differenceEndsWith1()
{
    const tCliRun run = runCli({ "diff", m_a.name(), m_b.name() });
    QCOMPARE(run.status, 1);
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(run.output, QByteArray("1017: default 0 -> 1000\n"));

    const CSheetFile other(sheetOf(0x2000, 6));
    QCOMPARE(runCli({ "diff", m_a.name(), other.name() }).output,
             "1017: only in " + m_a.name().toUtf8() + "\n2000: only in " + other.name().toUtf8() + '\n');
}

void TestCliDiff::differencesInJson()
{
    const tCliRun run = runCli({ "diff", m_a.name(), m_b.name(), "--format", "json" });
    QCOMPARE(run.status, 1);
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(run.output, QByteArray(R"({
    "a": "A",
    "b": "B",
    "differences": [
        {
            "a": "0",
            "b": "1000",
            "field": "default",
            "index": "0x1017",
            "subindex": 0
        }
    ]
}
)")
                             .replace("\"A\"", '"' + m_a.name().toUtf8() + '"')
                             .replace("\"B\"", '"' + m_b.name().toUtf8() + '"'));
}

void TestCliDiff::noDifferenceEndsWith0_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("the shipped sheet") << QString(VELMORA_SHARE "/velmora-demo.eds");
    for (const QFileInfo& info : QDir(VELMORA_SAMPLE_SHEETS).entryInfoList({ "*.eds", "*.dcf" }))
        if (info.fileName() != "e35.eds") // does not load
            QTest::newRow(qPrintable(info.fileName())) << info.filePath();
}

void TestCliDiff::noDifferenceEndsWith0()
{
    QFETCH(QString, path);
    const tCliRun run = runCli({ "diff", path, path });
    QCOMPARE(run.error, QByteArray());
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.status, 0);
}

void TestCliDiff::sheetThatDoesNotLoadEndsWith2()
{
    const CSheetFile broken("[a]\n#k=1\n");
    for (const bool first : { true, false }) {
        const tCliRun run = runCli({ "diff", first ? broken.name() : m_a.name(), first ? m_a.name() : broken.name() });
        QCOMPARE(run.status, 2);
        QCOMPARE(run.output, QByteArray());
        QVERIFY(run.error.startsWith("velmora-cli: not a valid data sheet: " + broken.name().toUtf8() +
                                     ", line 2: \"#k=1\""));
    }
}

void TestCliDiff::wrongUsageEndsWith2()
{
    const tCliRun run = runCli({ "diff", m_a.name() });
    QCOMPARE(run.status, 2);
    QCOMPARE(run.output, QByteArray());
    QCOMPARE(run.error, QByteArray("velmora-cli: B is required\nvelmora-cli: try 'velmora-cli diff --help'\n"));
}

QTEST_GUILESS_MAIN(TestCliDiff)
#include "TestCliDiff.moc"
