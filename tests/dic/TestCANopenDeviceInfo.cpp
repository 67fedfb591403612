// The device information: a getter and a setter for each field, bit rates, and names in exactly one spelling.
// SPDX-License-Identifier: MIT
#include "dic/CANopenDeviceInfo.h"

#include "DeviceInfoFields.h"
#include "NameRows.h"

#include <QTest>

#include <functional>

using T = CCANopenDeviceInfo;

static_assert(T::baudrate1000 == 0 && T::baudrate800 == 1 && T::baudrate500 == 2 && T::baudrate250 == 3);
static_assert(T::baudrate125 == 4 && T::baudrate100 == 5 && T::baudrate50 == 6 && T::baudrate20 == 7);
static_assert(T::baudrate10 == 8);
static_assert(T::statePublic == 0 && T::stateProtected == 1 && T::statePrivate == 2 && T::stateInvalid == -1);

using tSetter = std::function<void(CCANopenDeviceInfo&)>;
Q_DECLARE_METATYPE(tSetter)

class TestCANopenDeviceInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newDeviceInfoHoldsDefaultsOnly();
    void eachSetterChangesItsFieldOnly_data();
    void eachSetterChangesItsFieldOnly();
    void eachBitRateHasAFlagOfItsOwn();
    void bitRatesOutsideTheListAreIgnored_data() { numberRows({ 9, -1, 10, 256, -256, INT_MAX, INT_MIN }); }
    void bitRatesOutsideTheListAreIgnored();
    void bitRateShowsInKilobits();
    void bitRateIsReadFromItsExactText_data();
    void bitRateIsReadFromItsExactText() { compareName(&CCANopenDeviceInfo::getBaudrateByName); }
    void onlyTrueYesAndOneAreTrue_data();
    void onlyTrueYesAndOneAreTrue();
    void flagsShowAsYesOrNo();
    void stateNameReadsAsNumberInExactCase_data();
    void stateNameReadsAsNumberInExactCase() { compareName(&CCANopenDeviceInfo::getStateByName); }
    void stateShowsAsName() { compareTexts(&CCANopenDeviceInfo::getStateByIndex, "Invalid", stateTexts); }
    void versionIsARevision() { QCOMPARE(QByteArray(CCANopenDeviceInfo::version()), QByteArray("$Rev: 1 $")); }
};

void TestCANopenDeviceInfo::newDeviceInfoHoldsDefaultsOnly()
{
    const CCANopenDeviceInfo info;
    QCOMPARE(info.getEDSVersion(), QString("4.0"));
    QVERIFY(info.getDescription().isNull());
    for (const QString& text : { info.getVendorName(), info.getProductName(), info.getOrderCode(),
                                 info.getLmtManufacturerName(), info.getLmtProductName() })
        QCOMPARE(text, QString(""));
    QCOMPARE(deviceInfoFields(info).join('|'),
             QString("vendor name: |product name: |vendor number: 0|product number: 0|revision number: 0|"
                     "order code: |bit rates: |master: 0|slave: 0|receive PDOs: 0|transmit PDOs: 0|granularity: 0|"
                     "dynamic channels: 0|group messaging: 0|layer settings: 0|LMT manufacturer: |LMT product: |"
                     "EDS version: 4.0|description: "));
}

void TestCANopenDeviceInfo::eachSetterChangesItsFieldOnly_data()
{
    QTest::addColumn<tSetter>("setter");
    const std::initializer_list<std::pair<const char*, tSetter>> rows = {
        { "vendor name: \xC3\x9C", [](auto& info) { info.setVendorName("\xC3\x9C"); } },
        { "product name: Valve", [](auto& info) { info.setProductName("Valve"); } },
        { "vendor number: 4294967295", [](auto& info) { info.setVendorNumber(0xFFFFFFFF); } },
        { "product number: 4294967294", [](auto& info) { info.setProductNumber(0xFFFFFFFE); } },
        { "revision number: 4294967293", [](auto& info) { info.setRevisionNumber(0xFFFFFFFD); } },
        { "order code: 605-A", [](auto& info) { info.setOrderCode("605-A"); } },
        { "master: 1", [](auto& info) { info.setSimpleBootUpMaster(true); } },
        { "slave: 1", [](auto& info) { info.setSimpleBootUpSlave(true); } },
        { "receive PDOs: 65535", [](auto& info) { info.setNumberOfRxPDO(65535); } },
        { "transmit PDOs: 65534", [](auto& info) { info.setNumberOfTxPDO(65534); } },
        { "granularity: 255", [](auto& info) { info.setPDOGranularity(255); } },
        { "dynamic channels: 1", [](auto& info) { info.setDynamicChannels(true); } },
        { "group messaging: 1", [](auto& info) { info.setGroupMessaging(true); } },
        { "layer settings: 1", [](auto& info) { info.setLayerSettings(true); } },
        { "LMT manufacturer: M", [](auto& info) { info.setLmtManufacturerName("M"); } },
        { "LMT product: P", [](auto& info) { info.setLmtProductName("P"); } },
        { "EDS version: 4.2", [](auto& info) { info.setEDSVersion("4.2"); } },
        { "description: D", [](auto& info) { info.setDescription("D"); } },
    };
    for (const auto& [field, setter] : rows)
        QTest::newRow(field) << setter;
}

