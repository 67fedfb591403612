// TCP connections within the machine, for the benchmarks.
// SPDX-License-Identifier: MIT
#include "Loopback.h"

#include <stdexcept>
#include <utility>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace
{

sockaddr_in loopbackAddress(uint16_t port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

CDescriptor::CDescriptor(CDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

CDescriptor::~CDescriptor()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

COneProcessor::COneProcessor()
{
    sched_getaffinity(0, sizeof m_before, &m_before);
    cpu_set_t one = {};
    CPU_SET(static_cast<size_t>(sched_getcpu()), &one);
    sched_setaffinity(0, sizeof one, &one);
}

COneProcessor::~COneProcessor()
{
    sched_setaffinity(0, sizeof m_before, &m_before);
}

CDescriptor listenOnLoopback(uint16_t& port)
{
    CDescriptor listener(socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address = loopbackAddress(0);
    socklen_t size = sizeof address;
    auto* any = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener.get(), any, size) != 0 || listen(listener.get(), 1) != 0 ||
        getsockname(listener.get(), any, &size) != 0)
        throw std::runtime_error("no socket can listen");
    port = ntohs(address.sin_port);
    return listener;
}

CDescriptor connectToLoopback(uint16_t port)
{
    CDescriptor client(socket(AF_INET, SOCK_STREAM, 0));
    const sockaddr_in address = loopbackAddress(port);
    if (connect(client.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("the server cannot be reached");
    return client;
}

bool sendAll(int socket, const char* bytes, size_t size)
{
    while (size > 0) {
        const ssize_t sent = send(socket, bytes, size, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        bytes += sent;
        size -= static_cast<size_t>(sent);
    }
    return true;
}
