// What the attribute form of a document shows of the selected item, off-line.
// SPDX-License-Identifier: MIT
#include "NewDocument.h"

#include "BoxCatcher.h"
#include "TempSettings.h"

namespace
{

constexpr char device[] = R"(
[MandatoryObjects]
SupportedObjects=2
1=0x1000
2=0x1018
[OptionalObjects]
1=0x0001
2=0x1A00
3=0x1010
4=0x6000
5=0x6F00
6=0x6F01
[ManufacturerObjects]
1=0x2000
2=0x2001
3=0x2002
4=0x2003
5=0x2004
[1000]
ParameterName=Device Type
ObjectType=0x7
DataType=0x0007
AccessType=ro
DefaultValue=0x191 (no number)
LowLimit=1
PDOMapping=0
[1018]
ParameterName=Identity Object
ObjectType=0x9
DataType=0x23
[1018sub0]
ParameterName=Number of entries
DataType=5
AccessType=const
LowLimit=1
HighLimit=4
DefaultValue=4
[1018sub1]
ParameterName=Vendor Id
DataType=7
AccessType=ro
HighLimit=9
[1]
ParameterName=Boolean
ObjectType=5
DataType=1
AccessType=rwr
[1A00]
ParameterName=Mapping
ObjectType=9
DataType=0x21
[1A00sub0]
ParameterName=Count
DataType=5
AccessType=rw
[1A00sub1F]
ParameterName=Last
DataType=0x23
AccessType=rww
PDOMapping=1
[1010]
ParameterName=Store
ObjectType=8
DataType=7
[1010sub1]
ParameterName=Save all
DataType=7
AccessType=wo
[6000]
ParameterName=Input
ObjectType=0x7
DataType=0x00FF
AccessType=nonsense
PDOMapping=2
[6F00]
ParameterName=Empty record
ObjectType=9
DataType=0x0023
[2000]
ParameterName=Twice
ObjectType=7
DataType=5
AccessType=rw
ObjectType=7
DataType=6
AccessType=ro
[2001]
ParameterName=%1 & %2
ObjectType=7
DataType=9
AccessType=rw
DefaultValue=%1%2%3
[2002]
ParameterName=Structured
ObjectType=9
DataType=5
[2002sub0]
ParameterName=Count
DataType=5
[2002subFF]
ParameterName=Structure
DataType=7
AccessType=ro
[2003]
ObjectType=9
[2003sub1]
ParameterName=Below no name
[2003sub2]
ParameterName=Object 2 is missing
[2004]
ParameterName=No names below
ObjectType=9
[2004sub1]
DataType=7
)";

const QString nothingLoaded = "No object attributes loaded";
const QStringList noObject = { "Object description", "", "", "", "-", "-" };
const QStringList noEntry = { "Entry description", "", "", "", "", "", "-", "-" };
const QStringList identity = { "Object: Index 1018h", "Identity Object", "RECORD", "Identity", "x", "x" };
const QStringList vendorId = { "Entry: Subndex  1h", "Vendor Id", "Unsigned32", "RO", "...,", "", "x", "-" };

} // namespace

class TestMDIWindowForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pressingAnObjectFillsTheForm_data();
    void pressingAnObjectFillsTheForm();
    void pressingAnEntryFillsTheForm_data();
    void pressingAnEntryFillsTheForm();
    void anArrayWithASingleEntryShowsItAVariableDoesNot();
    void pressingAGroupOrTheRootClearsTheForm_data();
    void pressingAGroupOrTheRootClearsTheForm();
    void pressingAnEntryOfTheSameObjectRefillsTheEntryPartOnly();
    void pressingAnotherObjectRefillsEverything();
    void pressingTheSameEntryAgainRefillsNothing();
    void aCompoundObjectWithoutEntriesMissesItsEntryOnTheSecondPress();
    void subIndexFFEqualsNone();
    void anEntryBelowAnObjectWithoutANameReadsAsAnObject();

private:
    CBoxCatcher m_boxes;
    std::unique_ptr<CTempSettings> m_settings;
    std::unique_ptr<CNewDocument> m_document;
};

void TestMDIWindowForm::init()
{
    m_settings = std::make_unique<CTempSettings>();
    m_document = std::make_unique<CNewDocument>();
    m_boxes.clear();
    QVERIFY(m_document->open(device));
    m_document->forgetStatuses();
}

void TestMDIWindowForm::cleanup()
{
    QCOMPARE(m_boxes.count(), 0); // off-line, selecting never reads
    m_document.reset();
}

