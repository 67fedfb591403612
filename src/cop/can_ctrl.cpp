// The CAN controller of the master: one raw SocketCAN socket, 15 message objects and a timer.
// SPDX-License-Identifier: MIT
#include "cop/can_ctrl.h"

#include "cop/can_internal.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include <fcntl.h>
#include <linux/can.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

struct _msg_obj {
    BYTE control;        // 0 free, or one of can_object_...
    uint32_t cob_id;     // 11-bit identifier
    short count;         // messages that could not be sent, or that were received since the last read
    short length;        // of the data
    BYTE data[8];        // of the last message received
    uint32_t time_stamp; // always can_no_time_stamp
};
using MSG_OBJ = _msg_obj;

static constexpr short can_open_failed = -10000;
static constexpr short can_objects = 15;
static constexpr short can_queue_object = 14; // cannot be read while the queue is enabled
static constexpr uint32_t can_identifiers = CAN_SFF_MASK + 1;
static constexpr int can_read_unlimited = 65536;
static constexpr socklen_t can_address_size = 16; // family, interface index and unused bytes
static constexpr BYTE can_state_stopped = 0x80;

// Bit rates in kbit/s by their index. Index 1, 800 kbit/s, has no bit timing.
static constexpr WORD bit_timing[] = { 1000, 0, 500, 250, 125, 100, 50, 20, 10 };

static int fd = -1;           // the socket; may be open without `init` after a failed can_init
static char ifname[IFNAMSIZ]; // network interface; without a terminator when it has 16 characters
static int family = PF_CAN;   // the socket's protocol family, type and protocol
static int type = SOCK_RAW;
static int protocol = CAN_RAW;
static char hardware[256]; // text of can_hardware
static char software[256]; // text of can_software
static int init = 0;       // 1 after a successful can_init
BYTE can_baudrate = 255;
CAN_STATE can_state = { .byte = can_state_stopped };
static uint64_t llUntilStop = 0;           // end of the timer, in microseconds since the epoch
static MSG_OBJ msg_buf[can_objects];       // the message objects
[[maybe_unused]] static BYTE que_load = 0; // messages that the last can_read_queue took, in per cent of its limit

static bool can_is_transmit(const MSG_OBJ& object)
{
    return object.control == can_object_transmit || object.control == can_object_transmit_remote;
}

static bool can_is_receive(const MSG_OBJ& object)
{
    return object.control == can_object_receive || object.control == can_object_receive_remote;
}

static void can_count_up(MSG_OBJ& object)
{
    object.count = static_cast<short>(std::min(object.count + 1, int{ INT16_MAX }));
}

short can_check_started()
{
    if (init == 0)
        return ERR_NOT_INITIALIZED;
    return can_state.b.can_stopped == 0 ? ERR_NO_ERROR : ERR_NOT_STARTED;
}

static bool can_is_between(int value, int first, int last)
{
    return first <= value && value <= last;
}

/// Opens and binds the socket. It stays open when it cannot be bound.
static bool can_open_socket()
{
    fd = socket(family, type, protocol);
    if (!can_is_between(fd, 0, FD_SETSIZE - 1))
        return false;
    // When no other node acknowledges, the send buffer fills up; sending must then fail and not block.
    if (fcntl(fd, F_SETFL, O_NONBLOCK) != 0)
        return false;

    ifreq request = {};
    std::memcpy(request.ifr_name, ifname, sizeof ifname);
    request.ifr_ifindex = -1; // stays when there is no such interface; binding to 0 would mean all interfaces
    ioctl(fd, SIOCGIFINDEX, &request);

    sockaddr_can address = {};
    address.can_family = static_cast<sa_family_t>(family);
    address.can_ifindex = request.ifr_ifindex;
    return bind(fd, reinterpret_cast<const sockaddr*>(&address), can_address_size) == 0;
}

short can_init(int board, void* param)
{
    if (init != 0)
        return ERR_ALREADY_INITIALIZED;
    if (board != -1)
        return ERR_PARAMETER;
    const auto* interface = static_cast<const _can_param*>(param);
    if (interface == nullptr || interface->ifname == nullptr)
        return ERR_NULL_POINTER;

    // Kept: the first 16 characters are used and shown. The kernel compares 15 of them, so that a longer name finds the
    // interface that its first 15 characters name.
    std::memset(ifname, 0, sizeof ifname);
    std::memcpy(ifname, interface->ifname, strnlen(interface->ifname, sizeof ifname));
    family = interface->family;
    type = interface->type;
    protocol = interface->protocol;
    // Kept: a code that has no name and no text of its own. The socket stays open until can_exit.
    if (!can_open_socket())
        return can_open_failed;

    for (MSG_OBJ& object : msg_buf)
        object.control = 0;
    can_queue_enable(); // Kept: a queue that is enabled already keeps its messages; they can be read after the start
    can_state.byte = can_state_stopped;
    init = 1;
    return ERR_NO_ERROR;
}

