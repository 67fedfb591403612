// velmora-cli restore: PDO parameters, in an order that careful devices accept.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "DumpFile.h"
#include "ScriptedDevice.h"

#include <QTest>

#include <memory>

namespace
{

// A transmit PDO: its COB-ID, its inhibit time and its two mapped objects.
const QByteArrayList pdoLines = { "0x1800,0,Count,Unsigned8,CONST,1,0x05,",
                                  "0x1800,1,COB-ID,Unsigned32,RW,4,$NODEID+0x00000280,",
                                  "0x1800,3,Inhibit time,Unsigned16,RW,2,0x0064,",
                                  "0x1A00,0,Count,Unsigned8,RW,1,0x02,",
                                  "0x1A00,1,Object 1,Unsigned32,RW,4,0x60000208,",
                                  "0x1A00,2,Object 2,Unsigned32,RW,4,0x60000108,",
                                  "0x2000,0,Other,Unsigned8,RW,1,0x07," };
const QStringList pdoSteps = { "preoperational",       "1800:1 = 85 01 00 80", "1A00 = 00",
                               "1A00:1 = 08 02 00 60", "1A00:2 = 08 01 00 60", "1A00 = 02",
                               "1800:3 = 64 00",       "1800:1 = 85 02 00 00", "2000 = 07" };
const QString begun = "node 5 is in pre-operational while its PDO parameters are written\n";
const QString abandoned = "node 5 is still in pre-operational\n";
const QString refusedMapping = "1A00:2: aborted by the device: 0x06040041 (Object cannot be mapped to the PDO.)";

// Refuses what begins so.
CScriptedDevice::tHook refusing(const QString& step, const QByteArray& code = "0x06040041")
{
    return [=](const QString& each) {
        return each.startsWith(step) ? std::optional<QByteArray>("ERROR: " + code) : std::nullopt;
    };
}

const QString started = "node 5 was started again; its state before is not known\n";

} // namespace

class TestCliRestoreOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void pdoIsWrittenInPreOperationalAndStartedAgain();
    void noStartLeavesItInPreOperational();
    void storesBeforeItStarts();
    void otherParametersLeaveTheStateAlone();
    void refusedPdoIsAsBeforeAgain();
    void keepGoingWritesTheOthersAfterAPdoFailed();
    void keepGoingWritesAPdoWithoutARefusedParameter();
    void pdoThatCannotBeAsBeforeIsTold();
    void cutAnswerToAPdoParameterEndsIt();
    void refusedOtherParameterStartsAllTheSame();
    void refusedSyncCounterGivesThePeriodBack();
    void keepGoingStartsAfterAnotherParameterFailed();
    void refusedStoringStartsAllTheSame();
    void interruptLeavesItInPreOperational();
    void excludedParametersOfAPdoStay();
    void excludedPeriodOfTheSyncStays();
    void writeOnlyCobIdIsNotWritten();
    void oddAnswerToTheStateIsTold();
    void fileWithTheMappingOnly();
    void readOnlyCountIsNotWritten();
    void otherCobIdsAndTheSyncCounter();
    void relativeCobIdOfTheNode();

private:
    QString restore(const QByteArrayList& lines, const QStringList& more = {}) const
    {
        const CDumpFile file(identityLines + lines);
        CCliRun run(QStringList{ "restore", "-i", m_device->interface(), "-n", "5", file.name() } + more);
        return run.outcome().section("-- ", 1);
    }

    std::unique_ptr<CScriptedDevice> m_device;
};

void TestCliRestoreOrder::init()
{
    m_device = std::make_unique<CScriptedDevice>();
    m_device->setOperational();
    m_device->set(0x1000, 0, "91010F00");
    m_device->set(0x1018, 1, "B5F00000");
    m_device->set(0x1018, 2, "01040000");
    m_device->set(0x1800, 1, "85010000");
    m_device->set(0x1800, 3, "0000");
    m_device->set(0x1A00, 0, "02");
    m_device->set(0x1A00, 1, "08010060");
    m_device->set(0x1A00, 2, "08020060");
    m_device->set(0x2000, 0, "00");
}

void TestCliRestoreOrder::pdoIsWrittenInPreOperationalAndStartedAgain()
{
    QCOMPARE(restore(pdoLines), "0\n" + begun + started + "5 of 5 values were written\n");
    QCOMPARE(m_device->steps(), pdoSteps + QStringList("start"));
}

void TestCliRestoreOrder::noStartLeavesItInPreOperational()
{
    QCOMPARE(restore(pdoLines, { "--no-start" }),
             "0\n" + begun + "node 5 stays in pre-operational\n5 of 5 values were written\n");
    QCOMPARE(m_device->steps(), pdoSteps);
}

