// One SDO transfer of the CANopen master on the fake bus, against any answers: one at once to each request, where a
// second client says what must come of it; or any number of frames of any kind, with pauses, foreign frames and
// failing calls, where only what is stated must hold.
// SPDX-License-Identifier: MIT
#include "FakeBus.h"
#include "FuzzInput.h"

#include "cop/cop_api.h"
#include "cop/cop_sdo.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <linux/can.h>
#include <memory>
#include <utility>
#include <vector>

using tFrame = std::array<uint8_t, 8>;

static uint32_t littleEndianIn(const uint8_t* bytes, size_t count)
{
    uint32_t number = 0;
    while (count-- > 0)
        number = number << 8 | bytes[count];
    return number;
}

enum tOperation { readBytes, writeBytes, read8, read16, read32, write8, write16, write32 };

/// What is transferred. `size` is the room of a reading, or the number of bytes to write.
struct tTransfer {
    tOperation operation;
    BYTE node;
    WORD index;
    BYTE subIndex;
    short size;
    QByteArray data; // to write

    bool writes() const { return operation == writeBytes || operation >= write8; }
    tFrame multiplexed(unsigned command, uint32_t number = 0) const
    {
        tFrame frame = { uint8_t(command), uint8_t(index), uint8_t(index >> 8), subIndex };
        for (size_t byte = 0; byte < 4; ++byte)
            frame[4 + byte] = uint8_t(number >> (8 * byte));
        return frame;
    }
};

struct tOutcome {
    int32_t result = ERR_NO_ERROR;
    QByteArray data; // that was read
};

/// A transfer as CiA 301 has it, step by step, with answers that are known beforehand.
class CSecondClient
{
public:
    CSecondClient(const tTransfer& transfer, std::vector<tFrame> answers)
        : m_transfer(transfer), m_answers(std::move(answers))
    {
    }

    tOutcome run()
    {
        if (m_transfer.writes())
            write();
        else
            read();
        return m_outcome;
    }
    const std::vector<tFrame>& requests() const { return m_requests; }

private:
    bool fail(int32_t error, uint32_t code)
    {
        m_requests.push_back(m_transfer.multiplexed(0x80, code));
        m_outcome.result = error;
        return false;
    }
    bool aborted()
    {
        m_outcome.result = static_cast<int32_t>(littleEndianIn(m_answer.data() + 4, 4));
        return false;
    }
    bool exchange(const tFrame& request)
    {
        m_requests.push_back(request);
        if (m_next == m_answers.size())
            return fail(ERR_TIMEOUT, 0x05040000);
        m_answer = m_answers[m_next++];
        return true;
    }
    bool initiate(const tFrame& request, bool exactly, unsigned command)
    {
        if (!exchange(request))
            return false;
        if (!std::equal(request.begin() + 1, request.begin() + 4, m_answer.begin() + 1))
            return fail(ERR_TIMEOUT, 0x05040000); // nothing else comes
        const unsigned specifier = exactly ? m_answer[0] : m_answer[0] & 0xE0U;
        if (specifier == 0x80)
            return aborted();
        return specifier == command || fail(ERR_FORMAT, 0x05040001);
    }
    bool segment(const tFrame& request, unsigned command, unsigned toggle)
    {
        if (!exchange(request))
            return false;
        if ((m_answer[0] & 0xE0U) == 0x80)
            return aborted();
        if ((m_answer[0] & 0xE0U) != command)
            return fail(ERR_FORMAT, 0x05040001);
        return (m_answer[0] & 0x10U) == toggle || fail(ERR_FORMAT, 0x05030000);
    }
    void write()
    {
        const auto size = static_cast<unsigned>(m_transfer.data.size());
        if (size <= 4) {
            tFrame request = m_transfer.multiplexed(size == 0 ? 0x33 : 0x23 | (4 - size) << 2);
            std::memcpy(request.data() + 4, m_transfer.data.constData(), size);
            initiate(request, true, 0x60);
            return;
        }
        bool going = initiate(m_transfer.multiplexed(0x21, size), true, 0x60);
        for (unsigned at = 0, toggle = 0; going && at < size; at += 7, toggle ^= 0x10) {
            const unsigned count = std::min(7U, size - at);
            tFrame request = { uint8_t(toggle | (7 - count) << 1 | (at + count == size ? 1 : 0)) };
            std::memcpy(request.data() + 1, m_transfer.data.constData() + at, count);
            going = segment(request, 0x20, toggle);
        }
    }
    void read()
    {
        if (initiate(m_transfer.multiplexed(0x40), false, 0x40))
            takeData();
        // An abort code of 0 reads as success.
        const bool isNumber = m_transfer.operation != readBytes;
        if (isNumber && m_outcome.result == ERR_NO_ERROR && m_outcome.data.size() != m_transfer.size)
            m_outcome.result = ERR_LENGTH;
    }
    void takeData()
    {
        if ((m_answer[0] & 0x02U) != 0)
            return append(4, (m_answer[0] & 0x01U) != 0 ? 4 - (m_answer[0] >> 2 & 3U) : 4);
        unsigned toggle = 0;
        do {
            if (!segment({ uint8_t(0x60 | toggle) }, 0x00, toggle)) {
                m_outcome.data.clear();
                return;
            }
            append(1, 7 - (m_answer[0] >> 1 & 7U));
            toggle ^= 0x10;
        } while ((m_answer[0] & 0x01U) == 0);
    }
    void append(size_t place, unsigned count)
    {
        m_outcome.data.append(reinterpret_cast<const char*>(m_answer.data()) + place, qsizetype(count));
    }

