// A TCP server on a free loopback port, in a thread of its own, since clients under test block while they talk to it.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
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
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* anyAddress = reinterpret_cast<sockaddr*>(&address);
        if (::bind(m_listener, anyAddress, size) == 0 && ::listen(m_listener, SOMAXCONN) == 0 &&
            ::getsockname(m_listener, anyAddress, &size) == 0)
            m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { run(); });
    }
    ~CLoopbackServer()
    {
        m_ending = true;
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
        m_refusing = true;
        ::eventfd_write(m_wake, 1);
        return await([this] { return m_listener < 0; });
    }
    /// Waits until a client was here and all connections are closed again; false after 5 s.
    bool awaitClosed()
    {
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
        pollfd ending = { m_wake, POLLIN, 0 };
        ::poll(&ending, 1, static_cast<int>(duration.count()));
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
        return m_changed.wait_for(lock, std::chrono::seconds(5), condition);
    }
    void run()
    {
        while (!m_ending) {
            std::vector<pollfd> sockets = { { m_wake, POLLIN, 0 }, { m_listener, POLLIN, 0 } };
            for (const tConnection& connection : m_connections)
                sockets.push_back({ connection.socket, POLLIN, 0 });
            ::poll(sockets.data(), sockets.size(), -1);
            auto ready = sockets.cbegin() + 2;
            for (tConnection& connection : m_connections)
                if ((ready++)->revents != 0)
                    receive(connection);
            update(sockets[1].revents != 0);
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
    /// Takes a new client when one is `waiting`, forgets those that left, stops listening when asked to.
    void update(bool waiting)
    {
        const std::lock_guard lock(m_mutex);
        m_connections.remove_if([](const tConnection& connection) { return connection.socket < 0; });
        if (waiting && m_listener >= 0) {
            m_connections.push_back({ ::accept(m_listener, nullptr, nullptr), {}, 0 });
            m_served = true;
        }
        if (m_refusing && m_listener >= 0) {
            ::close(std::exchange(m_listener, -1));
            eventfd_t woken = 0;
            ::eventfd_read(m_wake, &woken);
        }
        m_changed.notify_all();
    }

    tHandler m_handler;
    int m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
    const int m_wake = ::eventfd(0, 0);
    unsigned short m_port = 0;
    std::atomic<bool> m_ending = false;
    std::atomic<bool> m_refusing = false;
    std::mutex m_mutex; // of what follows, and of the end of m_listener
    std::condition_variable m_changed;
    std::list<tConnection> m_connections;
    bool m_served = false;
    std::thread m_thread;
};
