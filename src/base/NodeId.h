// The range of CANopen node-ids.
// SPDX-License-Identifier: MIT
#pragma once

/// The highest node-id; CiA 301 gives nodes the ids 1 to 127.
inline constexpr int highestNodeId = 127;
