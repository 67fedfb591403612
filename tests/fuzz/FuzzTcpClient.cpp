// Commands of the gateway client on a scripted socket: any bytes, pauses, failing calls and closings. A second reader
// of the same script says which line is the answer and how it came; the result must be what the evaluator makes of it.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "ScriptedSocket.h"

#include "tcp/tcp_eval.h"
#include "tcp/tcp_open.h"

#include <QByteArray>

#include <cstring>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

/// The line that stands for the answer, and how it came.
struct tAnswer {
    std::string line;
    top_answer kind = top_answer_none;
};

/// Reads the events again, as if all of them were there at once.
class CSecondReader
{
public:
    CSecondReader(const std::vector<tEvent>& events, int64_t patience, int perByte)
        : m_events(events), m_patience(patience), m_perByte(perByte)
    {
    }

    tAnswer answerTo(const std::string& command)
    {
        tAnswer answer = { command, top_answer_none };
        const std::string head = command.substr(0, command.find(']'));
        for (;;) {
            const tEnd end = readLine();
            if (!m_line.empty())
                answer.line = m_line;
            if (end == timedOut || m_line.empty()) {
                answer.kind = end == hungUp ? top_answer_closed : top_answer_none;
                return answer;
            }
            if (numberOf(answer.line) == numberOf(command)) {
                answer.kind = m_line.back() == '\n' ? top_answer_whole : top_answer_cut;
                return answer;
            }
        }
    }
    bool hasReadAll() const { return m_next == m_events.size(); }

private:
    enum tEnd { wholeLine, hungUp, timedOut };
    static constexpr size_t longest = 1023;

    static long numberOf(const std::string& line)
    {
        return line[0] == '[' ? std::strtol(line.c_str() + 1, nullptr, 0) : 0;
    }
    tEnd readLine()
    {
        m_line.clear();
        int64_t left = m_patience;
        int64_t passed = 0;
        char byte = '\0'; // a failed call gives the byte before it again
        for (; m_next < m_events.size(); ++m_next) {
            const tEvent event = m_events[m_next];
            if (event.kind == aPause) {
                const int64_t pause = event.value * tEvent::pauseStep;
                passed += std::min(pause, left);
                left -= pause;
                if (left >= 0)
                    continue;
                ++m_next;
                return timedOut;
            }
            passed += m_perByte;
            if (event.kind == aByte)
                byte = static_cast<char>(event.value);
            if (event.kind == theEnd || (event.kind == aFailure && left == 0)) {
                ++m_next;
                return event.kind == theEnd ? hungUp : timedOut;
            }
            if (m_line.size() < longest)
                m_line += byte;
            if (byte == '\n' || passed > m_patience) {
                ++m_next;
                return byte == '\n' ? wholeLine : timedOut;
            }
        }
        return timedOut;
    }

    const std::vector<tEvent>& m_events;
    const int64_t m_patience;
    const int m_perByte;
    size_t m_next = 0;
    std::string m_line;
};

struct tOutcome {
    int32_t result;
    QByteArray value;
    bool operator==(const tOutcome&) const = default;
};

static constexpr BYTE node = 5;
static constexpr WORD object = 0x1017;
static constexpr BYTE sub = 0x1A;

template <typename Evaluate, typename... Out>
static int32_t evaluated(Evaluate evaluate, const char* line, Out... out)
{
    if constexpr (std::is_invocable_v<Evaluate, const char*, Out..., uint32_t*>) {
        uint32_t abort = 0;
        const int32_t result = evaluate(line, out..., &abort);
        return result == ERR_SDO_ABORTED ? static_cast<int32_t>(abort) : result;
    } else {
        return evaluate(line, out...);
    }
}

template <typename Value>
static QByteArray bytesOf(const Value* value, int count)
{
    return QByteArray(reinterpret_cast<const char*>(value), qsizetype(sizeof(Value)) * count);
}

/// What the commands do when `line` is null; otherwise the evaluation of a line as their answer.
template <auto read, auto evaluate, typename Value>
static tOutcome readNumber(const char* line, short)
{
    Value value = 0;
    const int32_t result = line == nullptr ? read(node, object, sub, &value) : evaluated(evaluate, line, &value);
    return { result, bytesOf(&value, 1) };
}

template <auto write>
static tOutcome writeNumber(const char* line, short value)
{
    return { line == nullptr ? write(node, object, sub, static_cast<BYTE>(value))
                             : evaluated(tcp_eval_sdo_response, line),
             {} };
}

template <auto command>
static tOutcome commandNode(const char* line, short)
{
    return { line == nullptr ? command(node) : evaluated(tcp_eval_response, line), {} };
}

template <auto ask>
static tOutcome askText(const char* line, short room)
{
    const std::unique_ptr<char[]> buffer(new char[static_cast<size_t>(room)]());
    short length = 0;
    const int32_t result =
        line == nullptr ? ask(buffer.get(), room) : evaluated(tcp_eval_sdo_string, line, &length, buffer.get(), room);
    return { result, bytesOf(buffer.get(), room) };
}

static tOutcome readDomain(const char* line, short room)
{
    const std::unique_ptr<BYTE[]> buffer(new BYTE[static_cast<size_t>(room)]());
    short length = 0;
    const int32_t result = line == nullptr ? top_read(node, object, sub, &length, buffer.get(), room)
                                           : evaluated(tcp_eval_sdo_domain, line, &length, buffer.get(), room);
    require(length >= 0 && length <= room);
    return { result, bytesOf(buffer.get(), length) };
}

static QByteArray sample(int length)
{
    QByteArray data;
    for (int byte = 0; byte < length; ++byte)
        data += static_cast<char>(byte * 7 + length);
    return data;
}

