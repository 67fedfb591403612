// A gateway for the benchmarks: it answers each line at once, and always the same.
// SPDX-License-Identifier: MIT
#pragma once

#include "Loopback.h"

#include <string>
#include <thread>

/// Serves one client after the other: answers each line with `answer`, after the number that the line has in brackets.
class CLineServer
{
public:
    explicit CLineServer(std::string answer);
    ~CLineServer();
    CLineServer(const CLineServer&) = delete;
    CLineServer& operator=(const CLineServer&) = delete;

    uint16_t port() const { return m_port; }
    /// The line answered last, while no client is connected or waits for an answer.
    const std::string& lastLine() const { return m_line; }

private:
    void run();
    bool readLine(int client);
    bool answerLine(int client) const;

    const std::string m_answer;
    uint16_t m_port = 0;
    const CDescriptor m_listener;
    std::string m_received;
    std::string m_line;
    std::thread m_thread;
};
