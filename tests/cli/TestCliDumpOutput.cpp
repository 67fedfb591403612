// velmora-cli dump: the file that it writes, and what cannot be written into which.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "SheetFile.h"
#include "SmallDevice.h"

#include "sheets/Snapshot.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class TestCliDumpOutput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void outputThatWouldBeWrongIsRefusedAtFirst_data();
    void outputThatWouldBeWrongIsRefusedAtFirst();
    void sheetIsNoOutputByAnyPath_data();
    void sheetIsNoOutputByAnyPath();
    void configurationThatIsTheSheetIsRenewed();
    void linkIsNoConfigurationWhereItsFileIsNone();
    void fileThatCannotBeWrittenIsLeftAsItWas();
    void fileIsReplacedAsAWhole();
    void pipeIsWrittenAndNotReplaced();
    void emptyValueThatADcfCannotHoldIsTold();
    void dumpWithoutAnyValueIsNotWritten();
    void valueThatADcfCannotHoldIsTold();

private:
    static QStringList dump(const QString& interface, const QString& sheet, const QStringList& more = {})
    {
        return QStringList{ "dump", "-i", interface, "-n", "5", "-s", sheet } + more;
    }
    QString path(const QString& name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<CScriptedDevice> m_device;
    const CSheetFile m_sheet{ smallSheet(), "small.eds" };
};

void TestCliDumpOutput::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_device = std::make_unique<CScriptedDevice>();
    setValues(*m_device);
}

// Neither the sheet nor the interface is there: it ends before it looks for them.
void TestCliDumpOutput::outputThatWouldBeWrongIsRefusedAtFirst_data()
{
    QTest::addColumn<QStringList>("format");
    QTest::addColumn<QString>("reason");
    const QString noFormat = "the end of its name tells no format: .csv, .json, .dcf or .txt (or --format)";
    for (const char* name : { "saved.text", "saved.eds", "saved", "csv", ".csv/saved" })
        QTest::newRow(name) << QStringList() << noFormat;
    for (const char* name : { "saved.eds", "saved.EDS" })
        QTest::addRow("%s as DCF", name) << QStringList{
            "--format", "dcf"
        } << "a configuration would be read as a data sheet there: its name ends in .dcf";
}

void TestCliDumpOutput::outputThatWouldBeWrongIsRefusedAtFirst()
{
    QFETCH(const QStringList, format);
    QFETCH(const QString, reason);
    const QString name = QString(QTest::currentDataTag()).section(' ', 0, 0);
    CCliRun run(dump("127.0.0.1:1", "none.eds", QStringList{ "-o", name } + format), m_folder->path());
    QCOMPARE(run.outcome(), "-- 2\n" + name + " is not written: " + reason + '\n');
}

void TestCliDumpOutput::sheetIsNoOutputByAnyPath_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("format");
    for (const char* format : { "csv", "json", "table" })
        for (const char* name : { "a.eds", "a.dcf" })
            QTest::addRow("%s as %s", name, format) << name << name << format;
    QTest::newRow("another path") << "a.eds"
                                  << "folder/../a.eds"
                                  << "csv";
    QTest::newRow("symbolic link") << "a.eds"
                                   << "symbolic.csv"
                                   << "csv";
    QTest::newRow("link of the sheet") << "symbolic.csv"
                                       << "a.eds"
                                       << "csv";
    QTest::newRow("hard link") << "a.eds"
                               << "hard.dcf"
                               << "dcf";
    QTest::newRow("symbolic link as DCF") << "a.eds"
                                          << "symbolic.dcf"
                                          << "dcf";
    QTest::newRow("both links") << "symbolic.dcf"
                                << "symbolic.dcf"
                                << "dcf";
}

