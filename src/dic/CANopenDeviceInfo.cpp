// Device information: its texts and the names of bit rates, flags and states.
// SPDX-License-Identifier: MIT
#include "dic/CANopenDeviceInfo.h"

#include "dic/Names.h"
#include "dic/Utf8Text.h"

namespace
{

constexpr tName rates[] = {
    { "1000", CCANopenDeviceInfo::baudrate1000, matchWord }, { "800", CCANopenDeviceInfo::baudrate800, matchWord },
    { "500", CCANopenDeviceInfo::baudrate500, matchWord },   { "250", CCANopenDeviceInfo::baudrate250, matchWord },
    { "125", CCANopenDeviceInfo::baudrate125, matchWord },   { "100", CCANopenDeviceInfo::baudrate100, matchWord },
    { "50", CCANopenDeviceInfo::baudrate50, matchWord },     { "20", CCANopenDeviceInfo::baudrate20, matchWord },
    { "10", CCANopenDeviceInfo::baudrate10, matchWord },
};

constexpr tName booleans[] = {
    { "Yes", true, matchWord },
    { "True", true, matchWord },
    { "1", true, matchWord },
    { "No", false, matchWord },
};

// Kept: names of states and booleans of a device match in exactly this case: "public" gives -1. State names of
// dictionaries, objects and entries match in any case.
constexpr auto states = stateNames<CCANopenDeviceInfo>(matchWord);

static_assert(valueOf(rates, "0800", -1) == -1 && !valueOf(booleans, "yes", false));

} // namespace

void CCANopenDeviceInfo::setVendorName(const char* name)
{
    m_vendorName = textFromUtf8(name);
}

void CCANopenDeviceInfo::setProductName(const char* name)
{
    m_productName = textFromUtf8(name);
}

void CCANopenDeviceInfo::setOrderCode(const char* orderCode)
{
    m_orderCode = textFromUtf8(orderCode);
}

void CCANopenDeviceInfo::setBaudrate(int index, bool supported)
{
    if (isBaudrate(index))
        m_baudrate[static_cast<std::size_t>(index)] = supported;
}

void CCANopenDeviceInfo::setLmtManufacturerName(const char* name)
{
    m_lmtManufacturerName = textFromUtf8(name);
}

void CCANopenDeviceInfo::setLmtProductName(const char* name)
{
    m_lmtProductName = textFromUtf8(name);
}

void CCANopenDeviceInfo::setEDSVersion(const char* version)
{
    m_EDSVersion = textFromUtf8(version);
}

void CCANopenDeviceInfo::setDescription(const char* description)
{
    m_description = textFromUtf8(description);
}

QString CCANopenDeviceInfo::getBaudrateByIndex(TBaudrateIndex index)
{
    return nameByValue(rates, index, "");
}

int CCANopenDeviceInfo::getBaudrateByName(const char* name)
{
    return valueByName(rates, name, -1);
}

bool CCANopenDeviceInfo::getBooleanByName(const char* name)
{
    return valueByName(booleans, name, false) != 0;
}

QString CCANopenDeviceInfo::getBooleanByValue(bool value)
{
    return nameByValue(booleans, value, "No");
}

int CCANopenDeviceInfo::getStateByName(const char* name)
{
    return valueByName(states, name, stateInvalid);
}

QString CCANopenDeviceInfo::getStateByIndex(TDeviceInfoState state)
{
    return nameByValue(states, state, "Invalid");
}

const char* CCANopenDeviceInfo::version()
{
    return "$Rev: 1 $";
}
