// Snapshots of data sheets and configuration files: which entries they have, with which values.
// SPDX-License-Identifier: MIT
#include "sheets/Snapshot.h"

#include "EndOf.h"
#include "SheetFile.h"

#include <QTest>

namespace
{

constexpr char sheet[] = R"([ManufacturerObjects]
1=0x2000
2=0x2000
3=0x2001
4=0x2002
[2000]
ParameterName=Identifier
ObjectType=0x7
DataType=0x0007
AccessType=rw
DefaultValue=$NODEID+0x180
ParameterValue=0x203
[2001]
ParameterName=List
ObjectType=0x8
[2001sub0]
ParameterName=Count
DataType=0x0005
AccessType=ro
DefaultValue=2
[2001sub1]
ParameterName=Level
DataType=0x0003
AccessType=rww
DefaultValue=-2
ParameterValue=-3
[2001sub1]
ParameterName=Twice
DataType=0x0005
DefaultValue=7
ParameterValue=9
[2001subA]
ParameterName=Title
DataType=0x0009
AccessType=const
DefaultValue=$NODEID
[2002]
ParameterName=Wrong
ObjectType=0x7
DataType=0x0005
AccessType=rw
DefaultValue=256
ParameterValue=$NODEID+0x10
)";

constexpr char commissioning[] = "[DeviceComissioning]\nNodeID=3\n";

// "2000:0 NAME type access relative value", values in the order of the bus, then a text that is no value.
QString outline(const tSnapshot& snapshot)
{
    QStringList entries;
    for (const tSnapshotEntry& entry : snapshot.entries)
        entries << QString("%1:%2 %3 %4 %5 %6%7")
                           .arg(QString::number(entry.index, 16), QString::number(entry.subIndex, 16), entry.name)
                           .arg(entry.type)
                           .arg(entry.access)
                           .arg(entry.relative ? "relative " : "",
                                entry.value ? QString::fromLatin1(entry.value->toHex()) : QString("none")) +
                       (entry.wrongText.isEmpty() ? QString() : " \"" + entry.wrongText + '"');
    return entries.join('\n');
}

} // namespace

class TestSnapshot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sheetGivesItsDefaultsOnceForEachEntry();
    void configurationGivesItsOwnValues();
    void unknownNodeIdIsNoHindrance();
    void configurationKeepsTheDefaultsOfOtherEntries();
    void nodeIdIsTheLastThatIsOne_data();
    void nodeIdIsTheLastThatIsOne();
    void relativeValuesFollowTheNodeId_data();
    void relativeValuesFollowTheNodeId();
    void textWithTwoNodeIdsIsNotRelative();
    void fileThatCannotBeReadEndsTheCommand_data();
    void fileThatCannotBeReadEndsTheCommand();
};

void TestSnapshot::sheetGivesItsDefaultsOnceForEachEntry()
{
    const CSheetFile file(sheet, "device.EDS");
    const tSnapshot snapshot = loadSnapshot(file.name());
    QCOMPARE(snapshot.nodeId, 0U);
    QCOMPARE(snapshot.sheet, file.name());
    QCOMPARE(outline(snapshot), QString("2000:0 Identifier 7 3 relative 80010000\n"
                                        "2001:0 Count 5 1 02\n"
                                        "2001:1 Level 3 5 feff\n"
                                        "2001:a Title 9 0 244e4f44454944\n"
                                        "2002:0 Wrong 5 3 none \"256\""));
}

void TestSnapshot::configurationGivesItsOwnValues()
{
    const CSheetFile file(QByteArray(sheet) + commissioning, "device.dcf");
    const tSnapshot snapshot = loadSnapshot(file.name());
    QCOMPARE(snapshot.nodeId, 3U);
    QCOMPARE(outline(snapshot), QString("2000:0 Identifier 7 3 relative 00020000\n"
                                        "2001:0 Count 5 1 none\n"
                                        "2001:1 Level 3 5 fdff\n"
                                        "2001:a Title 9 0 none\n"
                                        "2002:0 Wrong 5 3 relative 10"));
}

// A number is one whatever the node-id is, and a sum is held relative to it.
void TestSnapshot::unknownNodeIdIsNoHindrance()
{
    const CSheetFile file(sheet, "device.dcf");
    const tSnapshot snapshot = loadSnapshot(file.name());
    QCOMPARE(snapshot.nodeId, 0U);
    QCOMPARE(outline(snapshot), QString("2000:0 Identifier 7 3 03020000\n"
                                        "2001:0 Count 5 1 none\n"
                                        "2001:1 Level 3 5 fdff\n"
                                        "2001:a Title 9 0 none\n"
                                        "2002:0 Wrong 5 3 relative 10"));
}

void TestSnapshot::configurationKeepsTheDefaultsOfOtherEntries()
{
    const CSheetFile file(QByteArray(sheet) + commissioning, "device.dcf");
    const tSnapshot snapshot = loadSnapshot(file.name());
    QCOMPARE(snapshot.entries[1].defaultValue, std::optional(QByteArray("\2")));
    QVERIFY(!snapshot.entries[2].defaultValue);
    QVERIFY(!loadSnapshot(CSheetFile(sheet).name()).entries[1].defaultValue);
}

