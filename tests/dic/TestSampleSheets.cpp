// Whole data sheets: those of real devices, the project's own, and the small ones in data/. What is expected of each
// was counted without the reader.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"
#include "dic/IniReader.h"

#include "DeviceInfoFields.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

// What a sheet yields, in the order of the columns below.
struct tTotals {
    int objects, entries, mandatoryObjects, mandatoryEntries;
    int objectsWithoutEntries;
    int foreignEntries; // with another index than their object: sections that no list declares
    int sumOfIndexes, sumOfObjectTypes, sumOfEntryTypes, sumOfSubIndexes;
    int mapped, readOnly, readWrite;
    int defaultValues, lowLimits, highLimits;
    int lettersOfObjectNames, lettersOfEntryNames;
};

struct tSheetRow {
    const char* file;
    int result;
    int lineOfError; // when the result is 0
    tTotals totals;
};

// clang-format off
static const tSheetRow sampleSheets[] = {
    { "605.3150.51-V-EK-2-60.eds", 1, 0, { 75, 156, 3, 38, 0, 0, 1184050, 235, 893, 163, 13, 81, 17, 138, 119, 119, 1457, 3382 } },
    { "IoX1_16DI_8DO.eds", 1, 0, { 46, 157, 3, 40, 0, 0, 452555, 78, 940, 460, 3, 49, 96, 135, 0, 0, 1116, 3465 } },
    { "SICK-MLS.eds", 1, 0, { 27, 49, 3, 12, 0, 0, 177643, 130, 289, 56, 5, 22, 14, 22, 3, 3, 449, 718 } },
    { "demoDevice.eds", 1, 0, { 47, 282, 3, 37, 0, 0, 341425, 123, 1676, 1294, 65, 76, 206, 260, 0, 0, 1029, 4619 } },
    { "e35.eds", 0, 7251, { 211, 811, 3, 93, 84, 0, 3022369, 236, 4093, 17049, 64, 86, 565, 663, 94, 94, 2358, 12159 } },
    { "sample.eds", 1, 0, { 7, 107, 3, 27, 0, 72, 32827, 34, 763, 136, 8, 25, 80, 79, 36, 35, 148, 2508 } },
    { "simple.eds", 1, 0, { 19, 26, 3, 8, 15, 0, 146602, 92, 139, 74, 0, 5, 18, 8, 0, 0, 368, 444 } },
    { "prbt_0_1.dcf", 1, 0, { 94, 210, 3, 38, 0, 0, 1280272, 370, 1288, 368, 39, 47, 122, 95, 17, 17, 1692, 4401 } },
};

static const tSheetRow smallSheets[] = {
    { "simple_variable.eds", 1, 0, { 1, 1, 1, 1, 0, 0, 4096, 7, 7, 0, 0, 1, 0, 1, 0, 0, 11, 11 } },
    { "record_with_entries.eds", 1, 0, { 1, 5, 1, 5, 0, 0, 4120, 0, 33, 10, 0, 5, 0, 1, 0, 0, 15, 66 } },
    { "lists_decide_the_order.eds", 1, 0, { 5, 3, 3, 2, 2, 0, 20537, 0, 0, 0, 0, 0, 0, 0, 0, 0, 21, 13 } },
    { "sections_starting_with_zero.eds", 1, 0, { 1, 0, 0, 0, 1, 0, 4096, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 } },
    { "undeclared_object_section.eds", 1, 0, { 1, 3, 0, 0, 0, 1, 4096, 8, 11, 1, 0, 0, 0, 0, 0, 0, 4, 21 } },
    { "file_info_after_device_info.eds", 1, 0, { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 } },
    { "utf8_with_byte_order_mark.eds", 1, 0, { 1, 1, 0, 0, 0, 0, 8192, 0, 0, 0, 0, 0, 0, 0, 0, 0, 21, 21 } },
    { "windows_1252.eds", 1, 0, { 1, 1, 0, 0, 0, 0, 8192, 0, 0, 0, 0, 0, 0, 0, 0, 0, 21, 21 } },
};
// clang-format on

