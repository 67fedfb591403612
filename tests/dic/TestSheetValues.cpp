// Values of a data sheet as the dictionary holds them: empty ones, and all bits of numbers.
// SPDX-License-Identifier: MIT
#include "dic/CANopenReader.h"

#include "Sheet.h"

#include <QTest>

namespace
{

/// A text of the dictionary and the key that sets it.
struct tText {
    const char* key;
    const char* section; // as far as the key
    QString (*of)(const CCANopen& dictionary);
};

constexpr char fileInfo[] = "[FileInfo]";
constexpr char deviceInfo[] = "[DeviceInfo]";
constexpr char variable[] = "[2000]\nObjectType=7";
constexpr char record[] = "[2000]\nObjectType=9\n[2000sub1]";

const CCANopenObjectEntry& entryOf(const CCANopen& dictionary)
{
    return *dictionary.m_objectArray.at(0)->m_objectEntryArray.at(0);
}

const tText texts[] = {
    { "EDSVersion", fileInfo, [](auto& dictionary) { return dictionary.m_deviceInfo->getEDSVersion(); } },
    { "Description", fileInfo, [](auto& dictionary) { return dictionary.m_deviceInfo->getDescription(); } },
    { "FileVersion", fileInfo, [](auto& dictionary) { return dictionary.getRevision(); } },
    { "CreationTime", fileInfo, [](auto& dictionary) { return dictionary.getTime(); } },
    { "CreationDate", fileInfo, [](auto& dictionary) { return dictionary.getDate(); } },
    { "CreatedBy", fileInfo, [](auto& dictionary) { return dictionary.getAuthor(); } },
    { "VendorName", deviceInfo, [](auto& dictionary) { return dictionary.m_deviceInfo->getVendorName(); } },
    { "ProductName", deviceInfo, [](auto& dictionary) { return dictionary.m_deviceInfo->getProductName(); } },
    { "OrderCode", deviceInfo, [](auto& dictionary) { return dictionary.m_deviceInfo->getOrderCode(); } },
    { "LMT_ManufacturerName", deviceInfo,
      [](auto& dictionary) { return dictionary.m_deviceInfo->getLmtManufacturerName(); } },
    { "LMT_ProductName", deviceInfo, [](auto& dictionary) { return dictionary.m_deviceInfo->getLmtProductName(); } },
    { "ParameterName", variable, [](auto& dictionary) { return dictionary.m_objectArray.at(0)->getName(); } },
    { "LowLimit", variable, [](auto& dictionary) { return entryOf(dictionary).getLowLimit(); } },
    { "HighLimit", variable, [](auto& dictionary) { return entryOf(dictionary).getHighLimit(); } },
    { "DefaultValue", variable, [](auto& dictionary) { return entryOf(dictionary).getDefaultValue(); } },
    { "ParameterName", record, [](auto& dictionary) { return entryOf(dictionary).getName(); } },
    { "LowLimit", record, [](auto& dictionary) { return entryOf(dictionary).getLowLimit(); } },
    { "HighLimit", record, [](auto& dictionary) { return entryOf(dictionary).getHighLimit(); } },
    { "DefaultValue", record, [](auto& dictionary) { return entryOf(dictionary).getDefaultValue(); } },
};

} // namespace

class TestSheetValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyValueOverwritesAnEarlierOne_data();
    void emptyValueOverwritesAnEarlierOne();
    void everyBitOfADeviceNumberIsStored_data();
    void everyBitOfADeviceNumberIsStored();
    void everyBitOfTheObjectFlagsIsStored();
};

void TestSheetValues::emptyValueOverwritesAnEarlierOne_data()
{
    QTest::addColumn<int>("place");
    for (const tText& text : texts) {
        const char* place = text.section == variable ? "[2000]" : text.section == record ? "[2000sub1]" : text.section;
        QTest::addRow("%s in %s", text.key, place) << static_cast<int>(&text - texts);
    }
}

void TestSheetValues::emptyValueOverwritesAnEarlierOne()
{
    QFETCH(int, place);
    const tText& text = texts[place];
    const QByteArray once = QByteArray(text.section) + '\n' + text.key + "=x\n";
    const QByteArray emptied = once + text.key + "=\n";
    const QByteArray last = "[DeviceInfo]\nGranularity=1\n";
    QCOMPARE(text.of(CLoadedSheet(once + last).dictionary), QString("x"));
    QCOMPARE(text.of(CLoadedSheet(emptied + last).dictionary), QString(""));
}

void TestSheetValues::everyBitOfADeviceNumberIsStored_data()
{
    QTest::addColumn<int>("bits");
    for (int bits = 0; bits <= 32; ++bits)
        QTest::addRow("bit %d", bits - 1) << bits - 1;
}

// The rows are single bits; in that of bit -1 all of them are set.
void TestSheetValues::everyBitOfADeviceNumberIsStored()
{
    QFETCH(int, bits);
    const quint32 number = bits < 0 ? 0xFFFFFFFF : 1U << bits;
    QByteArray sheet = "[DeviceInfo]\n";
    for (const char* key :
         { "VendorNumber", "ProductNumber", "RevisionNumber", "Granularity", "NrOfRXPDO", "NrOfTXPDO" }) {
        const quint32 widest = key[0] == 'G' ? 0xFF : key[0] == 'N' ? 0xFFFF : 0xFFFFFFFF;
        sheet += QByteArray(key) + '=' + QByteArray::number(number & widest) + '\n';
    }
    const CLoadedSheet loaded(sheet);
    const CCANopenDeviceInfo& info = *loaded.dictionary.m_deviceInfo;
    QCOMPARE(quint32(info.getVendorNumber()), number);
    QCOMPARE(quint32(info.getProductNumber()), number);
    QCOMPARE(quint32(info.getRevisionNumber()), number);
    QCOMPARE(quint32(info.getPDOGranularity()), number & 0xFF);
    QCOMPARE(quint32(info.getNumberOfRxPDO()), number & 0xFFFF);
    QCOMPARE(quint32(info.getNumberOfTxPDO()), number & 0xFFFF);
}

void TestSheetValues::everyBitOfTheObjectFlagsIsStored()
{
    for (int bit = 0; bit < 32; ++bit) {
        const quint32 flags = 1U << bit;
        const CLoadedSheet sheet("[2000]\nObjectType=7\nObjFlags=0x" + QByteArray::number(flags, 16) + '\n');
        QCOMPARE(quint32(sheet.entry(0, 0).getObjectFlags()), flags);
    }
}

QTEST_APPLESS_MAIN(TestSheetValues)
#include "TestSheetValues.moc"
