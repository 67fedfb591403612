// The CANopen master: start and end of the CAN controller, single messages, and the queue of received messages.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

/// The result of the last call of the master, its NMT commands and its SDO client: 0, a negative error code or an SDO
/// abort code. Every function that returns such a result sets it.
extern int32_t cop_error;

// Error codes are those of the CAN controller (cop/can_ctrl.h) unless stated otherwise.

/// Starts the CAN controller on the interface that `param`, a `_can_param`, names. Closes an interface that is open
/// already; after a failure none is open. `board` must be -1; `baudrate` is an index 0 to 8, but not 1.
/// @return 0; ERR_PARAMETER for another board; ERR_NULL_POINTER without `param` or its name; -10000, a code without a
/// name, when the interface cannot be opened; ERR_BAUDRATE for another index
int32_t cop_init(int board, void* param, BYTE baudrate);
/// Closes the interface. @return 0 always
int32_t cop_exit();
/// Stops the controller for 100 ms and starts it with another index. After a failure it stays stopped.
int32_t cop_reset(BYTE baudrate);

/// Sends a message of `length` data bytes (0 to 8) with the identifier `cob_id` (0 to 2047).
/// @return also ERR_TRANSMITTER_BUSY when the interface does not accept it
int32_t cop_transmit(uint32_t cob_id, short length, const BYTE* data);
/// Waits for a message with the identifier `cob_id`. `length` must be 0 to 8 and becomes that of the message; `data`
/// has room for eight bytes. Waits 20 ms at 100 kbit/s and above, 50 ms at 50, 100 ms at 20 and 200 ms at 10 kbit/s.
/// @return also ERR_TIMEOUT when no such message has arrived
int32_t cop_request(uint32_t cob_id, short* length, BYTE* data);

/// Not available: ERR_NOT_SUPPORTED once initialised. Nothing is stored through the pointers.
int32_t cop_status(BYTE* status, BYTE* load);

/// Takes the oldest message out of the queue; `data` has room for eight bytes.
/// @return also ERR_RECEIVER_EMPTY when it is empty
int32_t cop_queue_read(uint32_t* cob_id, short* length, BYTE* data);
/// Empties the queue. @return also ERR_RECEIVER_EMPTY when it was empty already
int32_t cop_queue_clear();
/// Returns and clears the queue's last error: ERR_QUEUE_OVERRUN after it has dropped a message, ERR_RECEIVER_EMPTY
/// after it has been read while empty. Reading a message clears it, too. Nothing is stored through the pointers.
int32_t cop_queue_status(BYTE* status, BYTE* load);

const char* cop_hardware(); ///< interface="can0", family=29, type=3, protocol=1
const char* cop_software(); ///< the driver, in one line
const char* cop_version();  ///< this module and its date
