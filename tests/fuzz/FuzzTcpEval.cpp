// Gives any line to every evaluator of gateway answers, with buffers of every size, and checks what must always hold.
// The first byte of the input is the buffer size, the rest the line.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"

#include "tcp/tcp_eval.h"

#include <memory>
#include <string>

/// An abort has its code; only the error number -604 gives the same result without one.
static void check(const char* line, int32_t result, uint32_t abort)
{
    const bool aborted = abort >= 0x05000000 && abort <= 0x7FFFFFFF;
    require(abort == 0 || (aborted && result == ERR_SDO_ABORTED));
    require(result != ERR_SDO_ABORTED || aborted || std::string(line).find(':') != std::string::npos);
}

template <typename Value>
static void evalNumber(int32_t (*evaluate)(const char*, Value*, uint32_t*), const char* line)
{
    Value value = 0;
    uint32_t abort = 0;
    const int32_t result = evaluate(line, &value, &abort);
    check(line, result, abort);
    Value again = 0;
    require(evaluate(line, &again, nullptr) == result && again == value);
}

template <typename Character>
static void evalText(int32_t (*evaluate)(const char*, short*, Character*, short, uint32_t*), const char* line,
                     short size)
{
    const std::unique_ptr<Character[]> buffer(
        new Character[static_cast<size_t>(size)]()); // of the exact size, so that overruns are found
    short length = 0;
    uint32_t abort = 0;
    const int32_t result = evaluate(line, &length, buffer.get(), size, &abort);
    check(line, result, abort);
    require(length >= 0 && length <= size);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const auto room = static_cast<short>(data[0]);
    const std::string text(data + 1, data + size);
    const std::unique_ptr<char[]> line(new char[text.size() + 1]());
    text.copy(line.get(), text.size());

    check(line.get(), tcp_eval_response(line.get()), 0);
    uint32_t abort = 0;
    const int32_t written = tcp_eval_sdo_response(line.get(), &abort);
    check(line.get(), written, abort);
    uint32_t number = 0;
    const bool isError = tcp_eval_is_error(line.get(), &number);
    require(isError || number == 0);
    require(isError ? written == (abort != 0 ? ERR_SDO_ABORTED : static_cast<int32_t>(-600U - number)) : abort == 0);
    require(abort == 0 || number == abort);
    evalNumber(&tcp_eval_sdo_unsigned8, line.get());
    evalNumber(&tcp_eval_sdo_unsigned16, line.get());
    evalNumber(&tcp_eval_sdo_unsigned32, line.get());
    evalNumber(&tcp_eval_sdo_integer8, line.get());
    evalNumber(&tcp_eval_sdo_integer16, line.get());
    evalNumber(&tcp_eval_sdo_integer32, line.get());
    evalText(&tcp_eval_sdo_domain, line.get(), room);
    evalText(&tcp_eval_sdo_string, line.get(), room);
    uint16_t id = 0;
    short length = 0;
    const std::unique_ptr<BYTE[]> message(new BYTE[8]());
    check(line.get(), tcp_eval_can_message(line.get(), &id, &length, message.get()), 0);
    length = 0;
    check(line.get(), tcp_eval_rtr_message(line.get(), &length, message.get()), 0);
    require(text.compare(0, text.size(), line.get(), text.size()) == 0);
    return 0;
}