void TestMDIWindowForm::pressingAnObjectFillsTheForm_data()
{
    QTest::addColumn<QStringList>("objectPart");
    QTest::addColumn<QStringList>("entryPart");
    QTest::newRow("1000: Device Type") << QStringList{
        "Object: Index 1000h", "Device Type", "VAR", "Unsigned32", "-", "x"
    } << QStringList{ "Entry: Subndex  0h", "Device Type", "Unsigned32", "RO", "1,...", "0x191 (no number)", "x", "-" };
    QTest::newRow("1018: Identity Object") << identity << noEntry;
    QTest::newRow("1: Boolean") << QStringList{
        "Object: Index 1h", "Boolean", "DEFTYPE", "Boolean", "-", "-"
    } << QStringList{ "Entry: Subndex  0h", "Boolean", "Boolean", "RWR", "Boolean", "", "-", "-" };
    QTest::newRow("1a00: Mapping") << QStringList{ "Object: Index 1a00h", "Mapping", "RECORD", "PDO Mapping", "x", "-" }
                                   << noEntry;
    QTest::newRow("1010: Store") << QStringList{ "Object: Index 1010h", "Store", "ARRAY", "Unsigned32", "x", "-" }
                                 << noEntry;
    QTest::newRow("6000: Input") << QStringList{
        "Object: Index 6000h", "Input", "VAR", "User-defined Type", "-", "-"
    } << QStringList{ "Entry: Subndex  0h", "Input", "User-defined Type", "CONST", "User-defined Type", "", "-", "x" };
    QTest::newRow("2000: Twice") << QStringList{ "Object: Index 2000h", "Twice", "VAR", "Unsigned16", "-", "-" }
                                 << noEntry;
    QTest::newRow("2001: %1 & %2") << QStringList{
        "Object: Index 2001h", "%1 & %2", "VAR", "Visible String", "-", "-"
    } << QStringList{ "Entry: Subndex  0h", "%1 & %2", "Visible String", "RW", "Visible String", "%1%2%3", "-", "-" };
}

