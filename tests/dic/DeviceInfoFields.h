// The device information as lines of text, so that a test sees what changed and what did not.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopenDeviceInfo.h"

#include <QStringList>

/// Every field as "name: value", flags as 0 or 1, bit rates as the list of those that are supported.
inline QStringList deviceInfoFields(const CCANopenDeviceInfo& info)
{
    QStringList rates;
    for (int index = 0; index < 9; ++index)
        if (info.getBaudrate(static_cast<CCANopenDeviceInfo::TBaudrateIndex>(index)))
            rates << QString::number(index);
    return {
        "vendor name: " + info.getVendorName(),
        "product name: " + info.getProductName(),
        QString("vendor number: %1").arg(info.getVendorNumber()),
        QString("product number: %1").arg(info.getProductNumber()),
        QString("revision number: %1").arg(info.getRevisionNumber()),
        "order code: " + info.getOrderCode(),
        "bit rates: " + rates.join(' '),
        QString("master: %1").arg(info.getSimpleBootUpMaster()),
        QString("slave: %1").arg(info.getSimpleBootUpSlave()),
        QString("receive PDOs: %1").arg(info.getNumberOfRxPDO()),
        QString("transmit PDOs: %1").arg(info.getNumberOfTxPDO()),
        QString("granularity: %1").arg(int(info.getPDOGranularity())),
        QString("dynamic channels: %1").arg(info.getDynamicChannels()),
        QString("group messaging: %1").arg(info.getGroupMessaging()),
        QString("layer settings: %1").arg(info.getLayerSettings()),
        "LMT manufacturer: " + info.getLmtManufacturerName(),
        "LMT product: " + info.getLmtProductName(),
        "EDS version: " + info.getEDSVersion(),
        "description: " + info.getDescription(),
    };
}

/// The fields that differ from those of a new device information.
inline QString changedFields(const CCANopenDeviceInfo& info)
{
    const QStringList before = deviceInfoFields(CCANopenDeviceInfo());
    QStringList changed;
    for (const QString& field : deviceInfoFields(info))
        if (!before.contains(field))
            changed << field;
    return changed.join(", ");
}
