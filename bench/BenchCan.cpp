// SDO transfers and the receive queue of the CANopen master on vcan0, compared with bare loops.
// SPDX-License-Identifier: MIT
#include "CanBus.h"
#include "Pair.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"
#include "cop/cop_sdo.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <linux/can.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

constexpr WORD numberIndex = 0x1000;
constexpr WORD longIndex = 0x2000;
constexpr int segmentSize = 7;
constexpr BYTE toggleBit = 0x10;

// The master on the bus.
class CMaster
{
public:
    CMaster()
    {
        _can_param param = { "vcan0", PF_CAN, SOCK_RAW, CAN_RAW };
        if (cop_init(-1, &param, 0) != 0)
            throw std::runtime_error("the master cannot open vcan0");
        cop_queue_clear(); // cop_exit keeps the messages
    }
    ~CMaster() { cop_exit(); }
    CMaster(const CMaster&) = delete;
    CMaster& operator=(const CMaster&) = delete;
};

// Waits for no message: `select` says whether there is one, as the master asks before each `read`.
bool takePolled(int socket, can_frame& frame)
{
    fd_set readable;
    FD_ZERO(&readable);
    FD_SET(socket, &readable);
    timeval immediately = {};
    return select(socket + 1, &readable, nullptr, nullptr, &immediately) > 0 &&
           read(socket, &frame, sizeof frame) == sizeof frame;
}

bool take(int socket, can_frame& frame)
{
    return read(socket, &frame, sizeof frame) == sizeof frame;
}

// Exchanges the frames of a transfer with the system calls that the master makes for them, and with nothing else.
class CBareMaster
{
public:
    CBareMaster() = default;
    ~CBareMaster() { close(m_socket); }
    CBareMaster(const CBareMaster&) = delete;
    CBareMaster& operator=(const CBareMaster&) = delete;

    /// Sends the frame and waits for its answer, half a second at most, which replaces it.
    bool exchange(can_frame& frame) const
    {
        if (write(m_socket, &frame, sizeof frame) != sizeof frame)
            return false;
        const int64_t end = now() + 500000;
        while (!drain(frame))
            if (now() >= end)
                return false;
        return true;
    }
    /// The first exchange of a transfer: the master empties the socket for each of its two message objects.
    bool initiate(int firstByte, WORD index, can_frame& frame) const
    {
        drain(frame);
        drain(frame);
        frame = request(firstByte);
        std::memcpy(frame.data + 1, &index, sizeof index);
        return exchange(frame);
    }
    static can_frame request(int firstByte)
    {
        can_frame frame = {};
        frame.can_id = 0x600 + CCanBus::node;
        frame.len = CAN_MAX_DLEN;
        frame.data[0] = static_cast<BYTE>(firstByte);
        return frame;
    }
    static int64_t now()
    {
        timeval time = {};
        gettimeofday(&time, nullptr);
        return int64_t{ time.tv_sec } * 1000000 + time.tv_usec;
    }

private:
    /// Takes what waits in the socket, until nothing does. @return false when it was empty
    bool drain(can_frame& last) const
    {
        bool taken = false;
        while (takePolled(m_socket, last))
            taken = true;
        return taken;
    }

    const int m_socket = CCanBus::openSocket();
};

// The same transfers by the master and by the bare one. Both return false when the data are not those of the node.
struct tTransfer {
    const char* name;
    int items;
    bool (*ours)(CCanBus& bus);
    bool (*bare)(CCanBus& bus, const CBareMaster& master);
};

constexpr int reads = 50; // values that are read in one run

bool readNumbers(CCanBus&)
{
    for (int n = 0; n < reads; ++n) {
        uint32_t value = 0;
        if (sdo_read_32bit(CCanBus::node, numberIndex, 0, &value) != 0 || value != CCanBus::number)
            return false;
    }
    return true;
}

bool readNumbersBare(CCanBus&, const CBareMaster& master)
{
    for (int n = 0; n < reads; ++n) {
        can_frame frame = {};
        if (!master.initiate(0x40, numberIndex, frame) || CCanBus::numberOf(frame.data + 4) != CCanBus::number)
            return false;
    }
    return true;
}

bool upload(CCanBus&)
{
    static BYTE data[CCanBus::longSize];
    short length = 0;
    return sdo_read(CCanBus::node, longIndex, 0, &length, data, sizeof data) == 0 && length == CCanBus::longSize &&
           std::equal(std::begin(data), std::end(data), CCanBus::longData().begin());
}

