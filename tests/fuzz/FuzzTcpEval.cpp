// Gives any line to every evaluator of gateway answers and every function of their scanner, with buffers of every size
// and with null pointers, and checks what must always hold. Numbers are evaluated a second time.
// The first byte of the input is the buffer size, the rest the line.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"

#include "tcp/tcp_eval.h"
#include "tcp/tcp_scan.h"

#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>

/// What `tcp_eval_is_error` says about the line.
struct tLineError {
    bool isError;
    uint32_t number;
};

/// One of the results that are stated. An abort has its code; only the error number -604 gives the same result without
/// one.
static void check(tLineError error, int32_t result, uint32_t abort)
{
    const bool aborted = abort >= 0x05000000 && abort <= 0x7FFFFFFF;
    require(abort == 0 || (aborted && result == ERR_SDO_ABORTED && error.isError && error.number == abort));
    const bool isOfGateway = error.isError && result == static_cast<int32_t>(-600U - error.number);
    require(aborted || isOfGateway || result == ERR_NO_ERROR || result == ERR_FORMAT);
}

/// Null pointers: the result says so, or is that of a valid call that has no value. An error number of -600 is 0, too.
static void checkNull(tLineError error, int32_t result, int32_t valid)
{
    require(result == ERR_NULL_POINTER || (result == valid && (valid != ERR_NO_ERROR || error.isError)));
}

template <typename Value>
static void evalNumber(int32_t (*evaluate)(const char*, Value*, uint32_t*), const char* line, tLineError error)
{
    Value value = 0;
    uint32_t abort = 0;
    const int32_t result = evaluate(line, &value, &abort);
    check(error, result, abort);
    Value again = 0;
    require(evaluate(line, &again, nullptr) == result && again == value);
    checkNull(error, evaluate(line, nullptr, nullptr), result);
}

template <typename Character>
static void evalText(int32_t (*evaluate)(const char*, short*, Character*, short, uint32_t*), const char* line,
                     short size, tLineError error)
{
    const std::unique_ptr<Character[]> buffer(
        new Character[static_cast<size_t>(size)]()); // of the exact size, so that overruns are found
    short length = 0;
    uint32_t abort = 0;
    const int32_t result = evaluate(line, &length, buffer.get(), size, &abort);
    check(error, result, abort);
    require(length >= 0 && length <= size);
    if (result == ERR_NO_ERROR && std::is_same_v<Character, char> && size > 0)
        require(length < size && std::strlen(reinterpret_cast<const char*>(buffer.get())) == size_t(length));
    checkNull(error, evaluate(line, nullptr, buffer.get(), size, nullptr), result);
    checkNull(error, evaluate(line, &length, nullptr, size, nullptr), result);
}

static void evalMessages(const char* line, tLineError error)
{
    uint16_t id = 0;
    short length = 0;
    const std::unique_ptr<BYTE[]> message(new BYTE[8]());
    const int32_t received = tcp_eval_can_message(line, &id, &length, message.get());
    if (received != ERR_RECEIVER_EMPTY || error.isError)
        check(error, received, 0);
    else
        require(tcp_eval_response(line) == ERR_NO_ERROR);
    length = 0;
    const int32_t answered = tcp_eval_rtr_message(line, &length, nullptr);
    check(error, answered, 0);
    length = 8;
    require(tcp_eval_rtr_message(line, &length, message.get()) == answered);
    length = 8;
    checkNull(error, tcp_eval_rtr_message(line, &length, nullptr), answered);
    checkNull(error, tcp_eval_can_message(line, nullptr, &length, message.get()), received);
}

/// A number as the scanner must take it.
template <typename Number>
struct tReading {
    bool fits = true;
    Number value = 0;
    size_t end;
};

/// Digit by digit with 64 bits, of which 32 are kept: the limits are below that.
template <typename Number>
static tReading<Number> readDigits(const std::string& text, size_t start, const char* digits, bool negative,
                                   uint64_t limit)
{
    const auto base = static_cast<unsigned>(std::strlen(digits));
    tReading<Number> reading;
    reading.end = start;
    uint64_t bits = 0;
    for (; reading.end < text.size(); ++reading.end) {
        const char letter = text[reading.end];
        const char* digit =
            letter == '\0' ? nullptr : std::strchr(digits, letter >= 'A' && letter <= 'F' ? letter + 32 : letter);
        if (digit == nullptr)
            break;
        const uint64_t wide = bits * base + static_cast<unsigned>(digit - digits);
        reading.fits = reading.fits && wide <= limit;
        bits = wide & 0xFFFFFFFF;
    }
    reading.value = static_cast<Number>(negative ? 0 - bits : bits);
    return reading;
}

