// Writing what belongs together: wholly, or not at all.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/NodeReading.h"
#include "network/WriteOrder.h"

/// Remembers what it has sent of a unit, so that a device is not left between two configurations unnoticed: with a PDO
/// switched off, or with half of its mapping.
class CUnitWriter
{
public:
    /// @param former the values of the device before
    CUnitWriter(const tDevice& device, const tSnapshot& former) : m_device(device), m_former(former) {}

    std::optional<tFailure> send(const tWrite& write);
    /// All of the unit was sent.
    void complete() { m_sent.clear(); }
    /// Gives what was sent of the unit its former values again, and tells so. Where one of them is not known or is
    /// refused, the unit is left as it is.
    void writeBack();
    /// What units have been left with: "1A00 = 0x00, 1A00:1 = 0x20040008"; empty when all are complete.
    QString halfWay() const;
    /// What was sent without an answer, so that the device may have it or not: "1A00:1 = 0x20040008"; else empty.
    QString uncertain() const;

private:
    struct tSent {
        const tSnapshotEntry* entry;
        QByteArray bytes;
    };

    static QString textOf(const tSent& sent);

    const tDevice m_device;
    const tSnapshot& m_former;
    std::vector<tSent> m_sent;    // of the unit that is being written, the last value of each entry
    std::vector<tSent> m_halfWay; // of units before
    std::optional<tSent> m_pending;
};
