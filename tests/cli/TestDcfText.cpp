// Configuration files made of data sheets: what changes, where, and that nothing else does.
// SPDX-License-Identifier: MIT
#include "sheets/DcfText.h"

#include "EndOf.h"
#include "SheetFile.h"

#include <QTest>

namespace
{

constexpr char list[] = "[ManufacturerObjects]\n1=0x2000\n2=0x2001\n";
constexpr char variable[] = "[2000]\nObjectType=7\nDataType=5\n";
constexpr char record[] = "[2001]\nObjectType=9\n";

tSnapshotEntry entryOf(unsigned index, unsigned subIndex, QByteArray value, int type = 5)
{
    tSnapshotEntry entry;
    entry.index = index;
    entry.subIndex = subIndex;
    entry.type = type;
    entry.access = 3;
    entry.value = std::move(value);
    return entry;
}

// The text of the sheet with these values.
tDcfText configured(const QByteArray& sheet, const std::vector<tSnapshotEntry>& entries, unsigned nodeId = 0,
                    const QString& name = "device.eds")
{
    const CSheetFile file(sheet, name);
    return dcfText(file.name(), { nodeId, "", entries });
}

} // namespace

class TestDcfText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valueIsWrittenWhereTheReaderTakesIt_data();
    void valueIsWrittenWhereTheReaderTakesIt();
    void nodeIdIsWritten_data();
    void nodeIdIsWritten();
    void unknownNodeIdChangesNothing();
    void lineEndsAreThoseOfTheSheet_data();
    void lineEndsAreThoseOfTheSheet();
    void textsHaveTheCharacterSetOfTheSheet_data();
    void textsHaveTheCharacterSetOfTheSheet();
    void oldValuesOfUnknownEntriesGo_data();
    void oldValuesOfUnknownEntriesGo();
    void valuesWithoutALineAreReported();
    void partsOfLongLinesStayParts_data();
    void partsOfLongLinesStayParts();
    void sheetThatDoesNotLoadEndsTheCommand();
};

void TestDcfText::valueIsWrittenWhereTheReaderTakesIt_data()
{
    QTest::addColumn<QByteArray>("sheet"); // '@' stands for the new line
    QTest::addColumn<unsigned>("index");
    QTest::addColumn<unsigned>("subIndex");
    const auto row = [](const char* name, const QByteArray& sheet, unsigned index, unsigned subIndex) {
        QTest::newRow(name) << sheet << index << subIndex;
    };
    row("variable", variable + QByteArray("@\n[Comments]\nLines=0\n"), 0x2000, 0);
    row("before a comment at the end", variable + QByteArray("@; the end\n\n[Comments]\nLines=0\n"), 0x2000, 0);
    row("entry", record + QByteArray("[2001sub1]\nDataType=5\n@[2001sub2]\nDataType=5\n"), 0x2001, 1);
    row("upper case", record + QByteArray("[2001SUBA]\nDataType=5\n@"), 0x2001, 10);
    row("second section of the sub-index",
        record + QByteArray("[2001sub1]\nDataType=5\n@[2001sub1]\nDataType=5\nParameterValue=9\n"), 0x2001, 1);
    row("second object type", variable + QByteArray("@ObjectType=7\nDataType=5\nParameterValue=9\n"), 0x2000, 0);
    row("second section of the object",
        variable + QByteArray("@[Comments]\nLines=0\n[2000]\nObjectType=7\nParameterValue=9\n"), 0x2000, 0);
    row("section with a leading zero", QByteArray(variable) + "@[02000]\nObjectType=7\nParameterValue=9\n", 0x2000, 0);
    row("section of an object that is not listed", record + QByteArray("[3000sub2]\nDataType=5\n@"), 0x2001, 2);
    row("value before the object type", QByteArray("[2000]\nParameterValue=9\nObjectType=7\nDataType=5\n@"), 0x2000, 0);
    row("key in another case", variable + QByteArray("parametervalue=9\n@"), 0x2000, 0);
}

