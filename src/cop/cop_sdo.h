// The SDO client of the CANopen master: expedited and segmented transfers to and from a node's object dictionary.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

// Requests go to 0x600 + node-id, answers come from 0x580 + node-id, frames and codes are those of CiA 301. A transfer
// blocks until it has ended; each awaited answer may take the SDO time-out. Shared results:
//   0            success
//   ERR_NODE_ID  a node-id of 0 or above 127; nothing is sent
//   ERR_FATAL    a null pointer; nothing is sent
//   ERR_TIMEOUT  no answer in time; also when the next segment could not be sent in time
//   ERR_LENGTH   an answer that has not eight bytes
//   ERR_FORMAT   an answer that does not fit the request: another command, a wrong toggle bit
//   positive     the SDO abort code of the node; codes outside CiA 301 may read as 0 or negative
//   others       error codes of the CAN controller
// When waiting for an answer fails with an error code, an abort is sent to the node.

/// Writes `length` bytes: up to 4 in one message, more in segments of 7.
int32_t sdo_write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data);

/// Reads at most `size` bytes; the rest is dropped. `length` is the number of bytes stored, 0 on failure. When data in
/// segments leave room, a zero byte is stored after them.
int32_t sdo_read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size);

/// Sets the SDO time-out in milliseconds, 500 at first. @return the previous one
WORD sdo_timeout(WORD milliseconds);

/// Has `ended` asked again and again while an answer is awaited: when it returns true, the transfer ends as after a
/// time-out. Null, as at first: nobody is asked.
void sdo_end_when(bool (*ended)());

/// Whether the node aborted the last transfer, also where the result does not tell: an abort code of 0 reads as
/// success, one above 0x7FFFFFFF as an error. `code`, which may be null, is then its code and otherwise unchanged.
bool sdo_last_abort(uint32_t* code);

/// Values of 8, 16 and 32 bits, least significant byte first.
int32_t sdo_write_8bit(BYTE node, WORD index, BYTE subindex, uint8_t value);
int32_t sdo_write_16bit(BYTE node, WORD index, BYTE subindex, uint16_t value);
int32_t sdo_write_32bit(BYTE node, WORD index, BYTE subindex, uint32_t value);

/// @return also ERR_LENGTH when the node sends another number of bytes; no abort is sent then, and a value of 8 bits
/// may have been overwritten
int32_t sdo_read_8bit(BYTE node, WORD index, BYTE subindex, uint8_t* value);
int32_t sdo_read_16bit(BYTE node, WORD index, BYTE subindex, uint16_t* value);
int32_t sdo_read_32bit(BYTE node, WORD index, BYTE subindex, uint32_t* value);

const char* sdo_version(); ///< this module and its date
