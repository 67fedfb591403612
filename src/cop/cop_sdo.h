// The SDO client of the CANopen master: expedited and segmented transfers to and from a node's object dictionary.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

// Requests go to 0x600 + node-id, answers come from 0x580 + node-id, frames and codes are those of CiA 301. A transfer
// blocks until it has ended; each awaited answer may take the SDO time-out. Shared results:
//   0         success
//   -90       a node-id of 0 or above 127; nothing is sent
//   -99       a null pointer; nothing is sent
//   -50       no answer in time
//   -60       an answer of other than eight bytes
//   -70       an answer that does not belong to the request: another command, a wrong toggle bit
//   positive  the SDO abort code of the node, as a signed number: strange ones may read as 0 or as negative
//   others    error codes of the CAN controller
// Where waiting for an answer has failed, the node has been sent an abort, too.

/// Writes `length` bytes: up to 4 in one message, more in segments of 7.
int32_t sdo_write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data);

/// Reads at most `size` bytes; what the node sends beyond is dropped. `length` is the number of bytes stored, 0 on
/// failure. Data that came in segments and leave room are followed by a zero byte.
int32_t sdo_read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size);

/// Sets the SDO time-out in milliseconds, 500 at first. @return the one before
WORD sdo_timeout(WORD milliseconds);

/// Values of 8, 16 and 32 bits, least significant byte first.
int32_t sdo_write_8bit(BYTE node, WORD index, BYTE subindex, uint8_t value);
int32_t sdo_write_16bit(BYTE node, WORD index, BYTE subindex, uint16_t value);
int32_t sdo_write_32bit(BYTE node, WORD index, BYTE subindex, uint32_t value);

/// @return also -60 when the node delivers another number of bytes, for which no abort is sent; a value of 8 bits may
/// be overwritten then
int32_t sdo_read_8bit(BYTE node, WORD index, BYTE subindex, uint8_t* value);
int32_t sdo_read_16bit(BYTE node, WORD index, BYTE subindex, uint16_t* value);
int32_t sdo_read_32bit(BYTE node, WORD index, BYTE subindex, uint32_t* value);

const char* sdo_version(); ///< this module and its date