template <typename Number>
static tReading<Number> readAgain(const std::string& text)
{
    using tLimits = std::numeric_limits<Number>;
    constexpr uint64_t pattern = std::numeric_limits<std::make_unsigned_t<Number>>::max();
    size_t at = text.find_first_not_of(" \t");
    if (at == std::string::npos)
        at = text.size();
    const auto letter = [&text](size_t place) { return place < text.size() ? text[place] : '\0'; };
    const auto isDigit = [&](size_t place) { return letter(place) >= '0' && letter(place) <= '9'; };
    if (letter(at) == '0' && (letter(at + 1) == 'x' || letter(at + 1) == 'X'))
        return readDigits<Number>(text, at + 2, "0123456789abcdef", false, pattern);
    if (letter(at) == '0')
        return readDigits<Number>(text, at + 1, "01234567", false, pattern);
    const bool negative = tLimits::is_signed && letter(at) == '-' && isDigit(at + 1);
    if (negative || (tLimits::is_signed && letter(at) == '+'))
        ++at;
    auto reading =
        readDigits<Number>(text, at, "0123456789", negative, uint64_t{ tLimits::max() } + (negative ? 1 : 0));
    reading.fits = reading.fits && isDigit(at);
    return reading;
}

template <typename Number>
static void scanNumber(int (*scan)(const char*, uint32_t*, Number*), const char* line, const std::string& text)
{
    const tReading<Number> expected = readAgain<Number>(text);
    uint32_t cursor = 0;
    Number value = 1;
    require(scan(line, &cursor, &value) == (expected.fits ? 1 : 0));
    require(cursor == expected.end && value == expected.value);
    uint32_t again = 0;
    require(scan(line, &again, nullptr) == (expected.fits ? 1 : 0) && again == cursor);
    require(scan(line, nullptr, &value) == 0 && value == 0 && scan(nullptr, &cursor, &value) == 0);
}

/// Token by token, as numbers and as characters, up to the end, which is never passed.
static void scan(const char* line, const std::string& text)
{
    const auto size = static_cast<uint32_t>(std::strlen(line));
    for (uint32_t cursor = 0; cursor < size;) {
        const uint32_t before = cursor;
        const int next = lookahead(line, &cursor);
        require(cursor <= size && next >= -128 && next <= 127);
        require((cursor == size ? next == -1 : line[cursor] == static_cast<char>(next)));
        const int word = token(line, &cursor);
        require(cursor <= size && word >= -1 && word <= 64);
        if (cursor == before) {
            require(word == -1 && character(line, &cursor) == static_cast<signed char>(line[before]));
            require(cursor == before + 1);
        }
    }
    require(compare(line, line) == 1 && compare(line, nullptr) == 0);
    scanNumber(&ascii2unsigned8, line, text);
    scanNumber(&ascii2unsigned16, line, text);
    scanNumber(&ascii2unsigned32, line, text);
    scanNumber(&ascii2integer8, line, text);
    scanNumber(&ascii2integer16, line, text);
    scanNumber(&ascii2integer32, line, text);
}

static void evaluate(const char* line, short room)
{
    uint32_t number = 0;
    const bool isError = tcp_eval_is_error(line, &number);
    const tLineError error = { isError, number };
    require(isError || number == 0);
    check(error, tcp_eval_response(line), 0);
    uint32_t abort = 0;
    const int32_t written = tcp_eval_sdo_response(line, &abort);
    check(error, written, abort);
    require(isError ? written == (abort != 0 ? ERR_SDO_ABORTED : static_cast<int32_t>(-600U - number)) : abort == 0);
    evalNumber(&tcp_eval_sdo_unsigned8, line, error);
    evalNumber(&tcp_eval_sdo_unsigned16, line, error);
    evalNumber(&tcp_eval_sdo_unsigned32, line, error);
    evalNumber(&tcp_eval_sdo_integer8, line, error);
    evalNumber(&tcp_eval_sdo_integer16, line, error);
    evalNumber(&tcp_eval_sdo_integer32, line, error);
    evalText(&tcp_eval_sdo_domain, line, room, error);
    evalText(&tcp_eval_sdo_string, line, room, error);
    evalMessages(line, error);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const short room = input.byte();
    const std::string text(input.rest());
    const std::unique_ptr<char[]> line(new char[text.size() + 1]());
    text.copy(line.get(), text.size());
    evaluate(line.get(), room);
    const std::string visible = line.get();
    scan(line.get(), visible);
    // What follows the number of a line, as a number.
    const size_t head = visible.find(']');
    if (head != std::string::npos)
        scan(line.get() + head + 1, visible.substr(head + 1));
    require(text.compare(0, text.size(), line.get(), text.size()) == 0);
    return 0;
}
