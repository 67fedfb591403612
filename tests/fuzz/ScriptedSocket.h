// The socket of the gateway client, which plays the bytes of a fuzzer: any bytes, pauses, failing calls and closings.
// For one source of a program that is linked with --wrap for the calls of SystemCalls.h and clock_gettime.
// SPDX-License-Identifier: MIT
#pragma once

#include "FuzzInput.h"
#include "SystemCalls.h"

#include <cerrno>
#include <ctime>
#include <string>
#include <vector>

/// What the gateway does next. In the input, bytes below 0xFB stand for themselves.
enum tKind : uint8_t { aByte, aFailure = 0xFF, theEnd = 0xFE, theNumber = 0xFD, aPause = 0xFC, anyByte = 0xFB };
struct tEvent {
    tKind kind;
    uint8_t value; // of the byte; of a pause, in steps of 4 ms
    static constexpr int pauseStep = 4;
};

/// The only socket; its clock moves by pauses, and with every byte.
class CScriptedSocket
{
public:
    static constexpr int descriptor = 900;

    explicit CScriptedSocket(CFuzzInput& input, bool closesAtEnd, int perByte)
        : m_input(input), m_closesAtEnd(closesAtEnd), m_perByte(perByte)
    {
        m_calls.socket = [](auto...) { return descriptor; };
        m_calls.connect = [](auto...) { return 0; };
        m_calls.close = [this](int which) {
            closed = closed || which == descriptor;
            return which == descriptor ? 0 : __real_close(which);
        };
        m_calls.send = [this](int, const void* data, size_t length, int) { return send(data, length); };
        m_calls.select = [this](int, fd_set*, fd_set*, fd_set*, timeval* rest) { return select(*rest); };
        m_calls.recv = [this](int, void* data, size_t, int) { return receive(*static_cast<char*>(data)); };
        current = this;
    }
    ~CScriptedSocket() { current = nullptr; }
    CScriptedSocket(const CScriptedSocket&) = delete;
    CScriptedSocket& operator=(const CScriptedSocket&) = delete;

    static inline CScriptedSocket* current = nullptr;
    int64_t milliseconds = 0;
    bool closed = false;
    bool failsToSend = false;
    std::string sent;           // the last command
    std::vector<tEvent> events; // since then
    bool isSilentAtEnd() const { return !m_closesAtEnd; }
    int perByte() const { return m_perByte; }

private:
    ssize_t send(const void* data, size_t length)
    {
        if (failsToSend) {
            errno = EPIPE;
            return -1;
        }
        sent.assign(static_cast<const char*>(data), length);
        events.clear();
        m_number.clear();
        return static_cast<ssize_t>(length);
    }
    void takeEvent()
    {
        if (!m_number.empty()) {
            m_next = { aByte, static_cast<uint8_t>(m_number.front()) };
            m_number.erase(0, 1);
            return;
        }
        if (m_input.atEnd() || m_ended) {
            m_next = { m_closesAtEnd || m_ended ? theEnd : aPause, 0xFF };
            return;
        }
        const uint8_t byte = m_input.byte();
        m_next = { byte >= anyByte ? tKind(byte) : aByte, byte };
        if (m_next.kind == anyByte)
            m_next = { aByte, m_input.byte() };
        if (m_next.kind == aPause)
            m_next.value = m_input.byte();
        m_ended = m_ended || m_next.kind == theEnd;
        if (m_next.kind == theNumber) {
            m_number = sent.substr(1, sent.find(']') - 1);
            takeEvent();
        }
    }
    int select(timeval& rest)
    {
        int64_t left = rest.tv_sec * int64_t{ 1000 } + rest.tv_usec / 1000;
        for (takeEvent(); m_next.kind == aPause; takeEvent()) {
            events.push_back(m_next);
            const int64_t pause = m_next.value * tEvent::pauseStep;
            milliseconds += std::min(pause, left);
            left -= pause;
            if (left < 0) {
                rest = {};
                return 0;
            }
        }
        rest.tv_sec = left / 1000;
        rest.tv_usec = left % 1000 * 1000;
        return 1;
    }
    ssize_t receive(char& byte)
    {
        events.push_back(m_next);
        milliseconds += m_perByte;
        if (m_next.kind == theEnd)
            return 0;
        errno = ECONNRESET;
        if (m_next.kind == aFailure)
            return -1;
        byte = static_cast<char>(m_next.value);
        return 1;
    }

    CFuzzInput& m_input;
    const bool m_closesAtEnd;
    const int m_perByte;
    bool m_ended = false;
    tEvent m_next = {};
    std::string m_number; // still to come
    CSystemCalls m_calls;
};

extern "C" int __real_clock_gettime(clockid_t clock, timespec* now);
extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now);
extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* now)
{
    const CScriptedSocket* socket = CScriptedSocket::current;
    if (socket == nullptr || clock != CLOCK_MONOTONIC)
        return __real_clock_gettime(clock, now);
    *now = { socket->milliseconds / 1000, socket->milliseconds % 1000 * 1000000 };
    return 0;
}
