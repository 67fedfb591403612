// The data sheet reader: what it accepts to load, which sections it knows, file and device information.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "DeviceInfoFields.h"
#include "Sheet.h"

#include <QTest>

// One key of a section in a sheet, and what it sets.
struct tKeyRow {
    const char* line;
    const char* changed;
};

static void keyRows(std::initializer_list<tKeyRow> rows)
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("changed");
    for (auto [line, changed] : rows)
        QTest::addRow("%s", line) << QByteArray(line) << QString::fromUtf8(changed);
}

// The file information as lines of text.
static QStringList fileInfoFields(const CCANopen& dictionary)
{
    return { "title: " + dictionary.m_fileTitle,
             "version: " + dictionary.m_fileVersion,
             "author: " + dictionary.getAuthor(),
             "company: " + dictionary.getCompany(),
             "revision: " + dictionary.getRevision(),
             "date: " + dictionary.getDate(),
             "time: " + dictionary.getTime(),
             "URL: " + dictionary.getURL(),
             "mail: " + dictionary.getMail(),
             "text: " + dictionary.m_info.m_text,
             QString("state: %1").arg(int(dictionary.getState())) };
}

static QString changedFileInfo(const CCANopen& dictionary)
{
    const QStringList before = fileInfoFields(CCANopen());
    QStringList changed;
    for (const QString& field : fileInfoFields(dictionary))
        if (!before.contains(field))
            changed << field;
    return changed.join(", ");
}

class TestCANopenReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadNotesNameAndTypeOfTheFile_data();
    void loadNotesNameAndTypeOfTheFile();
    void loadWithoutDictionaryFails();
    void otherFormatsAreNotSupported();
    void missingFileLoadsAsAnEmptyDictionary();
    void emptyFileLoadsAsAnEmptyDictionary();
    void fileWithFileInformationOnly();
    void syntaxErrorEndsTheLoadAndKeepsWhatWasRead();
    void sectionKinds_data();
    void sectionKinds();
    void keysOfUnknownSectionsAreIgnored();
    void fileInformationKeys_data();
    void fileInformationKeys();
    void laterFileInformationOverwritesEarlier();
    void emptyModificationKeepsTheCreation();
    void creationAfterModificationCounts();
    void fileInformationReachesTheDeviceInfo();
    void fileInformationAfterTheDeviceInfoDoesNotReachIt();
    void deviceInfoWithoutFileInformationHasTheDefaults();
    void deviceInfoSectionWithoutKeysCreatesNothing(); // a header is only seen with its first key
    void secondDeviceInfoSectionAddsToTheFirst();
    void deviceInformationKeys_data();
    void deviceInformationKeys() { compareDeviceInformation(); }
    void ignoredDeviceInformationKeys_data();
    void ignoredDeviceInformationKeys() { compareDeviceInformation(); }
    void deviceInformationThatIsNoNumberCountsAsZero_data();
    void deviceInformationThatIsNoNumberCountsAsZero() { compareDeviceInformation(); }
    void flagsCanBeTakenBack();
    void loadingAgainAddsToTheDictionary();
    void versionIsARevision() { QCOMPARE(QByteArray(CCANopenReader::version()), QByteArray("$Rev: 1 $")); }

private:
    static void compareDeviceInformation()
    {
        QFETCH(QByteArray, line);
        const CLoadedSheet sheet("[DeviceInfo]\n" + line + '\n');
        QCOMPARE(sheet.result, 1);
        QVERIFY(sheet.dictionary.m_deviceInfo);
        QTEST(changedFields(*sheet.dictionary.m_deviceInfo), "changed");
    }
};

void TestCANopenReader::loadNotesNameAndTypeOfTheFile_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("result");
    QTest::addColumn<qsizetype>("objects");
    QTest::newRow("typeEDS") << int(CCANopen::typeEDS) << 1 << qsizetype(1);
    QTest::newRow("typeDCF") << int(CCANopen::typeDCF) << 1 << qsizetype(1);
    QTest::newRow("typeXML") << int(CCANopen::typeXML) << 0 << qsizetype(0);
    QTest::newRow("typeCOP") << int(CCANopen::typeCOP) << 0 << qsizetype(0);
    QTest::newRow("typeUnknown") << int(CCANopen::typeUnknown) << 0 << qsizetype(0);
    QTest::newRow("4") << 4 << 0 << qsizetype(0);
}

void TestCANopenReader::loadNotesNameAndTypeOfTheFile()
{
    QFETCH(int, type);
    const CSheetFile file("[MandatoryObjects]\n1=0x1000\n", QString::fromUtf8("Gerät 1%20.eds"));
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, static_cast<CCANopen::TFileType>(type));
    QTEST(reader.load(file.name()), "result");
    QCOMPARE(dictionary.getFileName(), file.path());
    QCOMPARE(int(dictionary.m_fileType), type);
    QTEST(qsizetype(dictionary.m_objectArray.size()), "objects");
}