    const tTransfer& m_transfer;
    std::vector<tFrame> m_answers;
    size_t m_next = 0;
    tFrame m_answer = {};
    std::vector<tFrame> m_requests;
    tOutcome m_outcome;
};

/// The device, which the input makes answer.
class CFuzzedDevice
{
public:
    CFuzzedDevice(CFakeBus& bus, CFuzzInput& input, BYTE node, bool once)
        : m_bus(bus), m_input(input), m_answerId(0x580U + node), m_once(once)
    {
        bus.responder = [this, node](const can_frame& frame) {
            require(frame.can_id == 0x600U + node && frame.len == 8);
            tFrame request;
            std::memcpy(request.data(), frame.data, request.size());
            requests.push_back(request);
            if (m_once)
                answerOnce(request);
            else
                answerAnyhow(request);
        };
    }

    std::vector<tFrame> requests;
    std::vector<tFrame> answers;

private:
    static QByteArray bytesOf(uint32_t id, unsigned length, const tFrame& data)
    {
        can_frame frame = {};
        frame.can_id = id;
        frame.len = static_cast<uint8_t>(length);
        std::memcpy(frame.data, data.data(), data.size());
        return QByteArray(reinterpret_cast<const char*>(&frame), sizeof frame);
    }
    tFrame taken()
    {
        tFrame frame = {};
        const std::string_view bytes = m_input.take(frame.size());
        std::copy(bytes.begin(), bytes.end(), frame.begin());
        return frame;
    }
    /// As a device answers that does it right; `how` chooses the kind of an upload and the length of its segments.
    tFrame rightAnswer(const tFrame& request, unsigned how)
    {
        tFrame frame = { 0, request[1], request[2], request[3] };
        const uint8_t toggle = request[0] & 0x10;
        const std::string_view data = m_input.take(7);
        const auto put = [&](size_t place) {
            std::copy_n(data.begin(), std::min(data.size(), frame.size() - place), frame.begin() + qsizetype(place));
        };
        switch (request[0] >> 5) {
        case 0:
            return { uint8_t(0x20 | toggle) };
        case 1:
            frame[0] = 0x60;
            return frame;
        case 2:
            frame[0] = uint8_t(0x41 | ((how & 1) != 0 ? 0x02 | (how & 6) << 1 : 0));
            put(4);
            return frame;
        default:
            frame = { uint8_t(toggle | (how & 7) << 1 | (how >> 3 & 1)) };
            put(1);
            return frame;
        }
    }
    tFrame nextAnswer(const tFrame& request)
    {
        if (m_input.atEnd())
            return { 0x80, request[1], request[2], request[3], 0, 0, 0, 8 };
        const unsigned how = m_input.byte();
        if (how < 0x80)
            return rightAnswer(request, how);
        tFrame frame = taken();
        if (how < 0xE0)
            std::copy_n(request.begin() + 1, 3, frame.begin() + 1);
        return frame;
    }
    void answerOnce(const tFrame& request)
    {
        if (request[0] == 0x80)
            return;
        answers.push_back(nextAnswer(request));
        m_bus.injectBytes(bytesOf(m_answerId, 8, answers.back()));
    }
    void answerAnyhow(const tFrame& request)
    {
        for (unsigned count = m_input.byte() % 4; count > 0; --count) {
            const unsigned kind = m_input.byte();
            const int after = (kind & 0x80) != 0 ? m_input.byte() : 0;
            if ((kind & 7) < 4)
                m_bus.injectBytes(bytesOf(m_answerId, 8, nextAnswer(request)), after);
            else if ((kind & 7) == 4)
                m_bus.injectBytes(bytesOf(m_answerId, kind >> 3 & 15, nextAnswer(request)), after);
            else if ((kind & 7) == 5)
                m_bus.injectBytes(bytesOf(m_input.number(), kind >> 3 & 15, taken()), after);
            else if ((kind & 7) == 6)
                m_bus.injectBytes(bytesOf(m_input.number(), 8, taken()).left(kind >> 3 & 15), after);
            else
                failCalls(kind >> 3 & 15);
        }
    }
    void failCalls(unsigned which)
    {
        static constexpr CFakeBus::ECall calls[] = { CFakeBus::Write, CFakeBus::Read, CFakeBus::Select,
                                                     CFakeBus::Gettimeofday };
        static constexpr int errors[] = { ENOBUFS, ENETDOWN, EINTR, EAGAIN };
        m_bus.fail(calls[which & 3], errors[which >> 2 & 3], 1 + (m_input.byte() & 7), 1 + (m_input.byte() & 3));
    }

