// velmora-cli restore: what is written, what is not, and how it ends.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "RestoredDevice.h"

#include <QTest>

#include <atomic>
#include <memory>

class TestCliRestore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_device = std::make_unique<CRestoredDevice>(); }

    void writesWhatDiffersAndReadsItBack();
    void sameValuesAreNotWritten();
    void dryRunWritesNothing();
    void textThatIsNoValueIsRefused();
    void excludedIndexesAreNotWritten();
    void processOutputsAreTold();
    void valuesThatDoNotDependOnTheNodeIdAreTold();
    void readOnlyEntriesNeverMakeItFail();
    void leavesOutWhatTriggersAction_data();
    void leavesOutWhatTriggersAction();
    void storesWhenAsked();
    void storesNothingAfterAFailure();
    void interruptedStoringIsTold();
    void interruptedReadingBackIsTold();
    void valueThatCannotBeSentIsRefused();
    void valueOfAnotherSizeThatIsTheSame();
    void entriesWithoutAValueAreTold();
    void refusedStoringIsTold();
    void abortStops();
    void keepGoingGoesOn();
    void abortWhileReadingStopsBeforeWriting();
    void otherValueThatReadsBackIsADifference();
    void valuesOfAllKindsAreWritten();
    void foreignTextsAreMadeVisible();
    void silenceWhileReading();
    void silenceWhileWriting();
    void interruptSaysWhatWasWritten();
    void interruptWhileReading();
    void wrongUsageEndsWith2_data();
    void wrongUsageEndsWith2();

private:
    QString restore(const QByteArrayList& lines, const QStringList& more = {}) const
    {
        return m_device->restore(lines, more);
    }
    QStringList arguments(const QString& file, const QStringList& more = {}) const
    {
        return m_device->arguments(file, more);
    }

    std::unique_ptr<CRestoredDevice> m_device;
};

void TestCliRestore::writesWhatDiffersAndReadsItBack()
{
    m_device->set(0x2001, 0, "1200");
    QCOMPARE(restore(threeLines), "2000: 0x0001 -> 0x0011  First\n2002: 0x0003 -> 0x0013  Third\n"
                                  "-- 0\n2 of 2 values were written\n");
    QCOMPARE(m_device->steps(), QStringList({ "2000 = 11 00", "2002 = 13 00" }));
    QCOMPARE(m_device->value(0x2002, 0), "13 00");
}

void TestCliRestore::sameValuesAreNotWritten()
{
    QCOMPARE(restore(threeLines), threePlanned + "-- 0\n3 of 3 values were written\n");
    QCOMPARE(restore(threeLines), "-- 0\nnothing differs\n");
    QCOMPARE(m_device->steps(), threeWritten);
}

void TestCliRestore::dryRunWritesNothing()
{
    m_device->set(0x1800, 1, "85010000");
    QCOMPARE(restore(threeLines + QByteArrayList{ "0x1800,1,COB-ID,Unsigned32,RW,4,$NODEID+0x280," },
                     { "--dry-run", "--store" }),
             threePlanned + "1800:1: 0x00000185 -> 0x00000285  COB-ID\n-- 0\n"
                            "node 5 would be in pre-operational while they are written\n");
    QCOMPARE(m_device->steps(), QStringList());
}

void TestCliRestore::textThatIsNoValueIsRefused()
{
    const CSheetFile file(sheetOf(0x2000, 6, "rw", "First", "ParameterValue=70000\n"), "device.dcf");
    CCliRun run(arguments(file.name(), { "--force", "--keep-going" }));
    QCOMPARE(run.outcome(), "-- 2\n2000: \"70000\" is no value of type Unsigned16\nnot all values of " + file.name() +
                                " can be written (--exclude leaves them out); nothing was written\n");
    QCOMPARE(m_device->steps(), QStringList());
    CCliRun without(arguments(file.name(), { "--force", "--exclude", "2000" }));
    QCOMPARE(without.outcome(), "-- 0\nthe file does not tell of which device it is (1000, 1018)\nnothing differs\n");
    const CSheetFile constant(sheetOf(0x2000, 6, "ro", "First", "ParameterValue=70000\n"), "device.dcf");
    CCliRun readOnly(arguments(constant.name(), { "--force" }));
    QVERIFY(readOnly.outcome().startsWith("-- 0\n"));
}