void TestCANopenReader::loadWithoutDictionaryFails()
{
    const CSheetFile file("[MandatoryObjects]\n1=0x1000\n");
    QCOMPARE(CCANopenReader(nullptr, CCANopen::typeEDS).load(file.name()), 0);
}

void TestCANopenReader::otherFormatsAreNotSupported()
{
    const CSheetFile file("[MandatoryObjects]\n1=0x1000\n");
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, CCANopen::typeEDS);
    QCOMPARE(reader.loadXML(file.name()), 0);
    QCOMPARE(reader.loadCOP(file.name()), 0);
    QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 0);
    QCOMPARE(reader.loadEDS(file.name()), 1);
    QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 1);
}

void TestCANopenReader::missingFileLoadsAsAnEmptyDictionary()
{
    const QString path = QTemporaryDir().filePath("missing.eds");
    CCANopen dictionary;
    QCOMPARE(CCANopenReader(&dictionary, CCANopen::typeEDS).load(QFile::encodeName(path)), 1);
    QCOMPARE(dictionary.getFileName(), path);
    QCOMPARE(int(dictionary.m_fileType), int(CCANopen::typeEDS));
    QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 0);
    QVERIFY(!dictionary.m_deviceInfo);
    QCOMPARE(changedFileInfo(dictionary), QString(""));
}

void TestCANopenReader::emptyFileLoadsAsAnEmptyDictionary()
{
    const CLoadedSheet sheet("");
    QCOMPARE(sheet.result, 1);
    QCOMPARE(sheet.count(), 0);
    QVERIFY(!sheet.dictionary.m_deviceInfo);
}

void TestCANopenReader::fileWithFileInformationOnly()
{
    const CLoadedSheet sheet("[FileInfo]\nCreatedBy=me\n");
    QCOMPARE(sheet.result, 1);
    QCOMPARE(sheet.dictionary.getAuthor(), QString("me"));
    QVERIFY(!sheet.dictionary.m_deviceInfo);
    QCOMPARE(sheet.count(), 0);
}

void TestCANopenReader::syntaxErrorEndsTheLoadAndKeepsWhatWasRead()
{
    const CLoadedSheet sheet("[FileInfo]\nCreatedBy=me\n[MandatoryObjects]\n1=0x1000\n2 = 0x1001\n3=0x1018\n");
    QCOMPARE(sheet.result, 0);
    QCOMPARE(sheet.dictionary.getAuthor(), QString("me"));
    QCOMPARE(sheet.outline(), QString("1000[]"));
}

void TestCANopenReader::sectionKinds_data()
{
    QTest::addColumn<QString>("effect"); // objects and entries, or "file", "device"
    const std::pair<const char*, const char*> known[] = { { "FileInfo", "file" },
                                                          { "DeviceInfo", "device" },
                                                          { "MandatoryObjects", "5000[]" },
                                                          { "OptionalObjects", "5000[]" },
                                                          { "ManufacturerObjects", "5000[]" },
                                                          { "1000", "1000[]" },
                                                          { "A0", "a0[]" },
                                                          { "fFfF", "ffff[]" },
                                                          { "1018sub1", "1018[1]" },
                                                          { "1018SUBfF", "1018[ff]" } };
    for (const auto& [name, effect] : known)
        QTest::addRow("[%s]", name) << QString(effect);
    const QString ignored =
        "fileinfo FILEINFO Fileinfo FileINFO deviceinfo Deviceinfo mandatoryobjects Mandatoryobjects "
        "optionalObjects Optionalobjects Manufacturerobjects "
        "MandatoryObjects_ Comments DummyUsage "
        "0x1000 01000 001000 10000 100sub1 1000sub100 1000sub01 1000sub0x1 0x1000sub1 1000sub "
        "1000Name 1000Value 1000ObjectLinks";
    for (const QString& name : ignored.split(' '))
        QTest::addRow("[%s]", qPrintable(name)) << QString();
}

void TestCANopenReader::sectionKinds()
{
    const CLoadedSheet sheet(QByteArray(QTest::currentDataTag()) + "\nCreatedBy=0x5000\n");
    QCOMPARE(sheet.result, 1);
    QString effect = sheet.outline();
    if (sheet.dictionary.getAuthor() == "0x5000")
        effect += "file";
    if (sheet.dictionary.m_deviceInfo)
        effect += "device";
    QTEST(effect, "effect");
}

