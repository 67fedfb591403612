// Evaluators of the gateway's response lines: one line into a status and typed values.
// SPDX-License-Identifier: MIT
#include "tcp/tcp_eval.h"

#include "tcp/tcp_scan.h"

#include <type_traits>

// The grammar of a line; each evaluator accepts only its own kinds of value:
//
//   line     = "[" number "]" ( "OK" | error | value )
//   error    = ( "Error" | any other word with "e" ) ":" signed number
//   value    = number | signed number | domain | string | message | rtr
//   message  = identifier length { byte }        at most eight bytes are read
//   rtr      = length { byte }

/// Error numbers from here on are abort codes of a device, smaller ones are errors of the gateway.
static constexpr auto tcp_eval_first_abort = int32_t{ lowestAbortCode };
static constexpr int32_t tcp_eval_gateway_error = -600;
static constexpr short tcp_eval_data_size = 8;

static bool tcp_eval_take(const char* line, uint32_t* cursor, char expected)
{
    return lookahead(line, cursor) != -1 && character(line, cursor) == expected;
}

static bool tcp_eval_head(const char* line, uint32_t* cursor)
{
    uint32_t sequence = 0;
    return tcp_eval_take(line, cursor, '[') && lookahead(line, cursor) != -1 &&
           ascii2unsigned32(line, cursor, &sequence) && tcp_eval_take(line, cursor, ']');
}

/// Reads the error number after `word`, a token. @return false when there is none
static bool tcp_eval_error_number(int word, const char* line, uint32_t* cursor, int32_t* number)
{
    return word == tcp_token_error && tcp_eval_take(line, cursor, ':') && lookahead(line, cursor) != -1 &&
           ascii2integer32(line, cursor, number);
}

/// -600 - n, cut to 32 bits.
static int32_t tcp_eval_gateway_status(int32_t number)
{
    return static_cast<int32_t>(static_cast<uint32_t>(tcp_eval_gateway_error) - static_cast<uint32_t>(number));
}

static int32_t tcp_eval_error(int word, const char* line, uint32_t* cursor)
{
    int32_t number = 0;
    return tcp_eval_error_number(word, line, cursor, &number) ? tcp_eval_gateway_status(number) : ERR_FORMAT;
}

static int32_t tcp_eval_sdo_error(int word, const char* line, uint32_t* cursor, uint32_t* abort)
{
    int32_t number = 0;
    if (!tcp_eval_error_number(word, line, cursor, &number))
        return ERR_FORMAT;
    if (number < tcp_eval_first_abort)
        return tcp_eval_gateway_status(number);
    if (abort != nullptr)
        *abort = static_cast<uint32_t>(number);
    return ERR_SDO_ABORTED;
}

bool tcp_eval_is_error(const char* line, uint32_t* number)
{
    uint32_t cursor = 0;
    int32_t value = 0;
    if (!tcp_eval_head(line, &cursor) || lookahead(line, &cursor) == -1 ||
        !tcp_eval_error_number(token(line, &cursor), line, &cursor, &value))
        return false;
    if (number != nullptr)
        *number = static_cast<uint32_t>(value);
    return true;
}

static bool tcp_eval_is_digit(int first)
{
    return first >= '0' && first <= '9';
}

int32_t tcp_eval_response(const char* line)
{
    uint32_t cursor = 0;
    if (!tcp_eval_head(line, &cursor))
        return ERR_FORMAT;
    const int word = token(line, &cursor);
    return word == tcp_token_ok ? ERR_NO_ERROR : tcp_eval_error(word, line, &cursor);
}

int32_t tcp_eval_sdo_response(const char* line, uint32_t* abort)
{
    uint32_t cursor = 0;
    if (!tcp_eval_head(line, &cursor))
        return ERR_FORMAT;
    const int word = token(line, &cursor);
    return word == tcp_token_ok ? ERR_NO_ERROR : tcp_eval_sdo_error(word, line, &cursor, abort);
}

template <typename Number>
static int32_t tcp_eval_sdo_number(const char* line, Number* value, uint32_t* abort,
                                   int (*read)(const char*, uint32_t*, Number*))
{
    constexpr bool with_sign = std::is_signed_v<Number>;
    uint32_t cursor = 0;
    if (!tcp_eval_head(line, &cursor))
        return ERR_FORMAT;
    const int first = lookahead(line, &cursor);
    if (!tcp_eval_is_digit(first) && !(with_sign && (first == '+' || first == '-')))
        return tcp_eval_sdo_error(token(line, &cursor), line, &cursor, abort);
    if (value == nullptr)
        return ERR_NULL_POINTER;
    if (abort != nullptr)
        *abort = 0;
    return read(line, &cursor, value) ? ERR_NO_ERROR : ERR_FORMAT;
}