void TestCliRestore::excludedIndexesAreNotWritten()
{
    QCOMPARE(restore(threeLines, { "--exclude", "0x2000", "--exclude", "2002", "--include", "2002" }),
             "2001: 0x0002 -> 0x0012  Second\n-- 0\n1 of 1 values were written\n");
    QCOMPARE(m_device->steps(), threeWritten.mid(1, 1));
}

void TestCliRestore::processOutputsAreTold()
{
    m_device->set(0x6040, 0, "0000");
    QCOMPARE(restore({ "0x6040,0,Controlword,Unsigned16,RWW,2,0x000F," }, { "--dry-run" }),
             "6040: 0x0000 -> 0x000F  Controlword\n-- 0\n"
             "warning: process outputs are among them (--exclude leaves them out): 6040\n");
}

// On another node an identifier follows the node-id, what has nothing to do with it does not.
void TestCliRestore::valuesThatDoNotDependOnTheNodeIdAreTold()
{
    m_device->set(0x1400, 1, "05020000");
    m_device->set(0x1400, 2, "05020000");
    const char* sum = "DefaultValue=$NODEID+0x200\n";
    const auto configured = [&](const char* nodeId) {
        return QByteArray("[OptionalObjects]\n1=0x1400\n[1400]\nParameterName=PDO\nObjectType=9\n") +
               "[1400sub1]\nParameterName=A\nDataType=7\nAccessType=rw\n" + sum + "ParameterValue=0x80000000\n" +
               "[1400sub2]\nParameterName=B\nDataType=7\nAccessType=rw\n" + sum + "ParameterValue=0x306\n" +
               "[DeviceComissioning]\nNodeID=" + nodeId + "\n";
    };
    const auto planned = [&](const char* nodeId) {
        const CSheetFile file(configured(nodeId), "device.dcf");
        CCliRun run(arguments(file.name(), { "--dry-run", "--force" }));
        return run.outcome().remove("the file does not tell of which device it is (1000, 1018)\n");
    };
    const QString end = "node 5 would be in pre-operational while they are written\n";
    const QString told = "written as they are in the file, since they do not depend on its node-id: ";
    QCOMPARE(planned("6"), "1400:1: 0x00000205 -> 0x80000000  A\n1400:2: 0x00000205 -> 0x00000305  B\n-- 0\n" + told +
                               "1400:1\n" + end);
    QCOMPARE(planned("5"), "1400:1: 0x00000205 -> 0x80000000  A\n1400:2: 0x00000205 -> 0x00000306  B\n-- 0\n" + end);
    QCOMPARE(planned("0"), "1400:1: 0x00000205 -> 0x80000000  A\n1400:2: 0x00000205 -> 0x00000306  B\n-- 0\n" + told +
                               "1400:1, 1400:2\n" + end);
}

// Not even when the device does not have them.
void TestCliRestore::readOnlyEntriesNeverMakeItFail()
{
    QCOMPARE(restore({ "0x2000,0,First,Unsigned16,RO,2,0x0011,", "0x2001,0,Second,Unsigned16,CONST,2,0x0012,",
                       "0x3000,0,Absent,Unsigned16,RO,2,0x0012," },
                     { "--include", "2000" }),
             "-- 0\nnothing differs\n");
    QCOMPARE(m_device->steps(), QStringList());
}

void TestCliRestore::leavesOutWhatTriggersAction_data()
{
    QTest::addColumn<QByteArray>("access");
    QTest::addColumn<bool>("isLeftOut");
    for (const char* index : { "1003", "1010", "1011", "1F50", "1F57", "1F5F" })
        QTest::newRow(index) << QByteArray("RW") << true;
    for (const char* index : { "1002", "1004", "1012", "1F4F", "1F60" })
        QTest::newRow(index) << QByteArray("RW") << false;
    QTest::newRow("2000") << QByteArray("WO") << true;
    QTest::newRow("2001") << QByteArray("RWR") << false;
    QTest::newRow("2002") << QByteArray("RWW") << false;
}

