// Client of an ASCII gateway over one TCP connection: each command is one line, answered by one line.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_open.h"

#include "tcp/base64.h"
#include "tcp/tcp_eval.h"

#include <algorithm>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <type_traits>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

static constexpr int32_t top_connect_failed = -20000;
static constexpr int32_t top_send_failed = -793;
static constexpr int top_line_size = 1024; // with the terminating zero
static constexpr int top_group_bytes = 3;
static constexpr int top_group_characters = 4;
static constexpr _top_settings top_default_settings = { 1, 1, 255 };

static int top_client = -1;                   // the connected socket, always below FD_SETSIZE; -1 when not connected
static long top_sequence = 1;                 // number of the next command; never reset
static char top_buffer[top_line_size];        // the command, overwritten by the answer
static int32_t top_line_milliseconds = 66000; // for which a line is awaited
static top_answer top_answered = top_answer_none;
static bool top_closed = false; // the peer closed the connection while the last line was awaited
static _top_settings top_settings = top_default_settings; // stored, but no command carries them

/// Starts a command in the line buffer: the next sequence number in brackets, a blank, then the text.
[[gnu::format(printf, 1, 2)]] static void top_format(const char* format, ...)
{
    const int length = std::snprintf(top_buffer, sizeof top_buffer, "[%li] ", top_sequence);
    top_sequence = static_cast<long>(static_cast<unsigned long>(top_sequence) + 1);

    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(top_buffer + length, sizeof top_buffer - static_cast<std::size_t>(length), format, arguments);
    va_end(arguments);
}

/// Appends to the command as much of the text as fits.
static void top_append(const char* text)
{
    const std::size_t length = std::strlen(top_buffer);
    const std::size_t appended = std::min(std::strlen(text), sizeof top_buffer - 1 - length);
    std::memcpy(top_buffer + length, text, appended);
    top_buffer[length + appended] = '\0';
}

/// Appends data in base64. Kept: data that do not fit into the line are cut off without notice, and the line end, too.
static void top_append_base64(short length, const BYTE* data)
{
    constexpr int last = top_line_size - 1;
    int position = static_cast<int>(std::strlen(top_buffer));
    for (int offset = 0; offset < length; offset += top_group_bytes) {
        const int group = std::min(top_group_bytes, length - offset);
        const int room = position < last - top_group_characters ? top_group_characters : last - position;
        base64_encode(data + offset, group, top_buffer + std::min(position, last), room);
        position += top_group_characters;
        top_buffer[std::min(position, last)] = '\0';
    }
}

/// The number in brackets at the start of a line as "[%li]" reads it, 0 without one.
static long top_sequence_of(const char* line)
{
    return line[0] == '[' ? std::strtol(line + 1, nullptr, 0) : 0;
}

/// The time of the monotonic clock in milliseconds.
static int64_t top_milliseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{ now.tv_sec } * 1000 + now.tv_nsec / 1000000;
}

/// Reads one response line into `buffer`, at most `size` - 1 characters; the rest is dropped. `buffer` stays unchanged
/// until the first byte arrives and is zero-terminated from then on. One time-out bounds the whole line: `select`
/// stores the remaining time in `rest`, and the deadline ends a line whose bytes never stop.
/// @return the number of characters stored, CR LF included, fewer when the peer closes; 0 after a time-out
static int top_readline(int socket, char* buffer, int size)
{
    top_closed = false;
    int count = 0;
    char byte = '\0';
    timeval rest = { top_line_milliseconds / 1000, top_line_milliseconds % 1000 * 1000L };
    const int64_t deadline = top_milliseconds() + top_line_milliseconds;
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(socket, &readable);

    while (select(socket + 1, &readable, nullptr, nullptr, &rest) > 0) {
        const ssize_t received = recv(socket, &byte, 1, 0);
        if (received == 0) {
            top_closed = true;
            return count;
        }
        // With a permanent error the socket stays readable, so that `select` alone would never report the time-out.
        if (received < 0 && rest.tv_sec == 0 && rest.tv_usec == 0)
            return 0;
        // Kept: after a failed receive the previous byte is stored again. A broken connection fails once and then
        // reports its end, which ends the line.
        if (count + 1 < size) {
            buffer[count++] = byte;
            buffer[count] = '\0';
        }
        if (byte == '\n')
            return count;
        if (top_milliseconds() > deadline)
            return 0;
    }
    return 0;
}

/// Waits for the line with the number; others are late or unsolicited. @return how it came
static top_answer top_await(long sequence)
{
    while (const int count = top_readline(top_client, top_buffer, top_line_size)) {
        if (top_sequence_of(top_buffer) == sequence)
            return top_buffer[count - 1] == '\n' ? top_answer_whole : top_answer_cut;
    }
    return top_closed ? top_answer_closed : top_answer_none;
}