static void count(tTotals& totals, const CCANopenObject& object)
{
    totals.objects += 1;
    totals.mandatoryObjects += object.getCategory() == CCANopenObject::categoryMandatory;
    totals.objectsWithoutEntries += object.m_objectEntryArray.empty();
    totals.sumOfIndexes += object.getIndex();
    totals.sumOfObjectTypes += object.getDataType();
    totals.lettersOfObjectNames += int(object.getName().size());
    for (const auto& entry : object.m_objectEntryArray) {
        totals.entries += 1;
        totals.mandatoryEntries += entry->getCategory() == CCANopenObjectEntry::categoryMandatory;
        totals.foreignEntries += entry->getIndex() != object.getIndex();
        totals.sumOfEntryTypes += entry->getDataType();
        totals.sumOfSubIndexes += entry->getSubindex();
        totals.mapped += entry->getPDOMapping() == CCANopenObjectEntry::mappingDefault;
        totals.readOnly += entry->getAccess() == CCANopenObjectEntry::accessRO;
        totals.readWrite += entry->getAccess() == CCANopenObjectEntry::accessRW;
        totals.defaultValues += !entry->getDefaultValue().isEmpty();
        totals.lowLimits += !entry->getLowLimit().isEmpty();
        totals.highLimits += !entry->getHighLimit().isEmpty();
        totals.lettersOfEntryNames += int(entry->getName().size());
    }
}

static QString text(const tTotals& t)
{
    QStringList numbers;
    for (int number :
         { t.objects, t.entries, t.mandatoryObjects, t.mandatoryEntries, t.objectsWithoutEntries, t.foreignEntries,
           t.sumOfIndexes, t.sumOfObjectTypes, t.sumOfEntryTypes, t.sumOfSubIndexes, t.mapped, t.readOnly, t.readWrite,
           t.defaultValues, t.lowLimits, t.highLimits, t.lettersOfObjectNames, t.lettersOfEntryNames })
        numbers << QString::number(number);
    return numbers.join(", ");
}

static QString pathOf(const char* folder, const QString& file)
{
    return QString("%1/%2").arg(QString(folder), file);
}

static int load(CCANopen& dictionary, const QString& path)
{
    return CCANopenReader(&dictionary, CCANopen::typeEDS).load(QFile::encodeName(path));
}

// The object of that index, or none.
static const CCANopenObject* objectOf(const CCANopen& dictionary, int index)
{
    const int position = dictionary.find(static_cast<unsigned short>(index));
    return position < 0 ? nullptr : dictionary.m_objectArray[size_t(position)].get();
}

class TestSampleSheets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sheetsOfRealDevices_data() { sheetRows(VELMORA_SAMPLE_SHEETS, sampleSheets); }
    void sheetsOfRealDevices();
    void smallSheetsShowOneRuleEach_data() { sheetRows(VELMORA_TEST_DATA, smallSheets); }
    void smallSheetsShowOneRuleEach() { compareTotals(); }
    void valuesFromRealSheets_data();
    void valuesFromRealSheets();
    void deviceInformationFromRealSheets_data();
    void deviceInformationFromRealSheets();
    void bothCharacterSetsGiveTheSameTexts_data();
    void bothCharacterSetsGiveTheSameTexts();
    void ourOwnSheetLoadsCompletely();
    void ourOwnSheetNamesEverythingOnce();
    void ourOwnSheetShowsEveryKind();

private:
    template <size_t size>
    static void sheetRows(const char* folder, const tSheetRow (&rows)[size])
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("lineOfError");
        QTest::addColumn<QString>("totals");
        for (const tSheetRow& row : rows)
            QTest::newRow(row.file) << pathOf(folder, row.file) << row.result << row.lineOfError << text(row.totals);
    }

    static void compareTotals()
    {
        QFETCH(QString, path);
        QFETCH(int, result);
        CCANopen dictionary;
        QCOMPARE(load(dictionary, path), result);
        if (result == 0)
            QTEST(CIniReader().getLineOfError(), "lineOfError");
        tTotals totals = {};
        for (const auto& object : dictionary.m_objectArray)
            count(totals, *object);
        QTEST(text(totals), "totals");
    }

    static int matches(const QString& source, const char* pattern)
    {
        const QRegularExpression expression(QString(pattern), QRegularExpression::MultilineOption);
        int count = 0;
        for (auto match = expression.globalMatch(source); match.hasNext(); match.next())
            ++count;
        return count;
    }
};

void TestSampleSheets::sheetsOfRealDevices()
{
    QFETCH(QString, path);
    if (!QFile::exists(path))
        QSKIP("the sheets of real devices are not here");
    compareTotals();
}