/// The data must reach the gateway as Qt writes them in base64, as far as the line goes.
static tOutcome writeDomain(const char* line, short length)
{
    if (line != nullptr)
        return { evaluated(tcp_eval_sdo_response, line), {} };
    const QByteArray data = sample(length);
    const int32_t result = top_write(node, object, sub, length, reinterpret_cast<const BYTE*>(data.constData()));
    const std::string& sent = CScriptedSocket::current->sent;
    const QByteArray expected = "5 write 0x1017 0x1A d " + data.toBase64() + "\r\n";
    const size_t head = sent.find(' ') + 1;
    if (!CScriptedSocket::current->failsToSend)
        require(sent.substr(head) == expected.left(static_cast<qsizetype>(1023 - head)).toStdString());
    return { result, {} };
}

static tOutcome transmit(const char* line, short length)
{
    const QByteArray data = sample(length % 300);
    const auto count = static_cast<short>(data.size());
    return { line == nullptr ? top_transmit(0x181, count, reinterpret_cast<const BYTE*>(data.constData()))
                             : evaluated(tcp_eval_response, line),
             {} };
}

static tOutcome receive(const char* line, short)
{
    WORD id = 0;
    short length = 0;
    BYTE data[8] = {};
    const int32_t result = line == nullptr ? top_queue_read(&id, &length, data)
                                           : evaluated(tcp_eval_can_message, line, &id, &length, data);
    return { result, bytesOf(&id, 1) + bytesOf(&length, 1) + bytesOf(data, 8) };
}

static tOutcome setTimeOut(const char* line, short time)
{
    return { line == nullptr ? top_timeout(static_cast<WORD>(time), nullptr) : evaluated(tcp_eval_response, line), {} };
}

static tOutcome reset(const char* line, short)
{
    return { line == nullptr ? top_reset(6) : 0, {} };
}

using tCommand = tOutcome (*)(const char* line, short number);
static constexpr tCommand commands[] = {
    &readDomain,
    &writeDomain,
    &readNumber<top_read_8bit, tcp_eval_sdo_unsigned8, uint8_t>,
    &readNumber<top_read_16bit, tcp_eval_sdo_unsigned16, uint16_t>,
    &readNumber<top_read_32bit, tcp_eval_sdo_unsigned32, uint32_t>,
    &writeNumber<top_write_8bit>,
    &writeNumber<top_write_16bit>,
    &writeNumber<top_write_32bit>,
    &commandNode<top_start_remote_node>,
    &commandNode<top_stop_remote_node>,
    &commandNode<top_enter_preoperational>,
    &commandNode<top_reset_node>,
    &commandNode<top_reset_communication>,
    &askText<top_hardware>,
    &askText<top_software>,
    &askText<top_copyright>,
    &transmit,
    &receive,
    &setTimeOut,
    &reset,
};

/// What follows the number of a line, without blanks and line end.
static QByteArray textOf(const char* line)
{
    std::string text(std::strchr(line, ']') + 1);
    text.erase(0, text.find_first_not_of(" \t"));
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    return QByteArray::fromStdString(text);
}

static void checkAnswer(const tAnswer& answer, tCommand command, const tOutcome& outcome, short number)
{
    require(outcome == command(answer.line.c_str(), number));
    const bool isOdd = top_last_answer() == top_answer_odd;
    const bool mayBeOdd = command == &readDomain && answer.kind == top_answer_whole && outcome.result == ERR_NO_ERROR;
    require(isOdd ? mayBeOdd : top_last_answer() == answer.kind);
    if (mayBeOdd) {
        // A value has nothing but base64 after its number, and no more than a value.
        const QByteArray text = textOf(answer.line.c_str());
        const auto decoded = QByteArray::fromBase64Encoding(text, QByteArray::AbortOnBase64DecodingErrors);
        const bool isPadding = text.count('=') == text.size();
        require(isPadding || isOdd == (text.size() % 4 != 0 || !decoded));
    }
    uint32_t error = 0;
    uint32_t expected = 0;
    const bool isError = answer.kind == top_answer_whole && tcp_eval_is_error(answer.line.c_str(), &expected);
    require(top_last_error(&error) == isError && error == expected);
}

static void runCommand(CFuzzInput& input, CScriptedSocket& socket, int64_t patience)
{
    const uint8_t which = input.byte();
    const tCommand command = commands[which % std::size(commands)];
    const auto number = static_cast<short>(input.word() % 1100);
    socket.failsToSend = which >= 240;
    static long sequence = 0;
    ++sequence;
    const tOutcome outcome = command(nullptr, number);
    if (socket.failsToSend) {
        require(outcome.result == -793 && top_last_answer() == top_answer_none && !top_last_error(nullptr));
        return;
    }
    require(socket.sent.size() <= 1023 && socket.sent.starts_with("[" + std::to_string(sequence) + "] "));
    CSecondReader reader(socket.events, patience, socket.perByte());
    checkAnswer(reader.answerTo(socket.sent), command, outcome, number);
    require(reader.hasReadAll());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const uint8_t flags = input.byte();
    const int patience = std::max(1, input.byte() * tEvent::pauseStep);
    CScriptedSocket socket(input, (flags & 1) != 0, 1 + (flags >> 1 & 7));
    top_line_timeout(patience);
    require(top_init(0x7F000001, 1234, nullptr, 0) == 0);
    do
        runCommand(input, socket, patience);
    while (!input.atEnd());
    require(top_exit() == 0 && socket.closed && top_exit() == ERR_NOT_INITIALIZED);
    return 0;
}