// Some devices store in pre-operational only.
void TestCliRestoreOrder::storesBeforeItStarts()
{
    QCOMPARE(restore(pdoLines, { "--store" }),
             "0\n" + begun + "node 5 has stored its parameters\n" + started + "5 of 5 values were written\n");
    QCOMPARE(m_device->steps(), pdoSteps + QStringList({ "1010:1 = 73 61 76 65", "start" }));
}

void TestCliRestoreOrder::otherParametersLeaveTheStateAlone()
{
    QCOMPARE(restore(pdoLines.mid(6)), "0\n1 of 1 values were written\n");
    QCOMPARE(m_device->steps(), QStringList("2000 = 07"));
}

// The PDO works as before, and is not between two configurations.
void TestCliRestoreOrder::refusedPdoIsAsBeforeAgain()
{
    m_device->setHook(refusing("1A00:2 = 08 01 00 60"));
    QCOMPARE(restore(pdoLines, { "--store" }),
             "4\n" + begun + "as before again: 1800:1, 1A00, 1A00:1\n" + abandoned + refusedMapping +
                 "; 0 of 5 values were written; not written: 1800:1, 1800:3, 1A00:1, 1A00:2, 2000\n");
    QCOMPARE(m_device->steps(),
             pdoSteps.mid(0, 5) + QStringList({ "1800:1 = 85 01 00 80", "1A00 = 00", "1A00:1 = 08 01 00 60",
                                                "1A00:2 = 08 02 00 60", "1A00 = 02", "1800:1 = 85 01 00 00" }));
}

void TestCliRestoreOrder::keepGoingWritesTheOthersAfterAPdoFailed()
{
    m_device->setHook(refusing("1A00:2 = 08 01 00 60"));
    QCOMPARE(restore(pdoLines, { "--keep-going" }),
             "4\n" + begun + "as before again: 1800:1, 1A00, 1A00:1\n" + refusedMapping + "\n" + abandoned +
                 "1 of 5 values were written; not written: 1800:1, 1800:3, 1A00:1, 1A00:2\n");
    QCOMPARE(m_device->value(0x1800, 1), "85 01 00 00");
    QCOMPARE(m_device->value(0x2000, 0), "07");
}

void TestCliRestoreOrder::keepGoingWritesAPdoWithoutARefusedParameter()
{
    m_device->setHook(refusing("1800:3 = "));
    QCOMPARE(restore(pdoLines, { "--keep-going" }),
             "4\n" + begun + QString(refusedMapping).replace("1A00:2", "1800:3") + "\n" + abandoned +
                 "4 of 5 values were written; not written: 1800:3\n");
    QCOMPARE(m_device->steps(), pdoSteps);
}

void TestCliRestoreOrder::pdoThatCannotBeAsBeforeIsTold()
{
    m_device->setHook(refusing("1A00:2 = "));
    const QString halfWay = "left half-way: 1800:1 = 0x80000185, 1A00 = 0x00, 1A00:1 = 0x";
    QCOMPARE(restore(pdoLines),
             "4\n" + begun + abandoned + refusedMapping +
                 "; 0 of 5 values were written; not written: 1800:1, 1800:3, 1A00:1, 1A00:2, 2000; " + halfWay +
                 "60000108\n");
    init();
    m_device->setHook(refusing("1A00:2 = "));
    QCOMPARE(restore(pdoLines, { "--keep-going" }).section("; ", -1), halfWay + "60000108\n");
}

// Nobody knows what the device has then.
void TestCliRestoreOrder::cutAnswerToAPdoParameterEndsIt()
{
    m_device->setHook([](const QString& step) {
        return step.startsWith("1A00:2 = ") ? std::optional(QByteArray("O")) : std::nullopt;
    });
    const QString shown = restore(pdoLines, { "--keep-going" });
    QVERIFY2(shown.startsWith("3\n" + begun + abandoned + "1A00:2: "), qPrintable(shown));
    QVERIFY2(shown.endsWith("; left half-way: 1800:1 = 0x80000185, 1A00 = 0x00, 1A00:1 = 0x60000208; sent, but perhaps "
                            "not written: 1A00:2 = 0x60000108\n"),
             qPrintable(shown));
    QCOMPARE(m_device->steps(), pdoSteps.mid(0, 5));
}