void TestCANopenReader::keysOfUnknownSectionsAreIgnored()
{
    const CLoadedSheet sheet(
        "[MandatoryObjects]\n1=0x1000\n[1000]\nParameterName=a\nObjectType=7\n"
        "[Comments]\nParameterName=b\nObjectType=7\nDataType=7\nCreatedBy=me\nVendorName=x\n2=0x1001\n"
        "[0x1000]\nParameterName=c\nObjectType=7\nDefaultValue=3\n");
    QCOMPARE(sheet.result, 1);
    QCOMPARE(sheet.outline(), QString("1000[0]"));
    QCOMPARE(sheet[0]->getName(), QString("a"));
    QCOMPARE(sheet.entry(0, 0).getDefaultValue(), QString(""));
    QCOMPARE(int(sheet[0]->getDataType()), 0);
    QCOMPARE(changedFileInfo(sheet.dictionary), QString(""));
}

void TestCANopenReader::fileInformationKeys_data()
{
    keyRows({ { "FileVersion=2", "revision: 2" },
              { "CreationTime=02:37PM", "time: 02:37PM" },
              { "CreationDate=11-20-2009", "date: 11-20-2009" },
              { "CreatedBy=J\xC3\xBCrgen", "author: J\xC3\xBCrgen" },
              { "ModificationTime=03:00PM", "time: 03:00PM" },
              { "ModificationDate=01-02-2012", "date: 01-02-2012" },
              { "FileVersion=", "revision: " },
              { "ModificationTime=", "" },
              { "ModificationDate=", "" },
              { "EDSVersion=4.2", "" },
              { "Description=A valve", "" },
              { "ModifiedBy=you", "" },
              { "FileName=x.eds", "" },
              { "FileRevision=9", "" },
              { "Title=t", "" },
              { "createdby=me", "" },
              { "CREATEDBY=me", "" },
              { "CreatedBy_=me", "" },
              { "VendorName=me", "" } });
}

void TestCANopenReader::fileInformationKeys()
{
    QFETCH(QByteArray, line);
    const CLoadedSheet sheet("[FileInfo]\n" + line + '\n');
    QCOMPARE(sheet.result, 1);
    QTEST(changedFileInfo(sheet.dictionary), "changed");
}

void TestCANopenReader::laterFileInformationOverwritesEarlier()
{
    const CLoadedSheet sheet("[FileInfo]\nCreatedBy=a\nCreationTime=1\nCreationDate=2\nModificationTime=3\n"
                             "ModificationDate=4\nCreatedBy=b\n");
    QCOMPARE(changedFileInfo(sheet.dictionary), QString("author: b, date: 4, time: 3"));
}

void TestCANopenReader::emptyModificationKeepsTheCreation()
{
    const CLoadedSheet sheet("[FileInfo]\nCreationTime=1\nCreationDate=2\nModificationTime=\nModificationDate= ;x\n");
    QCOMPARE(changedFileInfo(sheet.dictionary), QString("date: 2, time: 1"));
}

void TestCANopenReader::creationAfterModificationCounts()
{
    const CLoadedSheet sheet("[FileInfo]\nModificationTime=3\nModificationDate=4\nCreationTime=1\nCreationDate=\n");
    QCOMPARE(changedFileInfo(sheet.dictionary), QString("time: 1"));
}

void TestCANopenReader::fileInformationReachesTheDeviceInfo()
{
    const CLoadedSheet sheet("[FileInfo]\nEDSVersion=4.2\nDescription=A valve\n[DeviceInfo]\nVendorName=\n");
    QCOMPARE(changedFields(*sheet.dictionary.m_deviceInfo), QString("EDS version: 4.2, description: A valve"));
}

void TestCANopenReader::fileInformationAfterTheDeviceInfoDoesNotReachIt()
{
    const CLoadedSheet sheet("[DeviceInfo]\nVendorName=\n[FileInfo]\nEDSVersion=4.2\nDescription=A valve\n"
                             "[DeviceInfo]\nProductName=\n");
    QCOMPARE(changedFields(*sheet.dictionary.m_deviceInfo), QString(""));
    QCOMPARE(sheet.dictionary.m_deviceInfo->getEDSVersion(), QString("4.0"));
}

void TestCANopenReader::deviceInfoWithoutFileInformationHasTheDefaults()
{
    const CLoadedSheet sheet("[DeviceInfo]\nVendorName=\n");
    QCOMPARE(changedFields(*sheet.dictionary.m_deviceInfo), QString(""));
    QVERIFY(sheet.dictionary.m_deviceInfo->getDescription().isEmpty());
}