/// Sends the command in the line buffer, waits for its answer and evaluates it with `evaluator(line, out..., &abort)`,
/// or without `abort` when the evaluator does not take it.
/// @return the result of the evaluator, or the abort code that it stored; top_send_failed
template <typename Evaluator, typename... Out>
static int32_t top_exchange(Evaluator evaluator, Out... out)
{
    top_answered = top_answer_none;
    if (send(top_client, top_buffer, std::strlen(top_buffer), 0) < 0)
        return top_send_failed;
    top_answered = top_await(top_sequence_of(top_buffer));

    // Kept: after a time-out, and after a closed connection, the buffer holds the command itself, or the last line with
    // another number. It is evaluated like an answer, so that a read may succeed with a value that no device sent, and
    // there is no ERR_TIMEOUT. The first command after the gateway has closed the connection is still sent.
    if constexpr (std::is_invocable_v<Evaluator, const char*, Out..., uint32_t*>) {
        uint32_t abort = 0;
        const int32_t result = evaluator(top_buffer, out..., &abort);
        return result == ERR_SDO_ABORTED ? static_cast<int32_t>(abort) : result;
    } else {
        return evaluator(top_buffer, out...);
    }
}

int32_t top_init(unsigned long addr, unsigned short port, _top_settings* settings, [[maybe_unused]] BYTE baudrate)
{
    std::signal(SIGPIPE, SIG_IGN);

    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(static_cast<uint32_t>(addr));

    // Kept: an open connection is not closed; without top_exit before, its socket stays open.
    top_client = socket(AF_INET, SOCK_STREAM, 0);
    if (top_client < 0)
        return top_connect_failed;
    // `select` cannot wait for larger descriptors.
    if (top_client >= FD_SETSIZE ||
        connect(top_client, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
        close(top_client);
        top_client = -1;
        return top_connect_failed;
    }
    if (settings != nullptr)
        top_settings = *settings;
    return ERR_NO_ERROR;
}

int32_t top_exit()
{
    if (top_client < 0)
        return ERR_NOT_INITIALIZED;
    close(top_client);
    top_client = -1;
    top_settings = top_default_settings;
    return ERR_NO_ERROR;
}

int32_t top_reset(BYTE baudrate)
{
    top_format("init %u\r\n", baudrate);
    // Kept: any answer is success, also an error; a gateway without this command can be used as well.
    return top_exchange([](const char*) -> int32_t { return ERR_NO_ERROR; });
}

int32_t top_write(BYTE node, WORD index, BYTE subindex, short length, const BYTE* data)
{
    if (length > 0 && data == nullptr)
        return ERR_NULL_POINTER;
    top_format("%u write 0x%X 0x%X d ", node, index, subindex);
    top_append_base64(length, data);
    top_append("\r\n");
    return top_exchange(tcp_eval_sdo_response);
}

/// Whether all that follows the number of a line is base64: groups of four characters, the last one with up to two
/// "="; "=" alone is an empty value.
static bool top_has_base64(const char* line)
{
    const char* text = line + std::strcspn(line, "]");
    text += *text == ']' ? 1 : 0;
    text += std::strspn(text, " \t");
    const char* padding = text;
    while (base64_belongs(*padding))
        ++padding;
    const char* end = padding + std::strspn(padding, "=");
    const bool whole = padding == text || ((end - text) % top_group_characters == 0 && end - padding <= 2);
    return whole && end[std::strspn(end, " \t\r\n")] == '\0';
}

int32_t top_read(BYTE node, WORD index, BYTE subindex, short* length, BYTE* data, short size)
{
    top_format("%u read 0x%X 0x%X d\r\n", node, index, subindex);
    const int32_t result = top_exchange(tcp_eval_sdo_domain, length, data, size);
    // The evaluator takes whatever looks like base64 at the start of an answer, of "OK" as well.
    if (result == ERR_NO_ERROR && top_answered == top_answer_whole && !top_has_base64(top_buffer))
        top_answered = top_answer_odd;
    return result;
}

int32_t top_timeout(WORD timeout, WORD* previous)
{
    if (previous != nullptr)
        *previous = 0;
    top_format("set sdo_timeout %u\r\n", timeout);
    return top_exchange(tcp_eval_response);
}

int32_t top_write_8bit(BYTE node, WORD index, BYTE subindex, uint8_t value)
{
    top_format("%u write 0x%X 0x%X u8 0x%X\r\n", node, index, subindex, value);
    return top_exchange(tcp_eval_sdo_response);
}

int32_t top_read_8bit(BYTE node, WORD index, BYTE subindex, uint8_t* value)
{
    top_format("%u read 0x%X 0x%X u8\r\n", node, index, subindex);
    return top_exchange(tcp_eval_sdo_unsigned8, value);
}

int32_t top_write_16bit(BYTE node, WORD index, BYTE subindex, uint16_t value)
{
    top_format("%u write 0x%X 0x%X u16 0x%X\r\n", node, index, subindex, value);
    return top_exchange(tcp_eval_sdo_response);
}

int32_t top_read_16bit(BYTE node, WORD index, BYTE subindex, uint16_t* value)
{
    top_format("%u read 0x%X 0x%X u16\r\n", node, index, subindex);
    return top_exchange(tcp_eval_sdo_unsigned16, value);
}

int32_t top_write_32bit(BYTE node, WORD index, BYTE subindex, uint32_t value)
{
    top_format("%u write 0x%X 0x%X u32 0x%lX\r\n", node, index, subindex, static_cast<unsigned long>(value));
    return top_exchange(tcp_eval_sdo_response);
}

int32_t top_read_32bit(BYTE node, WORD index, BYTE subindex, uint32_t* value)
{
    top_format("%u read 0x%X 0x%X u32\r\n", node, index, subindex);
    return top_exchange(tcp_eval_sdo_unsigned32, value);
}

static int32_t top_node_command(BYTE node, const char* command)
{
    top_format("%u %s\r\n", node, command);
    return top_exchange(tcp_eval_response);
}

int32_t top_start_remote_node(BYTE node)
{
    return top_node_command(node, "start");
}

int32_t top_stop_remote_node(BYTE node)
{
    return top_node_command(node, "stop");
}

int32_t top_enter_preoperational(BYTE node)
{
    return top_node_command(node, "preoperational");
}

int32_t top_reset_node(BYTE node)
{
    return top_node_command(node, "reset node");
}

int32_t top_reset_communication(BYTE node)
{
    return top_node_command(node, "reset communication");
}

int32_t top_transmit(int32_t cob_id, short length, const BYTE* data)
{
    if (length != 0 && data == nullptr)
        return ERR_NULL_POINTER;
    // Kept: the data follow after the first line end, on a line of their own.
    top_format("send 0x%03lX %i\r\n", static_cast<unsigned long>(static_cast<uint32_t>(cob_id)), length);
    for (short position = 0; position < length; ++position) {
        char piece[sizeof " 0xFF"];
        std::snprintf(piece, sizeof piece, " 0x%X", data[position]);
        top_append(piece);
    }
    top_append("\r\n");
    return top_exchange(tcp_eval_response);
}

int32_t top_request([[maybe_unused]] int32_t cob_id, [[maybe_unused]] short* length, [[maybe_unused]] BYTE* data)
{
    // Kept: refused with ERR_NULL_POINTER, also with valid pointers, and not with ERR_NOT_SUPPORTED.
    return ERR_NULL_POINTER;
}

int32_t top_queue_read(WORD* cob_id, short* length, BYTE* data)
{
    top_format("receive\r\n");
    return top_exchange(tcp_eval_can_message, cob_id, length, data);
}

int32_t top_queue_clear()
{
    return ERR_NOT_SUPPORTED;
}

int32_t top_status([[maybe_unused]] BYTE* can_status, [[maybe_unused]] BYTE* cop_status)
{
    return ERR_NOT_SUPPORTED;
}

int32_t top_queue_status([[maybe_unused]] BYTE* low, [[maybe_unused]] BYTE* high)
{
    return ERR_NOT_SUPPORTED;
}

int top_last_answer()
{
    return top_answered;
}

bool top_last_error(uint32_t* number)
{
    const bool whole = top_answered == top_answer_whole || top_answered == top_answer_odd;
    return whole && tcp_eval_is_error(top_buffer, number);
}

int32_t top_line_timeout(int32_t milliseconds)
{
    return std::exchange(top_line_milliseconds, std::max(milliseconds, 1));
}

static int32_t top_info(const char* subject, char* buffer, short size)
{
    short length = 0;
    top_format("info %s\r\n", subject);
    return top_exchange(tcp_eval_sdo_string, &length, buffer, size);
}

int32_t top_hardware(char* buffer, short size)
{
    return top_info("hardware", buffer, size);
}

int32_t top_software(char* buffer, short size)
{
    return top_info("software", buffer, size);
}

int32_t top_copyright(char* buffer, short size)
{
    return top_info("copyright", buffer, size);
}

const char* top_version()
{
    return "Velmora gateway client, tcp_open, 2026-11-21";
}