// All PDO parameters are written then.
void TestCliRestoreOrder::refusedOtherParameterStartsAllTheSame()
{
    m_device->setHook(refusing("2000 = ", "0x06090031"));
    QCOMPARE(restore(pdoLines),
             "4\n" + begun + started +
                 "2000: aborted by the device: 0x06090031 (Value of parameter written too high.); 4 of 5 values were "
                 "written; not written: 2000\n");
    QCOMPARE(m_device->steps(), pdoSteps + QStringList("start"));
}

void TestCliRestoreOrder::refusedSyncCounterGivesThePeriodBack()
{
    m_device->set(0x1006, 0, "E8030000");
    m_device->set(0x1019, 0, "00");
    m_device->setHook(refusing("1019 = 0A", "0x06090031"));
    const QString shown =
        restore({ "0x1006,0,Period,Unsigned32,RW,4,0x000007D0,", "0x1019,0,Counter,Unsigned8,RW,1,0x0A," });
    QVERIFY2(shown.startsWith("4\nas before again: 1006\n"), qPrintable(shown));
    QCOMPARE(m_device->value(0x1006, 0), "E8 03 00 00");
}

void TestCliRestoreOrder::keepGoingStartsAfterAnotherParameterFailed()
{
    m_device->setHook(refusing("2000 = ", "0x06090031"));
    QCOMPARE(restore(pdoLines, { "--keep-going" }),
             "4\n" + begun + "2000: aborted by the device: 0x06090031 (Value of parameter written too high.)\n" +
                 started + "4 of 5 values were written; not written: 2000\n");
    QCOMPARE(m_device->steps(), pdoSteps + QStringList("start"));
}

void TestCliRestoreOrder::refusedStoringStartsAllTheSame()
{
    m_device->setHook(refusing("1010", "0x06020000"));
    QCOMPARE(restore(pdoLines, { "--store" }),
             "4\n" + begun + started +
                 "1010:1: aborted by the device: 0x06020000 (Object does not exist in the object dictionary.); 5 of 5 "
                 "values were written\n");
}

void TestCliRestoreOrder::interruptLeavesItInPreOperational()
{
    m_device->setHook([](const QString& step) {
        return step == "1A00:1 = 08 02 00 60" ? std::optional(QByteArray()) : std::nullopt;
    });
    const CDumpFile file(identityLines + pdoLines);
    CCliRun run({ "restore", "-i", m_device->interface(), "-n", "5", file.name() });
    QVERIFY(m_device->awaitStep("1A00:1 = 08 02 00 60"));
    run.interrupt();
    QCOMPARE(run.outcome().section("-- ", 1),
             "130\n" + begun + abandoned +
                 "interrupted; 0 of 5 values were written; not written: 1800:1, 1800:3, 1A00:1, 1A00:2, 2000; left "
                 "half-way: 1800:1 = 0x80000185, 1A00 = 0x00; sent, but perhaps not written: 1A00:1 = 0x60000208\n");
    QCOMPARE(m_device->steps(), pdoSteps.mid(0, 4));
}

// What is left out is not written on the way either: the device keeps its own value.
void TestCliRestoreOrder::excludedParametersOfAPdoStay()
{
    m_device->set(0x1800, 1, "85020000");
    QByteArrayList lines = pdoLines.mid(0, 6);
    lines[1].replace("0x00000280", "0x00000380");
    QCOMPARE(restore(lines, { "--exclude", "1800" }), "0\n" + begun + started + "2 of 2 values were written\n");
    QCOMPARE(m_device->steps(),
             QStringList({ "preoperational", "1800:1 = 85 02 00 80", "1A00 = 00", "1A00:1 = 08 02 00 60",
                           "1A00:2 = 08 01 00 60", "1A00 = 02", "1800:1 = 85 02 00 00", "start" }));
}

void TestCliRestoreOrder::excludedPeriodOfTheSyncStays()
{
    m_device->set(0x1006, 0, "F4010000");
    m_device->set(0x1019, 0, "08");
    QCOMPARE(restore({ "0x1006,0,Period,Unsigned32,RW,4,0x000007D0,", "0x1019,0,Counter,Unsigned8,RW,1,0x04," },
                     { "--exclude", "1006" }),
             "0\n1 of 1 values were written\n");
    QCOMPARE(m_device->steps(), QStringList({ "1006 = 00 00 00 00", "1019 = 04", "1006 = F4 01 00 00" }));
}

void TestCliRestoreOrder::writeOnlyCobIdIsNotWritten()
{
    QByteArrayList lines = pdoLines.mid(0, 6);
    lines[1].replace(",RW,", ",WO,");
    QVERIFY(restore(lines).startsWith("4\n" + begun)); // the device refuses another mapping then
    QVERIFY2(m_device->steps().filter("1800:1").isEmpty(), qPrintable(m_device->steps().join("; ")));
}

