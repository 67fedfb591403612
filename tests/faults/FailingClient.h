// System calls of the gateway client that fail, and those that follow with a time-out that costs little.
// SPDX-License-Identifier: MIT
#pragma once

#include "SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <map>

/// Counts the calls while it lives; the `nth` of a kind fails, or all from then on, or is a send of too few bytes.
class CFailingClient
{
public:
    enum tCall { Socket, Connect, Send, Select, Recv, Close };
    struct tFault {
        tCall call;
        int nth = 1;
        int error = 0; ///< 0: a short send
        bool forEver = false;
    };

    CFailingClient()
    {
        m_calls.socket = [this](auto... given) { return call<int>(Socket, __real_socket, given...); };
        m_calls.connect = [this](auto... given) { return call<int>(Connect, __real_connect, given...); };
        m_calls.recv = [this](auto... given) { return call<ssize_t>(Recv, __real_recv, given...); };
        m_calls.send = [this](int socket, const void* data, size_t length, int flags) {
            const bool isShort = m_fault.call == Send && m_fault.error == 0 && m_count[Send] + 1 == m_fault.nth;
            return call<ssize_t>(Send, __real_send, socket, data, isShort ? length / 2 : length, flags);
        };
        m_calls.select = [this](auto... given) { return select(given...); };
        m_calls.close = [this](int descriptor) { // Linux releases the descriptor also when it reports an error
            const int closed = __real_close(descriptor);
            return call<int>(
                Close, [closed](int) { return closed; }, descriptor);
        };
    }

    void arm(const tFault& fault)
    {
        m_fault = fault;
        m_count.clear();
        m_fired = 0;
    }
    void heal() { arm({ Socket, 0 }); }
    int count(tCall call) { return m_count[call]; }
    bool hasFired() const { return m_fired > 0; }

private:
    template <typename Result, typename Real, typename... Given>
    Result call(tCall call, Real real, Given... given)
    {
        const int nth = ++m_count[call];
        const bool due =
            call == m_fault.call && m_fault.nth > 0 && (nth == m_fault.nth || (m_fault.forEver && nth > m_fault.nth));
        m_fired += due ? 1 : 0;
        if (!due || m_fault.error == 0)
            return real(given...);
        errno = m_fault.error;
        return -1;
    }

    // What does not come after a fault is awaited for 5 ms, and not after the third receive that failed.
    int select(int count, fd_set* read, fd_set* write, fd_set* except, timeval* rest)
    {
        if (m_fired > 0)
            *rest = { 0, m_fault.call == Recv && m_fired > 2 ? 0 : 5'000 };
        if (m_fault.call == Recv && m_fired > 2)
            return 0;
        return call<int>(Select, __real_select, count, read, write, except, rest);
    }

    tFault m_fault = { Socket, 0 };
    std::map<tCall, int> m_count;
    int m_fired = 0;
    CSystemCalls m_calls;
};
