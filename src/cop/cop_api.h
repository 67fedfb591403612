// The CANopen master: start and end of the CAN controller, single messages, and the queue of received messages.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

/// The outcome of the last call of the master, its NMT commands and its SDO client: 0, a negative error code or an SDO
/// abort code. Every function that returns a status sets it.
extern int32_t cop_error;

// Error codes come unchanged from the CAN controller (cop/can_ctrl.h) unless something else is said here.

/// Starts the CAN controller on the interface that `param`, a `_can_param`, names. What was open before is closed, and
/// nothing stays open on failure. `board` must be -1; `baudrate` is an index 0 to 8 without 1.
/// @return 0; -93 for another board; -94 without `param` or its name; -10000 when the interface cannot be opened; -91
/// for an index without bit timing
int32_t cop_init(int board, void* param, BYTE baudrate);
/// Closes the interface. @return 0 always
int32_t cop_exit();
/// Stops the controller for 100 ms and starts it with another index. On failure it stays stopped.
int32_t cop_reset(BYTE baudrate);

/// Sends a message of `length` data bytes (0 to 8) with the identifier `cob_id` (0 to 2047). @return also -20 when the
/// interface does not take it
int32_t cop_transmit(uint32_t cob_id, short length, const BYTE* data);
/// Waits for a message with the identifier `cob_id`. `length` has to be 0 to 8 and becomes that of the message; `data`
/// has room for eight bytes. Waits 20 ms down to 100 kbit/s, 50 ms at 50, 100 ms at 20 and 200 ms at 10 kbit/s.
/// @return also -50 when nothing has arrived
int32_t cop_request(uint32_t cob_id, short* length, BYTE* data);

/// Not available: -98 once initialised; nothing is stored.
int32_t cop_status(BYTE* status, BYTE* load);

/// Takes the oldest message out of the queue; `data` has room for eight bytes. @return also -30 when it is empty
int32_t cop_queue_read(uint32_t* cob_id, short* length, BYTE* data);
/// Empties the queue. @return also -30 when it was empty already
int32_t cop_queue_clear();
/// What went wrong with the queue last, once: -40 after it has dropped messages, -30 when it was read while empty, or
/// 0, also when it has been read with success since. Nothing is stored through the pointers.
int32_t cop_queue_status(BYTE* status, BYTE* load);

const char* cop_hardware(); ///< interface="can0", family=29, type=3, protocol=1
const char* cop_software(); ///< the driver, in one line
const char* cop_version();  ///< this module and its date
