// What a data sheet tells about the device as a whole: maker, product, bit rates, features.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>
#include <cstdint>

class CCANopenDeviceInfo
{
public:
    /// Bit rates in kbit/s, the fastest first.
    enum TBaudrateIndex : int {
        baudrate1000 = 0,
        baudrate800 = 1,
        baudrate500 = 2,
        baudrate250 = 3,
        baudrate125 = 4,
        baudrate100 = 5,
        baudrate50 = 6,
        baudrate20 = 7,
        baudrate10 = 8
    };
    enum TDeviceInfoState : int { statePublic = 0, stateProtected = 1, statePrivate = 2, stateInvalid = -1 };

    QString getVendorName() const { return m_vendorName; }
    QString getProductName() const { return m_productName; }
    std::uint32_t getVendorNumber() const { return m_vendorNumber; }
    std::uint32_t getProductNumber() const { return m_productNumber; }
    std::uint32_t getRevisionNumber() const { return m_revisionNumber; }
    QString getOrderCode() const { return m_orderCode; }
    /// False for an index that is no bit rate.
    bool getBaudrate(TBaudrateIndex index) const { return isBaudrate(index) && m_baudrate[std::size_t(index)]; }
    bool getSimpleBootUpMaster() const { return m_simpleBootUp.m_master; }
    bool getSimpleBootUpSlave() const { return m_simpleBootUp.m_slave; }
    unsigned short getNumberOfRxPDO() const { return m_PDO.m_rxPDO; }
    unsigned short getNumberOfTxPDO() const { return m_PDO.m_txPDO; }
    unsigned char getPDOGranularity() const { return m_PDO.m_granularity; }
    bool getDynamicChannels() const { return m_dynamicChannels; }
    bool getGroupMessaging() const { return m_groupMessaging; }
    bool getLayerSettings() const { return m_layerSettings; }
    QString getLmtManufacturerName() const { return m_lmtManufacturerName; }
    QString getLmtProductName() const { return m_lmtProductName; }
    QString getEDSVersion() const { return m_EDSVersion; }
    QString getDescription() const { return m_description; }

    // Texts are UTF-8.
    void setVendorName(const char* name);
    void setProductName(const char* name);
    void setVendorNumber(std::uint32_t number) { m_vendorNumber = number; }
    void setProductNumber(std::uint32_t number) { m_productNumber = number; }
    void setRevisionNumber(std::uint32_t number) { m_revisionNumber = number; }
    void setOrderCode(const char* orderCode);
    /// Any other index than 0 to 8 is ignored.
    void setBaudrate(int index, bool supported);
    void setSimpleBootUpMaster(bool supported) { m_simpleBootUp.m_master = supported; }
    void setSimpleBootUpSlave(bool supported) { m_simpleBootUp.m_slave = supported; }
    void setNumberOfRxPDO(unsigned short number) { m_PDO.m_rxPDO = number; }
    void setNumberOfTxPDO(unsigned short number) { m_PDO.m_txPDO = number; }
    void setPDOGranularity(unsigned char granularity) { m_PDO.m_granularity = granularity; }
    void setDynamicChannels(bool supported) { m_dynamicChannels = supported; }
    void setGroupMessaging(bool supported) { m_groupMessaging = supported; }
    void setLayerSettings(bool supported) { m_layerSettings = supported; }
    void setLmtManufacturerName(const char* name);
    void setLmtProductName(const char* name);
    void setEDSVersion(const char* version);
    void setDescription(const char* description);

    /// The rate in kbit/s as text, "1000" for index 0; empty for an index that is no bit rate.
    static QString getBaudrateByIndex(TBaudrateIndex index);
    /// Index of a rate written exactly as "1000" to "10"; -1 for other texts.
    static int getBaudrateByName(const char* name);
    /// True for exactly "True", "Yes" and "1".
    static bool getBooleanByName(const char* name);
    /// "Yes" or "No".
    static QString getBooleanByValue(bool value);
    /// "Public" 0, "Protected" 1, "Private" 2, in exactly this case; -1 for other names.
    static int getStateByName(const char* name);
    /// "Invalid" for other numbers.
    static QString getStateByIndex(TDeviceInfoState state);

    static const char* version();

private:
    static constexpr int baudrates = 9;
    static bool isBaudrate(int index) { return 0 <= index && index < baudrates; }

    struct tSimpleBootUp {
        bool m_master = false, m_slave = false;
    };
    struct tPDO {
        unsigned short m_rxPDO = 0, m_txPDO = 0;
        unsigned char m_granularity = 0;
    };

    QString m_vendorName = QStringLiteral(""), m_productName = QStringLiteral("");
    std::uint32_t m_vendorNumber = 0, m_productNumber = 0, m_revisionNumber = 0;
    QString m_orderCode = QStringLiteral("");
    std::array<bool, baudrates> m_baudrate = {};
    tSimpleBootUp m_simpleBootUp;
    tPDO m_PDO;
    bool m_dynamicChannels = false, m_groupMessaging = false, m_layerSettings = false;
    QString m_lmtManufacturerName = QStringLiteral(""), m_lmtProductName = QStringLiteral("");
    QString m_EDSVersion = QStringLiteral("4.0");
    QString m_description;
};
