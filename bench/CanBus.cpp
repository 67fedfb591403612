// A CAN bus for the benchmarks, with a node that answers at once.
// SPDX-License-Identifier: MIT
#include "CanBus.h"

#include <algorithm>
#include <cstring>

#include <fcntl.h>
#include <linux/can.h>
#include <net/if.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

extern "C" {
int __real_socket(int family, int type, int protocol);
int __real_bind(int descriptor, const sockaddr* address, socklen_t size);
int __wrap_socket(int family, int type, int protocol);
int __wrap_bind(int descriptor, const sockaddr* address, socklen_t size);
}

namespace
{

constexpr timeval receiveTimeout = { 0, 100000 }; // then the node sees that it is to end
constexpr canid_t answerId = 0x585;
constexpr int segmentSize = 7;

int localSocket = -1; // given to the CAN controller in place of a CAN socket; -1: it gets a CAN socket

int openVcan()
{
    const int descriptor = __real_socket(PF_CAN, SOCK_RAW, CAN_RAW);
    sockaddr_can address = {};
    address.can_family = AF_CAN;
    address.can_ifindex = static_cast<int>(if_nametoindex("vcan0"));
    if (address.can_ifindex != 0 &&
        __real_bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
        return descriptor;
    close(descriptor);
    return -1;
}

can_frame answerFrame(int command)
{
    can_frame frame = {};
    frame.can_id = answerId;
    frame.len = CAN_MAX_DLEN;
    frame.data[0] = static_cast<__u8>(command);
    return frame;
}

} // namespace

int __wrap_socket(int family, int type, int protocol)
{
    return family == PF_CAN && localSocket >= 0 ? dup(localSocket) : __real_socket(family, type, protocol);
}

int __wrap_bind(int descriptor, const sockaddr* address, socklen_t size)
{
    return address->sa_family == AF_CAN && localSocket >= 0 ? 0 : __real_bind(descriptor, address, size);
}

CCanBus::CCanBus(TCanBus bus)
{
    int ends[2] = { -1, -1 };
    if (bus == busVcan0)
        ends[1] = openVcan();
    else if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends) == 0)
        localSocket = ends[0];
    m_masterSocket = ends[0];
    m_nodeSocket = ends[1];
    setsockopt(m_nodeSocket, SOL_SOCKET, SO_RCVTIMEO, &receiveTimeout, sizeof receiveTimeout);
}

CCanBus::~CCanBus()
{
    m_ending = true;
    if (m_node.joinable())
        m_node.join();
    close(m_nodeSocket);
    close(m_masterSocket);
    localSocket = -1;
}

int CCanBus::openMasterSocket() const
{
    const int descriptor = m_masterSocket >= 0 ? dup(m_masterSocket) : openVcan();
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
    return descriptor;
}

bool CCanBus::fill(int frames) const
{
    can_frame frame = answerFrame(0);
    frame.can_id = 0x181;
    for (int n = 0; n < frames; ++n)
        if (write(m_nodeSocket, &frame, sizeof frame) != sizeof frame)
            return false;
    return true;
}

void CCanBus::answer()
{
    m_node = std::thread([this] { serve(); });
}

void CCanBus::serve() const
{
    can_frame request = {};
    can_frame answer = {};
    int rest = 0;
    while (!m_ending) {
        if (read(m_nodeSocket, &request, sizeof request) != sizeof request)
            continue;
        if (request.data[0] == 0x40) {
            const bool atOnce = request.data[1] == 0x00 && request.data[2] == 0x10;
            answer = answerFrame(atOnce ? 0x43 : 0x41);
            std::memcpy(answer.data + 1, request.data + 1, 3);
            rest = uploadSize;
        } else {
            const int count = std::min(rest, segmentSize);
            rest -= count;
            answer = answerFrame((request.data[0] & 0x10) | (segmentSize - count) << 1 | (rest == 0 ? 1 : 0));
        }
        if (write(m_nodeSocket, &answer, sizeof answer) != sizeof answer)
            return;
    }
}