short can_exit()
{
    if (fd >= 0)
        close(fd);
    fd = -1;
    can_state.b.can_stopped = 1;
    std::memset(ifname, 0, sizeof ifname);
    family = PF_CAN;
    type = SOCK_RAW;
    protocol = CAN_RAW;
    init = 0;
    return ERR_NO_ERROR;
}

short can_start(BYTE baudrate)
{
    if (init == 0)
        return ERR_NOT_INITIALIZED;
    if (can_state.b.can_stopped == 0)
        return ERR_ALREADY_STARTED;
    if (baudrate >= std::size(bit_timing) || bit_timing[baudrate] == 0)
        return ERR_BAUDRATE;
    can_baudrate = baudrate;
    can_state.b.can_stopped = 0;
    return ERR_NO_ERROR;
}

short can_reset()
{
    if (init == 0)
        return ERR_NOT_INITIALIZED;
    // Kept: refuses index 1, with which can_start never starts: compatible behaviour.
    if (can_state.b.can_stopped == 0 && can_baudrate == 1)
        return ERR_BAUDRATE;
    can_state.b.can_stopped = 1;
    return ERR_NO_ERROR;
}

short can_status(BYTE*)
{
    return init != 0 ? ERR_NOT_SUPPORTED : ERR_NOT_INITIALIZED;
}

short can_busload(BYTE*, BYTE*)
{
    return init != 0 ? ERR_NOT_SUPPORTED : ERR_NOT_INITIALIZED;
}

short can_config(short object, uint32_t cob_id, WORD control)
{
    if (init == 0)
        return ERR_NOT_INITIALIZED;
    const auto mode = static_cast<BYTE>(control);
    const short length = static_cast<short>(control >> can_object_length_shift);
    if (!can_is_between(object, 0, can_objects - 1) || cob_id >= can_identifiers || length > can_length_max)
        return ERR_PARAMETER;
    MSG_OBJ configured = { mode, cob_id, 0, length, {}, can_no_time_stamp };
    if (!can_is_transmit(configured) && !can_is_receive(configured))
        return ERR_PARAMETER;
    if (can_is_transmit(configured) && object == can_queue_object)
        return ERR_PARAMETER;
    can_read_queue(can_read_limit);
    msg_buf[object] = configured;
    return ERR_NO_ERROR;
}

short can_delete(short object)
{
    if (!can_is_between(object, 0, can_objects - 1))
        return ERR_PARAMETER;
    msg_buf[object].control = 0;
    msg_buf[object].count = 0;
    return ERR_NO_ERROR;
}

static short can_check_transmit(short object, short length)
{
    const short error = can_check_started();
    if (error != ERR_NO_ERROR)
        return error;
    const bool inRange = can_is_between(object, 0, can_queue_object - 1) && can_is_between(length, 0, can_length_max);
    return inRange && can_is_transmit(msg_buf[object]) ? ERR_NO_ERROR : ERR_PARAMETER;
}

short can_transmit(short object, short length, const BYTE* data)
{
    const short error = can_check_transmit(object, length);
    if (error != ERR_NO_ERROR)
        return error;
    MSG_OBJ& message = msg_buf[object];
    message.length = length;
    can_count_up(message);
    message.time_stamp = can_no_time_stamp;

    can_frame frame = {};
    frame.can_id = message.cob_id;
    frame.len = static_cast<BYTE>(length);
    std::memcpy(frame.data, data != nullptr ? data : message.data, static_cast<std::size_t>(length));
    const bool sent = write(fd, &frame, sizeof frame) == sizeof frame;
    can_state.b.transmitter_busy = sent ? 0 : 1;
    if (!sent)
        return ERR_TRANSMITTER_BUSY;
    message.count = 0;
    return ERR_NO_ERROR;
}

short can_update(short object, short length, const BYTE*)
{
    const short error = can_check_transmit(object, length);
    return error != ERR_NO_ERROR ? error : ERR_NOT_SUPPORTED;
}

short can_busy(short object)
{
    const bool readable = can_check_started() == ERR_NO_ERROR && can_is_between(object, 0, can_queue_object - 1);
    return readable && msg_buf[object].control == can_object_transmit ? msg_buf[object].count : 0;
}