void TestCliRestore::leavesOutWhatTriggersAction()
{
    QFETCH(const QByteArray, access);
    QFETCH(const bool, isLeftOut);
    const QByteArray index = QTest::currentDataTag();
    m_device->set(index.toUInt(nullptr, 16), 1, "01");
    const QByteArray line = "0x" + index + ",1,Entry,Unsigned8," + access + ",1,0x07,";
    const QStringList written{ index + ":1 = 07" };
    QVERIFY(restore({ line }).contains("-- 0\n"));
    QCOMPARE(m_device->steps(), isLeftOut ? QStringList() : written);
    QVERIFY(restore({ line }, { "--include", "0x" + index.toLower() }).contains("-- 0\n"));
    QCOMPARE(m_device->steps(), written);
}

void TestCliRestore::storesWhenAsked()
{
    QCOMPARE(restore(threeLines, { "--store" }),
             threePlanned + "-- 0\nnode 5 has stored its parameters\n3 of 3 values were written\n");
    QCOMPARE(m_device->steps(), threeWritten + QStringList("1010:1 = 73 61 76 65"));
}

void TestCliRestore::storesNothingAfterAFailure()
{
    m_device->setHook(answering("2001 = 12 00", "ERROR: 0x06090031"));
    QCOMPARE(restore(threeLines, { "--store", "--keep-going" }),
             threePlanned + "-- 4\n2001: aborted by the device: 0x06090031 (Value of parameter written too high.)\n"
                            "the device was not told to store its parameters\n"
                            "2 of 3 values were written; not written: 2001\n");
    QCOMPARE(m_device->steps(), threeWritten);
}

void TestCliRestore::interruptedStoringIsTold()
{
    m_device->setHook(answering("1010:1 = 73 61 76 65", ""));
    const CDumpFile file(identityLines + threeLines);
    CCliRun run(arguments(file.name(), { "--store" }));
    QVERIFY(m_device->awaitStep("1010:1 = 73 61 76 65"));
    run.interrupt();
    QCOMPARE(run.outcome(), threePlanned +
                                "-- 130\ninterrupted; 3 of 3 values were written; the device may have stored "
                                "its parameters or not\n");
}

void TestCliRestore::interruptedReadingBackIsTold()
{
    std::atomic<bool> written = false;
    m_device->setHook([&written](const QString& step) {
        written = written || step == "2002 = 13 00";
        return written && step == "read 2001" ? std::optional(QByteArray()) : std::nullopt;
    });
    const CDumpFile file(identityLines + threeLines);
    CCliRun run(arguments(file.name()));
    QVERIFY(m_device->awaitStep("2002 = 13 00"));
    run.interrupt();
    QCOMPARE(run.outcome(), threePlanned + "-- 130\ninterrupted; 3 of 3 values were written; not all was read back\n");
    m_device->setHook({});
}

// Nothing is written before.
void TestCliRestore::valueThatCannotBeSentIsRefused()
{
    const QByteArray octets = QByteArrayList(QByteArrayList(800, "01")).join(' ');
    m_device->set(0x2009, 0, "00");
    for (const QStringList& options : { QStringList(), QStringList{ "--dry-run" } })
        QCOMPARE(restore(threeLines + QByteArrayList{ "0x2009,0,Large,Octet String,RW,800," + octets + ',' }, options)
                     .section("-- ", 1),
                 "2\n2009: more than 729 bytes cannot be sent; nothing was written\n");
    QCOMPARE(m_device->steps(), QStringList());
}

// The warning alone is no difference.
void TestCliRestore::valueOfAnotherSizeThatIsTheSame()
{
    m_device->set(0x2000, 0, "05");
    QCOMPARE(restore({ "0x2000,0,First,Unsigned16,RW,1,05," }, { "--store" }),
             "-- 0\n2000: warning: the device has 1 bytes, which is no Unsigned16\n"
             "node 5 has stored its parameters\nnothing differs\n");
}

