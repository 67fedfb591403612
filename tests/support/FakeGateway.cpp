// A gateway that plays a script: it compares each command to the byte and gives the prepared answer.
// SPDX-License-Identifier: MIT
#include "FakeGateway.h"

void CFakeGateway::expect(std::string command, tGatewayAnswer answer)
{
    const std::lock_guard lock(m_mutex);
    m_script.push_back({ std::move(command), std::move(answer) });
}

void CFakeGateway::answerWith(tAnswerer answerer)
{
    const std::lock_guard lock(m_mutex);
    m_answerer = std::move(answerer);
}

bool CFakeGateway::finished() const
{
    m_server.settle();
    const std::lock_guard lock(m_mutex);
    return m_script.empty() && m_problem.empty();
}

std::string CFakeGateway::problem() const
{
    m_server.settle();
    const std::lock_guard lock(m_mutex);
    return m_problem.empty() && !m_script.empty() ? "never came: " + m_script.front().command : m_problem;
}

std::string CFakeGateway::received() const
{
    m_server.settle();
    const std::lock_guard lock(m_mutex);
    return m_received;
}

long CFakeGateway::lastNumber() const
{
    const std::lock_guard lock(m_mutex);
    return m_lastNumber;
}

void CFakeGateway::serve(tConnection& connection)
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

std::optional<tGatewayAnswer> CFakeGateway::nextByLine(std::string& pending)
{
    const std::size_t end = pending.find('\n');
    if (end == std::string::npos)
        return std::nullopt;
    const std::string line = pending.substr(0, end + 1);
    pending.erase(0, end + 1);
    m_lastNumber = gatewayText::numberOf(line);
    return m_answerer(line);
}

std::optional<tGatewayAnswer> CFakeGateway::nextByScript(std::string& pending)
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

void CFakeGateway::give(tConnection& connection, const tGatewayAnswer& answer, long number)
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