void TestDcfText::valueIsWrittenWhereTheReaderTakesIt()
{
    QFETCH(QByteArray, sheet);
    QFETCH(unsigned, index);
    QFETCH(unsigned, subIndex);
    sheet.prepend(list);
    const QByteArray source = QByteArray(sheet).replace('@', "");
    const tDcfText dcf = configured(source, { entryOf(index, subIndex, "\7") });
    QCOMPARE(dcf.text, sheet.replace("@", "ParameterValue=0x07\n"));
    QVERIFY(dcf.unwritten.empty());
    const CSheetFile file(dcf.text, "device.dcf");
    for (const tSnapshotEntry& entry : loadSnapshot(file.name()).entries)
        QCOMPARE(entry.value,
                 entry.index == index && entry.subIndex == subIndex ? std::optional(QByteArray("\7")) : std::nullopt);
}

void TestDcfText::nodeIdIsWritten_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("no section") << QByteArray() << QByteArray("\n[DeviceComissioning]\nNodeID=5\n");
    QTest::newRow("section with one")
        << QByteArray("[DeviceComissioning]\nNodeID=0x3 ; first\nBaudrate=125\n[Comments]\n")
        << QByteArray("[DeviceComissioning]\nNodeID=5 ; first\nBaudrate=125\n[Comments]\n");
    QTest::newRow("section with the same one")
        << QByteArray("[DeviceComissioning]\nNodeID=0x5\n") << QByteArray("[DeviceComissioning]\nNodeID=0x5\n");
    QTest::newRow("section with two") << QByteArray("[DeviceComissioning]\nNodeID=3\nNodeID=\n")
                                      << QByteArray("[DeviceComissioning]\nNodeID=3\nNodeID=5\n");
    QTest::newRow("section without one") << QByteArray("[DeviceComissioning]\nNodeName=a\n\n[Comments]\nLines=0\n")
                                         << QByteArray("[DeviceComissioning]\nNodeName=a\nNodeID=5\n\n[Comments]\n"
                                                       "Lines=0\n");
    QTest::newRow("other spelling") << QByteArray("[DeviceCommissioning]\nNodeID=3\n")
                                    << QByteArray(
                                           "[DeviceCommissioning]\nNodeID=3\n\n[DeviceComissioning]\nNodeID=5\n");
}

void TestDcfText::nodeIdIsWritten()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    const QByteArray sheet = QByteArray(list) + variable;
    const QByteArray text = configured(sheet + before, {}, 5).text;
    QCOMPARE(text, sheet + after);
    const CSheetFile file(text, "device.dcf");
    QCOMPARE(loadSnapshot(file.name()).nodeId, 5U);
}

void TestDcfText::unknownNodeIdChangesNothing()
{
    const QByteArray sheet = QByteArray(list) + variable + "[DeviceComissioning]\nNodeID=3\n";
    QCOMPARE(configured(sheet, {}).text, sheet);
}

void TestDcfText::lineEndsAreThoseOfTheSheet_data()
{
    QTest::addColumn<QByteArray>("sheet");
    QTest::addColumn<QByteArray>("added");
    const QByteArray lines = QByteArray(list) + variable;
    const QByteArray crlf = QByteArray(lines).replace("\n", "\r\n");
    QTest::newRow("LF") << lines << QByteArray("ParameterValue=0x07\n\n[DeviceComissioning]\nNodeID=5\n");
    QTest::newRow("CR LF") << crlf << QByteArray("ParameterValue=0x07\r\n\r\n[DeviceComissioning]\r\nNodeID=5\r\n");
    QTest::newRow("LF, none at the end") << lines.chopped(1)
                                         << QByteArray("\nParameterValue=0x07\n\n[DeviceComissioning]\nNodeID=5\n");
    QTest::newRow("CR LF, none at the end")
        << crlf.chopped(2) << QByteArray("\r\nParameterValue=0x07\r\n\r\n[DeviceComissioning]\r\nNodeID=5\r\n");
    QTest::newRow("CR LF, half of it at the end")
        << crlf.chopped(1) << QByteArray("\nParameterValue=0x07\r\n\r\n[DeviceComissioning]\r\nNodeID=5\r\n");
    QTest::newRow("LF, a CR at the end") << lines.chopped(1) + '\r'
                                         << QByteArray(
                                                "\nParameterValue=0x07\r\n\r\n[DeviceComissioning]\r\nNodeID=5\r\n");
}

