// SDO transfers and the receive queue of the CANopen master, next to bare loops that make the same system calls.
// SPDX-License-Identifier: MIT
#include "CanBus.h"
#include "cop/can_ctrl.h"
#include "cop/cop_api.h"
#include "cop/cop_sdo.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <string>
#include <utility>

#include <linux/can.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

constexpr BYTE node = 5;
constexpr int reads = 20;    // values that are read in one go
constexpr int fullBus = 200; // frames that every socket has room for

// The master on the bus.
class CMaster
{
public:
    CMaster()
    {
        _can_param param = { "vcan0", PF_CAN, SOCK_RAW, CAN_RAW };
        cop_init(-1, &param, 0);
        cop_queue_clear(); // it keeps what was in it
    }
    ~CMaster() { cop_exit(); }
    CMaster(const CMaster&) = delete;
    CMaster& operator=(const CMaster&) = delete;
};

// What the master makes of system calls, and nothing else.
class CBareLoop
{
public:
    explicit CBareLoop(int descriptor) : m_socket(descriptor) {}
    ~CBareLoop() { close(m_socket); }
    CBareLoop(const CBareLoop&) = delete;
    CBareLoop& operator=(const CBareLoop&) = delete;

    /// One frame if there is one.
    bool take(can_frame& frame) const
    {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(m_socket, &readable);
        timeval immediately = {};
        return select(m_socket + 1, &readable, nullptr, nullptr, &immediately) > 0 &&
               read(m_socket, &frame, sizeof frame) == sizeof frame;
    }
    /// All that is there but at most `limit` frames, as before each transfer and in search of an answer.
    int drain(can_frame& last, int limit = 100) const
    {
        int frames = 0;
        while (frames < limit && take(last))
            ++frames;
        return frames;
    }
    /// A request and its answer, for which it waits half a second.
    bool exchange(int command, int object, can_frame& frame) const
    {
        frame = {};
        frame.can_id = 0x600 + node;
        frame.len = CAN_MAX_DLEN;
        frame.data[0] = static_cast<BYTE>(command);
        frame.data[2] = static_cast<BYTE>(object >> 8);
        if (write(m_socket, &frame, sizeof frame) != sizeof frame)
            return false;
        const int64_t end = now() + 500000;
        while (drain(frame) == 0)
            if (now() >= end)
                return false;
        return true;
    }
    /// The first of a transfer, for which two message objects are set up.
    bool initiate(int object, can_frame& frame) const
    {
        drain(frame);
        drain(frame);
        return exchange(0x40, object, frame);
    }

private:
    static int64_t now()
    {
        timeval time = {};
        gettimeofday(&time, nullptr);
        return int64_t{ time.tv_sec } * 1000000 + time.tv_usec;
    }

    const int m_socket;
};

// The same work for the master and for the bare loop; both say whether they could do it.
struct tTask {
    int items;
    bool onFullBus; // the bus is full when the work begins; otherwise a node answers
    bool (*master)();
    bool (*bare)(const CBareLoop& loop);
};

bool readValues()
{
    bool good = true;
    uint32_t value = 0;
    for (int n = 0; n < reads; ++n)
        good = sdo_read_32bit(node, 0x1000, 0, &value) == 0 && good;
    return good;
}
bool readValuesBare(const CBareLoop& loop)
{
    bool good = true;
    can_frame frame = {};
    for (int n = 0; n < reads; ++n)
        good = loop.initiate(0x1000, frame) && good;
    return good;
}

bool upload()
{
    static BYTE data[CCanBus::uploadSize + 1];
    short length = 0;
    return sdo_read(node, 0x2000, 0, &length, data, sizeof data) == 0 && length == CCanBus::uploadSize;
}
bool uploadBare(const CBareLoop& loop)
{
    can_frame frame = {};
    bool good = loop.initiate(0x2000, frame);
    frame.data[0] = 0;
    for (int toggle = 0; good && (frame.data[0] & 1) == 0; toggle ^= 0x10)
        good = loop.exchange(0x60 | toggle, 0, frame);
    return good;
}

bool takeFrames()
{
    return can_read_queue(0) == fullBus;
}
bool takeFramesBare(const CBareLoop& loop)
{
    can_frame frame = {};
    return loop.drain(frame, INT_MAX) == fullBus;
}

// Before each message is taken out of the queue, the socket is emptied.
bool readQueue()
{
    uint32_t id = 0;
    short length = 0;
    BYTE data[can_length_max];
    int messages = 0;
    while (cop_queue_read(&id, &length, data) == 0)
        ++messages;
    return messages == fullBus;
}
bool readQueueBare(const CBareLoop& loop)
{
    can_frame frame = {};
    int messages = 0;
    for (int taken = loop.drain(frame); messages < taken; taken += loop.drain(frame))
        ++messages;
    return messages == fullBus;
}

constexpr tTask readTask = { reads, false, readValues, readValuesBare };
constexpr tTask uploadTask = { CCanBus::uploadSize, false, upload, uploadBare };
constexpr tTask takeTask = { fullBus, true, takeFrames, takeFramesBare };
constexpr tTask queueTask = { fullBus, true, readQueue, readQueueBare };

// The seconds that the work took, and the least so far.
struct tTimes {
    double last = 0;
    double best = 1e9;

    template <typename Work>
    bool take(const CCanBus& bus, const tTask& task, Work work)
    {
        if (task.onFullBus && !bus.fill(fullBus))
            return false;
        const auto start = std::chrono::steady_clock::now();
        const bool good = work();
        last = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        best = std::min(best, last);
        return good;
    }
};

// Master and bare loop take turns, so that the machine treats both alike. "ofBare" compares their best times: 0.9 means
// that the master reaches nine tenths of the bare loop.
void compare(benchmark::State& state, TCanBus kind, const tTask& task)
{
    CCanBus bus(kind);
    if (!bus.isOpen())
        return state.SkipWithError("no vcan0 here; scripts/vcan/with-vcan has one");
    if (!task.onFullBus)
        bus.answer();
    tTimes own, bare;
    bool good = true;
    for (auto _ : state) {
        {
            const CMaster master;
            good = own.take(bus, task, task.master) && good;
        }
        const CBareLoop loop(bus.openNear());
        good = bare.take(bus, task, [&] { return task.bare(loop); }) && good;
        state.SetIterationTime(own.last);
    }
    if (!good)
        return state.SkipWithError("a transfer failed, or frames are missing");
    state.SetItemsProcessed(state.iterations() * task.items);
    state.counters["best"] = benchmark::Counter(task.items / own.best);
    state.counters["bestBare"] = benchmark::Counter(task.items / bare.best);
    state.counters["ofBare"] = benchmark::Counter(bare.best / own.best);
}

[[maybe_unused]] const bool registered = [] {
    struct {
        const char* name;
        const tTask& task;
    } const rows[] = { { "canReadValues", readTask },
                       { "canUpload", uploadTask },
                       { "canTakeFrames", takeTask },
                       { "canReadQueue", queueTask } };
    for (const auto& [name, task] : rows)
        for (const auto& [place, bus] : { std::pair("vcan0", busVcan0), std::pair("sockets", busSockets) })
            benchmark::RegisterBenchmark((std::string(name) + '/' + place).c_str(), compare, bus, task)
                ->Unit(benchmark::kMicrosecond)
                ->UseManualTime();
    return true;
}();

} // namespace
