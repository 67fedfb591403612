// The names of parameters on the command line.
// SPDX-License-Identifier: MIT
#include "network/ParameterName.h"

#include "EndOf.h"
#include "SheetFile.h"
#include "dic/DataSheet.h"
#include "sheets/EntryText.h"

#include <QTest>

namespace
{

// Several objects, each a variable: "2000=Pump".
QByteArray sheetWith(const QList<QPair<QByteArray, QByteArray>>& objects)
{
    QByteArray text = "[ManufacturerObjects]\n";
    for (qsizetype number = 0; number < objects.size(); ++number)
        text += QByteArray::number(number + 1) + "=0x" + objects[number].first + '\n';
    for (const auto& [index, name] : objects)
        text += '[' + index + "]\nParameterName=" + name + "\nObjectType=7\nDataType=5\nAccessType=rw\n";
    return text;
}

} // namespace

class TestParameterName : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreHexadecimal_data();
    void numbersAreHexadecimal();
    void namesAreThoseOfTheSheet_data();
    void namesAreThoseOfTheSheet();
    void whatIsNoParameterEndsTheCommand_data();
    void whatIsNoParameterEndsTheCommand();
    void nearNamesAreTold_data();
    void nearNamesAreTold();
    void anObjectOfSeveralEntriesIsNoParameter();
    void namesNeedASheet();
    void aNameOfSeveralIsRefused();
    void aNameThatIsANumberIsRefused();
    void aNumberOfNoEntryIsAParameter();

private:
    static const CCANopen& demo()
    {
        static CDataSheet sheet;
        if (sheet.dictionary().m_objectArray.empty() &&
            sheet.load(VELMORA_SHARE "/velmora-demo.eds") != CDataSheet::loaded)
            qFatal("no sheet");
        return sheet.dictionary();
    }
};

void TestParameterName::numbersAreHexadecimal_data()
{
    QTest::addColumn<QString>("parameter");
    const auto row = [](const char* text, const char* parameter) { QTest::newRow(text) << parameter; };
    row("1018:1", "1018:1");
    row("0x1018sub1", "1018:1");
    row("0x1018SUB0x1", "1018:1");
    row("1018:0xA", "1018:A");
    row("100a:fe", "100A:FE");
    row("0X100a", "100A");
    row("5", "0005");
    row("0:0", "0000");
    row("ffff:ff", "FFFF:FF");
}

void TestParameterName::numbersAreHexadecimal()
{
    QFETCH(QString, parameter);
    for (const CCANopen* sheet : { static_cast<const CCANopen*>(nullptr), &demo() }) {
        const auto name = readParameterName(QTest::currentDataTag(), sheet);
        QCOMPARE(parameterText(name.index, name.subIndex), parameter);
        QVERIFY(sheet != nullptr || name.entry == nullptr);
    }
}

void TestParameterName::namesAreThoseOfTheSheet_data()
{
    QTest::addColumn<QString>("parameter");
    const auto row = [](const char* text, const char* parameter) { QTest::newRow(text) << parameter; };
    row("Identity object/Vendor-ID", "1018:1");
    row("Identity object/Number of entries", "1018");
    row("Producer heartbeat time", "1017");
    row("Channel 1/Label", "2101:4");
    row("Producer heartbeat time/Producer heartbeat time", "1017");
}

void TestParameterName::namesAreThoseOfTheSheet()
{
    QFETCH(QString, parameter);
    const auto name = readParameterName(QTest::currentDataTag(), &demo());
    QCOMPARE(parameterText(name.index, name.subIndex), parameter);
    QVERIFY(name.entry != nullptr);
    QCOMPARE(name.entry->getSubindex(), name.subIndex);
}

void TestParameterName::whatIsNoParameterEndsTheCommand_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : { "", "1018:", "10180", "1018:100", "1018.1", ":1", "1018:1:2", "identify", "-1", "1018 :1",
                              "0x", "1018sub", "Identity object/Label", "1018\n" })
        QTest::addRow("\"%s\"", text) << QString(text);
}

void TestParameterName::whatIsNoParameterEndsTheCommand()
{
    QFETCH(QString, text);
    QCOMPARE(endOf([&] { return readParameterName(text, &demo()); }),
             "2: \"" + text + "\" is no parameter such as 1018:1 or 0x1018sub1, and no name in the data sheet");
}