void TestSnapshot::nodeIdIsTheLastThatIsOne_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<unsigned>("nodeId");
    QTest::newRow("hexadecimal") << QByteArray("[DeviceComissioning]\nNodeID=0x7F\n") << 127U;
    QTest::newRow("twice") << QByteArray("[DeviceComissioning]\nNodeID=1\nNodeID=2\n") << 2U;
    QTest::newRow("then none") << QByteArray("[DeviceComissioning]\nNodeID=1\nNodeID=0\nNodeID=128\n") << 1U;
    QTest::newRow("other key") << QByteArray("[DeviceComissioning]\nNodeId=1\n") << 0U;
    QTest::newRow("other section") << QByteArray("[Comments]\nNodeID=1\n") << 0U;
}

void TestSnapshot::nodeIdIsTheLastThatIsOne()
{
    QFETCH(QByteArray, text);
    const CSheetFile file(sheet + text, "device.dcf");
    QTEST(loadSnapshot(file.name()).nodeId, "nodeId");
}

// Node 5, in a file with "$NODEID" and an offset.
void TestSnapshot::relativeValuesFollowTheNodeId_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("offset"); // -1: none
    QTest::addColumn<QByteArray>("onBus");
    QTest::addColumn<QByteArray>("held");
    const auto row = [](const char* name, int type, int offset, const char* onBus, const char* held) {
        QTest::newRow(name) << type << offset << QByteArray::fromHex(onBus) << QByteArray::fromHex(held);
    };
    row("identifier", 7, 0x180, "85010000", "80010000");
    row("switched off", 7, 0x180, "85010080", "80010080");
    row("another function code", 7, 0x180, "85020000", "80020000");
    row("another offset", 6, 0x43, "48000000", "48000000");
    row("with an offset of its own", 6, 0x43, "4800", "4300");
    row("below the node-id", 6, 0x7E, "0300", "feff");
    row("signed", 2, 0, "85", "80");
    row("no identifier", 7, 0x180, "00000080", "00000080");
    row("of another node", 7, 0x180, "86010000", "86010000");
    row("not relative", 7, -1, "85010000", "85010000");
    row("of another length", 7, 0x180, "8501", "8501");
    row("no number", 9, 0x180, "85010000", "85010000");
}

void TestSnapshot::relativeValuesFollowTheNodeId()
{
    QFETCH(int, type);
    QFETCH(int, offset);
    QFETCH(QByteArray, onBus);
    QFETCH(QByteArray, held);
    tSnapshotEntry entry;
    entry.type = type;
    if (offset >= 0)
        entry.offset = offset;
    holdValue(entry, onBus, 5);
    QCOMPARE(entry.value->toHex(), held.toHex());
    QCOMPARE(entry.relative, onBus != held);
    QCOMPARE(valueOfNode(entry, 5).toHex(), onBus.toHex());
}

void TestSnapshot::textWithTwoNodeIdsIsNotRelative()
{
    const QByteArray text =
        sheetOf(0x2000, 7, "rw", "Value", "DefaultValue=$NODEID+$NODEID\nParameterValue=$NODEID+$NODEID+1\n");
    const CSheetFile unknown(text, "device.dcf");
    QVERIFY(!loadSnapshot(unknown.name()).entries[0].value);
    QCOMPARE(loadSnapshot(unknown.name()).entries[0].wrongText, "$NODEID+$NODEID+1");
    const CSheetFile known(text + commissioning, "device.dcf");
    const tSnapshotEntry entry = loadSnapshot(known.name()).entries[0];
    QCOMPARE(valueOfNode(entry, 3), QByteArray("\7\0\0\0", 4));
    const CSheetFile defaults(text);
    QVERIFY(!loadSnapshot(defaults.name()).entries[0].value);
}

void TestSnapshot::fileThatCannotBeReadEndsTheCommand_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("end");
    QTest::newRow("other ending") << "a.txt"
                                  << "2: neither a data sheet nor a dump: a.txt (its name must end in .eds, .dcf, .csv "
                                     "or .json)";
    QTest::newRow("no sheet") << "/none/a.eds"
                              << "2: no such file: /none/a.eds";
    QTest::newRow("no configuration") << "/none/a.dcf"
                                      << "2: no such file: /none/a.dcf";
    QTest::newRow("no dump") << "/none/a.csv"
                             << "2: cannot read /none/a.csv: No such file or directory";
    QTest::newRow("no dump in JSON") << "/none/a.json"
                                     << "2: cannot read /none/a.json: No such file or directory";
}

void TestSnapshot::fileThatCannotBeReadEndsTheCommand()
{
    QFETCH(QString, name);
    QTEST(endOf([&name] { return loadSnapshot(name); }), "end");
    const QTemporaryDir folder;
    const QString inside = folder.filePath("folder.json");
    QVERIFY(QDir().mkdir(inside));
    QCOMPARE(endOf([&inside] { return loadSnapshot(inside); }), "2: cannot read " + inside + ": not a file");
}

QTEST_GUILESS_MAIN(TestSnapshot)
#include "TestSnapshot.moc"
