// Whatever a device holds reads back from a configuration file, for all sheets that there are.
// SPDX-License-Identifier: MIT
#include "sheets/DcfText.h"

#include "SheetFile.h"

#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "sheets/EntryText.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

namespace
{

constexpr int noType = 0x40;

// A sheet with an entry of each data type, and of one that is none.
QByteArray allTypes()
{
    QByteArray text = "[ManufacturerObjects]\n1=0x2000\n[2000]\nObjectType=9\n";
    for (int type = 1; type <= noType; ++type)
        text += "[2000sub" + QByteArray::number(type, 16) + "]\nDataType=" + QByteArray::number(type) +
                (type % 3 == 0 ? "\nDefaultValue=$NODEID+1\n" : "\nAccessType=rw\n");
    return text;
}

QByteArray contentOfSheet(const QString& name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no sheet");
    return file.readAll();
}

QByteArray randomBytes(QRandomGenerator& random, int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i)
        bytes.append(char(random.bounded(0x100)));
    return bytes;
}

QByteArray randomText(QRandomGenerator& random)
{
    QByteArray text;
    for (int size = random.bounded(1, 20); size > 0; --size)
        text.append("aZ09 ;=$[]\"%\t\xE4\xF6\xC3\xBC\xA0\x80\\#"[random.bounded(21)]);
    return text;
}

// Mostly of the length of its type; sometimes none, empty, or one byte too long.
std::optional<QByteArray> randomValue(QRandomGenerator& random, int dataType)
{
    const tValueType type = valueType(dataType);
    const int chance = random.bounded(20);
    if (chance == 0)
        return std::nullopt;
    if (chance == 1)
        return QByteArray("");
    if (type.kind == kindText)
        return randomText(random);
    const int width = type.width != 0 ? type.width : random.bounded(1, 40);
    return randomBytes(random, chance == 2 ? width + 1 : width);
}

// The lines that are no values and no node-id.
QByteArray withoutValues(const QByteArray& text)
{
    QByteArray rest;
    for (const QByteArray& line : text.split('\n'))
        if (!line.startsWith("ParameterValue=") && !line.startsWith("NodeID="))
            rest += line + '\n';
    return rest;
}

} // namespace

class TestDcfValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesReadBack_data();
    void valuesReadBack();
    void valuesOfAConfigurationStay();
};

void TestDcfValues::valuesReadBack_data()
{
    QTest::addColumn<QByteArray>("sheet");
    QTest::newRow("all types") << allTypes();
    QTest::newRow("all types, CR LF") << allTypes().replace("\n", "\r\n");
    QTest::newRow("all types, Windows-1252") << "; \xE4\n" + allTypes();
    QTest::newRow("the shipped sheet") << contentOfSheet(VELMORA_SHARE "/velmora-demo.eds");
    for (const char* folder : { VELMORA_SAMPLE_SHEETS, VELMORA_TEST_DATA })
        for (const QFileInfo& info : QDir(folder).entryInfoList({ "*.eds", "*.dcf" }))
            if (CDataSheet().load(info.filePath()) == CDataSheet::loaded)
                QTest::newRow(qPrintable(info.fileName())) << contentOfSheet(info.filePath());
}

void TestDcfValues::valuesReadBack()
{
    QFETCH(QByteArray, sheet);
    const CSheetFile file(sheet, "device.dcf");
    CDataSheet loaded;
    loadSheet(loaded, file.name());
    QRandomGenerator random(1);
    for (int round = 0; round < 20; ++round) {
        tSnapshot snapshot = snapshotOf(loaded, 1 + unsigned(round));
        for (tSnapshotEntry& entry : snapshot.entries)
            if (const auto value = randomValue(random, entry.type))
                holdValue(entry, *value, snapshot.nodeId);
            else
                entry.value.reset();
        const tDcfText dcf = dcfText(file.name(), snapshot);
        for (const std::size_t place : dcf.unwritten) {
            tSnapshotEntry& entry = snapshot.entries[place];
            QVERIFY(!sheetText(*entry.value, entry.type, entry.relative));
            entry.value.reset();
        }

        const CSheetFile written(dcf.text, "device.dcf");
        const tSnapshot read = loadSnapshot(written.name());
        QCOMPARE(read.nodeId, snapshot.nodeId);
        QCOMPARE(read.entries.size(), snapshot.entries.size());
        for (std::size_t place = 0; place < read.entries.size(); ++place) {
            const tSnapshotEntry& entry = snapshot.entries[place];
            QVERIFY2(read.entries[place].value == entry.value, qPrintable(parameterText(entry.index, entry.subIndex)));
        }
        QVERIFY(withoutValues(dcf.text).startsWith(withoutValues(sheet).trimmed()));
    }
}

void TestDcfValues::valuesOfAConfigurationStay()
{
    const QString name = VELMORA_SAMPLE_SHEETS "/prbt_0_1.dcf";
    if (!QFile::exists(name))
        QSKIP("the sample sheets are not here");
    const tSnapshot snapshot = loadSnapshot(name);
    const tDcfText dcf = dcfText(name, snapshot);
    QVERIFY(dcf.unwritten.empty());
    const CSheetFile written(dcf.text, "device.dcf");
    const tSnapshot read = loadSnapshot(written.name());
    QVERIFY(!read.entries.empty());
    for (std::size_t place = 0; place < read.entries.size(); ++place)
        QVERIFY(read.entries[place].value == snapshot.entries[place].value);
}

QTEST_GUILESS_MAIN(TestDcfValues)
#include "TestDcfValues.moc"
