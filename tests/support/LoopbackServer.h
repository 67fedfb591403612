// A TCP server on a free loopback port, in a thread of its own, since clients under test block while they talk to it.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include <arpa/inet.h>
#include <sys/eventfd.h>
#include <unistd.h>

/// Binds the TCP socket to a loopback port: any, or a certain one that was in use until now; closed connections may
/// linger there. @return the port; 0 if it is not available
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

    /// 0 if it is not available.
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

    explicit CLoopbackServer(tHandler handler);
    ~CLoopbackServer();
    CLoopbackServer(const CLoopbackServer&) = delete;
    CLoopbackServer& operator=(const CLoopbackServer&) = delete;

    /// 0 when there was no free port.
    unsigned short port() const { return m_port; }
    /// From the return on, connecting to the port is refused; open connections stay.
    bool refuse();
    /// Waits until the handler has been given all that clients sent before the call, and every client that connected or
    /// left is known. The handler must not call it.
    void settle();
    /// Waits until a client was here and all connections are closed again.
    bool awaitClosed();

    // For the handler, in the server's thread:

    /// Sends all of `text`; false if the client has left or the server ends.
    bool send(const tConnection& connection, std::string_view text);
    /// Waits for that time, or until the server ends.
    void delay(std::chrono::milliseconds duration);
    /// Closes the connection, with a reset if `abruptly`.
    void close(tConnection& connection, bool abruptly = false);

private:
    template <typename Condition>
    bool await(Condition condition)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::milliseconds(patience), condition);
    }
    void run();
    void receive(tConnection& connection);
    unsigned long settleWanted();
    /// Accepts the clients that wait and forgets those that left. `quiet`: poll() found nothing on any socket; `calls`:
    /// how often `settle` had been called before poll().
    void update(bool quiet, unsigned long calls);

    tHandler m_handler;
    int m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    const int m_wake = ::eventfd(0, EFD_NONBLOCK);
    unsigned short m_port = 0;
    std::atomic<bool> m_ending = false;
    std::mutex m_mutex; // guards what follows, and m_ending
    std::condition_variable m_changed;
    bool m_refusing = false;
    std::list<tConnection> m_connections;
    bool m_served = false;
    unsigned long m_settleWanted = 0; // calls of `settle`, and how many of them may return
    unsigned long m_settled = 0;
    std::unique_ptr<CRefusingPort> m_refused; // in place of the listener
    std::thread m_thread;
};
