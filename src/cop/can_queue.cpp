// The queue of the CAN controller: it takes the received messages that no message object takes.
// SPDX-License-Identifier: MIT
#include "cop/can_ctrl.h"
#include "cop/can_internal.h"

#include <cstring>

struct _can_que {
    uint32_t cob_id;
    short length;
    BYTE data[8];
    uint32_t time_stamp; // always can_no_time_stamp
};
using MSG_QUE = _can_que;

static constexpr int can_queue_size = 16384; // places of the ring; it holds two messages less

static MSG_QUE msg_que[can_queue_size];  // the queue, a ring from tail to head
static int head = 0;                     // where the next message is put
static int tail = 0;                     // the oldest message; the queue is empty when it equals head
static short queue_error = ERR_NO_ERROR; // last error of the queue, until can_queue_status returns it
static bool queue_enabled = false;

bool can_queue_is_enabled()
{
    return queue_enabled;
}

static int can_queue_next(int place)
{
    return (place + 1) % can_queue_size;
}

void can_queue_put(uint32_t cob_id, short length, const BYTE* data)
{
    MSG_QUE& message = msg_que[head];
    message = { cob_id, length, {}, can_no_time_stamp };
    std::memcpy(message.data, data, static_cast<std::size_t>(length));
    head = can_queue_next(head);
    // Kept: drops the oldest message while one place is still free, so that 16384 places hold 16382 messages.
    if (can_queue_next(head) == tail) {
        tail = can_queue_next(tail);
        queue_error = ERR_QUEUE_OVERRUN;
    }
    can_state.b.queue_overrun = queue_error == ERR_QUEUE_OVERRUN ? 1 : 0;
}

short can_queue_get_message(uint32_t* cob_id, short* length, BYTE* data)
{
    const short error = can_check_started();
    if (error != ERR_NO_ERROR)
        return error;
    if (cob_id == nullptr || length == nullptr || data == nullptr)
        return ERR_NULL_POINTER;
    can_read_queue(can_read_limit);
    queue_error = head == tail ? ERR_RECEIVER_EMPTY : ERR_NO_ERROR;
    if (queue_error != ERR_NO_ERROR)
        return queue_error;
    const MSG_QUE& message = msg_que[tail];
    *cob_id = message.cob_id;
    *length = message.length;
    std::memcpy(data, message.data, static_cast<std::size_t>(message.length));
    tail = can_queue_next(tail);
    return ERR_NO_ERROR;
}

short can_queue_enable()
{
    if (!queue_enabled) {
        head = tail;
        queue_error = ERR_NO_ERROR;
        queue_enabled = true;
    }
    return ERR_NO_ERROR;
}

short can_queue_disable()
{
    queue_enabled = false;
    return ERR_NO_ERROR;
}

short can_queue_empty()
{
    return head == tail ? 1 : 0;
}

short can_queue_clear()
{
    if (head == tail)
        return ERR_RECEIVER_EMPTY;
    head = tail;
    return ERR_NO_ERROR;
}

short can_queue_status()
{
    const short error = queue_error;
    queue_error = ERR_NO_ERROR;
    return error;
}
