// The CAN controller of the master: one raw SocketCAN socket, 15 message objects and a queue of received messages.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

struct can_frame;

/// The Linux network interface to use and how its raw socket is opened.
struct _can_param {
    const char* ifname; ///< name of the network interface, at most 16 characters are used
    int family;         ///< protocol family, 29 (PF_CAN)
    int type;           ///< socket type, 3 (SOCK_RAW)
    int protocol;       ///< protocol, 1 (CAN_RAW)
};

/// The state of the controller: all bits, or each by its name.
union CAN_STATE {
    BYTE byte;
    struct {
        BYTE queue_overrun : 1;    ///< messages were dropped; renewed with each one that is queued
        BYTE message_lost : 1;     ///< a message object was overwritten before it was read; until the next can_init
        BYTE receiver_empty : 1;   ///< the last read found nothing
        BYTE transmitter_busy : 1; ///< the last message could not be sent
        BYTE bus_error : 1;        ///< never set: a raw socket does not tell
        BYTE warning_level : 1;    ///< never set
        BYTE bus_off : 1;          ///< never set
        BYTE can_stopped : 1;      ///< not started
    } b;
};
static_assert(sizeof(CAN_STATE) == 1);
extern CAN_STATE can_state;

// Message objects are numbered 0 to 14. Object 14 can only receive, and cannot be read while the queue is enabled.

/// What a message object does: the low byte of the control word of `can_config`.
inline constexpr WORD can_object_transmit = 1;
inline constexpr WORD can_object_transmit_remote = 2; ///< transmits exactly like 1
inline constexpr WORD can_object_receive = 3;
inline constexpr WORD can_object_receive_remote = 4; ///< receives exactly like 3
inline constexpr int can_object_length_shift = 8;    ///< the high byte of the control word is the data length

inline constexpr short can_length_max = 8; ///< data bytes of a CAN message

// One controller a process, used by one thread. Nothing blocks: messages are taken from the socket, at most 100 at a
// time, only while one of these functions runs. Unless a function says otherwise, it returns 0 or an error code and
// checks in this order:
//   -95   not initialised
//   -9    not started, where messages are sent or read
//   -93   a number is out of range
//   -94   a null pointer
//   -93   the object is of another kind

/// Opens a raw socket on the interface that `param`, a `_can_param`, names; the controller is then stopped, all its
/// message objects are free and its queue is enabled; what it holds from before stays. `board` must be -1.
/// @return 0; -96 when already initialised; -93 for another board; -94 without `param` or its name; -10000 when there
/// is no such interface or no socket
short can_init(int board, void* param);
/// Closes the socket, also that of an attempt that has failed. @return 0 always
short can_exit();

/// Starts the controller. The bit rate is that of the interface, which is configured elsewhere: `baudrate`, an index 0
/// to 8 (1000, 800, 500, 250, 125, 100, 50, 20, 10 kbit/s), is only noted.
/// @return also -8 when already started; -91 for index 1, which has no bit timing, and above 8
short can_start(BYTE baudrate);
/// Stops the controller. @return also -91 while it runs at index 1
short can_reset();

/// Not available from a raw socket: -98 once initialised; what the pointers point to is left as it is.
short can_status(BYTE* status);
short can_busload(BYTE* load, BYTE* status);

/// Sets up a message object for the identifier `cob_id` (0 to 2047). `control` is the kind of object and, in its high
/// byte, a data length of 0 to 8: 0x0803 receives. Messages that wait in the socket are taken first, 100 at most, so
/// that the object gets newer ones.
short can_config(short object, uint32_t cob_id, WORD control);
/// Frees a message object. @return 0, or -93 for a number that is none
short can_delete(short object);

/// Sends `length` bytes with the identifier of the transmit object; null `data` stands for the object's own bytes.
/// @return also -20 when the interface does not take the message; it may do so later
short can_transmit(short object, short length, const BYTE* data);
/// Not available: -98 for transmit objects, -93 for others.
short can_update(short object, short length, const BYTE* data);
/// The number of messages that an object of kind 1 could not send; 0 for others, and while nothing can be sent.
short can_busy(short object);

/// Reads what a receive object has received last; `data` has room for eight bytes. When it had received more than one
/// message, the state's `message_lost` is set.
/// @return also -30 when it has received nothing since the last read
short can_receive(short object, short* length, BYTE* data);
/// The same, and the identifier of the object through `cob_id`, which may not be null.
short can_receive_id(short object, short* length, BYTE* data, uint32_t* cob_id);
/// 1 when a receive object has something to read, else 0.
short can_data(short object);

// The queue takes the messages that no message object receives. It holds 16382; each one more drops the oldest.

/// Takes the oldest message out of the queue; `data` has room for eight bytes. @return also -30 when it is empty
short can_queue_get_message(uint32_t* cob_id, short* length, BYTE* data);
short can_queue_enable();  ///< empties the queue when it was disabled; 0 always
short can_queue_disable(); ///< messages without an object are dropped from now on; 0 always
short can_queue_empty();   ///< 1 when the queue is empty, else 0
short can_queue_clear();   ///< -30 when it was empty already
/// What went wrong with the queue last, once: -40 after it has dropped messages, -30 when it was read while empty, or
/// 0, also when it has been read with success since.
short can_queue_status();

/// Sets the one timer to so many milliseconds from now. @return 0
short can_start_timer(WORD milliseconds);
/// 1 when the timer has run out, else 0.
short can_is_timeout();

const char* can_hardware(); ///< interface="can0", family=29, type=3, protocol=1
const char* can_software(); ///< the driver, in one line
const char* can_version();  ///< this module and its date

// For the controller itself, open to its tests and benchmarks.

/// Reads one message if one is waiting. @return 1 when `frame` is filled, else 0
short can_read_socket(can_frame* frame);
/// Takes at most `max` messages from the socket, all that are waiting when `max` is 0, to their objects or the queue.
/// @return how many; 0 when not initialised
int can_read_queue(int max);
