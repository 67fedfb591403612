// Client of an ASCII gateway over one TCP connection: each command is one line, answered by one line.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

/// How an application presents itself to the gateway. The client stores it, but no command carries it.
struct _top_settings {
    BYTE net;    ///< network number of the gateway, 1 by default
    BYTE node;   ///< default node-id, 1 by default
    BYTE master; ///< the application's own node-id, 255 by default
};

// One connection at a time, from one thread only. Every command uses up a sequence number, also when it cannot be sent,
// and blocks until the line with its number has arrived: at most 66 s for each line. Lines with other numbers are
// skipped.
//
// The commands share these results:
//   0                  success
//   ERR_FORMAT         the answer does not follow the grammar
//   -793               the command could not be sent, for example while not connected; a code without a name
//   -600 - n           the gateway answered with the error number n; a code without a name
//   0x05000000 and up  SDO transfers and info queries only: the device aborted the transfer with this abort code
// Without any answer the command itself is evaluated in its place, since both use the same line buffer: reads then
// succeed with the first word of their command (the node-id, or "info"), other commands return ERR_FORMAT. This is so
// when no answer comes in time and when the gateway closes the connection. When the connection is reset, an empty line
// is evaluated: reads, too, return ERR_FORMAT. `init` succeeds in each case.

/// Connects to the gateway at the IPv4 address `addr` and the TCP port `port`, both in host byte order; blocks as long
/// as the operating system tries. `settings` may be null. `baudrate` is ignored: the bit rate is configured in the
/// gateway. The process ignores SIGPIPE from then on, so that sending on a closed connection returns an error.
/// @return 0, or -20000, a code without a name, when no connection is made
int32_t top_init(unsigned long addr, unsigned short port, _top_settings* settings, BYTE baudrate);

/// Closes the connection. @return 0, or ERR_NOT_INITIALIZED while not connected
int32_t top_exit();

/// Sends `init` with a bit-rate index of 0 (1 Mbit/s) to 8 (10 kbit/s). @return 0 for every answer; -793 as above
int32_t top_reset(BYTE baudrate);

/// Writes `length` bytes as a domain. Data that do not fit into the line of 1023 characters are cut off without notice.
/// The byte after the data must be readable and should be zero.
/// @return also ERR_NULL_POINTER for null `data` with a positive length; no sequence number is used then
int32_t top_write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data);

/// Reads a domain into at most `size` bytes; the rest is dropped. `length` is the number of bytes stored.
int32_t top_read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size);

/// Sets the gateway's SDO time-out in milliseconds. `previous` may be null; it is always set to 0.
int32_t top_timeout(WORD timeout, WORD* previous);

/// Typed SDO transfers of 8, 16 and 32 bits, for example "[7] 5 read 0x1017 0x0 u16". A number that does not fit the
/// type gives ERR_FORMAT and is stored cut to its width.
int32_t top_write_8bit(BYTE node, WORD index, BYTE subindex, uint8_t value);
int32_t top_read_8bit(BYTE node, WORD index, BYTE subindex, uint8_t* value);
int32_t top_write_16bit(BYTE node, WORD index, BYTE subindex, uint16_t value);
int32_t top_read_16bit(BYTE node, WORD index, BYTE subindex, uint16_t* value);
int32_t top_write_32bit(BYTE node, WORD index, BYTE subindex, uint32_t value);
int32_t top_read_32bit(BYTE node, WORD index, BYTE subindex, uint32_t* value);

/// Network management commands to one node.
int32_t top_start_remote_node(BYTE node);
int32_t top_stop_remote_node(BYTE node);
int32_t top_enter_preoperational(BYTE node);
int32_t top_reset_node(BYTE node);
int32_t top_reset_communication(BYTE node);

/// Sends a CAN message of `length` data bytes; "[7] send 0x181 2", line end, " 0x11 0x22", line end.
/// @return also ERR_NULL_POINTER for null `data` with a length other than 0; no sequence number is used then
int32_t top_transmit(int32_t cob_id, short length, const BYTE* data);

/// Remote frames are not available through a gateway; nothing is sent and no sequence number used.
/// @return ERR_NULL_POINTER always
int32_t top_request(int32_t cob_id, short* length, BYTE* data);

/// Takes the oldest received CAN message; `data` has room for eight bytes.
/// @return also ERR_RECEIVER_EMPTY when there is none
int32_t top_queue_read(WORD* cob_id, short* length, BYTE* data);

/// Not supported by a gateway. Nothing is stored through the pointers. @return ERR_NOT_SUPPORTED always
int32_t top_queue_clear();
int32_t top_status(BYTE* can_status, BYTE* cop_status);
int32_t top_queue_status(BYTE* low, BYTE* high);

/// How the last command was answered, for callers that must not take silence for a value.
enum top_answer {
    top_answer_none,   ///< no line with its number has come in time, or the command could not be sent
    top_answer_closed, ///< the connection was closed before such a line
    top_answer_cut,    ///< such a line did not end within 1023 characters, or the connection closed within it
    top_answer_odd,    ///< such a line is no value in base64, where `top_read` took one from it
    top_answer_whole   ///< such a line has come up to its line feed
};
int top_last_answer();

/// Whether the last command was answered with an error number, or with the abort code of a device (lowestAbortCode and
/// above). `number`, which may be null, is then all its 32 bits and otherwise unchanged. The results do not always
/// tell: -600 reads as success there, an abort code above 0x7FFFFFFF as another one.
bool top_last_error(uint32_t* number);

/// Sets how long commands wait for each line, in milliseconds, 66000 at first; at least 1. @return the previous time
int32_t top_line_timeout(int32_t milliseconds);

/// The most bytes of `top_write` that fit into a line with any number, node and object.
inline constexpr short top_write_max = 729;

/// Texts of the gateway: at most `size` - 1 characters and a terminating zero.
int32_t top_hardware(char* buffer, short size);
int32_t top_software(char* buffer, short size);
int32_t top_copyright(char* buffer, short size);

/// The revision text of this module.
const char* top_version();