/// True for a receive object; object 14 can be read only while the queue is disabled.
static bool can_is_readable(short object)
{
    return can_is_between(object, 0, can_objects - 1) && !(object == can_queue_object && can_queue_is_enabled()) &&
           can_is_receive(msg_buf[object]);
}

short can_receive(short object, short* length, BYTE* data)
{
    uint32_t cob_id = 0;
    return can_receive_id(object, length, data, &cob_id);
}

short can_receive_id(short object, short* length, BYTE* data, uint32_t* cob_id)
{
    const short error = can_check_started();
    if (error != ERR_NO_ERROR)
        return error;
    if (!can_is_between(object, 0, can_objects - 1))
        return ERR_PARAMETER;
    if (length == nullptr || data == nullptr || cob_id == nullptr)
        return ERR_NULL_POINTER;
    if (!can_is_readable(object))
        return ERR_PARAMETER;
    can_read_queue(can_read_limit);
    MSG_OBJ& message = msg_buf[object];
    can_state.b.receiver_empty = message.count == 0 ? 1 : 0;
    if (message.count == 0)
        return ERR_RECEIVER_EMPTY;
    *length = message.length;
    std::memcpy(data, message.data, static_cast<std::size_t>(message.length));
    *cob_id = message.cob_id;
    if (message.count > 1)
        can_state.b.message_lost = 1; // Kept: stays set until can_init, also after good reads
    message.count = 0;
    return ERR_NO_ERROR;
}

short can_data(short object)
{
    if (can_check_started() != ERR_NO_ERROR || !can_is_readable(object))
        return 0;
    can_read_queue(can_read_limit);
    return msg_buf[object].count > 0 ? 1 : 0;
}

/// Wall-clock time. Kept: when the clock is set back, a time-out takes that much longer.
static uint64_t can_microseconds()
{
    timeval now = {};
    gettimeofday(&now, nullptr);
    return static_cast<uint64_t>(now.tv_sec) * 1000000 + static_cast<uint64_t>(now.tv_usec);
}

short can_start_timer(WORD milliseconds)
{
    llUntilStop = can_microseconds() + uint64_t{ milliseconds } * 1000;
    return ERR_NO_ERROR;
}

short can_is_timeout()
{
    return can_microseconds() >= llUntilStop ? 1 : 0;
}

const char* can_hardware()
{
    std::snprintf(hardware, sizeof hardware, "interface=\"%.*s\", family=%d, type=%d, protocol=%d",
                  static_cast<int>(sizeof ifname), ifname, family, type, protocol);
    return hardware;
}

const char* can_software()
{
    std::snprintf(software, sizeof software, "SocketCAN, the CAN drivers of the Linux kernel");
    return software;
}

const char* can_version()
{
    return "Velmora CANopen master, can_ctrl, 2026-11-21";
}

short can_read_socket(can_frame* frame)
{
    if (init == 0)
        return 0;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(fd, &readable);
    timeval immediately = {};
    return select(fd + 1, &readable, nullptr, nullptr, &immediately) > 0 && FD_ISSET(fd, &readable) &&
                   read(fd, frame, sizeof *frame) == sizeof *frame
               ? 1
               : 0;
}

/// Stores a message in the first receive object for its identifier. @return false when there is none
static bool can_store(uint32_t cob_id, short length, const BYTE* data)
{
    MSG_OBJ* const last = msg_buf + can_queue_object;
    MSG_OBJ* const object = std::find_if(msg_buf, last, [cob_id](const MSG_OBJ& candidate) {
        return can_is_receive(candidate) && candidate.cob_id == cob_id;
    });
    if (object == last)
        return false;
    // Kept: the newest message replaces one that has not been read.
    object->length = length;
    std::memcpy(object->data, data, static_cast<std::size_t>(length));
    can_count_up(*object);
    object->time_stamp = can_no_time_stamp;
    return true;
}

int can_read_queue(int max)
{
    if (init == 0)
        return 0;
    int frames = 0;
    can_frame frame = {};
    while ((max == 0 || frames < max) && can_read_socket(&frame) != 0) {
        ++frames;
        if ((frame.can_id & (CAN_EFF_FLAG | CAN_ERR_FLAG)) != 0)
            continue;
        // Kept: a remote frame is received like a data frame; its flag is dropped.
        const uint32_t cob_id = frame.can_id & CAN_SFF_MASK;
        const short length = std::min<short>(frame.len, can_length_max);
        if (!can_store(cob_id, length, frame.data) && can_queue_is_enabled())
            can_queue_put(cob_id, length, frame.data);
    }
    que_load = static_cast<BYTE>(int64_t{ frames } * 100 / (max != 0 ? max : can_read_unlimited));
    return frames;
}
