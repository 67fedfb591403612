// The SDO client of the CANopen master: expedited and segmented transfers to and from a node's object dictionary.
// SPDX-License-Identifier: MIT
#include "cop/cop_sdo.h"

#include "base/NodeId.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"
#include "cop/cop_internal.h"

#include <algorithm>
#include <iterator>

// The first byte of a message (CiA 301, SDO protocols).
static constexpr BYTE sdo_download_expedited = 0x23; // initiate, with the data; number of unused bytes in bits 2 and 3
static constexpr BYTE sdo_download_segmented = 0x21; // initiate, with the size in bytes 4 to 7
static constexpr BYTE sdo_upload = 0x40;             // initiate
static constexpr BYTE sdo_upload_next = 0x60;        // request of a segment, with the toggle
static constexpr BYTE sdo_abort = 0x80;
static constexpr BYTE sdo_toggle = 0x10;
static constexpr BYTE sdo_last = 0x01;            // no more segments
static constexpr BYTE sdo_expedited = 0x02;       // upload: the answer has the data in bytes 4 to 7
static constexpr BYTE sdo_size_indicated = 0x01;  // upload: the answer gives the number of its unused bytes
static constexpr BYTE sdo_command_mask = 0xE0;    // the command specifier
static constexpr BYTE sdo_initiate_unused = 0x0C; // number of unused bytes in an expedited answer
static constexpr BYTE sdo_segment_unused = 0x0E;  // number of unused bytes in a segment
static constexpr int sdo_initiate_unused_shift = 2;
static constexpr int sdo_segment_unused_shift = 1;

static constexpr int sdo_initiate_data = 4;           // bytes of data in an expedited message
static constexpr int sdo_segment_data = 7;            // bytes of data in a segment
static constexpr uint32_t sdo_request_cob_id = 0x600; // plus the node-id
static constexpr uint32_t sdo_answer_cob_id = 0x580;  // plus the node-id

static WORD cop_timeout = 500;  // milliseconds, for each awaited answer
static bool (*sdo_ended)();     // whether to end a wait early; may be null
static BYTE sdo_multiplexor[3]; // index and sub-index of the transfer, as in bytes 1 to 3 of its messages
static bool sdo_aborted;        // the node has aborted the transfer
static uint32_t sdo_abort_code; // with this code

/// The answer that one phase of a transfer expects.
struct sdo_phase {
    BYTE abort_mask; // abort of the server: byte 0 & abort_mask == sdo_abort
    BYTE reply_mask; // expected answer: byte 0 & reply_mask == reply
    BYTE reply;
    bool multiplexed; // ignore answers with another index or sub-index
    bool toggled;     // bit 4 must repeat the toggle of the request
};
// Kept: all bits of the answer to a download initiate must match; in the other phases only the command is compared, so
// that unused bits may have any value.
static constexpr sdo_phase sdo_download_initiate = { 0xFF, 0xFF, 0x60, true, false };
static constexpr sdo_phase sdo_download_segment = { sdo_command_mask, sdo_command_mask, 0x20, false, true };
static constexpr sdo_phase sdo_upload_initiate = { sdo_command_mask, sdo_command_mask, 0x40, true, false };
static constexpr sdo_phase sdo_upload_segment = { sdo_command_mask, sdo_command_mask, 0x00, false, true };

/// Stores the low `count` bytes of `value`, least significant byte first.
static void sdo_put_le(BYTE* bytes, int count, uint32_t value)
{
    for (int n = 0; n < count; ++n)
        bytes[n] = static_cast<BYTE>(value >> (8 * n));
}

/// The number in `count` bytes, least significant byte first.
static uint32_t sdo_get_le(const BYTE* bytes, int count)
{
    uint32_t value = 0;
    for (int n = 0; n < count; ++n)
        value |= uint32_t{ bytes[n] } << (8 * n);
    return value;
}

