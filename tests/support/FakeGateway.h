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
/// An unexpected command is answered by closing the connection, so that no client waits for its time-out.
class CFakeGateway
{
public:
    static constexpr unsigned long address = INADDR_LOOPBACK; // host byte order
    /// Makes the answer to a line, line end included; runs in the gateway's thread.
    using tAnswerer = std::function<tGatewayAnswer(const std::string& line)>;

    unsigned short port() const { return m_server.port(); }

    /// Adds a step: `command` may hold several lines, or none, and "[#]" for its sequence number.
    void expect(std::string command, tGatewayAnswer answer);
    /// From now on, answers each line with what the function returns; the script is not played.
    void answerWith(tAnswerer answerer);
    /// From now on, connecting is refused.
    bool refuse() { return m_server.refuse(); }
    /// Waits until every client has left; all that they sent is then in `received()`.
    bool awaitClosed() { return m_server.awaitClosed(); }

    /// True if clients have sent the whole script so far, and nothing else.
    bool finished() const;
    /// The first difference: the bytes expected and those that came.
    std::string problem() const;
    /// All bytes that clients have sent so far.
    std::string received() const;
    /// The sequence number of the last command that was answered.
    long lastNumber() const;

private:
    using tConnection = CLoopbackServer::tConnection;
    struct tStep {
        std::string command;
        tGatewayAnswer answer;
    };

    void serve(tConnection& connection);
    /// The answer to the first line of `pending`, which it takes away; nothing while the line is incomplete.
    std::optional<tGatewayAnswer> nextByLine(std::string& pending);
    /// The answer of the first step if `pending` starts with its whole command; a hang-up if the bytes differ from it.
    std::optional<tGatewayAnswer> nextByScript(std::string& pending);
    void give(tConnection& connection, const tGatewayAnswer& answer, long number);

    mutable std::mutex m_mutex; // guards all that follows
    std::deque<tStep> m_script;
    tAnswerer m_answerer;
    std::string m_received;
    std::string m_problem;
    long m_lastNumber = 0;
    mutable CLoopbackServer m_server{ [this](tConnection& connection) { serve(connection); } };
};
