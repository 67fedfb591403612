// Dumps as CSV, JSON and a table: what is written, that it reads back, and what is said of wrong ones.
// SPDX-License-Identifier: MIT
#include "sheets/SnapshotReader.h"
#include "sheets/SnapshotText.h"

#include "EndOf.h"

#include <QTest>

namespace
{

constexpr char header[] = "index,subindex,name,type,access,size,value,abort\n";

tSnapshotEntry entryOf(unsigned subIndex, int type, std::optional<QByteArray> value, bool relative = false)
{
    tSnapshotEntry entry;
    entry.index = 0x2000;
    entry.subIndex = subIndex;
    entry.name = "Entry";
    entry.type = type;
    entry.access = 3;
    entry.relative = relative;
    entry.value = std::move(value);
    return entry;
}

// An entry that the device refused.
tSnapshotEntry refused(unsigned index, unsigned subIndex, const QString& name, int type, int access)
{
    tSnapshotEntry entry = entryOf(subIndex, type, std::nullopt);
    entry.index = index;
    entry.name = name;
    entry.access = access;
    entry.abortCode = 0x06010001;
    return entry;
}

QByteArray bytes(const char* digits)
{
    return QByteArray::fromHex(digits);
}

// Values of all kinds, and what is written for them.
struct tRow {
    const char* name;
    int type;
    bool relative;
    std::optional<QByteArray> value;
    QString size;
    QString text;
};

const std::initializer_list<tRow> rows{
    { "BOOLEAN", 1, false, bytes("01"), "1", "0x01" },
    { "INTEGER16", 3, false, bytes("FEFF"), "2", "0xFFFE" },
    { "UNSIGNED32", 7, false, bytes("85010000"), "4", "0x00000185" },
    { "UNSIGNED64", 27, false, bytes("FFFFFFFFFFFFFFFF"), "8", "0xFFFFFFFFFFFFFFFF" },
    { "relative", 7, true, bytes("80010000"), "4", "$NODEID+0x00000180" },
    { "relative below the node-id", 6, true, bytes("FFFF"), "2", "$NODEID+0xFFFF" },
    { "number of another length", 7, false, bytes("8501"), "2", "85 01" },
    { "number without bytes", 7, false, bytes(""), "0", "" },
    { "unknown", 7, false, std::nullopt, "", "" },
    { "REAL32", 8, false, bytes("CDCCCC3D"), "4", "0.1" },
    { "REAL32 that is no number", 8, false, bytes("0100C07F"), "4", "0x7FC00001" },
    { "REAL64", 17, false, bytes("000000000000F8BF"), "8", "-1.5" },
    { "VISIBLE_STRING", 9, false, QByteArray("Limit"), "5", "Limit" },
    { "VISIBLE_STRING that looks relative", 9, false, QByteArray("$NODEID+1"), "9", "$NODEID+1" },
    { "VISIBLE_STRING with all that is quoted", 9, false, QByteArray("a,\"b\"\r\n\n;\t "), "11", "a,\"b\"\r\n\n;\t " },
    { "VISIBLE_STRING beyond ASCII", 9, false, bytes("00 FC 80"), "3", QString::fromLatin1("\0\xFC\x80", 3) },
    { "OCTET_STRING", 10, false, bytes("00FF"), "2", "00 FF" },
    { "DATE", 11, false, bytes("923B1E0CDC021A"), "7", "92 3B 1E 0C DC 02 1A" },
    { "TIME_OF_DAY", 12, false, bytes("40771B000A01"), "6", "40 77 1B 00 0A 01" },
    { "DOMAIN", 15, false, bytes("61"), "1", "61" },
    { "user-defined", 0, false, bytes("6162"), "2", "61 62" },
};

tSnapshot everyKind()
{
    tSnapshot snapshot{ 5, "a \"b\".eds", {} };
    for (const tRow& row : rows) {
        const auto position = static_cast<unsigned>(snapshot.entries.size());
        snapshot.entries.push_back(entryOf(position, row.type, row.value, row.relative));
        snapshot.entries.back().name = row.name;
    }
    snapshot.entries.push_back(refused(0xFFFF, 0xFF, "R\u00F6hre, \"x\"", 5, 2));
    snapshot.entries.push_back(refused(0xFFFF, 0xFE, "Code 0", 5, 2));
    snapshot.entries.back().abortCode = 0;
    return snapshot;
}

void compare(const tSnapshotEntry& read, const tSnapshotEntry& written)
{
    QCOMPARE(read.index, written.index);
    QCOMPARE(read.subIndex, written.subIndex);
    QCOMPARE(read.name, written.name);
    QCOMPARE(read.type, written.type);
    QCOMPARE(read.access, written.access);
    QCOMPARE(read.relative, written.relative);
    QVERIFY2(read.value == written.value, qPrintable(written.name));
    QCOMPARE(read.abortCode, written.abortCode);
}

} // namespace