    CFakeBus& m_bus;
    CFuzzInput& m_input;
    uint32_t m_answerId;
    bool m_once;
};

template <typename Number>
static tOutcome readNumber(int32_t (*read)(BYTE, WORD, BYTE, Number*), const tTransfer& transfer)
{
    Number value = 0;
    tOutcome outcome;
    outcome.result = read(transfer.node, transfer.index, transfer.subIndex, &value);
    if (outcome.result == ERR_NO_ERROR)
        outcome.data = QByteArray(reinterpret_cast<const char*>(&value), sizeof value);
    return outcome;
}

template <typename Number>
static tOutcome writeNumber(int32_t (*write)(BYTE, WORD, BYTE, Number), const tTransfer& transfer)
{
    Number value = 0;
    std::memcpy(&value, transfer.data.constData(), sizeof value);
    return { write(transfer.node, transfer.index, transfer.subIndex, value), {} };
}

/// With a buffer of the exact size; nothing but data and a zero byte is written.
static tOutcome readIntoBuffer(const tTransfer& transfer)
{
    const auto size = static_cast<size_t>(transfer.size);
    const std::unique_ptr<BYTE[]> buffer(new BYTE[size]);
    short length = 77;
    const int32_t result =
        sdo_read(transfer.node, transfer.index, transfer.subIndex, &length, buffer.get(), transfer.size);
    require(length >= 0 && length <= transfer.size && (result == ERR_NO_ERROR || length == 0));
    return { result, QByteArray(reinterpret_cast<const char*>(buffer.get()), length) };
}

static tOutcome run(const tTransfer& transfer)
{
    const auto* data = reinterpret_cast<const BYTE*>(transfer.data.constData());
    switch (transfer.operation) {
    case readBytes:
        return readIntoBuffer(transfer);
    case writeBytes:
        return { sdo_write(transfer.node, transfer.index, transfer.subIndex, transfer.size, data), {} };
    case read8:
        return readNumber(&sdo_read_8bit, transfer);
    case read16:
        return readNumber(&sdo_read_16bit, transfer);
    case read32:
        return readNumber(&sdo_read_32bit, transfer);
    case write8:
        return writeNumber(&sdo_write_8bit, transfer);
    case write16:
        return writeNumber(&sdo_write_16bit, transfer);
    case write32:
        break;
    }
    return writeNumber(&sdo_write_32bit, transfer);
}

static tTransfer takeTransfer(CFuzzInput& input)
{
    static constexpr short sizes[] = { 0, 0, 1, 2, 4, 1, 2, 4 };
    tTransfer transfer = { tOperation(input.byte() % 8), input.byte(), input.word(), input.byte(), 0, {} };
    const short size = static_cast<short>(input.word() % 600);
    transfer.size = transfer.operation <= writeBytes ? size : sizes[transfer.operation];
    if (transfer.writes())
        for (int byte = 0; byte < transfer.size; ++byte)
            transfer.data += static_cast<char>(byte * 7 + transfer.index);
    return transfer;
}

/// What holds after every transfer.
static void checkState(const tOutcome& outcome)
{
    static constexpr int32_t stated[] = { ERR_NO_ERROR, ERR_NODE_ID,          ERR_TIMEOUT, ERR_LENGTH,
                                          ERR_FORMAT,   ERR_TRANSMITTER_BUSY, ERR_FATAL };
    require(cop_error == outcome.result);
    uint32_t code = 0;
    const bool isStated = std::find(std::begin(stated), std::end(stated), outcome.result) != std::end(stated);
    // A code of 0 reads as success, and in place of a number as the wrong length.
    if (sdo_last_abort(&code))
        require(outcome.result == static_cast<int32_t>(code) || (code == 0 && outcome.result == ERR_LENGTH));
    else
        require(isStated);
    short length = 0;
    BYTE data[8];
    require(can_transmit(0, 0, nullptr) == ERR_PARAMETER && can_receive(1, &length, data) == ERR_PARAMETER);
}

static void checkAgainstSecondClient(const tTransfer& transfer, const CFuzzedDevice& device, const tOutcome& outcome)
{
    CSecondClient client(transfer, device.answers);
    const tOutcome expected = client.run();
    require(outcome.result == expected.result && device.requests == client.requests());
    require(outcome.result != ERR_NO_ERROR || outcome.data == expected.data.left(transfer.size));
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    const bool once = input.flag();
    const tTransfer transfer = takeTransfer(input);
    CFakeBus bus;
    require(cop_init(-1, &bus.param, 0) == ERR_NO_ERROR);
    sdo_timeout(once ? 5 : input.byte());
    bus.step = once ? 10 : 500;
    CFuzzedDevice device(bus, input, transfer.node, once);
    const tOutcome outcome = run(transfer);
    bus.heal();
    checkState(outcome);
    if (transfer.node == 0 || transfer.node > 127)
        require(outcome.result == ERR_NODE_ID && device.requests.empty());
    else if (once)
        checkAgainstSecondClient(transfer, device, outcome);
    require(bus.finished() && cop_exit() == ERR_NO_ERROR && bus.descriptors() == 0);
    return 0;
}
