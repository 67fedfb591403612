// For every sheet that loads: what a device has is saved, restored to a reset device and to one with another node-id,
// and compares equal.
// SPDX-License-Identifier: MIT
#include "CliRun.h"
#include "SimulatorProcess.h"
#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "sheets/FirstEntries.h"
#include "sheets/SheetCheck.h"
#include "sheets/Snapshot.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

namespace
{

using tEntry = CCANopenObjectEntry;

// Indexes that no restore writes by itself.
bool isLeftOut(unsigned index)
{
    return index == 0x1003 || index == 0x1010 || index == 0x1011 || (index >= 0x1F50 && index <= 0x1F5F);
}

bool isChangeable(const tFirstEntry& each)
{
    const int access = each.entry.getAccess();
    const bool writable = access == tEntry::accessRW || access == tEntry::accessRWR || access == tEntry::accessRWW;
    return writable && !isLeftOut(each.object.getIndex());
}

// Another value of the entry, as it is typed; empty where none is made.
QString otherValue(const tEntry& entry, QRandomGenerator& random)
{
    const tValueType type = valueType(entry.getDataType());
    if (type.kind == kindText)
        return "text " + QString::number(random.bounded(1000));
    if (type.kind == kindBoolean)
        return QString::number(random.bounded(2));
    if (type.kind == kindReal)
        return QString::number(random.bounded(1000)) + ".5";
    if (type.kind != kindSigned && type.kind != kindUnsigned)
        return type.width == 0 ? "01 A" + QString::number(random.bounded(10)) : QString();
    const auto limit = [type](const QString& text, qint64 otherwise) {
        const QByteArray bytes = limitFromText(text, type, 6);
        return bytes.isEmpty() ? otherwise : static_cast<qint64>(numberOf(bytes, type));
    };
    const qint64 highest = qint64{ 1 } << (8 * std::min(type.width, 4) - (type.kind == kindSigned ? 1 : 0));
    const qint64 low = limit(entry.getLowLimit(), type.kind == kindSigned ? -highest : 0);
    const qint64 high = limit(entry.getHighLimit(), highest - 1);
    if (high < low)
        return QString();
    return QString::number(low + static_cast<qint64>(random.generate64() % static_cast<quint64>(high - low + 1)));
}

// The rules that the file breaks, each as often as it does.
QStringList brokenRules(const QString& fileName)
{
    QStringList names;
    for (const tFinding& finding : checkSheet(fileName, tRuleSet().set()).findings)
        names += QString::fromUtf8(rowOf(finding.rule).name.data(), qsizetype(rowOf(finding.rule).name.size()));
    names.sort();
    return names;
}

QStringList sheets()
{
    QStringList names{ VELMORA_SHARE "/velmora-demo.eds" };
    const QDir folder(VELMORA_SAMPLE_SHEETS);
    for (const QString& name : folder.entryList({ "*.eds", "*.dcf" }, QDir::Files))
        names += folder.filePath(name);
    return names;
}

} // namespace

class TestCliSamples : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savedAndRestoredComparesEqual_data();
    void savedAndRestoredComparesEqual();
    void savedSheetBreaksNoOtherRules_data() { savedAndRestoredComparesEqual_data(); }
    void savedSheetBreaksNoOtherRules();

private:
    QString run(const QStringList& words) const
    {
        CCliRun process(words.mid(0, 1) + QStringList{ "-i", m_interface } + words.mid(1));
        return process.outcome();
    }
    int change(const QString& fileName) const;
    void save(const QString& sheet, const QString& file) const;
    void restoreAndCompare(const QString& node, const QString& file) const;

    QString m_interface;
};

void TestCliSamples::savedAndRestoredComparesEqual_data()
{
    QTest::addColumn<QString>("fileName");
    for (const QString& name : sheets())
        QTest::newRow(qPrintable(QFileInfo(name).fileName())) << name;
}

