// Data sheets that are loaded into a dictionary which is not empty.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "DeviceInfoFields.h"
#include "Sheet.h"

#include <QTest>

static int load(CCANopen& dictionary, const QByteArray& text)
{
    return CCANopenReader(&dictionary, CCANopen::typeEDS).load(CSheetFile(text).name());
}

static void addObject(CCANopen& dictionary, unsigned short index, const char* name)
{
    dictionary.m_objectArray.push_back(std::make_unique<CCANopenObject>(index));
    dictionary.m_objectArray.back()->setName(name);
}

// Indexes, names and numbers of entries, for example "2000 a 0, 2001 b 1".
static QString outline(const CCANopen& dictionary)
{
    QStringList objects;
    for (const auto& object : dictionary.m_objectArray)
        objects << QString("%1 %2 %3")
                       .arg(object->getIndex(), 0, 16)
                       .arg(object->getName())
                       .arg(object->m_objectEntryArray.size());
    return objects.join(", ");
}

class TestSecondLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sectionsDescribeObjectsThatWereThereBefore();
    void firstOfSeveralObjectsWithAnIndexIsDescribed();
    void objectListsAddObjectsToThoseThatWereThere();
    void firstSectionDoesNotApplyToTheLastObjectOfTheLoadBefore();
    void deviceInfoIsReplacedByTheNextOne();
    void deviceInfoStaysWithoutANextOne();
    void fileInformationOfTheLoadBeforeIsNoneOfTheNextDeviceInfo();
    void fileInformationStaysUnlessItIsGivenAgain();
    void nameAndTypeOfTheFileAreThoseOfTheLastLoad();
    void loadEdsAloneNotesNeitherNameNorType();
    void loadEdsWithoutDictionaryFails();
};

void TestSecondLoad::sectionsDescribeObjectsThatWereThereBefore()
{
    CCANopen dictionary;
    addObject(dictionary, 0x2000, "a");
    addObject(dictionary, 0x2001, "b");
    QCOMPARE(load(dictionary, "[2001]\nParameterName=c\nObjectType=7\n[2000sub1]\nDataType=5\n"), 1);
    QCOMPARE(outline(dictionary), QString("2000 a 1, 2001 c 1"));
}

void TestSecondLoad::firstOfSeveralObjectsWithAnIndexIsDescribed()
{
    CCANopen dictionary;
    addObject(dictionary, 0x2000, "a");
    addObject(dictionary, 0x2000, "b");
    addObject(dictionary, 0x2000, "c");
    QCOMPARE(load(dictionary, "[2000]\nParameterName=d\n"), 1);
    QCOMPARE(outline(dictionary), QString("2000 d 0, 2000 b 0, 2000 c 0"));
}

void TestSecondLoad::objectListsAddObjectsToThoseThatWereThere()
{
    CCANopen dictionary;
    addObject(dictionary, 0x2000, "a");
    QCOMPARE(load(dictionary, "[OptionalObjects]\n1=0x2000\n2=0x2001\n[2000]\nParameterName=b\n"), 1);
    QCOMPARE(outline(dictionary), QString("2000 b 0, 2000  0, 2001  0"));
}

void TestSecondLoad::firstSectionDoesNotApplyToTheLastObjectOfTheLoadBefore()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, "[2000]\nParameterName=a\n"), 1);
    QCOMPARE(load(dictionary, "[2001]\nParameterName=b\n"), 1);
    QCOMPARE(outline(dictionary), QString("2000 a 0, 2001 b 0"));
}

void TestSecondLoad::deviceInfoIsReplacedByTheNextOne()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, "[DeviceInfo]\nVendorName=ACME\nGranularity=8\n"), 1);
    QCOMPARE(load(dictionary, "[DeviceInfo]\nProductName=Valve\n"), 1);
    QCOMPARE(changedFields(*dictionary.m_deviceInfo), QString("product name: Valve"));
}

void TestSecondLoad::deviceInfoStaysWithoutANextOne()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, "[DeviceInfo]\nVendorName=ACME\n"), 1);
    QCOMPARE(load(dictionary, "[FileInfo]\nEDSVersion=4.2\nCreatedBy=me\n"), 1);
    QCOMPARE(changedFields(*dictionary.m_deviceInfo), QString("vendor name: ACME"));
}

void TestSecondLoad::fileInformationOfTheLoadBeforeIsNoneOfTheNextDeviceInfo()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, "[FileInfo]\nEDSVersion=4.2\nDescription=A valve\n[DeviceInfo]\nVendorName=ACME\n"), 1);
    QCOMPARE(load(dictionary, "[DeviceInfo]\nVendorName=ACME\n"), 1);
    QCOMPARE(changedFields(*dictionary.m_deviceInfo), QString("vendor name: ACME"));
}

void TestSecondLoad::fileInformationStaysUnlessItIsGivenAgain()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, "[FileInfo]\nCreatedBy=me\nCreationTime=1\n"), 1);
    QCOMPARE(load(dictionary, "[FileInfo]\nCreatedBy=you\n"), 1);
    QCOMPARE(dictionary.getAuthor(), QString("you"));
    QCOMPARE(dictionary.getTime(), QString("1"));
}

void TestSecondLoad::nameAndTypeOfTheFileAreThoseOfTheLastLoad()
{
    const CSheetFile sheet("");
    const CSheetFile configuration("", "device.dcf");
    CCANopen dictionary;
    QCOMPARE(CCANopenReader(&dictionary, CCANopen::typeEDS).load(sheet.name()), 1);
    QCOMPARE(CCANopenReader(&dictionary, CCANopen::typeDCF).load(configuration.name()), 1);
    QCOMPARE(dictionary.getFileName(), configuration.path());
    QCOMPARE(dictionary.m_fileType, CCANopen::typeDCF);
}

void TestSecondLoad::loadEdsAloneNotesNeitherNameNorType()
{
    const CSheetFile file("[2000]\nParameterName=a\n");
    CCANopen dictionary;
    QCOMPARE(CCANopenReader(&dictionary, CCANopen::typeEDS).loadEDS(file.name()), 1);
    QCOMPARE(outline(dictionary), QString("2000 a 0"));
    QCOMPARE(dictionary.getFileName(), QString());
    QCOMPARE(dictionary.m_fileType, CCANopen::typeUnknown);
}

void TestSecondLoad::loadEdsWithoutDictionaryFails()
{
    const CSheetFile file("[2000]\nParameterName=a\n");
    QCOMPARE(CCANopenReader(nullptr, CCANopen::typeEDS).loadEDS(file.name()), 0);
}

QTEST_APPLESS_MAIN(TestSecondLoad)
#include "TestSecondLoad.moc"