/// Sets up the message objects for a transfer with a node and frees them at its end. `cop_error` is the result of the
/// set-up.
class sdo_objects
{
public:
    sdo_objects(BYTE node, WORD index, BYTE subindex)
    {
        sdo_put_le(sdo_multiplexor, 2, index);
        sdo_multiplexor[2] = subindex;
        cop_error = can_config(cop_transmit_object, sdo_request_cob_id + node, can_object_transmit);
        if (cop_error == ERR_NO_ERROR)
            cop_error = can_config(cop_receive_object, sdo_answer_cob_id + node, can_object_receive);
    }
    ~sdo_objects()
    {
        can_delete(cop_transmit_object);
        can_delete(cop_receive_object);
    }
    sdo_objects(const sdo_objects&) = delete;
    sdo_objects& operator=(const sdo_objects&) = delete;
};

/// Fills the buffer with a message: its first byte, then zeroes.
static void sdo_build(int command)
{
    std::fill(std::begin(cop_buffer), std::end(cop_buffer), BYTE{ 0 });
    cop_buffer[0] = static_cast<BYTE>(command);
}

/// The same with index and sub-index.
static void sdo_build_multiplexed(int command)
{
    sdo_build(command);
    std::copy(std::begin(sdo_multiplexor), std::end(sdo_multiplexor), cop_buffer + 1);
}

/// Sends an abort to the server; `error` becomes the result of the transfer. @return false always
static bool sdo_fail(uint32_t abort_code, int32_t error)
{
    sdo_build_multiplexed(sdo_abort);
    sdo_put_le(cop_buffer + 4, 4, abort_code);
    can_transmit(cop_transmit_object, can_length_max, cop_buffer);
    cop_error = error;
    return false;
}

/// True while the time has not passed, and nobody wants the wait to end; otherwise aborts the transfer.
static bool sdo_in_time()
{
    const bool ended = can_is_timeout() != 0 || (sdo_ended != nullptr && sdo_ended());
    return !ended || sdo_fail(ABORT_TIMEOUT, ERR_TIMEOUT);
}

/// Checks an answer. @return true when it is the expected one; false when the transfer has ended
static bool sdo_accept(const sdo_phase& phase, BYTE toggle)
{
    if ((cop_buffer[0] & phase.abort_mask) == sdo_abort) {
        sdo_aborted = true;
        sdo_abort_code = sdo_get_le(cop_buffer + 4, 4);
        // Kept: the abort code as it is; a node that sends 0 or a code above 0x7FFFFFFF gives 0 or a negative result.
        cop_error = static_cast<int32_t>(sdo_abort_code);
        return false;
    }
    if ((cop_buffer[0] & phase.reply_mask) != phase.reply)
        return sdo_fail(ABORT_COMMAND_SPECIFIER, ERR_FORMAT);
    if (phase.toggled && (cop_buffer[0] & sdo_toggle) != toggle)
        return sdo_fail(ABORT_TOGGLE_BIT, ERR_FORMAT);
    return true;
}

/// Waits for the expected answer. @return true when it is in cop_buffer, with a cop_error of 0; false when the transfer
/// has ended: cop_error is then the server's abort code, or an error code after an abort has been sent
static bool sdo_await(const sdo_phase& phase, BYTE toggle)
{
    can_start_timer(cop_timeout);
    do {
        short length = 0;
        cop_error = can_receive(cop_receive_object, &length, cop_buffer);
        if (cop_error == ERR_RECEIVER_EMPTY)
            continue; // checks the time first
        if (cop_error != ERR_NO_ERROR)
            return sdo_fail(ABORT_GENERAL, cop_error);
        if (length != can_length_max)
            return sdo_fail(ABORT_GENERAL, ERR_LENGTH);
        const bool ours = std::equal(std::begin(sdo_multiplexor), std::end(sdo_multiplexor), cop_buffer + 1);
        if (ours || !phase.multiplexed)
            return sdo_accept(phase, toggle);
    } while (sdo_in_time());
    return false;
}

