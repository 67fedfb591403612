// Object sections and sub-index sections of a data sheet, including the rules that look odd and are meant.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "Sheet.h"

#include <QTest>

// A variable 0x1000 as far as its class; keys of its entry follow.
static QByteArray variable(const QByteArray& keys)
{
    return "[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=n\nObjectType=0x7\n" + keys + '\n';
}

// An array 0x1003 with its first entry; keys of the entry follow.
static QByteArray subEntry(const QByteArray& keys)
{
    return "[OptionalObjects]\n1=0x1003\n[1003]\nObjectType=0x8\n[1003sub1]\n" + keys + '\n';
}

// Everything that an entry holds, as text.
static QString fields(const CCANopenObjectEntry& entry)
{
    return QString("%1 type %2 access %3 mapping %4 [%5..%6] default %7 flags %8")
        .arg(entry.getName(), QString::number(entry.getDataType()), QString::number(entry.getAccess()),
             QString::number(entry.getPDOMapping()), entry.getLowLimit(), entry.getHighLimit(), entry.getDefaultValue(),
             QString::number(entry.getObjectFlags()));
}

class TestSheetObjects : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void objectCreatedByItsSectionIsOptionalAndHasNoProfile();
    void entrySectionAloneCreatesItsObject();
    void byteOrderMarkInsideAValueBelongsToIt(); // only the one at the start of the file is dropped
    void equalTextsShareTheirMemory();
    void variableHasOneEntryWithItsName();
    void entryOfAnOptionalVariableIsOptional();
    void entryHasNoNameWhenTheNameComesAfterTheClass();
    void recordHasTheEntriesOfItsSections();
    void entriesOfAMandatoryRecordAreMandatory();
    void entrySectionAppearingTwiceGivesTwoEntries();
    void classDecidesAboutAnEntry_data();
    void classDecidesAboutAnEntry();
    void eachClassKeyCreatesOneMoreEntry();
    void objectSectionAppearingTwiceCreatesOneMoreEntry();
    void entryKeys_data();
    void entryKeys();
    void laterKeysOverwriteEarlier();
    void entryKeysBeforeTheClassAreIgnored();
    void entryKeysOfAnArrayAreIgnored();
    void classOfAnEntryIsReadAndIgnored();
    void dataTypeOfAnEntryIsNotThatOfItsObject();
    void nameOfAnEntryIsNotThatOfItsObject();
    void undeclaredObjectSectionAppliesToThePreviousObject();
    void undeclaredObjectSectionAppliesToTheLastListedObject();
    void undeclaredEntrySectionAppliesToThePreviousObject();
    void declaredSectionAfterAnUndeclaredOneFindsItsObject();
    void sectionsOfAnIndexListedTwiceApplyToTheSecondWhileItIsCurrent();
    void objectListAfterTheSectionsAddsObjects();
    void currentObjectSurvivesOtherSections();
    void ignoredSectionChangesNothing(); // neither the current object nor its entries
    void sectionsWithoutKeysDoNothing(); // a header is only seen with its first key
    void unknownKeyIsEnoughToCreateObjectAndEntry();
    void allSubIndexesAreRead();
};

void TestSheetObjects::objectCreatedByItsSectionIsOptionalAndHasNoProfile()
{
    const CLoadedSheet sheet("[1018]\nParameterName=Identity\nObjectType=9\n[1018sub0]\nAccessType=ro\n"
                             "[1018sub1]\nAccessType=ro\n");
    QCOMPARE(sheet.outline(), QString("1018[0 1]"));
    QCOMPARE(sheet[0]->getName(), QString("Identity"));
    QCOMPARE(int(sheet[0]->getCategory()), 0);
    QCOMPARE(sheet[0]->getProfile(true), QString(""));
    QCOMPARE(int(sheet.entry(0, 0).getCategory()), 1);
    QCOMPARE(int(sheet.entry(0, 1).getCategory()), 0);
}

void TestSheetObjects::entrySectionAloneCreatesItsObject()
{
    const CLoadedSheet sheet("[1018sub2]\nParameterName=Product\n");
    QCOMPARE(sheet.outline(), QString("1018[2]"));
    QCOMPARE(sheet[0]->getName(), QString(""));
}

