// A TCP server on a free loopback port, in a thread of its own, since clients under test block while they talk to it.
// SPDX-License-Identifier: MIT
#include "LoopbackServer.h"

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include <poll.h>

CLoopbackServer::CLoopbackServer(tHandler handler) : m_handler(std::move(handler))
{
    m_port = bindToLoopback(m_listener);
    if (::listen(m_listener, SOMAXCONN) != 0)
        m_port = 0;
    m_thread = std::thread([this] { run(); });
}

CLoopbackServer::~CLoopbackServer()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    ::eventfd_write(m_wake, 1);
    m_thread.join();
    ::close(m_wake);
}

bool CLoopbackServer::refuse()
{
    {
        const std::lock_guard lock(m_mutex);
        m_refusing = true;
        ::eventfd_write(m_wake, 1);
    }
    return await([this] { return m_refused != nullptr && m_refused->port() != 0; });
}

void CLoopbackServer::settle()
{
    std::unique_lock lock(m_mutex);
    const unsigned long wanted = ++m_settleWanted;
    ::eventfd_write(m_wake, 1);
    m_changed.wait_for(lock, std::chrono::milliseconds(patience), [&] { return m_settled >= wanted; });
}

bool CLoopbackServer::awaitClosed()
{
    settle();
    return await([this] { return m_served && m_connections.empty(); });
}

bool CLoopbackServer::send(const tConnection& connection, std::string_view text)
{
    while (!text.empty()) {
        pollfd sockets[] = { { m_wake, POLLIN, 0 }, { connection.socket, POLLOUT, 0 } };
        ::poll(sockets, 2, -1);
        if (m_ending)
            return false;
        const auto sent = ::send(connection.socket, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN)
            return false;
        text.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(sent, 0)));
    }
    return true;
}

void CLoopbackServer::delay(std::chrono::milliseconds duration)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, duration, [this] { return m_ending.load(); });
}

void CLoopbackServer::close(tConnection& connection, bool abruptly)
{
    const linger discard = { 1, 0 };
    if (abruptly)
        ::setsockopt(connection.socket, SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
    ::close(std::exchange(connection.socket, -1));
}

void CLoopbackServer::run()
{
    while (!m_ending) {
        const unsigned long asked = settleWanted();
        std::vector<pollfd> sockets = { { m_wake, POLLIN, 0 }, { m_listener, POLLIN, 0 } };
        for (const tConnection& connection : m_connections)
            sockets.push_back({ connection.socket, POLLIN, 0 });
        ::poll(sockets.data(), sockets.size(), -1);
        auto ready = sockets.cbegin() + 2;
        for (tConnection& connection : m_connections)
            if ((ready++)->revents != 0)
                receive(connection);
        const bool quiet =
            std::all_of(sockets.cbegin() + 1, sockets.cend(), [](const pollfd& each) { return each.revents == 0; });
        update(quiet, asked);
    }
    for (tConnection& connection : m_connections)
        ::close(connection.socket);
    ::close(m_listener);
}

void CLoopbackServer::receive(tConnection& connection)
{
    char data[65536];
    const auto length = ::recv(connection.socket, data, sizeof data, 0);
    if (length <= 0)
        return close(connection);
    connection.pending.append(data, static_cast<std::size_t>(length));
    m_handler(connection);
}

unsigned long CLoopbackServer::settleWanted()
{
    const std::lock_guard lock(m_mutex);
    return m_settleWanted;
}

void CLoopbackServer::update(bool quiet, unsigned long calls)
{
    const std::lock_guard lock(m_mutex);
    m_connections.remove_if([](const tConnection& connection) { return connection.socket < 0; });
    for (int client = 0; m_listener >= 0 && (client = ::accept(m_listener, nullptr, nullptr)) >= 0;) {
        m_connections.push_back({ client, {}, 0 });
        m_served = true;
    }
    if (m_refusing && m_listener >= 0) {
        ::close(std::exchange(m_listener, -1));
        m_refused = std::make_unique<CRefusingPort>(m_port);
    }
    if (quiet)
        m_settled = calls;
    eventfd_t woken = 0;
    if (m_settled == m_settleWanted && !m_ending)
        ::eventfd_read(m_wake, &woken); // otherwise the next poll() returns at once
    m_changed.notify_all();
}