/// Sends the message in cop_buffer, then as sdo_await. If it cannot be sent, the transfer ends without an abort.
static bool sdo_exchange(const sdo_phase& phase, BYTE toggle = 0)
{
    cop_error = can_transmit(cop_transmit_object, can_length_max, cop_buffer);
    return cop_error == ERR_NO_ERROR && sdo_await(phase, toggle);
}

static void sdo_send_expedited(short length, const BYTE* data)
{
    // Kept: a length of 0 sends 0x33 and four zero bytes: four unused bytes do not fit into the two bits that count
    // them.
    sdo_build_multiplexed(sdo_download_expedited | (sdo_initiate_data - length) * (1 << sdo_initiate_unused_shift));
    std::copy_n(data, length, cop_buffer + 4);
    sdo_exchange(sdo_download_initiate);
}

static void sdo_send_segmented(short length, const BYTE* data)
{
    sdo_build_multiplexed(sdo_download_segmented);
    sdo_put_le(cop_buffer + 4, 2, static_cast<WORD>(length));
    if (!sdo_exchange(sdo_download_initiate))
        return;
    BYTE toggle = 0;
    for (int position = 0; position < length; position += sdo_segment_data) {
        // Kept: checked again: a timely answer may leave no time for the next segment.
        if (!sdo_in_time())
            return;
        const int count = std::min(length - position, sdo_segment_data);
        const BYTE last = position + count == length ? sdo_last : 0;
        sdo_build((sdo_segment_data - count) << sdo_segment_unused_shift | toggle | last);
        std::copy_n(data + position, count, cop_buffer + 1);
        if (!sdo_exchange(sdo_download_segment, toggle))
            return;
        toggle ^= sdo_toggle;
    }
}

/// The buffer of an upload and the number of bytes received; those that do not fit are only counted.
struct sdo_received {
    BYTE* data;
    int room;
    int64_t count = 0;

    void append(const BYTE* bytes, int number)
    {
        if (count < room)
            std::copy_n(bytes, std::min<int64_t>(number, room - count), data + count);
        count += number;
    }
};

static void sdo_receive_segments(sdo_received& received)
{
    BYTE toggle = 0;
    BYTE header = 0;
    do {
        sdo_build(sdo_upload_next | toggle);
        if (!sdo_exchange(sdo_upload_segment, toggle)) {
            received.count = 0; // an abort code of 0 reads as success
            return;
        }
        header = cop_buffer[0];
        received.append(cop_buffer + 1, sdo_segment_data - ((header & sdo_segment_unused) >> sdo_segment_unused_shift));
        toggle ^= sdo_toggle;
    } while ((header & sdo_last) == 0);
    if (received.count < received.room)
        received.data[received.count] = 0;
}

/// Reads an entry into `received`. Kept: the size that an answer announces for segments is not used; the last segment
/// ends the data.
static int32_t sdo_receive(BYTE node, WORD index, BYTE subindex, sdo_received& received)
{
    const sdo_objects guard(node, index, subindex);
    if (cop_error != ERR_NO_ERROR)
        return cop_error;
    sdo_build_multiplexed(sdo_upload);
    if (!sdo_exchange(sdo_upload_initiate))
        return cop_error;
    const BYTE header = cop_buffer[0];
    if ((header & sdo_expedited) == 0)
        sdo_receive_segments(received);
    else if ((header & sdo_size_indicated) == 0)
        received.append(cop_buffer + 4, sdo_initiate_data);
    else
        received.append(cop_buffer + 4,
                        sdo_initiate_data - ((header & sdo_initiate_unused) >> sdo_initiate_unused_shift));
    return cop_error;
}

/// Checks the arguments of a transfer that begins; `complete` means that no pointer is null.
/// @return `cop_error`, which it sets
static int32_t sdo_check(BYTE node, bool complete)
{
    sdo_aborted = false;
    if (node == 0 || node > highestNodeId)
        return cop_error = ERR_NODE_ID;
    return cop_error = complete ? ERR_NO_ERROR : ERR_FATAL;
}