int32_t tcp_eval_sdo_unsigned8(const char* line, uint8_t* value, uint32_t* abort)
{
    return tcp_eval_sdo_number(line, value, abort, ascii2unsigned8);
}

int32_t tcp_eval_sdo_unsigned16(const char* line, uint16_t* value, uint32_t* abort)
{
    return tcp_eval_sdo_number(line, value, abort, ascii2unsigned16);
}

int32_t tcp_eval_sdo_unsigned32(const char* line, uint32_t* value, uint32_t* abort)
{
    return tcp_eval_sdo_number(line, value, abort, ascii2unsigned32);
}

int32_t tcp_eval_sdo_integer8(const char* line, int8_t* value, uint32_t* abort)
{
    return tcp_eval_sdo_number(line, value, abort, ascii2integer8);
}

int32_t tcp_eval_sdo_integer16(const char* line, int16_t* value, uint32_t* abort)
{
    return tcp_eval_sdo_number(line, value, abort, ascii2integer16);
}

int32_t tcp_eval_sdo_integer32(const char* line, int32_t* value, uint32_t* abort)
{
    return tcp_eval_sdo_number(line, value, abort, ascii2integer32);
}

template <typename Element>
static int32_t tcp_eval_sdo_text(const char* line, short* length, Element* buffer, short size, uint32_t* abort,
                                 int (*read)(const char*, uint32_t*, Element*, short*, short))
{
    uint32_t cursor = 0;
    if (!tcp_eval_head(line, &cursor) || lookahead(line, &cursor) == -1)
        return ERR_FORMAT;
    if (compare(line + cursor, "Error:"))
        return tcp_eval_sdo_error(token(line, &cursor), line, &cursor, abort);
    if (length == nullptr || buffer == nullptr)
        return ERR_NULL_POINTER;
    if (abort != nullptr)
        *abort = 0;
    return read(line, &cursor, buffer, length, size) ? ERR_NO_ERROR : ERR_FORMAT;
}

int32_t tcp_eval_sdo_domain(const char* line, short* length, BYTE* buffer, short size, uint32_t* abort)
{
    return tcp_eval_sdo_text(line, length, buffer, size, abort, ascii2domain);
}

int32_t tcp_eval_sdo_string(const char* line, short* length, char* buffer, short size, uint32_t* abort)
{
    return tcp_eval_sdo_text(line, length, buffer, size, abort, ascii2string);
}

/// Reads the length of a message and at most eight bytes. Without a buffer the bytes are only checked.
static int32_t tcp_eval_data(const char* line, uint32_t* cursor, short* length, BYTE* data)
{
    if (!ascii2integer16(line, cursor, length))
        return ERR_FORMAT;
    for (short position = 0; position < *length && position < tcp_eval_data_size; ++position)
        if (!ascii2unsigned8(line, cursor, data != nullptr ? data + position : nullptr))
            return ERR_FORMAT;
    return ERR_NO_ERROR;
}

int32_t tcp_eval_can_message(const char* line, uint16_t* cob_id, short* length, BYTE* data)
{
    uint32_t cursor = 0;
    if (!tcp_eval_head(line, &cursor))
        return ERR_FORMAT;
    if (tcp_eval_is_digit(lookahead(line, &cursor))) {
        if (cob_id == nullptr || length == nullptr || data == nullptr)
            return ERR_NULL_POINTER;
        return ascii2unsigned16(line, &cursor, cob_id) ? tcp_eval_data(line, &cursor, length, data) : ERR_FORMAT;
    }
    const int word = token(line, &cursor);
    return word == tcp_token_ok ? ERR_RECEIVER_EMPTY : tcp_eval_error(word, line, &cursor);
}

int32_t tcp_eval_rtr_message(const char* line, short* length, BYTE* data)
{
    uint32_t cursor = 0;
    if (!tcp_eval_head(line, &cursor))
        return ERR_FORMAT;
    if (!tcp_eval_is_digit(lookahead(line, &cursor)))
        return tcp_eval_error(token(line, &cursor), line, &cursor);
    if (length == nullptr || (*length != 0 && data == nullptr))
        return ERR_NULL_POINTER;
    return tcp_eval_data(line, &cursor, length, data);
}

const char* tcp_eval_version()
{
    return "Velmora gateway client, tcp_eval, 2026-11-21";
}