void TestCANopenDeviceInfo::eachSetterChangesItsFieldOnly()
{
    QFETCH(tSetter, setter);
    CCANopenDeviceInfo info;
    setter(info);
    QCOMPARE(changedFields(info), QString::fromUtf8(QTest::currentDataTag()));
}

void TestCANopenDeviceInfo::eachBitRateHasAFlagOfItsOwn()
{
    for (int index = 0; index <= 8; ++index) {
        CCANopenDeviceInfo info;
        info.setBaudrate(index, true);
        QCOMPARE(changedFields(info), QString("bit rates: %1").arg(index));
        info.setBaudrate(index, false);
        QCOMPARE(changedFields(info), QString(""));
    }
}

void TestCANopenDeviceInfo::bitRatesOutsideTheListAreIgnored()
{
    QFETCH(int, number);
    CCANopenDeviceInfo info;
    info.setBaudrate(number, true);
    QCOMPARE(changedFields(info), QString(""));
    for (int index = 0; index <= 8; ++index)
        info.setBaudrate(index, true);
    info.setBaudrate(number, false);
    QCOMPARE(changedFields(info), QString("bit rates: 0 1 2 3 4 5 6 7 8"));
}

void TestCANopenDeviceInfo::bitRateShowsInKilobits()
{
    compareTexts(&CCANopenDeviceInfo::getBaudrateByIndex, "",
                 { { 0, "1000" },
                   { 1, "800" },
                   { 2, "500" },
                   { 3, "250" },
                   { 4, "125" },
                   { 5, "100" },
                   { 6, "50" },
                   { 7, "20" },
                   { 8, "10" } });
}

void TestCANopenDeviceInfo::bitRateIsReadFromItsExactText_data()
{
    nameRows({ { "1000", 0 },
               { "800", 1 },
               { "500", 2 },
               { "250", 3 },
               { "125", 4 },
               { "100", 5 },
               { "50", 6 },
               { "20", 7 },
               { "10", 8 },
               { "0800", -1 },
               { "1", -1 },
               { "10000", -1 },
               { "100 ", -1 },
               { " 100", -1 },
               { "100k", -1 },
               { "", -1 } });
}

void TestCANopenDeviceInfo::onlyTrueYesAndOneAreTrue_data()
{
    nameRows({ { "True", 1 },
               { "Yes", 1 },
               { "1", 1 },
               { "true", 0 },
               { "yes", 0 },
               { "TRUE", 0 },
               { "YES", 0 },
               { "01", 0 },
               { "2", 0 },
               { "Yes ", 0 },
               { "No", 0 },
               { "", 0 } });
}

void TestCANopenDeviceInfo::onlyTrueYesAndOneAreTrue()
{
    compareName([](const char* name) { return int(CCANopenDeviceInfo::getBooleanByName(name)); });
}

void TestCANopenDeviceInfo::flagsShowAsYesOrNo()
{
    QCOMPARE(CCANopenDeviceInfo::getBooleanByValue(true), QString("Yes"));
    QCOMPARE(CCANopenDeviceInfo::getBooleanByValue(false), QString("No"));
}

void TestCANopenDeviceInfo::stateNameReadsAsNumberInExactCase_data()
{
    nameRows({ { "Public", 0 },
               { "Protected", 1 },
               { "Private", 2 },
               { "public", -1 },
               { "PROTECTED", -1 },
               { "private", -1 },
               { "Public ", -1 },
               { "Pub", -1 },
               { "Invalid", -1 },
               { "", -1 } });
}

QTEST_APPLESS_MAIN(TestCANopenDeviceInfo)
#include "TestCANopenDeviceInfo.moc"
