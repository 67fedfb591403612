// A TCP server on a free loopback port, in a thread of its own, since clients under test block while they talk to it.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

/// Binds the TCP socket to a loopback port: any, or a certain one that was in use until now; connections that have ended
/// may linger there. @return the port; 0 when it could not be had
inline unsigned short bindToLoopback(int socket, unsigned short port = 0)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* anyAddress = reinterpret_cast<sockaddr*>(&address);
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    if (::bind(socket, anyAddress, size) != 0 || ::getsockname(socket, anyAddress, &size) != 0)
        return 0;
    return ntohs(address.sin_port);
}

/// A loopback port that refuses connections: bound, so that no other process gets it, but without a listener.
class CRefusingPort
{
public:
    /// Any port, or a certain one that was in use until now.
    explicit CRefusingPort(unsigned short port = 0) : m_port(bindToLoopback(m_socket, port)) {}
    ~CRefusingPort() { ::close(m_socket); }
    CRefusingPort(const CRefusingPort&) = delete;
    CRefusingPort& operator=(const CRefusingPort&) = delete;

    /// 0 when it could not be had.
    unsigned short port() const { return m_port; }

private:
    const int m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const unsigned short m_port;
};

class CLoopbackServer
{
public:
    struct tConnection {
        int socket;           // -1: closed
        std::string pending;  // received and not yet taken by the handler
        std::size_t seen = 0; // how much of it the handler has looked at; kept for the handler
    };
    /// Called in the server's thread when bytes were added to `pending`; takes what it understands.
    using tHandler = std::function<void(tConnection&)>;

    explicit CLoopbackServer(tHandler handler) : m_handler(std::move(handler))
    {
        m_port = bindToLoopback(m_listener);
        if (::listen(m_listener, SOMAXCONN) != 0)
            m_port = 0;
        m_thread = std::thread([this] { run(); });
    }
    ~CLoopbackServer()
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
    CLoopbackServer(const CLoopbackServer&) = delete;
    CLoopbackServer& operator=(const CLoopbackServer&) = delete;

    /// 0 when there was no free port.
    unsigned short port() const { return m_port; }
    /// From the return on, connecting to the port is refused; open connections stay.
    bool refuse()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_refusing = true;
            ::eventfd_write(m_wake, 1);
        }
        return await([this] { return m_refused != nullptr && m_refused->port() != 0; });
    }
    /// Returns when the handler has had all that clients sent before the call, and every client that connected or left
    /// is known. Not for the handler.
    void settle()
    {
        std::unique_lock lock(m_mutex);
        const unsigned long wanted = ++m_settleWanted;
        ::eventfd_write(m_wake, 1);
        m_changed.wait_for(lock, std::chrono::milliseconds(patience), [&] { return m_settled >= wanted; });
    }
    /// Waits until a client was here and all connections are closed again.
    bool awaitClosed()
    {
        settle();
        return await([this] { return m_served && m_connections.empty(); });
    }

    // For the handler, in the server's thread:

    /// Sends all of `text`; false when the client is gone or the server ends.
    bool send(const tConnection& connection, std::string_view text)
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
    /// Waits; shorter when the server ends.
    void delay(std::chrono::milliseconds duration)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, duration, [this] { return m_ending.load(); });
    }
    /// Closes in order, or with a reset when `abruptly`.
    void close(tConnection& connection, bool abruptly = false)
    {
        const linger discard = { 1, 0 };
        if (abruptly)
            ::setsockopt(connection.socket, SOL_SOCKET, SO_LINGER, &discard, sizeof discard);
        ::close(std::exchange(connection.socket, -1));
    }

private:
    template <typename Condition>
    bool await(Condition condition)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::milliseconds(patience), condition);
    }
    void run()
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
    void receive(tConnection& connection)
    {
        char data[65536];
        const auto length = ::recv(connection.socket, data, sizeof data, 0);
        if (length <= 0)
            return close(connection);
        connection.pending.append(data, static_cast<std::size_t>(length));
        m_handler(connection);
    }
    unsigned long settleWanted()
    {
        const std::lock_guard lock(m_mutex);
        return m_settleWanted;
    }
    /// Takes the clients that wait and forgets those that left. `quiet`: no socket had anything when they were looked at;
    /// `calls`: how often `settle` had been called before.
    void update(bool quiet, unsigned long calls)
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
            ::eventfd_read(m_wake, &woken); // else the next look at the sockets is at once
        m_changed.notify_all();
    }

    tHandler m_handler;
    int m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    const int m_wake = ::eventfd(0, EFD_NONBLOCK);
    unsigned short m_port = 0;
    std::atomic<bool> m_ending = false;
    std::mutex m_mutex; // of what follows, and of m_ending
    std::condition_variable m_changed;
    bool m_refusing = false;
    std::list<tConnection> m_connections;
    bool m_served = false;
    unsigned long m_settleWanted = 0; // calls of `settle`, and how many of them have been met
    unsigned long m_settled = 0;
    std::unique_ptr<CRefusingPort> m_refused; // in place of the listener
    std::thread m_thread;
};
