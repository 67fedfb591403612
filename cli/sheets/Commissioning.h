// What a device configuration file tells about the device that it was made for.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Names of a section and a key, in their own spelling.
namespace commissioning
{
inline constexpr char section[] = "DeviceComissioning"; // sic
inline constexpr char nodeId[] = "NodeID";
} // namespace commissioning

/// The node-id that the file gives, the last one that is 1 to 127; 0 when there is none. The file must be one that
/// loads.
unsigned commissionedNodeId(const QString& fileName);

/// The lines of the section's last key and of its last node-id; 0 when there is none.
struct tCommissioningLines {
    int last = 0;
    int nodeId = 0;
};
tCommissioningLines commissioningLines(const QString& fileName);
