// Client of an ASCII gateway over one TCP connection: each command is one line, answered by one line.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

/// The identity that an application has towards the gateway. Kept by the client; no command carries it.
struct _top_settings {
    BYTE net;    ///< network number of the gateway, 1 by default
    BYTE node;   ///< default node-id, 1 by default
    BYTE master; ///< the application's own node-id, 255 by default
};

// One connection at a time, from one thread only. Every command consumes a sequence number, also when it cannot be
// sent, and blocks until the line with its number has arrived: at most 66 s for each line, lines with other numbers are
// skipped.
//
// The commands share these results:
//   0                  success
//   -793               the command could not be sent, for example while not connected
//   -70                the answer does not follow the grammar
//   -600 - n           the gateway answered with the error number n
//   0x05000000 and up  SDO transfers and info queries only: the device aborted the transfer with this abort code
// Without any answer the command itself is evaluated in its place, since both share one line buffer. Commands
// then return -70, reads succeed with their own first word (the node-id, or "info"); gateways and stored habits rely on
// it.

/// Connects to the gateway at the IPv4 address `addr` and the TCP port `port`, both in host byte order; blocks as long
/// as the operating system tries. `settings` may be null. `baudrate` is ignored: a gateway has its bit rate set
/// elsewhere. The process ignores SIGPIPE from then on, so that a gateway that hangs up is an error code.
/// @return 0, or -20000 without a connection
int32_t top_init(unsigned long addr, unsigned short port, _top_settings* settings, BYTE baudrate);

/// Closes the connection. @return 0, or -95 while not connected
int32_t top_exit();

/// Sends `init` with a bit-rate index of 0 (1 Mbit/s) to 8 (10 kbit/s). @return 0 whatever the answer is, or -793
int32_t top_reset(BYTE baudrate);

/// Writes `length` bytes as a domain. What does not fit into the line of 1023 characters is cut off without notice. The
/// byte behind the data is looked at and should be zero.
/// @return also -94 for null `data` with a positive length; no number is consumed then
int32_t top_write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data);

/// Reads a domain into at most `size` bytes; the rest is dropped. `length` is the number of bytes stored.
int32_t top_read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size);

/// Sets the gateway's SDO time-out in milliseconds. `previous` may be null and is set to 0 in any case.
int32_t top_timeout(WORD timeout, WORD* previous);

/// Typed SDO transfers of 8, 16 and 32 bits, for example "[7] 5 read 0x1017 0x0 u16". A number that is too wide for the
/// type is stored cut, with the result -70.
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
/// @return also -94 for null `data` with a length other than 0; no number is consumed then
int32_t top_transmit(int32_t cob_id, short length, const BYTE* data);

/// Remote frames are not available through a gateway. @return -94 always; nothing is sent and no number consumed
int32_t top_request(int32_t cob_id, short* length, BYTE* data);

/// Takes the oldest received CAN message; `data` has room for eight bytes. @return also -30 when there is none
int32_t top_queue_read(WORD* cob_id, short* length, BYTE* data);

/// Not supported by a gateway. @return -98 always; what the pointers point to is left as it is
int32_t top_queue_clear();
int32_t top_status(BYTE* can_status, BYTE* cop_status);
int32_t top_queue_status(BYTE* low, BYTE* high);

/// Texts of the gateway: at most `size` - 1 characters and a terminating zero.
int32_t top_hardware(char* buffer, short size);
int32_t top_software(char* buffer, short size);
int32_t top_copyright(char* buffer, short size);

/// The revision text of this module.
const char* top_version();
