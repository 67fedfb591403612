// The CAN controller of the master: one raw SocketCAN socket, 15 message objects and a queue of received messages.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

struct can_frame;

/// The Linux network interface to use and how its raw socket is opened.
struct _can_param {
    const char* ifname; ///< name of the network interface; its first 16 characters are used
    int family;         ///< protocol family, 29 (PF_CAN)
    int type;           ///< socket type, 3 (SOCK_RAW)
    int protocol;       ///< protocol, 1 (CAN_RAW)
};

/// The state of the controller: all bits, or each by its name.
union CAN_STATE {
    BYTE byte;
    struct {
        BYTE queue_overrun : 1;    ///< the queue has dropped messages; updated when the next one is queued
        BYTE message_lost : 1;     ///< a message object was overwritten before it was read; until the next can_init
        BYTE receiver_empty : 1;   ///< the last read found nothing
        BYTE transmitter_busy : 1; ///< the last message could not be sent
        BYTE bus_error : 1;        ///< never set: a raw socket does not report it
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

// There is one controller per process, for one thread. No function blocks. Messages are taken from the socket only
// while one of these functions runs, at most 100 per call. Unless stated otherwise, a function returns 0 on success and
// checks in this order:
//   ERR_NOT_INITIALIZED   can_init has not succeeded
//   ERR_NOT_STARTED       where messages are sent or read
//   ERR_PARAMETER         a number is out of range
//   ERR_NULL_POINTER      a pointer is null
//   ERR_PARAMETER         the object is of another kind

/// Opens a raw socket on the interface that `param`, a `_can_param`, names. The controller is then stopped, all its
/// message objects are free and its queue is enabled; messages in an enabled queue stay. `board` must be -1.
/// @return 0; ERR_ALREADY_INITIALIZED; ERR_PARAMETER for another board; ERR_NULL_POINTER without `param` or its name;
/// -10000, a code without a name, when the interface or the socket cannot be opened
short can_init(int board, void* param);
/// Closes the socket, also after a failed can_init. @return 0 always
short can_exit();

/// Starts the controller. `baudrate` is an index 0 to 8 (1000, 800, 500, 250, 125, 100, 50, 20, 10 kbit/s); it is only
/// checked, since the bit rate of the interface is configured elsewhere.
/// @return also ERR_ALREADY_STARTED; ERR_BAUDRATE for index 1, which has no bit timing, and above 8
short can_start(BYTE baudrate);
/// Stops the controller. @return also ERR_BAUDRATE while it runs at index 1, which can_start does not allow
short can_reset();

/// Not available from a raw socket: ERR_NOT_SUPPORTED once initialised. Nothing is stored through the pointers.
short can_status(BYTE* status);
short can_busload(BYTE* load, BYTE* status);

/// Sets up a message object for the identifier `cob_id` (0 to 2047). `control` is the kind of object and, in its high
/// byte, a data length of 0 to 8: 0x0803 receives. Messages that wait in the socket are taken first, at most 100, so
/// that the object receives only newer ones.
short can_config(short object, uint32_t cob_id, WORD control);
/// Frees a message object. @return 0, or ERR_PARAMETER for a number outside 0 to 14
short can_delete(short object);

/// Sends `length` bytes with the identifier of the transmit object; null `data` stands for zero bytes.
/// @return also ERR_TRANSMITTER_BUSY when the interface does not accept the message; it may do so later
short can_transmit(short object, short length, const BYTE* data);
/// Not available: ERR_NOT_SUPPORTED for transmit objects, ERR_PARAMETER for others.
short can_update(short object, short length, const BYTE* data);
/// The number of messages that an object of kind 1 could not send since the last one it sent; 0 for other kinds and
/// while the controller is stopped or closed.
short can_busy(short object);

/// Reads the last message of a receive object; `data` has room for eight bytes. Sets `message_lost` in the state when
/// the object has received more than one since the last read.
/// @return also ERR_RECEIVER_EMPTY when it has received none since the last read
short can_receive(short object, short* length, BYTE* data);
/// The same; also stores the identifier of the object in `cob_id`, which must not be null.
short can_receive_id(short object, short* length, BYTE* data, uint32_t* cob_id);
/// 1 when a receive object has a message to read, else 0.
short can_data(short object);

// The queue takes the messages that no message object receives. It holds 16382; each further message drops the oldest.

/// Takes the oldest message out of the queue; `data` has room for eight bytes.
/// @return also ERR_RECEIVER_EMPTY when it is empty
short can_queue_get_message(uint32_t* cob_id, short* length, BYTE* data);
short can_queue_enable();  ///< a queue that was disabled starts empty; 0 always
short can_queue_disable(); ///< messages without an object are dropped from now on; 0 always
short can_queue_empty();   ///< 1 when the queue is empty, else 0
short can_queue_clear();   ///< empties the queue; ERR_RECEIVER_EMPTY when it was empty already
/// Returns and clears the queue's last error: ERR_QUEUE_OVERRUN after it has dropped a message, ERR_RECEIVER_EMPTY
/// after it has been read while empty. Reading a message clears it, too.
short can_queue_status();

/// Starts the timer, of which there is one. @return 0 always
short can_start_timer(WORD milliseconds);
/// 1 when the time of the timer has passed, else 0.
short can_is_timeout();

const char* can_hardware(); ///< interface="can0", family=29, type=3, protocol=1
const char* can_software(); ///< the driver, in one line
const char* can_version();  ///< this module and its date

// Used by the functions above; public for tests and benchmarks.

/// Reads one message from the socket if one is waiting. @return 1 when `frame` is filled, else 0
short can_read_socket(can_frame* frame);
/// Moves at most `max` waiting messages (all when `max` is 0) from the socket to their message objects or the queue.
/// @return the number of messages taken; 0 when not initialised
int can_read_queue(int max);