void TestCANopenReader::deviceInfoSectionWithoutKeysCreatesNothing()
{
    const CLoadedSheet sheet("[DeviceInfo]\n[MandatoryObjects]\n");
    QVERIFY(!sheet.dictionary.m_deviceInfo);
}

void TestCANopenReader::secondDeviceInfoSectionAddsToTheFirst()
{
    const CLoadedSheet sheet("[DeviceInfo]\nVendorName=ACME\nGranularity=8\n[Comments]\nLines=0\n"
                             "[DeviceInfo]\nProductName=Valve\nGranularity=1\n");
    QCOMPARE(changedFields(*sheet.dictionary.m_deviceInfo),
             QString("vendor name: ACME, product name: Valve, granularity: 1"));
}

void TestCANopenReader::deviceInformationKeys_data()
{
    keyRows({ { "VendorName=AC\xC3\x9C ME", "vendor name: AC\xC3\x9C ME" },
              { "ProductName=Valve", "product name: Valve" },
              { "VendorNumber=0xFFFFFFFF", "vendor number: 4294967295" },
              { "ProductNumber=017", "product number: 15" },
              { "RevisionNumber=65536", "revision number: 65536" },
              { "OrderCode=0x10", "order code: 0x10" },
              { "BaudRate_10=1", "bit rates: 8" },
              { "BaudRate_20=1", "bit rates: 7" },
              { "BaudRate_50=1", "bit rates: 6" },
              { "BaudRate_100=1", "bit rates: 5" },
              { "BaudRate_125=1", "bit rates: 4" },
              { "BaudRate_250=1", "bit rates: 3" },
              { "BaudRate_500=1", "bit rates: 2" },
              { "BaudRate_800=1", "bit rates: 1" },
              { "BaudRate_1000=1", "bit rates: 0" },
              { "SimpleBootUpMaster=1", "master: 1" },
              { "SimpleBootUpSlave=0x2", "slave: 1" },
              { "Granularity=255", "granularity: 255" },
              { "DynamicChannelsSupported=1", "dynamic channels: 1" },
              { "GroupMessaging=1", "group messaging: 1" },
              { "NrOfRXPDO=65535", "receive PDOs: 65535" },
              { "NrOfTXPDO=0x200", "transmit PDOs: 512" },
              { "LSS_Supported=1", "layer settings: 1" },
              { "LMT_ManufacturerName=M", "LMT manufacturer: M" },
              { "LMT_ProductName=P", "LMT product: P" } });
}

void TestCANopenReader::ignoredDeviceInformationKeys_data()
{
    keyRows({ { "NrOfRxPDO=1", "" },
              { "vendorname=x", "" },
              { "BaudRate_1=1", "" },
              { "BaudRate_10000=1", "" },
              { "baudrate_10=1", "" },
              { "CompactPDO=1", "" },
              { "EDSVersion=5", "" },
              { "Description=x", "" },
              { "CreatedBy=x", "" } });
}

void TestCANopenReader::deviceInformationThatIsNoNumberCountsAsZero_data()
{
    keyRows({ { "BaudRate_250=yes", "" },
              { "BaudRate_250=True", "" },
              { "BaudRate_250=0", "" },
              { "BaudRate_250=", "" },
              { "BaudRate_250=65537", "" },
              { "BaudRate_250=-1", "" },
              { "SimpleBootUpMaster=Yes", "" },
              { "SimpleBootUpSlave=Yes", "" },
              { "DynamicChannelsSupported=True", "" },
              { "GroupMessaging=x", "" },
              { "LSS_Supported=0x0", "" },
              { "Granularity=257", "" },
              { "NrOfRXPDO=65537", "" },
              { "NrOfTXPDO=1 2", "" },
              { "VendorNumber=4294967297", "" },
              { "ProductNumber=12h", "" },
              { "RevisionNumber=-5", "" } });
}

void TestCANopenReader::flagsCanBeTakenBack()
{
    const CLoadedSheet sheet(
        "[DeviceInfo]\nBaudRate_250=1\nBaudRate_10=2\nBaudRate_250=no\nLSS_Supported=1\nLSS_Supported=0\n");
    QCOMPARE(changedFields(*sheet.dictionary.m_deviceInfo), QString("bit rates: 8"));
}

void TestCANopenReader::loadingAgainAddsToTheDictionary()
{
    const CSheetFile file("[MandatoryObjects]\n1=0x1000\n[1000]\nObjectType=7\n");
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, CCANopen::typeEDS);
    QCOMPARE(reader.load(file.name()), 1);
    QCOMPARE(reader.load(file.name()), 1);
    QCOMPARE(qsizetype(dictionary.m_objectArray.size()), 2);
}

QTEST_APPLESS_MAIN(TestCANopenReader)
#include "TestCANopenReader.moc"