class TestDumps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreWrittenAndRead_data();
    void valuesAreWrittenAndRead();
    void csvReadsBack();
    void csvIsExact();
    void csvOfASpreadsheetReads();
    void jsonReadsBack();
    void jsonIsExact();
    void tableIsExact();
    void wrongCsvIsRefused_data();
    void wrongCsvIsRefused();
    void wrongJsonIsRefused_data();
    void wrongJsonIsRefused();
};

void TestDumps::valuesAreWrittenAndRead_data()
{
    QTest::addColumn<int>("position");
    for (const tRow& row : rows)
        QTest::newRow(row.name) << int(&row - rows.begin());
}

void TestDumps::valuesAreWrittenAndRead()
{
    QFETCH(int, position);
    const tRow& row = rows.begin()[position];
    tSnapshot snapshot{ 0, "", { entryOf(1, row.type, row.value, row.relative) } };
    const QByteArray line = snapshotAsCsv(snapshot).mid(qsizetype(strlen(header)));
    QString quoted = row.text;
    if (quoted.contains(','))
        quoted = '"' + quoted.replace('"', "\"\"") + '"';
    const QString type = QString::fromUtf8(line).section(',', 3, 3);
    QCOMPARE(QString::fromUtf8(line), QString("0x2000,1,Entry,%1,RW,%2,%3,\n").arg(type, row.size, quoted));
    compare(snapshotFromCsv(snapshotAsCsv(snapshot), "a.csv").entries.at(0), snapshot.entries.at(0));
}

void TestDumps::csvReadsBack()
{
    const tSnapshot written = everyKind();
    const tSnapshot read = snapshotFromCsv(snapshotAsCsv(written), "a.csv");
    QCOMPARE(read.nodeId, 0U); // not written
    QCOMPARE(read.entries.size(), written.entries.size());
    for (std::size_t position = 0; position < read.entries.size(); ++position)
        compare(read.entries[position], written.entries[position]);
}

void TestDumps::csvIsExact()
{
    tSnapshot snapshot{ 5, "a.eds", { entryOf(0xA, 5, QByteArray("\2")) } };
    snapshot.entries.push_back(refused(0x18, 9, "A \"name\"", 9, 0));
    QCOMPARE(snapshotAsCsv(snapshot), header + QByteArray("0x2000,0xA,Entry,Unsigned8,RW,1,0x02,\n"
                                                          "0x0018,9,\"A \"\"name\"\"\",Visible String,CONST,,,"
                                                          "0x06010001\n"));
}

void TestDumps::csvOfASpreadsheetReads()
{
    const tSnapshot read = snapshotFromCsv("\xEF\xBB\xBF\"index\",subindex,name,type,access,size,value,abort\r\n\r\n"
                                           "8192,10,Entry,Unsigned8,RW,1,\"2\",\r\n"
                                           "8193,10,Entry,Unsigned8,RW,1,3,",
                                           "a.csv");
    QCOMPARE(read.entries.size(), std::size_t(2));
    compare(read.entries[0], entryOf(10, 5, QByteArray("\2")));
}

void TestDumps::jsonReadsBack()
{
    const tSnapshot written = everyKind();
    const tSnapshot read = snapshotFromJson(snapshotAsJson(written), "a.json");
    QCOMPARE(read.nodeId, 5U);
    QCOMPARE(read.sheet, written.sheet);
    QCOMPARE(read.entries.size(), written.entries.size());
    for (std::size_t position = 0; position < read.entries.size(); ++position)
        compare(read.entries[position], written.entries[position]);
}

void TestDumps::jsonIsExact()
{
    tSnapshot snapshot{ 5, "a.eds", { entryOf(0xA, 5, QByteArray("\2")) } };
    snapshot.entries.push_back(refused(0x18, 9, "A", 9, 0));
    QCOMPARE(snapshotAsJson(snapshot), QByteArray(R"({
    "entries": [
        {
            "abort": null,
            "access": "RW",
            "index": "0x2000",
            "name": "Entry",
            "size": 1,
            "subindex": 10,
            "type": "Unsigned8",
            "value": "0x02"
        },
        {
            "abort": "0x06010001",
            "access": "CONST",
            "index": "0x0018",
            "name": "A",
            "size": null,
            "subindex": 9,
            "type": "Visible String",
            "value": null
        }
    ],
    "nodeId": 5,
    "sheet": "a.eds"
}
)"));
}

void TestDumps::tableIsExact()
{
    tSnapshot snapshot{ 5, "a.eds", { entryOf(1, 9, QByteArray("a\nb\x1B")) } };
    snapshot.entries.push_back(refused(0x18, 9, "A longer name", 9, 0));
    QCOMPARE(snapshotAsTable(snapshot),
             QByteArray("index   subindex  name           type            access  size  value       abort\n"
                        "0x2000  1         Entry          Visible String  RW      4     a\\x0Ab\\x1B\n"
                        "0x0018  9         A longer name  Visible String  CONST                     0x06010001\n"));
}

