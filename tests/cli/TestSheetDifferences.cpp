// Differences between sheets: what counts, what does not, and how it is written.
// SPDX-License-Identifier: MIT
#include "sheets/SheetDifferences.h"

#include "SheetFile.h"

#include "dic/DataSheet.h"
#include "sheets/SameValue.h"

#include <QTest>

namespace
{

constexpr char sheet[] = R"([FileInfo]
CreationDate=11-21-2026
[DeviceInfo]
VendorName=Works
VendorNumber=0x10
NrOfRXPDO=2
BaudRate_125=1
[MandatoryObjects]
1=0x1017
[OptionalObjects]
1=0x1018
[1017]
ParameterName=Heartbeat
ObjectType=7
DataType=6
AccessType=rw
LowLimit=0x0
HighLimit=0x10
DefaultValue=0
[1018]
ParameterName=Identity
ObjectType=9
[1018sub0]
ParameterName=Count
DataType=5
AccessType=ro
DefaultValue=1
[1018sub1]
ParameterName=Vendor
DataType=0x20
AccessType=ro
)";

QByteArray differences(const QByteArray& textA, const QByteArray& textB, bool json = false)
{
    const CSheetFile fileA(textA, "a.dcf");
    const CSheetFile fileB(textB, "b.dcf");
    CDataSheet a;
    CDataSheet b;
    if (a.load(fileA.name()) != CDataSheet::loaded || b.load(fileB.name()) != CDataSheet::loaded)
        qFatal("no sheet");
    const auto found = sheetDifferences(a, b);
    return json ? differencesAsJson(found, "a", "b") : differencesAsText(found, "a", "b");
}

} // namespace

class TestSheetDifferences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changeIsFound_data();
    void changeIsFound();
    void differencesAreInOrder();
    void jsonIsExact();
    void valuesAreComparedByMeaning_data();
    void valuesAreComparedByMeaning();
};

void TestSheetDifferences::changeIsFound_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<QByteArray>("lines");
    const auto row = [](const char* from, const char* to, const char* lines) {
        QTest::newRow(QByteArray(lines[0] != 0 ? lines : to).simplified())
            << QByteArray(from) << QByteArray(to) << QByteArray(lines);
    };
    row("DefaultValue=0\n", "DefaultValue=1000\n", "1017: default 0 -> 1000\n");
    row("DefaultValue=0\n", "", "1017: default 0 -> none\n");
    row("LowLimit=0x0", "LowLimit=1", "1017: low limit 0x0 -> 1\n");
    row("HighLimit=0x10", "HighLimit=17", "1017: high limit 0x10 -> 17\n");
    row("HighLimit=0x10", "HighLimit=16", "");
    row("DefaultValue=0\n", "DefaultValue=0x0000\n", "");
    row("DefaultValue=0\n", "DefaultValue=0\nParameterValue=5\n", "1017: value none -> 5\n");
    row("DefaultValue=0\n", "DefaultValue=0\nPDOMapping=1\n", "1017: pdo No -> Yes\n");
    row("DataType=6", "DataType=7", "1017: type Unsigned16 -> Unsigned32\n");
    row("DataType=0x20", "DataType=0x21", "1018:1: type User-defined Type 0x0020 -> User-defined Type 0x0021\n");
    row("AccessType=rw", "AccessType=wo", "1017: access RW -> WO\n");
    row("AccessType=rw", "AccessType=RW", "");
    row("=Heartbeat", "=Beat\t!", "1017: name \"Heartbeat\" -> \"Beat\\t!\"\n");
    row("=Count", "=Number", "1018:0: name \"Count\" -> \"Number\"\n");
    row("=Identity", "=Identity object", "1018: name \"Identity\" -> \"Identity object\"\n");
    row("ObjectType=9", "ObjectType=8", "1018: code RECORD -> ARRAY\n");
    row("ObjectType=9", "ObjectType=9\nDataType=0x23", "1018: type User-defined Type -> Identity\n");
    row("[OptionalObjects]", "[MandatoryObjects]", "1018: mandatory No -> Yes\n");
    row("[1018sub1]", "[1018sub2]", "1018:1: only in a\n1018:2: only in b\n");
    row("1=0x1017", "1=0x1017\n2=0x1016", "1016: only in b\n");
    row("VendorName=Works", "VendorName=Work", "device: vendor name \"Works\" -> \"Work\"\n");
    row("VendorNumber=0x10", "VendorNumber=17", "device: vendor number 0x10 -> 0x11\n");
    row("VendorNumber=0x10", "VendorNumber=16", "");
    row("NrOfRXPDO=2", "NrOfRXPDO=4", "device: receive PDOs 2 -> 4\n");
    row("BaudRate_125=1", "BaudRate_125=1\nBaudRate_1000=1", "device: bit rates \"125\" -> \"125 1000\"\n");
    row("CreationDate=11-21-2026", "CreationDate=11-22-2026", "");
    row("[1018sub0]", "; \n[1018SUB0]", "");
    row("[1018sub0]", "[1018sub1]\nDataType=0x20\nParameterName=Vendor\nAccessType=ro\n[1018sub0]", "");
}