void TestSheetObjects::byteOrderMarkInsideAValueBelongsToIt()
{
    const QByteArray mark = "\xEF\xBB\xBF";
    const CLoadedSheet sheet(mark + variable("DefaultValue=" + mark + "5\nLowLimit=" + mark));
    QCOMPARE(sheet.result, 1);
    QCOMPARE(sheet.entry(0, 0).getDefaultValue(), QChar(0xFEFF) + QString("5"));
    QCOMPARE(sheet.entry(0, 0).getLowLimit(), QString(QChar(0xFEFF)));
}

void TestSheetObjects::equalTextsShareTheirMemory()
{
    const CLoadedSheet sheet("[1003sub1]\nParameterName=Same\nLowLimit=0x10\n"
                             "[1003sub2]\nParameterName=Same\nHighLimit=0x10\n");
    const CCANopenObjectEntry &first = sheet.entry(0, 0), &second = sheet.entry(0, 1);
    QVERIFY(first.getName() == "Same" && first.getName().isSharedWith(second.getName()));
    QVERIFY(first.getLowLimit() == "0x10" && first.getLowLimit().isSharedWith(second.getHighLimit()));
}

void TestSheetObjects::variableHasOneEntryWithItsName()
{
    const CLoadedSheet sheet("[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=Device Type\nObjectType=0x7\n"
                             "DataType=0x0007\nAccessType=ro\nPDOMapping=0\n");
    QCOMPARE(sheet.result, 1);
    QCOMPARE(sheet.outline(), QString("1000[0]"));
    QCOMPARE(sheet[0]->getName(), QString("Device Type"));
    QCOMPARE(int(sheet[0]->getClass()), 7);
    QCOMPARE(int(sheet[0]->getDataType()), 7);
    QCOMPARE(fields(sheet.entry(0, 0)), QString("Device Type type 7 access 1 mapping 0 [..] default  flags 0"));
    QCOMPARE(int(sheet.entry(0, 0).getCategory()), 1);
}

void TestSheetObjects::entryOfAnOptionalVariableIsOptional()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1008\n[1008]\nObjectType=7\n");
    QCOMPARE(int(sheet.entry(0, 0).getCategory()), 0);
}

void TestSheetObjects::entryHasNoNameWhenTheNameComesAfterTheClass()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1008\n[1008]\nObjectType=7\nParameterName=Name\n");
    QCOMPARE(sheet[0]->getName(), QString("Name"));
    QCOMPARE(sheet.entry(0, 0).getName(), QString(""));
}

void TestSheetObjects::recordHasTheEntriesOfItsSections()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1018\n[1018]\nParameterName=Identity\nObjectType=0x9\n"
                             "[1018sub0]\nParameterName=a\n[1018sub1]\nParameterName=b\n[1018sub2]\nParameterName=c\n"
                             "[1018sub3]\nParameterName=d\n[1018sub4]\nParameterName=e\n");
    QCOMPARE(sheet.outline(), QString("1018[0 1 2 3 4]"));
    QStringList found;
    for (size_t number = 0; number < 5; ++number)
        found << sheet.entry(0, number).getName() + QString::number(sheet.entry(0, number).getCategory());
    QCOMPARE(found.join(' '), QString("a1 b0 c0 d0 e0"));
}

void TestSheetObjects::entriesOfAMandatoryRecordAreMandatory()
{
    const CLoadedSheet sheet("[MandatoryObjects]\n1=0x1018\n[1018sub0]\nDataType=5\n[1018sub1]\nDataType=7\n");
    QCOMPARE(int(sheet.entry(0, 0).getCategory()), 1);
    QCOMPARE(int(sheet.entry(0, 1).getCategory()), 1);
}

void TestSheetObjects::entrySectionAppearingTwiceGivesTwoEntries()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1018\n[1018sub1]\nParameterName=a\n[1018sub1]\nParameterName=b\n");
    QCOMPARE(sheet.outline(), QString("1018[1 1]"));
    QCOMPARE(sheet.entry(0, 0).getName(), QString("a"));
    QCOMPARE(sheet.entry(0, 1).getName(), QString("b"));
    QCOMPARE(sheet[0]->find(static_cast<unsigned char>(1)), 0);
}