// Sets some entries of node 6. @return how many
int TestCliSamples::change(const QString& fileName) const
{
    CDataSheet sheet;
    sheet.load(fileName);
    std::vector<tFirstEntry> candidates;
    for (const tFirstEntry& each : firstEntries(sheet.dictionary()))
        if (isChangeable(each))
            candidates.push_back(each);
    QRandomGenerator random(12);
    constexpr std::size_t most = 60;
    const std::size_t step = std::max<std::size_t>(1, candidates.size() / most);
    int changed = 0;
    for (std::size_t place = 0; place < candidates.size(); place += step) {
        const auto& [object, entry] = candidates[place];
        const QString value = otherValue(entry, random);
        if (value.isEmpty())
            continue;
        const QString name = QString("%1:%2").arg(object.getIndex(), 0, 16).arg(int{ entry.getSubindex() }, 0, 16);
        if (run({ "write", "-n", "6", "-s", fileName, "--", name, value }).contains("-- 0\n"))
            ++changed; // otherwise it was no value for this entry
    }
    return changed;
}

// Saves node 6 as a configuration, which can hold neither empty values nor the tab in a text of one sheet.
// No sheet has a text as default value where a device has none.
void TestCliSamples::save(const QString& sheet, const QString& file) const
{
    const QString csv = file + ".csv";
    QCOMPARE(run({ "dump", "-n", "6", "-s", sheet, "-o", csv }), "-- 0\n");
    QStringList empty;
    for (const tSnapshotEntry& entry : loadSnapshot(csv).entries)
        if (entry.value && entry.value->isEmpty())
            empty += nameOf(entry);
    QString told;
    if (sheet.endsWith("/demoDevice.eds"))
        told += "a DCF cannot hold these values, CSV and JSON can: 2121:2\n";
    const QString status = told.isEmpty() ? "-- 0\n" : "-- 1\n";
    if (!empty.isEmpty())
        told.prepend("empty as in the sheet, for which a DCF has no line: " + empty.join(", ") + '\n');
    QCOMPARE(run({ "dump", "-n", "6", "-s", sheet, "-o", file }), status + told);
}

void TestCliSamples::restoreAndCompare(const QString& node, const QString& file) const
{
    const QString before = run({ "compare", "-n", node, file });
    QVERIFY2(before.contains("-- 1\n"), qPrintable(before));
    const QString restored = run({ "restore", "-n", node, file });
    QVERIFY2(restored.contains("-- 0\n"), qPrintable(restored));
    QCOMPARE(run({ "compare", "--all", "-n", node, file }), "-- 0\n");
}

void TestCliSamples::savedAndRestoredComparesEqual()
{
    QFETCH(const QString, fileName);
    CDataSheet sheet;
    if (sheet.load(fileName) != CDataSheet::loaded)
        QSKIP("it does not load");
    const CSimulatorProcess simulator({ "--node", "6=" + fileName, "--node", "7=" + fileName },
                                      CSimulatorProcess::silent);
    QVERIFY2(simulator.port() != 0, simulator.log());
    m_interface = simulator.interface();
    const QTemporaryDir folder;
    const QString file = folder.filePath("saved.dcf");

    QVERIFY(change(fileName) > 0);
    save(fileName, file);
    QVERIFY(!QTest::currentTestFailed());
    QCOMPARE(run({ "compare", "--all", "-n", "6", file }), "-- 0\n");
    QCOMPARE(run({ "nmt", "reset", "6" }), "-- 0\n");
    restoreAndCompare("6", file);
    restoreAndCompare("7", file);
}

// As a configuration, the sheet may have values.
void TestCliSamples::savedSheetBreaksNoOtherRules()
{
    QFETCH(const QString, fileName);
    CDataSheet sheet;
    if (sheet.load(fileName) != CDataSheet::loaded)
        QSKIP("it does not load");
    const CSimulatorProcess simulator({ "--node", "6=" + fileName }, CSimulatorProcess::silent);
    QVERIFY2(simulator.port() != 0, simulator.log());
    m_interface = simulator.interface();
    const QTemporaryDir folder;
    const QString copy = folder.filePath("sheet.dcf"), saved = folder.filePath("saved.dcf");
    QVERIFY(QFile::copy(fileName, copy));
    save(fileName, saved);
    QCOMPARE(brokenRules(saved), brokenRules(copy));
}

QTEST_GUILESS_MAIN(TestCliSamples)
#include "TestCliSamples.moc"