void TestMDIWindowForm::pressingAnObjectFillsTheForm()
{
    m_document->press(QString(QTest::currentDataTag()));
    QTEST(m_document->objectPart(), "objectPart");
    QTEST(m_document->entryPart(), "entryPart");
    QCOMPARE(m_document->box("data access"), QString("Data access: N/A"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowForm::pressingAnEntryFillsTheForm_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QStringList>("entryPart");
    QTest::newRow(" 0: Number of entries")
        << "1018: Identity Object"
        << QStringList{ "Entry: Subndex  0h", "Number of entries", "Unsigned8", "CONST", "1,..,4", "4", "x", "-" };
    QTest::newRow(" 1: Vendor Id") << "1018: Identity Object" << vendorId;
    QTest::newRow(" 0: Count") << "1a00: Mapping" << QStringList{ "Entry: Subndex  0h", "Count", "Unsigned8", "RW",
                                                                  "Unsigned8",          "",      "x",         "-" };
    QTest::newRow("1f: Last")
        << "1a00: Mapping"
        << QStringList{ "Entry: Subndex 1fh", "Last", "User-defined Type", "RWW", "User-defined Type", "", "-", "x" };
    QTest::newRow(" 1: Save all") << "1010: Store"
                                  << QStringList{ "Entry: Subndex  1h", "Save all", "Unsigned32", "WO",
                                                  "Unsigned32",         "",         "-",          "-" };
    QTest::newRow(" 0: Twice") << "2000: Twice" // both stand for the first with this sub-index
                               << QStringList{ "Entry: Subndex  0h", "Twice", "Unsigned8", "RW",
                                               "Unsigned8",          "",      "-",         "-" };
}

void TestMDIWindowForm::pressingAnEntryFillsTheForm()
{
    QFETCH(const QString, object);
    m_document->press(object, QTest::currentDataTag());
    QTEST(m_document->entryPart(), "entryPart");
    QCOMPARE(m_document->box("object description"), "Object: Index " + object.section(':', 0, 0) + "h");
    QCOMPARE(m_document->box("data access"), QString("Data access: N/A"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowForm::anArrayWithASingleEntryShowsItAVariableDoesNot()
{
    QCOMPARE(m_document->item("1010: Store")->childCount(), 1);
    QCOMPARE(m_document->item("1000: Device Type")->childCount(), 0);
    QCOMPARE(m_document->item("2000: Twice")->childCount(), 2); // two entries of one variable
}

void TestMDIWindowForm::pressingAGroupOrTheRootClearsTheForm_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : { "CANopen: Object dictionary", "CiA DS-301", "Manufacturer specific", "Device profile",
                              "6f01: ", "2003: ", " 1: " }) // an item without a name counts as a group
        QTest::newRow(text) << text;
}

void TestMDIWindowForm::pressingAGroupOrTheRootClearsTheForm()
{
    QFETCH(const QString, text);
    m_document->press("1018: Identity Object", " 1: Vendor Id");
    m_document->type("5");
    QCOMPARE(m_document->statuses(), QStringList());
    m_document->press(text);
    QCOMPARE(m_document->objectPart(), noObject);
    QCOMPARE(m_document->entryPart(), noEntry);
    QCOMPARE(m_document->box("data access"), QString("Data access: N/A"));
    QCOMPARE(m_document->newValue()->text(), QString());
    QCOMPARE(m_document->value(), QString());
    QCOMPARE(m_document->statuses(), QStringList{ nothingLoaded });
    m_document->press(text);
    QCOMPARE(m_document->statuses(), QStringList({ nothingLoaded, nothingLoaded }));
}

void TestMDIWindowForm::pressingAnEntryOfTheSameObjectRefillsTheEntryPartOnly()
{
    m_document->press("1018: Identity Object");
    // A field that is not refilled keeps the mark.
    m_document->find<QLineEdit>("object name line edit")->setText("mark");
    m_document->find<QGroupBox>("object description group box")->setTitle("mark");
    m_document->type("5");
    m_document->press("1018: Identity Object", " 1: Vendor Id");
    QCOMPARE(m_document->entryPart(), vendorId);
    QCOMPARE(m_document->field("object name"), QString("mark"));
    QCOMPARE(m_document->box("object description"), QString("mark"));
    QCOMPARE(m_document->newValue()->text(), QString());
    m_document->press("1018: Identity Object");
    QCOMPARE(m_document->entryPart(), noEntry);
    QCOMPARE(m_document->field("object name"), QString("mark"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowForm::pressingAnotherObjectRefillsEverything()
{
    m_document->press("1018: Identity Object", " 1: Vendor Id");
    m_document->type("5");
    m_document->press("1a00: Mapping", " 0: Count");
    QCOMPARE(m_document->field("object name"), QString("Mapping"));
    QCOMPARE(m_document->field("parameter name"), QString("Count"));
    QCOMPARE(m_document->checked("mandatory object"), false);
    QCOMPARE(m_document->newValue()->text(), QString());
}

void TestMDIWindowForm::pressingTheSameEntryAgainRefillsNothing()
{
    m_document->press("1018: Identity Object", " 1: Vendor Id");
    m_document->type("5");
    m_document->find<QLineEdit>("parameter name line edit")->setText("mark");
    m_document->find<QGroupBox>("data access group box")->setTitle("mark");
    m_document->press("1018: Identity Object", " 1: Vendor Id");
    QCOMPARE(m_document->newValue()->text(), QString("5"));
    QCOMPARE(m_document->field("parameter name"), QString("mark"));
    QCOMPARE(m_document->box("data access"), QString("Data access: N/A")); // this title is always set
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowForm::aCompoundObjectWithoutEntriesMissesItsEntryOnTheSecondPress()
{
    const QStringList empty = { "Object: Index 6f00h", "Empty record", "RECORD", "Identity", "x", "-" };
    for (int press = 0; press < 3; ++press) {
        m_document->press("6f00: Empty record");
        QCOMPARE(m_document->objectPart(), empty);
        QCOMPARE(m_document->entryPart(), noEntry);
        QCOMPARE(m_document->statuses().size(), press);
    }
    QCOMPARE(m_document->statuses(), QStringList({ nothingLoaded, nothingLoaded }));
}

void TestMDIWindowForm::subIndexFFEqualsNone()
{
    // The first press on an object looks up every sub-index, later ones only those below FF.
    m_document->press("2002: Structured", "ff: Structure");
    QCOMPARE(m_document->field("object name"), QString("Structured"));
    QCOMPARE(m_document->box("entry description"), QString("Entry: Subndex ffh"));
    m_document->press("2002: Structured", " 0: Count");
    QCOMPARE(m_document->box("entry description"), QString("Entry: Subndex  0h"));
    m_document->press("2002: Structured", "ff: Structure");
    QCOMPARE(m_document->entryPart(), noEntry);
    QCOMPARE(m_document->field("object name"), QString("Structured"));
    QCOMPARE(m_document->statuses(), QStringList());
}

void TestMDIWindowForm::anEntryBelowAnObjectWithoutANameReadsAsAnObject()
{
    m_document->press("2003: ", " 1: Below no name");
    QCOMPARE(m_document->field("object name"), QString("Boolean")); // object 1
    QCOMPARE(m_document->statuses(), QStringList());
    m_document->press("2003: ", " 2: Object 2 is missing");
    QCOMPARE(m_document->objectPart(), noObject);
    QCOMPARE(m_document->entryPart(), noEntry);
    QCOMPARE(m_document->statuses(), QStringList{ nothingLoaded });
}

QTEST_MAIN(TestMDIWindowForm)
#include "TestMDIWindowForm.moc"