void TestCliRestore::entriesWithoutAValueAreTold()
{
    QCOMPARE(restore({ "0x2000,0,First,Unsigned16,RW,,,0x08000020", "0x2001,0,Second,Unsigned16,RO,,,",
                       "0x1010,1,Save,Unsigned32,RW,,," }),
             "-- 0\nleft as they are, since the file has no value: 2000\nnothing differs\n");
}

void TestCliRestore::refusedStoringIsTold()
{
    m_device->setHook(answering("1010:1 = 73 61 76 65", "ERROR: 0x08000020"));
    const QString shown = restore(threeLines, { "--store" });
    QVERIFY2(shown.startsWith(threePlanned + "-- 4\n1010:1: aborted by the device: 0x08000020 ("), qPrintable(shown));
    QVERIFY2(shown.endsWith("; 3 of 3 values were written\n"), qPrintable(shown));
}

void TestCliRestore::abortStops()
{
    m_device->setHook(answering("2001 = 12 00", "ERROR: 0x06090031"));
    QCOMPARE(restore(threeLines), threePlanned +
                                      "-- 4\n2001: aborted by the device: 0x06090031 (Value of parameter written too "
                                      "high.); 1 of 3 values were written; not written: 2001, 2002\n");
    QCOMPARE(m_device->steps(), threeWritten.mid(0, 2));
}

void TestCliRestore::keepGoingGoesOn()
{
    m_device->setHook(answering("2000 = 11 00", "ERROR: 0x06090031"));
    QCOMPARE(restore(threeLines, { "--keep-going" }),
             threePlanned + "-- 4\n2000: aborted by the device: 0x06090031 (Value of parameter written too high.)\n"
                            "2 of 3 values were written; not written: 2000\n");
    QCOMPARE(m_device->steps(), threeWritten);
}

void TestCliRestore::abortWhileReadingStopsBeforeWriting()
{
    const QByteArrayList lines = threeLines + QByteArrayList{ "0x3000,0,Absent,Unsigned8,RW,1,1," };
    const QString aborted =
        "3000: aborted by the device: 0x06020000 (Object does not exist in the object dictionary.)\n";
    QCOMPARE(restore(lines), "-- 4\n" + aborted + "not all entries could be read; nothing was written\n");
    QCOMPARE(m_device->steps(), QStringList());
    m_device->setHook(answering("3000 = 01", "ERROR: 0x06020000"));
    QCOMPARE(restore(lines, { "--keep-going" }), threePlanned + "3000: ? -> 0x01  Absent\n-- 4\n" + aborted + aborted +
                                                     "3 of 4 values were written; not written: 3000\n");
}

void TestCliRestore::otherValueThatReadsBackIsADifference()
{
    m_device->setHook(answering("2001 = 12 00", "OK")); // and keeps the old one
    QCOMPARE(restore(threeLines, { "--store" }),
             threePlanned + "-- 1\n2001: reads back as 0x0002, not as 0x0012\n"
                            "the device was not told to store its parameters\n3 of 3 values were written\n");
}

void TestCliRestore::valuesOfAllKindsAreWritten()
{
    m_device->set(0x3001, 0, "00");
    m_device->set(0x3002, 0, "61");
    m_device->set(0x3003, 0, "0000000000000000");
    m_device->set(0x3004, 0, "0000");
    m_device->set(0x3005, 0, "61");
    const QString shown = restore({ "0x3001,0,A,Integer8,RW,1,0xFF,", "0x3002,0,B,Visible String,RW,5,\"a,\"\"b;\",",
                                    "0x3003,0,C,Real64,RW,8,1.5,", "0x3004,0,D,Unsigned16,RW,4,01 02 03 04,",
                                    "0x3005,0,E,Visible String,RW,0,," });
    QCOMPARE(m_device->steps(), QStringList({ "3001 = FF", "3002 = 61 2C 22 62 3B", "3003 = 00 00 00 00 00 00 F8 3F",
                                              "3004 = 01 02 03 04", "3005 = " }));
    QVERIFY2(shown.contains("5 of 5 values were written"), qPrintable(shown));
}

