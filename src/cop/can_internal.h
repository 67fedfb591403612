// What the two halves of the CAN controller share: can_ctrl.cpp (socket, message objects) and can_queue.cpp.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

inline constexpr uint32_t can_no_time_stamp = 0xFFFFFFFF; ///< time stamp of every message: no time is measured
inline constexpr int can_read_limit = 100; ///< messages that a call takes at most, so that a busy bus cannot block it

/// The bit-rate index noted by `can_start`; 255 before the first one.
extern BYTE can_baudrate;

/// The error that blocks sending and reading: ERR_NOT_INITIALIZED, ERR_NOT_STARTED or ERR_NO_ERROR.
short can_check_started();

/// True while messages without a message object are queued.
bool can_queue_is_enabled();
/// Puts a message of `length` (0 to 8) bytes into the queue; a full queue drops its oldest message.
void can_queue_put(uint32_t cob_id, short length, const BYTE* data);
