// Evaluators of the gateway's response lines: one line into a status and typed values.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

// Every evaluator takes one zero-terminated line such as "[12] OK\r\n". Blanks and tabs separate the items. Text after
// the last expected item is ignored; the sequence number in brackets may be any number. The line is never modified.
//
// They share these results:
//   0                 success
//   ERR_FORMAT        another grammar, an unexpected word, a number out of range
//   ERR_NULL_POINTER  the line has a value and a pointer for it is null
//   -600 - n          the gateway answered "Error: n" (calculated modulo 2^32); a code without a name
// The SDO evaluators (`tcp_eval_sdo_...`) have one more:
//   ERR_SDO_ABORTED   n is 0x05000000 or above: a device aborted the transfer; n, its abort code, is stored in `abort`
// `abort` may always be null. It is cleared when the line has a value.

/// "OK": the answer to commands without a result.
int32_t tcp_eval_response(const char* line);

/// "OK": the answer to SDO writes.
int32_t tcp_eval_sdo_response(const char* line, uint32_t* abort);

/// An unsigned number that fits the width, for example "[12] 0x1F": the answer to typed reads. A number out of range
/// gives ERR_FORMAT and is stored cut to the width.
int32_t tcp_eval_sdo_unsigned8(const char* line, uint8_t* value, uint32_t* abort);
int32_t tcp_eval_sdo_unsigned16(const char* line, uint16_t* value, uint32_t* abort);
int32_t tcp_eval_sdo_unsigned32(const char* line, uint32_t* value, uint32_t* abort);

/// A signed number that fits the width, for example "[12] -128". Hexadecimal and octal forms are bit patterns: 0xFF is
/// -1.
int32_t tcp_eval_sdo_integer8(const char* line, int8_t* value, uint32_t* abort);
int32_t tcp_eval_sdo_integer16(const char* line, int16_t* value, uint32_t* abort);
int32_t tcp_eval_sdo_integer32(const char* line, int32_t* value, uint32_t* abort);

/// Data in base64, for example "[3] QUJD": the answer to domain reads. At most `size` bytes are stored, the rest is
/// dropped; `length` is the number of bytes stored.
int32_t tcp_eval_sdo_domain(const char* line, short* length, BYTE* buffer, short size, uint32_t* abort);

/// A plain word or a text in double quotes ("" stands for one quote within it): the answer to info queries. At most
/// `size` - 1 characters and a terminating zero are stored, the rest is dropped; `length` counts the characters stored.
int32_t tcp_eval_sdo_string(const char* line, short* length, char* buffer, short size, uint32_t* abort);

/// Whether the line is "Error: n". `number`, which may be null, becomes all 32 bits of n: the results of the
/// evaluators, which calculate with it, do not always tell that there was an error.
bool tcp_eval_is_error(const char* line, uint32_t* number);

/// Identifier, length and data bytes of a CAN message, for example "[3] 0x181 2 0x11 0x22". At most eight bytes are
/// read into `data`, also when `length` says more.
/// @return ERR_RECEIVER_EMPTY for "OK": the gateway has no message
int32_t tcp_eval_can_message(const char* line, uint16_t* cob_id, short* length, BYTE* data);

/// Length and data bytes in answer to a remote frame, at most eight. `data` may be null when `length` points to 0.
int32_t tcp_eval_rtr_message(const char* line, short* length, BYTE* data);

/// The revision text of this module.
const char* tcp_eval_version();