int32_t sdo_write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data)
{
    if (sdo_check(node, data != nullptr) != ERR_NO_ERROR)
        return cop_error;
    const sdo_objects guard(node, index, subindex);
    if (cop_error != ERR_NO_ERROR)
        return cop_error;
    if (length <= sdo_initiate_data)
        sdo_send_expedited(length, data);
    else
        sdo_send_segmented(length, data);
    return cop_error;
}

int32_t sdo_read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size)
{
    if (length != nullptr)
        *length = 0;
    if (sdo_check(node, length != nullptr && data != nullptr) != ERR_NO_ERROR)
        return cop_error;
    sdo_received received = { data, std::max<int>(size, 0) };
    if (sdo_receive(node, index, subindex, received) == ERR_NO_ERROR)
        *length = static_cast<short>(std::min<int64_t>(received.count, received.room));
    return cop_error;
}

bool sdo_last_abort(uint32_t* code)
{
    if (sdo_aborted && code != nullptr)
        *code = sdo_abort_code;
    return sdo_aborted;
}

WORD sdo_timeout(WORD milliseconds)
{
    const WORD previous = cop_timeout;
    cop_timeout = milliseconds;
    return previous;
}

void sdo_end_when(bool (*ended)())
{
    sdo_ended = ended;
}

static int32_t sdo_write_number(BYTE node, WORD index, BYTE subindex, short size, uint32_t value)
{
    BYTE data[4];
    sdo_put_le(data, size, value);
    return sdo_write(node, index, subindex, size, data);
}

int32_t sdo_write_8bit(BYTE node, WORD index, BYTE subindex, uint8_t value)
{
    return sdo_write_number(node, index, subindex, 1, value);
}

int32_t sdo_write_16bit(BYTE node, WORD index, BYTE subindex, uint16_t value)
{
    return sdo_write_number(node, index, subindex, 2, value);
}

int32_t sdo_write_32bit(BYTE node, WORD index, BYTE subindex, uint32_t value)
{
    return sdo_write_number(node, index, subindex, 4, value);
}

/// Reads an entry that must have `size` bytes into `data`, which has room for them.
static int32_t sdo_read_exactly(BYTE node, WORD index, BYTE subindex, BYTE* data, int size)
{
    if (sdo_check(node, data != nullptr) != ERR_NO_ERROR)
        return cop_error;
    sdo_received received = { data, size };
    if (sdo_receive(node, index, subindex, received) == ERR_NO_ERROR && received.count != size)
        cop_error = ERR_LENGTH;
    return cop_error;
}

int32_t sdo_read_8bit(BYTE node, WORD index, BYTE subindex, uint8_t* value)
{
    return sdo_read_exactly(node, index, subindex, value, 1);
}

int32_t sdo_read_16bit(BYTE node, WORD index, BYTE subindex, uint16_t* value)
{
    if (value == nullptr) {
        sdo_aborted = false;
        return cop_error = ERR_FATAL;
    }
    BYTE data[2] = {};
    if (sdo_read_exactly(node, index, subindex, data, 2) == ERR_NO_ERROR)
        *value = static_cast<uint16_t>(sdo_get_le(data, 2));
    return cop_error;
}

int32_t sdo_read_32bit(BYTE node, WORD index, BYTE subindex, uint32_t* value)
{
    if (value == nullptr) {
        sdo_aborted = false;
        return cop_error = ERR_FATAL;
    }
    BYTE data[4] = {};
    if (sdo_read_exactly(node, index, subindex, data, 4) == ERR_NO_ERROR)
        *value = sdo_get_le(data, 4);
    return cop_error;
}

const char* sdo_version()
{
    return "Velmora CANopen master, cop_sdo, 2026-11-21";
}
