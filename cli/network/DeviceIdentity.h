// Whether a device is of the kind that a file is made for.
// SPDX-License-Identifier: MIT
#pragma once

#include "network/NodeReading.h"

/// Reads device type, vendor, product and revision (1000, 1018:1 to 1018:3) of the device, as far as the file describes
/// them, and tells each that is another one, or of which the file has no value. A revision is only told: it may differ
/// between devices of one kind. Without an answer the command ends with `exitNetwork`.
/// @return `exitDone`; `exitDifference` when the device is of another kind, or the file does not tell of which; or
/// `exitAborted` when the device does not tell it
int compareIdentity(const tSnapshot& file, const tDevice& device);

/// The value of an entry as it is on the bus of the node, as text for people; "?" when it is not known.
QString shownValue(const tSnapshotEntry& entry, int node);
