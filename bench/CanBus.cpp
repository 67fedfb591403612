// The bus vcan0 for the benchmarks, with a node that answers at once.
// SPDX-License-Identifier: MIT
#include "CanBus.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <linux/can.h>
#include <linux/can/raw.h>
#include <net/if.h>
#include <pthread.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace
{

constexpr timeval receiveTimeout = { 0, 100000 }; // then the node sees that it is to end
constexpr canid_t requestId = 0x600 + CCanBus::node;
constexpr canid_t answerId = 0x580 + CCanBus::node;
constexpr int segmentSize = 7;
constexpr __u8 toggleBit = 0x10;
constexpr __u8 lastBit = 0x01;

can_frame frameOf(canid_t id, int firstByte)
{
    can_frame frame = {};
    frame.can_id = id;
    frame.len = CAN_MAX_DLEN;
    frame.data[0] = static_cast<__u8>(firstByte);
    return frame;
}

// The transfer that the node is in.
class CTransfer
{
public:
    can_frame answerTo(const can_frame& request)
    {
        switch (request.data[0] & 0xE0) {
        case 0x40:
            return initiateUpload(request);
        case 0x60:
            return uploadSegment(request.data[0] & toggleBit);
        case 0x20:
            m_position = 0;
            return initiated(request, 0x60);
        default:
            return downloadSegment(request);
        }
    }
    /// True when the last segment of a download has come, and the data are those of a long object.
    bool hasDownloaded() const { return m_downloaded; }

private:
    static can_frame initiated(const can_frame& request, int firstByte)
    {
        can_frame answer = frameOf(answerId, firstByte);
        std::memcpy(answer.data + 1, request.data + 1, 3); // index and sub-index
        return answer;
    }
    can_frame initiateUpload(const can_frame& request)
    {
        m_position = 0;
        const bool isNumber = request.data[1] == 0x00 && request.data[2] == 0x10;
        can_frame answer = initiated(request, isNumber ? 0x43 : 0x41);
        const uint32_t value = isNumber ? CCanBus::number : uint32_t{ CCanBus::longSize };
        std::memcpy(answer.data + 4, &value, sizeof value); // in the byte order of the bus, as all machines with vcan0
        return answer;
    }
    can_frame uploadSegment(int toggle)
    {
        const int count = std::min(CCanBus::longSize - m_position, segmentSize);
        const int last = m_position + count == CCanBus::longSize ? lastBit : 0;
        can_frame answer = frameOf(answerId, toggle | (segmentSize - count) << 1 | last);
        std::memcpy(answer.data + 1, CCanBus::longData().data() + m_position, static_cast<size_t>(count));
        m_position += count;
        return answer;
    }
    can_frame downloadSegment(const can_frame& request)
    {
        const int count = std::min(segmentSize - (request.data[0] >> 1 & 7), CCanBus::longSize - m_position);
        std::memcpy(m_received.data() + m_position, request.data + 1, static_cast<size_t>(count));
        m_position += count;
        m_downloaded =
            (request.data[0] & lastBit) != 0 && m_position == CCanBus::longSize && m_received == CCanBus::longData();
        return frameOf(answerId, 0x20 | (request.data[0] & toggleBit));
    }

    int m_position = 0;
    bool m_downloaded = false;
    std::array<uint8_t, CCanBus::longSize> m_received = {};
};

int openedSocket()
{
    const int descriptor = CCanBus::openSocket();
    if (descriptor < 0)
        throw std::runtime_error("no vcan0 here; scripts/vcan/with-vcan has one");
    return descriptor;
}

} // namespace

CCanBus::CCanBus() : m_socket(openedSocket())
{
    fcntl(m_socket, F_SETFL, 0); // blocks, with a time-out
    setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &receiveTimeout, sizeof receiveTimeout);
    const can_filter requests = { requestId, CAN_SFF_MASK };
    setsockopt(m_socket, SOL_CAN_RAW, CAN_RAW_FILTER, &requests, sizeof requests);
}

CCanBus::~CCanBus()
{
    m_ending = true;
    if (m_node.joinable())
        m_node.join();
    close(m_socket);
}

int CCanBus::openSocket()
{
    const int descriptor = socket(PF_CAN, SOCK_RAW, CAN_RAW);
    sockaddr_can address = {};
    address.can_family = AF_CAN;
    address.can_ifindex = static_cast<int>(if_nametoindex("vcan0"));
    if (address.can_ifindex != 0 &&
        bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0)
        return descriptor;
    close(descriptor);
    return -1;
}

bool CCanBus::send(uint32_t first, int messages) const
{
    can_frame frame = frameOf(messageId, 0);
    for (uint32_t n = first; n != first + static_cast<uint32_t>(messages); ++n) {
        std::memcpy(frame.data, &n, sizeof n);
        if (write(m_socket, &frame, sizeof frame) != sizeof frame)
            return false;
    }
    return true;
}

uint32_t CCanBus::numberOf(const uint8_t* data)
{
    uint32_t value = 0;
    std::memcpy(&value, data, sizeof value);
    return value;
}

const std::array<uint8_t, CCanBus::longSize>& CCanBus::longData()
{
    static const auto data = [] {
        std::array<uint8_t, longSize> bytes = {};
        for (size_t n = 0; n < bytes.size(); ++n)
            bytes[n] = static_cast<uint8_t>(n * 7 + n / 256); // no segment is like its neighbours
        return bytes;
    }();
    return data;
}

void CCanBus::answer()
{
    m_node = std::thread([this] { serve(); });
    // Its answers come at once, also where its thread shares one processor with a master that polls. Without that they
    // would come when the master's time slice ends, and both sides would only wait.
    const sched_param lowest = { sched_get_priority_min(SCHED_FIFO) };
    if (pthread_setschedparam(m_node.native_handle(), SCHED_FIFO, &lowest) != 0 &&
        std::thread::hardware_concurrency() == 1)
        throw std::runtime_error("with one processor the node needs the permission for SCHED_FIFO");
}

void CCanBus::serve()
{
    CTransfer transfer;
    can_frame request = {};
    while (!m_ending) {
        if (read(m_socket, &request, sizeof request) != sizeof request)
            continue;
        const can_frame answer = transfer.answerTo(request);
        if (transfer.hasDownloaded())
            m_downloaded = true;
        if (write(m_socket, &answer, sizeof answer) != sizeof answer)
            return;
    }
}
