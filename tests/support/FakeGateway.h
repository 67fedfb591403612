// A gateway that plays a script: it compares each command to the byte and gives the prepared answer.
// SPDX-License-Identifier: MIT
#pragma once

#include "GatewayAnswer.h"
#include "LoopbackServer.h"

#include <deque>
#include <optional>

/// Listens on a loopback port from construction to destruction and serves clients side by side, in its own thread.
///
///     CFakeGateway gateway;
///     gateway.expect("[#] 5 read 0x1000 0x0 u8\r\n", "[#] 0x1F\r\n");
///     ... let the client connect to `address` and `port()` and read ...
///     QVERIFY2(gateway.finished(), gateway.problem().c_str());
///
/// What is not expected is answered by closing the connection, so that no client waits for its time-out.
class CFakeGateway
{
public:
    static constexpr unsigned long address = INADDR_LOOPBACK; // host byte order
    /// Makes the answer to a line, line end included; runs in the gateway's thread.
    using tAnswerer = std::function<tGatewayAnswer(const std::string& line)>;

    unsigned short port() const { return m_server.port(); }

    /// Adds a step: `command` may hold several lines, or none, and "[#]" for its sequence number.
    void expect(std::string command, tGatewayAnswer answer)
    {
        const std::lock_guard lock(m_mutex);
        m_script.push_back({ std::move(command), std::move(answer) });
    }
    /// From now on, answers each line with what the function returns; the script is not played.
    void answerWith(tAnswerer answerer)
    {
        const std::lock_guard lock(m_mutex);
        m_answerer = std::move(answerer);
    }
    /// From now on, connecting is refused.
    bool refuse() { return m_server.refuse(); }
    /// Waits until every client has left; all that they sent is then in `received()`.
    bool awaitClosed() { return m_server.awaitClosed(); }

    /// The whole script was played and nothing else came, of all that clients have sent so far.
    bool finished() const
    {
        m_server.settle();
        const std::lock_guard lock(m_mutex);
        return m_script.empty() && m_problem.empty();
    }
    /// What differed first: the bytes awaited and those that came.
    std::string problem() const
    {
        m_server.settle();
        const std::lock_guard lock(m_mutex);
        return m_problem.empty() && !m_script.empty() ? "never came: " + m_script.front().command : m_problem;
    }
    /// All bytes that clients have sent so far.
    std::string received() const
    {
        m_server.settle();
        const std::lock_guard lock(m_mutex);
        return m_received;
    }
    /// The sequence number of the last command that was answered.
    long lastNumber() const
    {
        const std::lock_guard lock(m_mutex);
        return m_lastNumber;
    }

private:
    using tConnection = CLoopbackServer::tConnection;
    struct tStep {
        std::string command;
        tGatewayAnswer answer;
    };

    void serve(tConnection& connection)
    {
        std::unique_lock lock(m_mutex);
        m_received += connection.pending.substr(connection.seen);
        connection.seen = connection.pending.size();
        while (connection.socket >= 0 && !connection.pending.empty()) {
            const auto answer = m_answerer ? nextByLine(connection.pending) : nextByScript(connection.pending);
            connection.seen = connection.pending.size();
            if (!answer)
                return;
            const long number = m_lastNumber;
            lock.unlock();
            give(connection, *answer, number);
            lock.lock();
        }
    }
    /// The answer to the first line of `pending`, which it takes away; nothing while the line is incomplete.
    std::optional<tGatewayAnswer> nextByLine(std::string& pending)
    {
        const std::size_t end = pending.find('\n');
        if (end == std::string::npos)
            return std::nullopt;
        const std::string line = pending.substr(0, end + 1);
        pending.erase(0, end + 1);
        m_lastNumber = gatewayText::numberOf(line);
        return m_answerer(line);
    }
    /// The answer of the first step, when `pending` starts with its whole command; a hang-up when it never will.
    std::optional<tGatewayAnswer> nextByScript(std::string& pending)
    {
        const long number = gatewayText::numberOf(pending);
        const std::string awaited = m_script.empty() ? "" : gatewayText::numbered(m_script.front().command, number);
        if (awaited.empty() || (!pending.starts_with(awaited) && !awaited.starts_with(pending))) {
            m_problem += "awaited: " + awaited + " came: " + pending;
            pending.clear();
            return tGatewayAnswer("", tGatewayAnswer::hangUp);
        }
        if (pending.size() < awaited.size())
            return std::nullopt;
        const tGatewayAnswer answer = m_script.front().answer;
        m_script.pop_front();
        pending.erase(0, awaited.size());
        m_lastNumber = number;
        return answer;
    }
    void give(tConnection& connection, const tGatewayAnswer& answer, long number)
    {
        if (answer.delay.count() > 0)
            m_server.delay(answer.delay);
        const std::string text = gatewayText::numbered(answer.text, number);
        const std::size_t piece = (answer.how & tGatewayAnswer::byteByByte) != 0 ? 1 : text.size();
        for (std::size_t place = 0; place < text.size(); place += piece)
            m_server.send(connection, std::string_view(text).substr(place, piece));
        if ((answer.how & (tGatewayAnswer::hangUp | tGatewayAnswer::reset)) != 0)
            m_server.close(connection, (answer.how & tGatewayAnswer::reset) != 0);
    }

    mutable std::mutex m_mutex; // of all that follows
    std::deque<tStep> m_script;
    tAnswerer m_answerer;
    std::string m_received;
    std::string m_problem;
    long m_lastNumber = 0;
    mutable CLoopbackServer m_server{ [this](tConnection& connection) { serve(connection); } };
};
