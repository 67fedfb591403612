// What the modules of the CANopen master share: cop_api.cpp, cop_nms.cpp and cop_sdo.cpp.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

/// The data of the message that is being sent or has arrived.
extern BYTE cop_buffer[8];

// Message objects that the services use in turns; each service frees its objects before it returns.
inline constexpr short cop_transmit_object = 0;
inline constexpr short cop_receive_object = 1;