void TestSampleSheets::valuesFromRealSheets_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("entry");
    const auto row = [](const char* file, int index, int number, const char* entry) {
        QTest::addRow("%s 0x%04X, %d", file, unsigned(index), number) << file << index << number << entry;
    };
    row("605.3150.51-V-EK-2-60.eds", 0x2404, 0, "0: Service Settings, type 6, RWW, 0x0000,..,0xFFFF, 0x0000, flags 2");
    row("605.3150.51-V-EK-2-60.eds", 0x607E, 0, "0: Polarity, type 5, RWW, 0x00,..,0xFF, 0x00, flags 0");
    row("sample.eds", 0x1017, 0, "0: Producer heartbeat time, type 6, RW, Unsigned16, 0x0000, flags 0");
    row("sample.eds", 0x1017, 2, "1: COB-ID use by RPDO 1, type 7, RW, Unsigned32, $NODEID+512, flags 0");
    row("sample.eds", 0x2000, 28, "1: DOMAIN sub-object, type 7, RW, Unsigned32, , flags 0");
    row("demoDevice.eds", 0x2122, 0, "0: Demo domain, type 15, RW, Domain, , flags 0");
    row("prbt_0_1.dcf", 0x2050, 0, "0: extended_status, type 5, RO, Unsigned8, 0, flags 1");
    row("IoX1_16DI_8DO.eds", 0x1029, 0, "0: Number of Error Classes, type 5, CONST, Unsigned8, 0x1, flags 0");
    row("SICK-MLS.eds", 0x2028, 3, "3: Fail Safe Mode, type 5, RW, Unsigned8, , flags 0");
    row("simple.eds", 0x1018, 1, "1: Vendor-ID, type 7, RO, Unsigned32, 0x00000360, flags 0");
}

void TestSampleSheets::valuesFromRealSheets()
{
    QFETCH(QString, file);
    QFETCH(int, index);
    QFETCH(int, number);
    const QString path = pathOf(VELMORA_SAMPLE_SHEETS, file);
    if (!QFile::exists(path))
        QSKIP("the sheets of real devices are not here");
    CCANopen dictionary;
    load(dictionary, path);
    const CCANopenObject* object = objectOf(dictionary, index);
    QVERIFY(object != nullptr && size_t(number) < object->m_objectEntryArray.size());
    const CCANopenObjectEntry& entry = *object->m_objectEntryArray[size_t(number)];
    QTEST(QString("%1: %2, type %3, %4, %5, %6, flags %7")
              .arg(QString::number(entry.getSubindex()), entry.getName(), QString::number(entry.getDataType()),
                   CCANopenObjectEntry::getAccessByIndex(entry.getAccess()), entry.getValueRange(),
                   entry.getDefaultValue(), QString::number(entry.getObjectFlags())),
          "entry");
}

void TestSampleSheets::deviceInformationFromRealSheets_data()
{
    QTest::addColumn<QString>("fields");
    QTest::newRow("605.3150.51-V-EK-2-60.eds") << "product name: CC, vendor number: 327, "
                                                  "product number: 3150, revision number: 1, "
                                                  "order code: 0, bit rates: 0 1 2 3 4 6 7 8, slave: 1, receive "
                                                  "PDOs: 3, transmit PDOs: 3, layer settings: 1, "
                                                  "description: Series CC";
    QTest::newRow("IoX1_16DI_8DO.eds")
        << "product name: sysWORXX CANopen IO-X1, vendor number: 63, "
           "product number: 3001000, revision number: 20972856, order code: 3001000, bit rates: 0 1 2 3 4 6 7 8, "
           "slave: 1, "
           "receive PDOs: 2, transmit PDOs: 2, granularity: 8, layer settings: 1, EDS version: 404, "
           "description: sysWORXX Automation Series CANopen IO-X1";
    QTest::newRow("simple.eds") // NrOfRxPDO is spelt differently there and ignored
        << "vendor number: 864, bit rates: 0 1 2 3 4 6 7 8, slave: 1, "
           "granularity: 1, "
           "layer settings: 1";
    QTest::newRow("SICK-MLS.eds") << "product name: Magnetic Lane Sensor, vendor number: 16777302, "
                                     "bit rates: 4, slave: 1, transmit PDOs: 1, layer settings: 1, "
                                     "description: Magnetic Lane Sensor";
}