bool uploadBare(CCanBus&, const CBareMaster& master)
{
    static BYTE data[CCanBus::longSize];
    can_frame frame = {};
    bool good = master.initiate(0x40, longIndex, frame);
    int toggle = 0;
    for (int position = 0; good && position < CCanBus::longSize; position += segmentSize) {
        frame = CBareMaster::request(0x60 | toggle);
        good = master.exchange(frame);
        std::memcpy(data + position, frame.data + 1,
                    static_cast<size_t>(std::min(CCanBus::longSize - position, segmentSize)));
        toggle ^= toggleBit;
    }
    return good && std::equal(std::begin(data), std::end(data), CCanBus::longData().begin());
}

bool download(CCanBus& bus)
{
    return sdo_write(CCanBus::node, longIndex, 0, CCanBus::longSize, CCanBus::longData().data()) == 0 &&
           bus.takeDownload();
}

bool downloadBare(CCanBus& bus, const CBareMaster& master)
{
    can_frame frame = {};
    bool good = master.initiate(0x21, longIndex, frame);
    int toggle = 0;
    for (int position = 0; good && position < CCanBus::longSize; position += segmentSize) {
        CBareMaster::now(); // the master checks the time before each segment
        const int count = std::min(CCanBus::longSize - position, segmentSize);
        const int last = position + count == CCanBus::longSize ? 1 : 0;
        frame = CBareMaster::request(toggle | (segmentSize - count) << 1 | last);
        std::memcpy(frame.data + 1, CCanBus::longData().data() + position, static_cast<size_t>(count));
        good = master.exchange(frame);
        toggle ^= toggleBit;
    }
    return good && bus.takeDownload();
}

constexpr tTransfer transfers[] = {
    { "can/read", reads, readNumbers, readNumbersBare },
    { "can/upload", CCanBus::longSize, upload, uploadBare },
    { "can/download", CCanBus::longSize, download, downloadBare },
};

class CTransferPair : public CPair
{
public:
    explicit CTransferPair(const tTransfer& transfer) : m_transfer(transfer) { m_bus.answer(); }

    double ours() override
    {
        const CMaster master;
        return secondsOf([this] { return m_transfer.ours(m_bus); });
    }
    double bare() override
    {
        const CBareMaster master;
        return secondsOf([&] { return m_transfer.bare(m_bus, master); });
    }

private:
    CCanBus m_bus;
    const tTransfer& m_transfer;
};

// The bus is flooded in bursts that the receive buffer of a socket has room for; what the kernel drops is not what is
// measured. Timed is how a burst gets from the socket into the queue, or is read by a bare loop: a sender on another
// processor takes none of that time, and there may be only one. Both fail when a message is missing or out of order.
class CFloodPair : public CPair
{
public:
    static constexpr int messages = 16000; // the queue holds 16382

    explicit CFloodPair(bool (*bareTake)(int socket, can_frame& frame)) : m_bareTake(bareTake) {}

    double ours() override
    {
        const CMaster master;
        const double seconds = flood([](uint32_t) { return can_read_queue(0) == burst; });
        for (uint32_t n = 0; n < messages; ++n)
            if (!isNextInQueue(n))
                return -1;
        return seconds;
    }
    double bare() override
    {
        const int socket = CCanBus::openSocket();
        const double seconds = flood([this, socket](uint32_t first) {
            can_frame frame = {};
            uint32_t next = first;
            while (m_bareTake(socket, frame) && CCanBus::numberOf(frame.data) == next)
                ++next;
            return next == first + burst;
        });
        close(socket);
        return seconds;
    }

private:
    static constexpr int burst = 200;

    static bool isNextInQueue(uint32_t number)
    {
        uint32_t id = 0;
        short length = 0;
        BYTE data[can_length_max] = {};
        return cop_queue_read(&id, &length, data) == 0 && id == CCanBus::messageId && length == can_length_max &&
               CCanBus::numberOf(data) == number;
    }

    /// Sends the bursts and times `receive(first)` after each, which is given the number of its first message.
    template <typename Receive>
    double flood(Receive receive)
    {
        double seconds = 0;
        for (uint32_t sent = 0; sent < messages; sent += burst) {
            const double taken = m_bus.send(sent, burst) ? secondsOf([&] { return receive(sent); }) : -1;
            if (taken < 0)
                return -1;
            seconds += taken;
        }
        return seconds;
    }

    const CCanBus m_bus;
    bool (*const m_bareTake)(int socket, can_frame& frame);
};

[[maybe_unused]] const bool added = [] {
    for (const tTransfer& transfer : transfers)
        addPair({ transfer.name, double(transfer.items), 5,
                  [&transfer] { return std::make_unique<CTransferPair>(transfer); } });
    return addPair({ "can/flood", CFloodPair::messages, 5, [] { return std::make_unique<CFloodPair>(take); } }) &&
           addPair({ "can/flood-polled", CFloodPair::messages, 5,
                     [] { return std::make_unique<CFloodPair>(takePolled); } });
}();

} // namespace