void TestSheetDifferences::changeIsFound()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(QByteArray, lines);
    QByteArray changed(sheet);
    changed.replace(changed.indexOf(from), from.size(), to);
    QVERIFY(changed != sheet);
    QCOMPARE(differences(sheet, changed), lines);
}

void TestSheetDifferences::differencesAreInOrder()
{
    const QByteArray other = "[ManufacturerObjects]\n1=0x2000\n2=0x0005\n3=0x1017\n[1017]\nObjectType=7\n";
    QCOMPARE(differences(sheet, other), QByteArray("device: vendor name \"Works\" -> \"\"\n"
                                                   "device: vendor number 0x10 -> 0x0\n"
                                                   "device: bit rates \"125\" -> \"\"\n"
                                                   "device: receive PDOs 2 -> 0\n"
                                                   "0005: only in b\n"
                                                   "1017: name \"Heartbeat\" -> \"\"\n"
                                                   "1017: mandatory Yes -> No\n"
                                                   "1017: type Unsigned16 -> User-defined Type\n"
                                                   "1017: access RW -> CONST\n"
                                                   "1017: low limit 0x0 -> none\n"
                                                   "1017: high limit 0x10 -> none\n"
                                                   "1017: default 0 -> none\n"
                                                   "1018: only in a\n"
                                                   "2000: only in b\n"));
}

void TestSheetDifferences::jsonIsExact()
{
    const QByteArray changed = QByteArray(sheet).replace("[1018sub1]", "[1018sub2]").replace("Value=0\n", "Value=\n");
    QCOMPARE(differences(sheet, changed.mid(changed.indexOf("[DeviceInfo]")).replace("Works", ""), true),
             QByteArray(R"({
    "a": "a",
    "b": "b",
    "differences": [
        {
            "a": "Works",
            "b": "",
            "field": "vendor name",
            "index": null,
            "subindex": null
        },
        {
            "a": "0",
            "b": null,
            "field": "default",
            "index": "0x1017",
            "subindex": 0
        },
        {
            "a": true,
            "b": false,
            "field": "presence",
            "index": "0x1018",
            "subindex": 1
        },
        {
            "a": false,
            "b": true,
            "field": "presence",
            "index": "0x1018",
            "subindex": 2
        }
    ]
}
)"));
}

void TestSheetDifferences::valuesAreComparedByMeaning_data()
{
    QTest::addColumn<QString>("a");
    QTest::addColumn<int>("typeA");
    QTest::addColumn<QString>("b");
    QTest::addColumn<int>("typeB");
    QTest::addColumn<bool>("same");
    const auto row = [](const char* a, int typeA, const char* b, int typeB, bool same) {
        QTest::addRow("%s (%d) %s (%d)", a, typeA, b, typeB) << a << typeA << b << typeB << same;
    };
    row("0x10", 5, "16", 5, true);
    row("0x10", 5, "16", 7, true);
    row("0x10", 5, "17", 5, false);
    row("0xFF", 2, "-1", 2, true);
    row("-1", 21, "0xFFFFFFFFFFFFFFFF", 27, false);
    row("0xFF", 2, "0xFF", 5, true); // the same text
    row("0xFF", 2, "255", 5, false);
    row("$NODEID+1", 7, "1 + $nodeid", 7, true);
    row("$NODEID+1", 7, "2", 7, false);
    row("$NODEID", 7, "$NODEID+$NODEID", 7, false);
    row("", 7, "0", 7, false);
    row("", 7, "", 7, true);
    row("Yes", 7, "yes", 7, false);
    row("256", 5, "0x100", 5, false); // no values of the type
    row("1.5", 8, "15e-1", 8, true);
    row("1.5", 8, "0x3FC00000", 8, true);
    row("1.5", 8, "1.50", 17, true);
    row("1.5", 8, "1.6", 17, false);
    row("0x10", 9, "16", 9, false);
    row("01 2a", 10, "012A", 10, true);
    row("2026-02-28 12:30:15.250", 11, "923B1E0CDC021A", 11, true);
    row("01", 10, "1", 5, false);
}

void TestSheetDifferences::valuesAreComparedByMeaning()
{
    QFETCH(QString, a);
    QFETCH(int, typeA);
    QFETCH(QString, b);
    QFETCH(int, typeB);
    QTEST(isSameValue(a, typeA, b, typeB), "same");
    QTEST(isSameValue(b, typeB, a, typeA), "same");
}

QTEST_GUILESS_MAIN(TestSheetDifferences)
#include "TestSheetDifferences.moc"
