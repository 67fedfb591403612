// SDO transfers and the receive queue of the CANopen master, compared with bare loops that make the same system calls.
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
constexpr int reads = 20;          // values that are read in one iteration
constexpr int waitingFrames = 200; // frames in the socket before the work begins; every socket has room for them

// The master on the bus.
class CMaster
{
public:
    CMaster()
    {
        _can_param param = { "vcan0", PF_CAN, SOCK_RAW, CAN_RAW };
        cop_init(-1, &param, 0);
        cop_queue_clear(); // cop_exit keeps the messages
    }
    ~CMaster() { cop_exit(); }
    CMaster(const CMaster&) = delete;
    CMaster& operator=(const CMaster&) = delete;
};

// The system calls that the master makes, and nothing else.
class CBareLoop
{
public:
    explicit CBareLoop(int descriptor) : m_socket(descriptor) {}
    ~CBareLoop() { close(m_socket); }
    CBareLoop(const CBareLoop&) = delete;
    CBareLoop& operator=(const CBareLoop&) = delete;

    /// Reads one frame; false if there is none.
    bool take(can_frame& frame) const
    {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(m_socket, &readable);
        timeval immediately = {};
        return select(m_socket + 1, &readable, nullptr, nullptr, &immediately) > 0 &&
               read(m_socket, &frame, sizeof frame) == sizeof frame;
    }
    /// Reads the frames that are there, at most `limit`, as the master does before each transfer and while it waits for
    /// an answer. @return their number
    int drain(can_frame& last, int limit = 100) const
    {
        int frames = 0;
        while (frames < limit && take(last))
            ++frames;
        return frames;
    }
    /// Sends a request and waits for its answer, half a second at most.
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
    /// The first exchange of a transfer. The master sets up two message objects for it and empties the socket.
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

// The same work for the master and for the bare loop; both return false if they could not do it.
struct tTask {
    int items;
    bool framesWait; // `waitingFrames` are in the socket when the work begins; otherwise a node answers
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
    return can_read_queue(0) == waitingFrames;
}
bool takeFramesBare(const CBareLoop& loop)
{
    can_frame frame = {};
    return loop.drain(frame, INT_MAX) == waitingFrames;
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
    return messages == waitingFrames;
}
bool readQueueBare(const CBareLoop& loop)
{
    can_frame frame = {};
    int messages = 0;
    for (int taken = loop.drain(frame); messages < taken; taken += loop.drain(frame))
        ++messages;
    return messages == waitingFrames;
}

constexpr tTask readTask = { reads, false, readValues, readValuesBare };
constexpr tTask uploadTask = { CCanBus::uploadSize, false, upload, uploadBare };
constexpr tTask takeTask = { waitingFrames, true, takeFrames, takeFramesBare };
constexpr tTask queueTask = { waitingFrames, true, readQueue, readQueueBare };

// The seconds that the work took the last time, and the shortest time so far.
struct tTimes {
    double last = 0;
    double best = 1e9;

    template <typename Work>
    bool take(const CCanBus& bus, const tTask& task, Work work)
    {
        if (task.framesWait && !bus.fill(waitingFrames))
            return false;
        const auto start = std::chrono::steady_clock::now();
        const bool good = work();
        last = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        best = std::min(best, last);
        return good;
    }
};

// Master and bare loop take turns, so that other load on the machine meets both. "ofBare" compares their best times:
// with 0.9 the master is nine tenths as fast as the bare loop.
void compare(benchmark::State& state, TCanBus kind, const tTask& task)
{
    CCanBus bus(kind);
    if (!bus.isOpen())
        return state.SkipWithError("no vcan0 here; scripts/vcan/with-vcan has one");
    if (!task.framesWait)
        bus.answer();
    tTimes master, bare;
    bool good = true;
    for (auto _ : state) {
        {
            const CMaster started;
            good = master.take(bus, task, task.master) && good;
        }
        const CBareLoop loop(bus.openMasterSocket());
        good = bare.take(bus, task, [&] { return task.bare(loop); }) && good;
        state.SetIterationTime(master.last);
    }
    if (!good)
        return state.SkipWithError("a transfer failed, or frames are missing");
    state.SetItemsProcessed(state.iterations() * task.items);
    state.counters["best"] = benchmark::Counter(task.items / master.best);
    state.counters["bestBare"] = benchmark::Counter(task.items / bare.best);
    state.counters["ofBare"] = benchmark::Counter(bare.best / master.best);
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