void TestSheetObjects::classDecidesAboutAnEntry_data()
{
    QTest::addColumn<int>("objectClass");
    QTest::addColumn<int>("entries");
    for (auto [value, objectClass, entries] :
         std::initializer_list<std::tuple<const char*, int, int>>{ { "0x0", 0, 1 },
                                                                   { "2", 2, 1 },
                                                                   { "0x5", 5, 1 },
                                                                   { "0x6", 6, 1 },
                                                                   { "0x7", 7, 1 },
                                                                   { "7", 7, 1 },
                                                                   { "0x8", 8, 0 },
                                                                   { "8", 8, 0 },
                                                                   { "010", 8, 0 },
                                                                   { "0x9", 9, 0 },
                                                                   { "0x09", 9, 0 },
                                                                   { "10", 10, 1 },
                                                                   { "255", 255, 1 },
                                                                   { "256", 0, 1 },
                                                                   { "VAR", 0, 1 },
                                                                   { "", 0, 1 },
                                                                   { "-8", 0, 1 } })
        QTest::addRow("\"%s\"", value) << objectClass << entries;
}

void TestSheetObjects::classDecidesAboutAnEntry()
{
    const QByteArray value = QByteArray(QTest::currentDataTag()).chopped(1).mid(1);
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x2000\n[2000]\nObjectType=" + value + '\n');
    QTEST(int(sheet[0]->getClass()), "objectClass");
    QTEST(int(sheet[0]->m_objectEntryArray.size()), "entries");
}

void TestSheetObjects::eachClassKeyCreatesOneMoreEntry()
{
    const CLoadedSheet sheet(variable("DataType=5\nObjectType=7\nDataType=6\nObjectType=8\nDataType=7"));
    QCOMPARE(sheet.outline(), QString("1000[0 0]"));
    QCOMPARE(int(sheet[0]->getClass()), 8);
    QCOMPARE(int(sheet[0]->getDataType()), 7);
    QCOMPARE(int(sheet.entry(0, 0).getDataType()), 5);
    QCOMPARE(int(sheet.entry(0, 1).getDataType()), 7); // still the current entry
}

void TestSheetObjects::objectSectionAppearingTwiceCreatesOneMoreEntry()
{
    const CLoadedSheet sheet(variable("DataType=5") + "[1000]\nParameterName=m\nObjectType=7\nDataType=6\n");
    QCOMPARE(sheet.outline(), QString("1000[0 0]"));
    QCOMPARE(sheet[0]->getName(), QString("m"));
    QCOMPARE(sheet.entry(0, 0).getName(), QString("n"));
    QCOMPARE(sheet.entry(0, 1).getName(), QString("m"));
}

void TestSheetObjects::entryKeys_data()
{
    QTest::addColumn<QString>("changed");
    for (auto [keys, changed] : std::initializer_list<std::pair<const char*, const char*>>{
             { "DataType=0x0007", " type 7 access 0 mapping 0 [..] default  flags 0" },
             { "DataType=65535", " type 65535 access 0 mapping 0 [..] default  flags 0" },
             { "DataType=0x10000", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "DataType=Unsigned32", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "AccessType=const", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "AccessType=ro", " type 0 access 1 mapping 0 [..] default  flags 0" },
             { "AccessType=WO", " type 0 access 2 mapping 0 [..] default  flags 0" },
             { "AccessType=rw ; comment", " type 0 access 3 mapping 0 [..] default  flags 0" },
             { "AccessType=rwr", " type 0 access 4 mapping 0 [..] default  flags 0" },
             { "AccessType=RWW", " type 0 access 5 mapping 0 [..] default  flags 0" },
             { "AccessType=R W", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "AccessType=", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "PDOMapping=0", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "PDOMapping=1", " type 0 access 0 mapping 1 [..] default  flags 0" },
             { "PDOMapping=2", " type 0 access 0 mapping 1 [..] default  flags 0" },
             { "PDOMapping=0x100", " type 0 access 0 mapping 1 [..] default  flags 0" },
             { "PDOMapping=Optional", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "PDOMapping=65537", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "LowLimit=-5", " type 0 access 0 mapping 0 [-5..] default  flags 0" },
             { "LowLimit= 0x00 ", " type 0 access 0 mapping 0 [0x00..] default  flags 0" },
             { "HighLimit=1e9 V", " type 0 access 0 mapping 0 [..1e9 V] default  flags 0" },
             { "DefaultValue=$NODEID+0x180", " type 0 access 0 mapping 0 [..] default $NODEID+0x180 flags 0" },
             { "DefaultValue=a=b", " type 0 access 0 mapping 0 [..] default a=b flags 0" },
             { "ObjFlags=0xFFFFFFFF", " type 0 access 0 mapping 0 [..] default  flags 4294967295" },
             { "ObjFlags=0x100000000", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "ObjFlags=yes", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "datatype=7", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "ACCESSTYPE=rw", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "ParameterValue=3", " type 0 access 0 mapping 0 [..] default  flags 0" },
             { "SubNumber=3", " type 0 access 0 mapping 0 [..] default  flags 0" } })
        QTest::addRow("%s", keys) << QString(changed);
}