void TestParameterName::nearNamesAreTold_data()
{
    QTest::addColumn<QString>("near");
    const auto row = [](const char* text, const char* near) { QTest::newRow(text) << near; };
    const char* identity = "\"Identity object/Number of entries\", \"Identity object/Vendor-ID\", "
                           "\"Identity object/Product code\", \"Identity object/Revision number\", "
                           "\"Identity object/Serial number\"";
    row("Vendor-ID", "\"Identity object/Vendor-ID\"");
    row("vendor id", "\"Identity object/Vendor-ID\"");
    row("identity object", identity);
    row("Identity object/", identity);
    row("Identity object/Vendor ID", "\"Identity object/Vendor-ID\"");
    row("producer heartbeat time", "\"Producer heartbeat time\"");
    row("Producer heartbeat", "");
    row("Brigthness", "\"Brightness\"");
    row("Label", "\"Channel 1/Label\"");
}

void TestParameterName::nearNamesAreTold()
{
    QFETCH(QString, near);
    const QString text = QTest::currentDataTag();
    QCOMPARE(endOf([&] { return readParameterName(text, &demo()); }),
             "2: \"" + text + "\" is no parameter such as 1018:1 or 0x1018sub1, and no name in the data sheet" +
                 (near.isEmpty() ? "" : "; near is " + near));
}

void TestParameterName::anObjectOfSeveralEntriesIsNoParameter()
{
    QCOMPARE(endOf([] { return readParameterName("Identity object", &demo()); }),
             "2: \"Identity object\" has several entries: write \"Identity object/Number of entries\", \"Identity "
             "object/Vendor-ID\", \"Identity object/Product code\", \"Identity object/Revision number\", \"Identity "
             "object/Serial number\"");
    QVERIFY(endOf([] { return readParameterName("Channel 1", &demo()); }).endsWith(", ..."));
}

void TestParameterName::namesNeedASheet()
{
    QCOMPARE(endOf([] { return readParameterName("Identity object", nullptr); }),
             "2: \"Identity object\" is no parameter such as 1018:1 or 0x1018sub1; names need a data sheet (-s)");
}

void TestParameterName::aNameOfSeveralIsRefused()
{
    const CSheetFile file(sheetWith({ { "2000", "Speed" }, { "2001", "Speed" }, { "2002", "Torque" } }));
    CDataSheet sheet;
    QCOMPARE(sheet.load(file.name()), CDataSheet::loaded);
    QCOMPARE(endOf([&] { return readParameterName("Speed", &sheet.dictionary()); }),
             "2: \"Speed\" is the name of several parameters: 2000, 2001");
    QCOMPARE(readParameterName("Torque", &sheet.dictionary()).index, 0x2002);
}

// Neither is taken silently.
void TestParameterName::aNameThatIsANumberIsRefused()
{
    const CSheetFile file(sheetWith({ { "2000", "ADC" }, { "2001", "2000" }, { "2002", "2002" } }));
    CDataSheet sheet;
    QCOMPARE(sheet.load(file.name()), CDataSheet::loaded);
    const auto index = [&](const char* text) { return int{ readParameterName(text, &sheet.dictionary()).index }; };
    QCOMPARE(endOf([&] { return index("ADC"); }), "2: \"ADC\" is an index and the name of 2000: write 0x0ADC or 2000");
    QCOMPARE(endOf([&] { return index("2000"); }),
             "2: \"2000\" is an index and the name of 2001: write 0x2000 or 2001");
    QCOMPARE(index("0xADC"), 0xADC);
    QCOMPARE(index("0x2000"), 0x2000);
    QCOMPARE(index("ADC/ADC"), 0x2000);
    QCOMPARE(index("2002"), 0x2002);
}

void TestParameterName::aNumberOfNoEntryIsAParameter()
{
    const auto name = readParameterName("5FFF:1", &demo());
    QCOMPARE(name.index, 0x5FFF);
    QVERIFY(name.entry == nullptr);
}

QTEST_APPLESS_MAIN(TestParameterName)
#include "TestParameterName.moc"