void TestDumps::wrongCsvIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("why");
    const QString noHeader = "line 1: the first line is not \"index,subindex,name,type,access,size,value,abort\"";
    const QByteArray good = header + QByteArray("0x2000,0,\"a\nb\",Unsigned8,RW,1,2,\n");
    QTest::newRow("nothing") << QByteArray() << noHeader;
    QTest::newRow("other header") << QByteArray("index,name\n") << noHeader;
    QTest::newRow("binary") << QByteArray("\0\1\xFF", 3) << "line 1: the text is not UTF-8";
    const auto row = [&good](const char* name, const QByteArray& line, const QString& why) {
        QTest::newRow(name) << good + line << "line 4: " + why;
    };
    row("too few fields", "0x2000,1\n", "2 fields where 8 are needed");
    row("too many fields", "0x2000,1,,Unsigned8,RW,,,,\n", "9 fields where 8 are needed");
    row("index", "0x10000,1,,Unsigned8,RW,,,\n", "\"0x10000\" is no index");
    row("sub-index", "0x2000,256,,Unsigned8,RW,,,\n", "\"256\" is no sub-index");
    row("twice", "0x2000,0,,Unsigned8,RW,,,\n", "2000 is there twice");
    row("type", "0x2000,1,,Word\t,RW,,,\n", "\"Word\\t\" is no data type");
    row("access", "0x2000,1,,Unsigned8,read,,,\n", "\"read\" is no access type");
    row("size", "0x2000,1,,Unsigned8,RW,-1,2,\n", "\"-1\" is no size");
    row("size beyond all files", "0x2000,1,,Domain,RW,99999999999,2,\n", "\"99999999999\" is no size");
    row("value without size", "0x2000,1,,Unsigned8,RW,,2,\n", "a value without a size");
    row("value", "0x2000,1,,Unsigned8,RW,1,256,\n", "\"256\" is no value of type Unsigned8 with size 1");
    row("value of another size", "0x2000,1,,Domain,RW,3,01 02,\n", "\"01 02\" is no value of type Domain with size 3");
    row("characters for a wrong size", "0x2000,1,,Unsigned8,RW,3,abc,\n",
        "\"abc\" is no value of type Unsigned8 with size 3");
    row("size without value", "0x2000,1,,Unsigned8,RW,1,,\n", "\"\" is no value of type Unsigned8 with size 1");
    row("twice relative", "0x2000,1,,Unsigned8,RW,1,$NODEID+$NODEID,\n",
        "\"$NODEID+$NODEID\" is no value of type Unsigned8 with size 1");
    row("abort", "0x2000,1,,Unsigned8,RW,,,0x100000000\n", "\"0x100000000\" is no abort code");
    row("open quotation mark", "0x2000,1,\"name,\n\n", "a quotation mark is not closed");
    row("text after a quotation mark", "0x2000,1,\"n\"ame\n", "text where a comma or the end of the line is needed");
    row("quotation mark in a field", "0x2000,1,n\"ame\"\n",
        "a quotation mark inside a field that does not begin with one");
    row("carriage return", "0x2000,1,n\rame\n", "text where a comma or the end of the line is needed");
    row("no UTF-8", "0x2000,1,\xFC\n", "the text is not UTF-8");
}

void TestDumps::wrongCsvIsRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, why);
    QCOMPARE(endOf([&text] { return snapshotFromCsv(text, "a.csv"); }), "2: not a valid dump: a.csv, " + why);
}

void TestDumps::wrongJsonIsRefused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("why");
    QTest::newRow("nothing") << QByteArray() << "line 1: illegal value";
    QTest::newRow("syntax") << QByteArray("{\n\"nodeId\": x}") << "line 2: illegal number";
    QTest::newRow("too deep") << QByteArray("[").repeated(100000) << "line 1: too deeply nested document";
    QTest::newRow("list") << QByteArray("[]") << "line 1: no object";
    QTest::newRow("no node-id") << QByteArray("{}") << "line 1: \"nodeId\" is missing or wrong";
    QTest::newRow("node-id") << QByteArray("{\"nodeId\":128}") << "line 1: \"nodeId\" is missing or wrong";
    QTest::newRow("no entries") << QByteArray("{\"nodeId\":0}") << "line 1: \"entries\" is missing or wrong";
    QTest::newRow("entry") << QByteArray("{\"nodeId\":0,\"entries\":[1]}") << "entry 1: \"index\" is missing or wrong";
    QByteArray twice = snapshotAsJson({ 0, "", { entryOf(1, 5, QByteArray("\2")), entryOf(2, 5, QByteArray("\2")) } });
    QTest::newRow("value") << QByteArray(twice).replace("0x02", "0x102")
                           << "entry 1: \"0x102\" is no value of type Unsigned8 with size 1";
    QTest::newRow("twice") << twice.replace("\"subindex\": 2", "\"subindex\": 1") << "entry 2: 2000:1 is there twice";
}

void TestDumps::wrongJsonIsRefused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, why);
    QCOMPARE(endOf([&text] { return snapshotFromJson(text, "a.json"); }), "2: not a valid dump: a.json, " + why);
}

QTEST_GUILESS_MAIN(TestDumps)
#include "TestDumps.moc"