void TestCliRestore::foreignTextsAreMadeVisible()
{
    m_device->set(0x2008, 0, "1B5B324A");
    const QString shown = restore({ "0x2008,0,Na\tme,Visible String,RW,3,\"a\tb\"," }, { "--dry-run" });
    QVERIFY2(!shown.contains('\x1B') && !shown.contains('\t'), qPrintable(shown));
    QVERIFY(shown.endsWith("-- 0\n"));
}

void TestCliRestore::silenceWhileReading()
{
    m_device->setHook(answering("read 2001", ""));
    QCOMPARE(restore(threeLines, { "--gateway-timeout", "300", "--keep-going" }),
             "-- 3\n2001: the gateway does not answer; 1 of 3 entries were read; nothing was written\n");
    m_device->setHook(answering("read 1018:1", ""));
    QCOMPARE(restore(threeLines, { "--gateway-timeout", "300", "--force" }),
             "-- 3\n1018:1: the gateway does not answer; nothing was written\n");
    QCOMPARE(m_device->steps(), QStringList());
}

void TestCliRestore::silenceWhileWriting()
{
    m_device->setHook(answering("2001 = 12 00", ""));
    QCOMPARE(restore(threeLines, { "--gateway-timeout", "300", "--keep-going" }),
             threePlanned +
                 "-- 3\n2001: the gateway does not answer; 1 of 3 values were written; not written: 2001, 2002; "
                 "sent, but perhaps not written: 2001 = 0x0012\n");
    QCOMPARE(m_device->steps(), threeWritten.mid(0, 2));
}

void TestCliRestore::interruptSaysWhatWasWritten()
{
    QByteArrayList many;
    for (int sub = 1; sub <= 15; ++sub) {
        m_device->set(0x2100, static_cast<unsigned>(sub), "00");
        many += "0x2100,0x" + QByteArray::number(sub, 16) + ",Entry,Unsigned8,RW,1,0x01,";
    }
    m_device->setHook(answering("2100:3 = 01", ""));
    const CDumpFile file(identityLines + many);
    CCliRun run(arguments(file.name()));
    QVERIFY(m_device->awaitStep("2100:3 = 01"));
    run.interrupt();
    QCOMPARE(run.outcome().section("-- ", 1),
             "130\ninterrupted; 2 of 15 values were written; not written: 2100:3, 2100:4, 2100:5, 2100:6, 2100:7, "
             "2100:8, 2100:9, 2100:A, 2100:B, 2100:C and 3 more; sent, but perhaps not written: 2100:3 = 0x01\n");
}

void TestCliRestore::interruptWhileReading()
{
    std::atomic<bool> silent = false;
    m_device->setHook([&silent](const QString& step) {
        if (step != "read 2002")
            return std::optional<QByteArray>();
        silent = true;
        return std::optional(QByteArray());
    });
    const CDumpFile file(identityLines + threeLines);
    CCliRun run(arguments(file.name()));
    AWAIT_VERIFY(silent.load());
    run.interrupt();
    QCOMPARE(run.outcome(), "-- 130\ninterrupted; 2 of 3 entries were read; nothing was written\n");
}

void TestCliRestore::wrongUsageEndsWith2_data()
{
    QTest::addColumn<QStringList>("more");
    QTest::addColumn<QString>("message");
    const QString hint = "\ntry 'velmora-cli restore --help'";
    QTest::newRow("not there") << QStringList("gone.csv") << "cannot read gone.csv: No such file or directory";
    QTest::newRow("no file") << QStringList() << "file is required" + hint;
    QTest::newRow("no index") << QStringList{ "gone.csv", "--include", "x" }
                              << "--include: expected an index such as 1003, not x" + hint;
    QTest::newRow("index too large") << QStringList{ "gone.csv", "--include", "10000" }
                                     << "--include: expected an index such as 1003, not 10000" + hint;
}

void TestCliRestore::wrongUsageEndsWith2()
{
    QFETCH(const QStringList, more);
    QFETCH(const QString, message);
    CCliRun run(QStringList{ "restore", "-i", m_device->interface(), "-n", "5" } + more);
    QCOMPARE(run.outcome(), "-- 2\n" + message + '\n');
}

QTEST_GUILESS_MAIN(TestCliRestore)
#include "TestCliRestore.moc"
