// The list of a sheet's entries: which rows there are, and ranges of indexes.
// SPDX-License-Identifier: MIT
#include "sheets/DictionaryList.h"

#include "SheetFile.h"

#include "dic/DataSheet.h"

#include <QTest>

namespace
{

constexpr char sheet[] = R"([ManufacturerObjects]
1=0x2000
2=0x2001
[2000]
ParameterName=Level
ObjectType=7
DataType=0x0003
AccessType=rww
LowLimit=-5
HighLimit=0x7F
DefaultValue=$NODEID
PDOMapping=1
[2001]
ParameterName=List
ObjectType=9
[2001sub1]
ParameterName=First, "quoted"
DataType=0x0029
AccessType=const
[2001sub1]
ParameterName=Twice
DataType=0x0005
[3000subFF]
ParameterName=Not listed
DataType=0x0009
)";

} // namespace

class TestDictionaryList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLoadedEntryHasARow();
    void jsonHasTheSameKeys();
    void choiceLimitsTheRows_data();
    void choiceLimitsTheRows();
    void rangesAreHexadecimal_data();
    void rangesAreHexadecimal();

private:
    static std::vector<tListRow> rows(const tListChoice& choice = {})
    {
        const CSheetFile file(sheet);
        CDataSheet loaded;
        if (loaded.load(file.name()) != CDataSheet::loaded)
            qFatal("no sheet");
        return dictionaryList(loaded.dictionary(), choice);
    }
};

void TestDictionaryList::everyLoadedEntryHasARow()
{
    QCOMPARE(listAsCsv(rows()), QByteArray("index,subindex,name,type,access,low,high,default,pdo\n"
                                           "0x2000,0,Level,Integer16,RWW,-5,0x7F,$NODEID,Yes\n"
                                           "0x2001,1,\"First, \"\"quoted\"\"\",User-defined Type,CONST,,,,No\n"
                                           "0x2001,1,Twice,Unsigned8,CONST,,,,No\n"
                                           "0x2001,0xFF,Not listed,Visible String,CONST,,,,No\n"));
}

void TestDictionaryList::jsonHasTheSameKeys()
{
    const auto all = rows();
    QCOMPARE(listAsJson({ all[0], all[3] }), QByteArray(R"([
    {
        "access": "RWW",
        "default": "$NODEID",
        "high": "0x7F",
        "index": "0x2000",
        "low": "-5",
        "name": "Level",
        "pdo": true,
        "subindex": 0,
        "type": "Integer16"
    },
    {
        "access": "CONST",
        "default": "",
        "high": "",
        "index": "0x2001",
        "low": "",
        "name": "Not listed",
        "pdo": false,
        "subindex": 255,
        "type": "Visible String"
    }
]
)"));
}

void TestDictionaryList::choiceLimitsTheRows_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QStringList>("ranges");
    QTest::addColumn<QStringList>("names");
    const auto row = [](const QString& pattern, const QStringList& ranges, const QStringList& names) {
        QTest::addRow("%s %s", qPrintable(pattern), qPrintable(ranges.join(' '))) << pattern << ranges << names;
    };
    const QString first = "First, \"quoted\"";
    row("", {}, { "Level", first, "Twice", "Not listed" });
    row("LEVEL|^not", {}, { "Level", "Not listed" });
    row("^0x2000$", {}, { "Level" });
    row("^2001:1$", {}, { first, "Twice" });
    row("^2000:0$", {}, { "Level" });
    row("2001:ff", {}, { "Not listed" });
    row("none", {}, {});
    row("", { "2000" }, { "Level" });
    row("", { "1000-1FFF" }, {});
    row("", { "1000", "2000-2001" }, { "Level", first, "Twice", "Not listed" });
    row("level", { "2001" }, {});
}

void TestDictionaryList::choiceLimitsTheRows()
{
    QFETCH(QString, pattern);
    QFETCH(QStringList, ranges);
    tListChoice choice;
    choice.setPattern(pattern);
    for (const QString& range : ranges)
        choice.addRange(range);
    QStringList names;
    for (const tListRow& row : rows(choice))
        names << row.name;
    QTEST(names, "names");
}

void TestDictionaryList::rangesAreHexadecimal_data()
{
    QTest::addColumn<QString>("range");
    for (const char* text : { "1000-1FFF", "0x1000-0X1fff", "1000-0x1fff" })
        QTest::newRow(text) << "4096 8191";
    QTest::newRow("1017") << "4119 4119";
    QTest::newRow("0") << "0 0";
    for (const char* text : { "", "-", "1000-", "-1000", "1FFF-1000", "10000", "0x", "1017 ", "1000-1FFF-2", "g" })
        QTest::newRow(text) << "none";
}

void TestDictionaryList::rangesAreHexadecimal()
{
    const auto range = indexRange(QTest::currentDataTag());
    const QString found = range ? QString("%1 %2").arg(range->first).arg(range->last) : QString("none");
    QTEST(found, "range");
}

QTEST_GUILESS_MAIN(TestDictionaryList)
#include "TestDictionaryList.moc"