void TestDcfText::lineEndsAreThoseOfTheSheet()
{
    QFETCH(QByteArray, sheet);
    QFETCH(QByteArray, added);
    QCOMPARE(configured(sheet, { entryOf(0x2000, 0, "\7") }, 5).text, sheet + added);
}

void TestDcfText::textsHaveTheCharacterSetOfTheSheet_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("more");
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<QByteArray>("last");
    const QByteArray none;
    const QByteArray mark = "; The character set is Windows-1252: \xE4\xF6\xFC\n";
    QTest::newRow("ASCII") << none << none << QByteArray("R\xC3\xB6hre") << none;
    QTest::newRow("UTF-8") << QByteArray("; \xC3\xA4\n") << none << QByteArray("R\xC3\xB6hre") << none;
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF") << none << QByteArray("R\xC3\xB6hre") << none;
    QTest::newRow("Windows-1252") << QByteArray("; \xE4\n") << none << QByteArray("R\xF6hre") << none;
    QTest::newRow("Windows-1252 by the old value only")
        << QByteArray("; \xC3\xA4\n") << QByteArray("ParameterValue=\xE4\n") << QByteArray("R\xF6hre") << none;
    QTest::newRow("Windows-1252 by the old value only, then ASCII")
        << QByteArray() << QByteArray("ParameterValue=\xE4\n") << QByteArray("Rohr") << mark;
}

void TestDcfText::textsHaveTheCharacterSetOfTheSheet()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, more);
    QFETCH(QByteArray, written);
    QFETCH(QByteArray, last);
    const QByteArray sheet = first + list + QByteArray(variable).replace("DataType=5", "DataType=9");
    const QByteArray value = last.isEmpty() ? QByteArray("R\xF6hre") : QByteArray("Rohr");
    const QByteArray text = configured(sheet + more, { entryOf(0x2000, 0, value, 9) }).text;
    QCOMPARE(text, sheet + "ParameterValue=" + written + '\n' + last);
    const CSheetFile file(text, "device.dcf");
    QCOMPARE(loadSnapshot(file.name()).entries.at(0).value, value);
}

void TestDcfText::oldValuesOfUnknownEntriesGo_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("configuration file") << "device.dcf";
    QTest::newRow("data sheet") << "device.eds"; // where they are no values, but would become some
}

void TestDcfText::oldValuesOfUnknownEntriesGo()
{
    QFETCH(QString, name);
    const QByteArray sheet = QByteArray(list) + variable + "ParameterValue=1\nParameterValue=2 ; two\nLowLimit=0\n" +
                             record + "[2001sub1]\nDataType=9\nParameterValue=old\n" +
                             "[2001sub2]\nDataType=9\nParameterValue=\n[2001sub3]\nDataType=9\nParameterValue=\n";
    tSnapshotEntry unknown = entryOf(0x2000, 0, {});
    unknown.value.reset();
    const tDcfText dcf =
        configured(sheet, { entryOf(0x2001, 1, "no;line", 9), entryOf(0x2001, 3, "new", 9), unknown }, 0, name);
    QCOMPARE(dcf.text, QByteArray(list) + variable + "LowLimit=0\n" + record +
                           "[2001sub1]\nDataType=9\n[2001sub2]\nDataType=9\nParameterValue=\n"
                           "[2001sub3]\nDataType=9\nParameterValue=new\n");
    QCOMPARE(configured(sheet, { entryOf(0x2000, 0, "\3"), entryOf(0x2001, 1, "new", 9) }, 0, name).text,
             QByteArray(sheet).replace("=2 ;", "=0x03 ;").replace("=old", "=new"));
}