void TestSheetObjects::entryKeys()
{
    const QByteArray keys = QTest::currentDataTag();
    QFETCH(QString, changed);
    const CLoadedSheet object(variable(keys));
    QCOMPARE(fields(object.entry(0, 0)), "n" + changed);
    const CLoadedSheet entry(subEntry(keys));
    QCOMPARE(fields(entry.entry(0, 0)), changed);
}

void TestSheetObjects::laterKeysOverwriteEarlier()
{
    const CLoadedSheet sheet(
        variable("DataType=5\nDataType=x\nAccessType=rw\nAccessType=?\nPDOMapping=1\nPDOMapping=no\n"
                 "LowLimit=1\nLowLimit=\nObjFlags=1\nObjFlags=2"));
    QCOMPARE(fields(sheet.entry(0, 0)), QString("n type 0 access 0 mapping 0 [..] default  flags 2"));
}

void TestSheetObjects::entryKeysBeforeTheClassAreIgnored()
{
    const CLoadedSheet sheet(
        "[OptionalObjects]\n1=0x2000\n[2000]\nDataType=7\nAccessType=rw\nPDOMapping=1\nLowLimit=1\n"
        "HighLimit=2\nDefaultValue=3\nObjFlags=4\nObjectType=7\n");
    QCOMPARE(int(sheet[0]->getDataType()), 7); // the type of the object alone
    QCOMPARE(fields(sheet.entry(0, 0)), QString(" type 0 access 0 mapping 0 [..] default  flags 0"));
}

void TestSheetObjects::entryKeysOfAnArrayAreIgnored()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x2000\n2=0x2001\n[2000]\nObjectType=7\n[2001]\nObjectType=8\n"
                             "DataType=7\nAccessType=rw\nDefaultValue=3\n");
    QCOMPARE(sheet.outline(), QString("2000[0] 2001[]"));
    QCOMPARE(int(sheet[1]->getDataType()), 7);
    QCOMPARE(fields(sheet.entry(0, 0)), QString(" type 0 access 0 mapping 0 [..] default  flags 0"));
}

void TestSheetObjects::classOfAnEntryIsReadAndIgnored()
{
    const CLoadedSheet sheet(subEntry("ObjectType=9"));
    QCOMPARE(sheet.outline(), QString("1003[1]"));
    QCOMPARE(int(sheet[0]->getClass()), 8);
}

void TestSheetObjects::dataTypeOfAnEntryIsNotThatOfItsObject()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1003\n[1003]\nObjectType=8\nDataType=5\n[1003sub1]\nDataType=7\n");
    QCOMPARE(int(sheet[0]->getDataType()), 5);
    QCOMPARE(int(sheet.entry(0, 0).getDataType()), 7);
}

void TestSheetObjects::nameOfAnEntryIsNotThatOfItsObject()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1003\n[1003]\nParameterName=a\n[1003sub1]\nParameterName=b\n");
    QCOMPARE(sheet[0]->getName(), QString("a"));
    QCOMPARE(sheet.entry(0, 0).getName(), QString("b"));
}

void TestSheetObjects::undeclaredObjectSectionAppliesToThePreviousObject()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1000\n2=0x1001\n[1000]\nParameterName=a\nObjectType=7\n"
                             "[2000]\nParameterName=b\nObjectType=9\nDataType=0x21\n");
    QCOMPARE(sheet.outline(), QString("1000[0] 1001[]"));
    QCOMPARE(sheet[0]->getName(), QString("b"));
    QCOMPARE(int(sheet[0]->getClass()), 9);
    QCOMPARE(int(sheet[0]->getDataType()), 0x21);
    QCOMPARE(int(sheet.entry(0, 0).getDataType()), 0); // the section has cleared the current entry
}

void TestSheetObjects::undeclaredObjectSectionAppliesToTheLastListedObject()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1000\n2=0x1001\n[2000]\nParameterName=b\nObjectType=7\n");
    QCOMPARE(sheet.outline(), QString("1000[] 1001[0]")); // the entry has the index of the object
    QCOMPARE(sheet[1]->getName(), QString("b"));
    QCOMPARE(sheet.entry(1, 0).getName(), QString("b"));
}

