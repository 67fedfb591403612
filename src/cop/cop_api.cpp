// The CANopen master: start and end of the CAN controller, single messages, and the queue of received messages.
// SPDX-License-Identifier: MIT
#include "cop/cop_api.h"

#include "cop/can_ctrl.h"
#include "cop/cop_internal.h"

#include <algorithm>

#include <unistd.h>

// How long cop_request waits for its message, in milliseconds, by the index of the bit rate.
static constexpr WORD cop_request_timeout[] = { 20, 20, 20, 20, 20, 20, 50, 100, 200 };
static constexpr useconds_t cop_reset_pause = 100000; // microseconds

static BYTE cop_baudrate = 7; // index of the last successful start
int32_t cop_error = 0;
BYTE cop_buffer[8];

static int32_t cop_start(BYTE baudrate)
{
    const short error = can_start(baudrate);
    if (error == ERR_NO_ERROR)
        cop_baudrate = baudrate;
    else
        can_reset();
    return error;
}

int32_t cop_init(int board, void* param, BYTE baudrate)
{
    can_exit();
    cop_error = can_init(board, param);
    if (cop_error == ERR_NO_ERROR)
        cop_error = cop_start(baudrate);
    if (cop_error != ERR_NO_ERROR)
        can_exit();
    return cop_error;
}

int32_t cop_exit()
{
    return cop_error = can_exit();
}

int32_t cop_reset(BYTE baudrate)
{
    cop_error = can_reset();
    if (cop_error != ERR_NO_ERROR)
        return cop_error;
    usleep(cop_reset_pause);
    return cop_error = cop_start(baudrate);
}

int32_t cop_transmit(uint32_t cob_id, short length, const BYTE* data)
{
    cop_error = can_config(cop_transmit_object, cob_id, can_object_transmit);
    if (cop_error == ERR_NO_ERROR)
        cop_error = can_transmit(cop_transmit_object, length, data);
    can_delete(cop_transmit_object);
    return cop_error;
}

/// Waits until the receive object has a message or the time has passed.
static int32_t cop_await(short* length, BYTE* data)
{
    can_start_timer(cop_request_timeout[cop_baudrate]);
    while (true) {
        const short error = can_receive(cop_receive_object, length, data);
        if (error != ERR_RECEIVER_EMPTY)
            return error;
        if (can_is_timeout() != 0)
            return ERR_TIMEOUT;
    }
}

int32_t cop_request(uint32_t cob_id, short* length, BYTE* data)
{
    // Kept: no remote frame is sent; the message arrives only if the node sends it by itself.
    // can_config and can_receive check the arguments. The control word has eight bits for the length: without the clamp
    // a length of 264 would be taken as 8.
    const int expected = length != nullptr ? std::clamp<int>(*length, -1, can_length_max + 1) : 0;
    const auto control = static_cast<WORD>(can_object_receive_remote | expected << can_object_length_shift);
    cop_error = can_config(cop_receive_object, cob_id, control);
    if (cop_error == ERR_NO_ERROR)
        cop_error = cop_await(length, data);
    can_delete(cop_receive_object);
    return cop_error;
}

int32_t cop_status(BYTE* status, BYTE* load)
{
    return cop_error = can_busload(load, status);
}

int32_t cop_queue_read(uint32_t* cob_id, short* length, BYTE* data)
{
    return cop_error = can_queue_get_message(cob_id, length, data);
}

int32_t cop_queue_clear()
{
    return cop_error = can_queue_clear();
}

int32_t cop_queue_status(BYTE*, BYTE*)
{
    return cop_error = can_queue_status();
}

const char* cop_hardware()
{
    return can_hardware();
}

const char* cop_software()
{
    return can_software();
}

const char* cop_version()
{
    return "Velmora CANopen master, cop_api, 2026-11-21";
}