// The command may have reached the node all the same.
void TestCliRestoreOrder::oddAnswerToTheStateIsTold()
{
    const auto odd = [this](const QString& step) {
        m_device->setHook(
            [step](const QString& each) { return each == step ? std::optional(QByteArray("what")) : std::nullopt; });
        return restore(pdoLines);
    };
    const QString uncertain = "node 5 may be in pre-operational\n";
    const QString before = odd("preoperational");
    QVERIFY2(before.startsWith("3\n" + uncertain) && before.contains("; 0 of 5 values were written; not written: "),
             qPrintable(before));
    const QString after = odd("start");
    QVERIFY2(after.startsWith("3\n" + begun + uncertain) && after.endsWith("; 5 of 5 values were written\n"),
             qPrintable(after));
}

// What the file does not tell stays as it is, and is switched off for the time nevertheless.
void TestCliRestoreOrder::fileWithTheMappingOnly()
{
    QByteArrayList lines = pdoLines.mid(0, 6);
    for (const int unknown : { 1, 2, 3, 4 })
        lines[unknown] = lines[unknown].left(lines[unknown].indexOf("RW,") + 3) + ",,";
    QCOMPARE(restore(lines), "0\nleft as they are, since the file has no value: 1800:1, 1800:3, 1A00, 1A00:1\n" +
                                 begun + started + "1 of 1 values were written\n");
    QCOMPARE(m_device->steps(),
             QStringList({ "preoperational", "1800:1 = 85 01 00 80", "1A00 = 00", "1A00:1 = 08 01 00 60",
                           "1A00:2 = 08 01 00 60", "1A00 = 02", "1800:1 = 85 01 00 00", "start" }));
}

void TestCliRestoreOrder::readOnlyCountIsNotWritten()
{
    m_device->set(0x1A00, 0, "00"); // a device that counts by itself
    QByteArrayList lines = pdoLines.mid(0, 6);
    lines[3] = "0x1A00,0,Count,Unsigned8,RO,1,0x02,";
    QCOMPARE(restore(lines), "0\n" + begun + started + "4 of 4 values were written\n");
    QCOMPARE(m_device->steps(),
             QStringList({ "preoperational", "1800:1 = 85 01 00 80", "1A00:1 = 08 02 00 60", "1A00:2 = 08 01 00 60",
                           "1800:3 = 64 00", "1800:1 = 85 02 00 00", "start" }));
}

void TestCliRestoreOrder::otherCobIdsAndTheSyncCounter()
{
    m_device->set(0x1005, 0, "80000040");
    m_device->set(0x1006, 0, "E8030000");
    m_device->set(0x1012, 0, "00010080");
    m_device->set(0x1014, 0, "85000000");
    m_device->set(0x1019, 0, "00");
    m_device->set(0x1280, 1, "06060000");
    QCOMPARE(restore({ "0x1005,0,SYNC,Unsigned32,RW,4,0x40000081,", "0x1006,0,Period,Unsigned32,RW,4,0x000007D0,",
                       "0x1012,0,TIME,Unsigned32,RW,4,0x80000101,", "0x1014,0,EMCY,Unsigned32,RW,4,$NODEID+0x281,",
                       "0x1019,0,Counter,Unsigned8,RW,1,0x0A,", "0x1280,1,SDO,Unsigned32,RW,4,0x00000607," }),
             "0\n6 of 6 values were written\n");
    QCOMPARE(m_device->value(0x1019, 0), "0A");
    QCOMPARE(m_device->value(0x1014, 0), "86 02 00 00");
}

void TestCliRestoreOrder::relativeCobIdOfTheNode()
{
    m_device->set(0x1800, 1, "85020000");
    m_device->set(0x1800, 3, "6400");
    m_device->set(0x1A00, 1, "08020060");
    m_device->set(0x1A00, 2, "08010060");
    const CDumpFile file(identityLines + pdoLines.mid(0, 6));
    CCliRun run({ "restore", "-i", m_device->interface(), "-n", "7", file.name() });
    QCOMPARE(run.outcome(), "1800:1: 0x00000285 -> 0x00000287  COB-ID\n-- 0\n" +
                                QString(begun + started).replace("5", "7") + "1 of 1 values were written\n");
    QCOMPARE(m_device->value(0x1800, 1), "87 02 00 00");
}

QTEST_GUILESS_MAIN(TestCliRestoreOrder)
#include "TestCliRestoreOrder.moc"