void TestSheetObjects::undeclaredEntrySectionAppliesToThePreviousObject()
{
    const CLoadedSheet sheet("[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=a\n[2000sub0]\nParameterName=b\n"
                             "[2000sub1]\nParameterName=c\n");
    QCOMPARE(sheet.outline(), QString("1000[2000sub0 2000sub1]")); // the entries keep the index of their section
    QCOMPARE(int(sheet.entry(0, 1).getCategory()), 1);
    QCOMPARE(sheet[0]->getName(), QString("a"));
}

void TestSheetObjects::declaredSectionAfterAnUndeclaredOneFindsItsObject()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1000\n2=0x1001\n[2000]\nParameterName=x\n[1000]\nParameterName=a\n"
                             "[2001]\nParameterName=b\n");
    QCOMPARE(sheet.names(), QString("b x"));
}

void TestSheetObjects::sectionsOfAnIndexListedTwiceApplyToTheSecondWhileItIsCurrent()
{
    const QByteArray lists = "[OptionalObjects]\n1=0x1001\n2=0x1000\n3=0x1000\n";
    QCOMPARE(CLoadedSheet(lists + "[1000]\nObjectType=7\n[1000sub1]\nDataType=7\n").outline(),
             QString("1001[] 1000[] 1000[0 1]"));
    QCOMPARE(CLoadedSheet(lists + "[1001]\nObjectType=7\n[1000]\nObjectType=7\n").outline(),
             QString("1001[0] 1000[0] 1000[]"));
}

void TestSheetObjects::objectListAfterTheSectionsAddsObjects()
{
    const CLoadedSheet sheet(
        "[1000]\nParameterName=a\nObjectType=7\n[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=b\n"
        "[1000sub5]\nParameterName=c\n");
    QCOMPARE(sheet.outline(), QString("1000[0] 1000[5]"));
    QCOMPARE(sheet.names(), QString("a b"));
}

void TestSheetObjects::currentObjectSurvivesOtherSections()
{
    const CLoadedSheet sheet("[OptionalObjects]\n1=0x1000\n2=0x1001\n[1000]\nParameterName=a\n[Comments]\nLines=0\n"
                             "[FileInfo]\nCreatedBy=me\n[DeviceInfo]\nVendorName=x\n[2000]\nParameterName=b\n");
    QCOMPARE(sheet.names(), QString("b "));
}

void TestSheetObjects::ignoredSectionChangesNothing()
{
    const CLoadedSheet sheet(
        "[OptionalObjects]\n1=0x1000\n2=0x1001\n[1000]\nParameterName=a\nObjectType=7\n"
        "[0x1001]\nParameterName=b\nDataType=7\n[1001sub01]\nParameterName=c\n[100sub1]\nDataType=7\n"
        "[1001sub100]\nDataType=7\n[2000]\nParameterName=d\n");
    QCOMPARE(sheet.outline(), QString("1000[0] 1001[]"));
    QCOMPARE(sheet.names(), QString("d "));
    QCOMPARE(int(sheet.entry(0, 0).getDataType()), 0);
}

void TestSheetObjects::sectionsWithoutKeysDoNothing()
{
    QCOMPARE(CLoadedSheet("[1000]\n[1000sub1]\n[1001]\nParameterName=x\n").outline(), QString("1001[]"));
}

void TestSheetObjects::unknownKeyIsEnoughToCreateObjectAndEntry()
{
    QCOMPARE(CLoadedSheet("[1000]\nx=\n[1001sub3]\nx=\n").outline(), QString("1000[1001sub3]"));
}

void TestSheetObjects::allSubIndexesAreRead()
{
    QByteArray text = "[OptionalObjects]\n1=0x1003\n";
    QStringList expected;
    for (int subIndex = 0; subIndex < 256; ++subIndex) {
        text += "[1003sub" + QByteArray::number(subIndex, 16).toUpper() + "]\nDataType=7\n";
        expected << QString::number(subIndex, 16);
    }
    QCOMPARE(CLoadedSheet(text).outline(), QString("1003[%1]").arg(expected.join(' ')));
}

QTEST_APPLESS_MAIN(TestSheetObjects)
#include "TestSheetObjects.moc"