void TestCliDumpOutput::sheetIsNoOutputByAnyPath()
{
    QFETCH(const QString, sheet);
    QFETCH(const QString, output);
    QFETCH(const QString, format);
    QVERIFY(QDir(m_folder->path()).mkdir("folder"));
    QVERIFY(QFile::copy(m_sheet.name(), path("a.eds")) && QFile::copy(m_sheet.name(), path("a.dcf")));
    QVERIFY(QFile::link("a.eds", path("symbolic.csv")) && QFile::link("a.eds", path("symbolic.dcf")));
    QCOMPARE(QProcess::execute("ln", { path("a.eds"), path("hard.dcf") }), 0);
    CCliRun run(dump("127.0.0.1:1", sheet, { "-o", output, "--format", format }), m_folder->path());
    QCOMPARE(run.outcome(), "-- 2\n" + output + " is not written: it is the sheet\n");
    QCOMPARE(bytesOf(path("a.eds")), smallSheet());
    QCOMPARE(bytesOf(path("a.dcf")), smallSheet());
}

void TestCliDumpOutput::configurationThatIsTheSheetIsRenewed()
{
    CCliRun first(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(first.outcome(), "-- 0\n");
    const QByteArray saved = bytesOf(path("saved.dcf"));
    m_device->set(0x2000, 0, "E903");
    QVERIFY(QFile::link("saved.dcf", path("link.DCF")));
    for (const auto& [sheet, output] : { std::pair("saved.dcf", "saved.dcf"), { "./saved.dcf", "link.DCF" } }) {
        CCliRun run(dump(m_device->interface(), sheet, { "-o", output }), m_folder->path());
        QCOMPARE(run.outcome(), "-- 0\n");
        QCOMPARE(bytesOf(path("saved.dcf")), QByteArray(saved).replace("=0x03E8", "=0x03E9"));
    }
}

void TestCliDumpOutput::linkIsNoConfigurationWhereItsFileIsNone()
{
    QVERIFY(QFile::copy(m_sheet.name(), path("a.eds")) && QFile::link("a.eds", path("a.dcf")));
    CCliRun run(dump(m_device->interface(), "a.dcf", { "-o", "a.dcf" }), m_folder->path());
    QCOMPARE(run.outcome(), "-- 2\na.dcf is not written: it is the sheet\n");
}

void TestCliDumpOutput::fileThatCannotBeWrittenIsLeftAsItWas()
{
    CCliRun nowhere(dump(m_device->interface(), m_sheet.name(), { "-o", path("no/folder.csv") }));
    QCOMPARE(nowhere.outcome(), "-- 2\ncannot write " + path("no/folder.csv") + ": No such file or directory\n");

    QVERIFY(QDir(m_folder->path()).mkdir("saved.csv"));
    CCliRun folder(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(folder.outcome(), "-- 2\ncannot write " + path("saved.csv") + ": Filename refers to a directory\n");

    // A file that may not grow, as on a full disk.
    const CSheetFile old("old", "saved.csv");
    QProcess run;
    run.start("bash", QStringList{ "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "bash", VELMORA_CLI } +
                          dump(m_device->interface(), m_sheet.name(), { "-o", old.name() }));
    QVERIFY(run.waitForFinished(patience));
    QCOMPARE(run.exitCode(), 2);
    QCOMPARE(run.readAllStandardOutput(), QByteArray());
    QCOMPARE(QString::fromUtf8(run.readAllStandardError()),
             "velmora-cli: cannot write " + old.name() + ": File too large\n");
    QCOMPARE(bytesOf(old.name()), "old");
    QCOMPARE(QDir(QFileInfo(old.name()).path()).entryList(QDir::Files | QDir::Hidden), QStringList("saved.csv"));
}

void TestCliDumpOutput::fileIsReplacedAsAWhole()
{
    const CSheetFile old(QByteArray(100000, 'x'), "saved.csv");
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", old.name() }));
    QCOMPARE(run.outcome(), "-- 0\n");
    QCOMPARE(bytesOf(old.name()), smallCsv);
    QCOMPARE(QDir(QFileInfo(old.name()).path()).entryList(QDir::Files | QDir::Hidden), QStringList("saved.csv"));
}

void TestCliDumpOutput::pipeIsWrittenAndNotReplaced()
{
    const QString pipe = path("pipe.csv");
    QCOMPARE(QProcess::execute("mkfifo", { pipe }), 0);
    QProcess reader;
    reader.start("cat", { pipe });
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", pipe }));
    QCOMPARE(run.outcome(), "-- 0\n");
    QVERIFY(QFileInfo::exists(pipe) && !QFileInfo(pipe).isFile());
    QVERIFY(reader.waitForFinished(patience));
    QCOMPARE(reader.readAllStandardOutput(), smallCsv);
}

// Without a line in the file a value is not known, also where the sheet has no default value.
void TestCliDumpOutput::emptyValueThatADcfCannotHoldIsTold()
{
    const QString asInTheSheet = "empty as in the sheet, for which a DCF has no line: 2003\n";
    m_device->set(0x2003, 0, "");
    CCliRun first(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(first.outcome(), "-- 0\n" + asInTheSheet);
    m_device->set(0x2001, 0, ""); // "none" in the sheet
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(run.outcome(), "-- 1\n" + asInTheSheet + "a DCF cannot hold these values, CSV and JSON can: 2001\n");
    const auto values = [this](const char* name) {
        QStringList texts;
        for (const tSnapshotEntry& entry : loadSnapshot(path(name)).entries)
            texts += entry.value ? '"' + QString::fromLatin1(entry.value->toHex()) + '"' : "none";
        return texts;
    };
    QCOMPARE(values("saved.dcf"), QStringList({ "\"e803\"", "none", "none", "none", "\"80010000\"" }));
    CCliRun csv(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(csv.outcome(), "-- 0\n");
    QCOMPARE(values("saved.csv"), QStringList({ "\"e803\"", "\"\"", "none", "\"\"", "\"80010000\"" }));
}

// The node is gone, or nothing that comes is a value: the file of another day is not replaced by one without values.
void TestCliDumpOutput::dumpWithoutAnyValueIsNotWritten()
{
    const CSheetFile old("old", "saved.csv");
    const auto shownFor = [&](const QByteArray& answer) {
        m_device->setHook(
            [answer](const QString& step) { return step.startsWith("read") ? std::optional(answer) : std::nullopt; });
        CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", old.name() }));
        return run.outcome();
    };
    QCOMPARE(shownFor("Error: 107"), "-- 3\n2000: the gateway answers error 107 (no such node); 0 of 4 entries were "
                                     "read; nothing was saved\n");
    QCOMPARE(shownFor("Error: 106"), "-- 3\n2000: the gateway answers error 106 (no such network); 0 of 4 entries were "
                                     "read; nothing was saved\n");
    const QString odd = shownFor("Error: 100");
    QVERIFY2(odd.endsWith("no entry could be read; nothing was saved\n"), qPrintable(odd));
    QCOMPARE(bytesOf(old.name()), "old");
}

void TestCliDumpOutput::valueThatADcfCannotHoldIsTold()
{
    m_device->set(0x2000, 0, "E80300");
    m_device->set(0x2001, 0, "613B62"); // a;b
    CCliRun run(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.dcf") }));
    QCOMPARE(run.outcome(), "-- 1\n"
                            "2000: warning: the device has 3 bytes, which is no Unsigned16\n"
                            "a DCF cannot hold these values, CSV and JSON can: 2000, 2001\n");
    QCOMPARE(bytesOf(path("saved.dcf")).count("ParameterValue"), 2);
    CCliRun csv(dump(m_device->interface(), m_sheet.name(), { "-o", path("saved.csv") }));
    QCOMPARE(csv.status(), 1);
    QVERIFY(bytesOf(path("saved.csv")).contains("Visible String,RW,3,a;b,"));
}

QTEST_GUILESS_MAIN(TestCliDumpOutput)
#include "TestCliDumpOutput.moc"