void TestDcfText::valuesWithoutALineAreReported()
{
    const QByteArray sheet = QByteArray(list) + variable + record +
                             "[2001sub1]\nDataType=9\n[2001sub2]\nDataType=0xF\n[2001sub3]\nDataType=0xF\n";
    constexpr int most = (0x10000 - 2 - 15 + 1) / 3; // three characters for each byte, the last without a blank
    const tDcfText dcf = configured(sheet, {
                                               entryOf(0x2000, 0, "\7"),
                                               entryOf(0x2000, 1, "\7"),   // not in the sheet
                                               entryOf(0x2000, 0, "\7\7"), // of another length
                                               entryOf(0x2001, 1, "\n", 9),
                                               entryOf(0x2001, 2, QByteArray(most, '\7'), 15),
                                               entryOf(0x2001, 3, QByteArray(most + 1, '\7'), 15),
                                           });
    QCOMPARE(dcf.unwritten, (std::vector<std::size_t>{ 1, 2, 3, 5 }));
    const CSheetFile file(dcf.text, "device.dcf");
    const auto entries = loadSnapshot(file.name()).entries;
    QCOMPARE(entries.at(0).value, QByteArray("\7"));
    QCOMPARE(entries.at(1).value, std::nullopt);
    QCOMPARE(entries.at(2).value, QByteArray(most, '\7'));
    QCOMPARE(entries.at(3).value, std::nullopt);
}

void TestDcfText::partsOfLongLinesStayParts_data()
{
    QTest::addColumn<QByteArray>("first"); // a part that is as long as the reader's longest line, and the rest
    QTest::addColumn<QByteArray>("rest");
    const auto row = [](const char* name, const QByteArray& start, const QByteArray& rest) {
        QTest::newRow(name) << start + QByteArray(0x10000 - start.size(), 'x') << rest;
    };
    row("key, then a comment", "LowLimit=", ";ParameterValue=9\n");
    row("key, then a key", "LowLimit=", "HighLimit=9\n");
    row("value, then a key", "ParameterValue=", "HighLimit=9\n");
    row("value, then a section", "ParameterValue=", "[2001sub1]\nDataType=5\n");
    row("key, then a value", "LowLimit=", "ParameterValue=9\n");
    row("key, then a value that is not UTF-8", "LowLimit=\xFF", "ParameterValue=9\n");
}

void TestDcfText::partsOfLongLinesStayParts()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, rest);
    const QByteArray sheet = list + QByteArray(variable) + first + rest;
    for (const bool written : { true, false }) {
        std::vector<tSnapshotEntry> entries;
        if (written)
            entries.push_back(entryOf(0x2000, 0, "\7"));
        const QByteArray text = configured(sheet, entries).text;
        const CSheetFile before(sheet, "device.dcf");
        const CSheetFile after(text, "device.dcf");
        const auto had = loadSnapshot(before.name()).entries;
        const auto has = loadSnapshot(after.name()).entries;
        QCOMPARE(has.size(), had.size());
        QCOMPARE(has.at(0).value, written ? std::optional(QByteArray("\7")) : std::nullopt);
    }
}

void TestDcfText::sheetThatDoesNotLoadEndsTheCommand()
{
    const CSheetFile file("[a]\n#k=1\n");
    const QString end = endOf([&file] { return dcfText(file.name(), {}); });
    QVERIFY2(end.startsWith("2: not a valid data sheet: " + file.name() + ", line 2: \"#k=1\""), qPrintable(end));
}

QTEST_GUILESS_MAIN(TestDcfText)
#include "TestDcfText.moc"