void TestSampleSheets::deviceInformationFromRealSheets()
{
    const QString path = pathOf(VELMORA_SAMPLE_SHEETS, QTest::currentDataTag());
    if (!QFile::exists(path))
        QSKIP("the sheets of real devices are not here");
    CCANopen dictionary;
    load(dictionary, path);
    QVERIFY(dictionary.m_deviceInfo);
    QVERIFY(!dictionary.m_deviceInfo->getVendorName().isEmpty());
    dictionary.m_deviceInfo->setVendorName(""); // the vendor number identifies the vendor
    QTEST(changedFields(*dictionary.m_deviceInfo), "fields");
}

void TestSampleSheets::bothCharacterSetsGiveTheSameTexts_data()
{
    QTest::addColumn<QString>("path");
    for (const char* file : { "windows_1252.eds", "utf8_with_byte_order_mark.eds" })
        QTest::newRow(file) << pathOf(VELMORA_TEST_DATA, file);
}

void TestSampleSheets::bothCharacterSetsGiveTheSameTexts()
{
    QFETCH(QString, path);
    CCANopen dictionary;
    QCOMPARE(load(dictionary, path), 1);
    QCOMPARE(dictionary.getAuthor(), QString::fromUtf8("Jürgen Größer"));
    QCOMPARE(objectOf(dictionary, 0x2000)->getName(), QString::fromUtf8("Weg in µm, Preis in €"));
}

void TestSampleSheets::ourOwnSheetLoadsCompletely()
{
    QFile file(pathOf(VELMORA_SHARE, "velmora-demo.eds"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString source = QString::fromUtf8(file.readAll());
    CCANopen dictionary;
    QCOMPARE(load(dictionary, file.fileName()), 1);
    tTotals totals = {};
    for (const auto& object : dictionary.m_objectArray)
        count(totals, *object);
    QCOMPARE(totals.objects, matches(source, "^\\d+=0x[0-9A-F]{4}\\b"));
    QCOMPARE(totals.objects, matches(source, "^\\[[0-9A-F]{4}\\]"));
    const int variables = matches(source, "^\\[[0-9A-F]{4}\\]\\s[^\\[]*^ObjectType=0x0*[27]\\b");
    QCOMPARE(totals.entries, variables + matches(source, "^\\[[0-9A-F]{4}sub[0-9A-F]+\\]"));
    QCOMPARE(totals.objectsWithoutEntries, 0);
    QCOMPARE(totals.foreignEntries, 0);
}

void TestSampleSheets::ourOwnSheetNamesEverythingOnce()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, pathOf(VELMORA_SHARE, "velmora-demo.eds")), 1);
    QSet<int> indexes;
    for (const auto& object : dictionary.m_objectArray) {
        QVERIFY2(!object->getName().isEmpty(), qPrintable(QString::number(object->getIndex(), 16)));
        QVERIFY2(!indexes.contains(object->getIndex()), qPrintable(object->getName()));
        indexes << object->getIndex();
        QSet<int> subIndexes;
        for (const auto& entry : object->m_objectEntryArray) {
            QVERIFY2(!entry->getName().isEmpty(), qPrintable(object->getName()));
            QVERIFY2(!subIndexes.contains(entry->getSubindex()), qPrintable(object->getName()));
            subIndexes << entry->getSubindex();
        }
    }
}

void TestSampleSheets::ourOwnSheetShowsEveryKind()
{
    CCANopen dictionary;
    QCOMPARE(load(dictionary, pathOf(VELMORA_SHARE, "velmora-demo.eds")), 1);
    QSet<int> classes, access, types;
    bool communication = false, manufacturer = false, profile = false;
    for (const auto& object : dictionary.m_objectArray) {
        classes << object->getClass();
        communication |= object->isCommunicationObject();
        manufacturer |= object->isManufacturerSpecificObject();
        profile |= object->isDeviceProfileObject();
        for (const auto& entry : object->m_objectEntryArray) {
            access << entry->getAccess();
            types << entry->getDataType();
        }
    }
    QVERIFY(communication && manufacturer && profile);
    QVERIFY(classes.contains({ 7, 8, 9 }));
    QVERIFY(access.contains({ 0, 1, 2, 3, 4, 5 }));
    QVERIFY(types.contains({ 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 15 }));
    for (int index : { 0x1010, 0x1011, 0x1400, 0x1600, 0x1800, 0x1A00 })
        QVERIFY2(objectOf(dictionary, index) != nullptr, qPrintable(QString::number(index, 16)));
    QVERIFY(dictionary.m_deviceInfo);
    QVERIFY(!dictionary.getAuthor().isEmpty());
}

QTEST_APPLESS_MAIN(TestSampleSheets)
#include "TestSampleSheets.moc"
