// A gateway for the benchmarks.
// SPDX-License-Identifier: MIT
#include "LineServer.h"

#include <sys/socket.h>

CLineServer::CLineServer(std::string answer)
    : m_answer(" " + std::move(answer) + "\r\n"), m_listener(listenOnLoopback(m_port))
{
    m_thread = std::thread([this] { run(); });
}

CLineServer::~CLineServer()
{
    shutdown(m_listener.get(), SHUT_RDWR); // ends accept
    m_thread.join();
}

void CLineServer::run()
{
    while (true) {
        const CDescriptor client(accept(m_listener.get(), nullptr, nullptr));
        if (client.get() < 0)
            return;
        while (readLine(client.get()) && answerLine(client.get())) {
        }
    }
}

// A client sends the next line only when it has the answer to the one before.
bool CLineServer::readLine(int client)
{
    m_received.clear();
    char bytes[2048];
    while (m_received.empty() || m_received.back() != '\n') {
        const ssize_t count = recv(client, bytes, sizeof bytes, 0);
        if (count <= 0)
            return false;
        m_received.append(bytes, static_cast<size_t>(count));
    }
    m_line = m_received;
    return true;
}

bool CLineServer::answerLine(int client) const
{
    const std::string text = m_line.substr(0, m_line.find(']') + 1) + m_answer;
    return sendAll(client, text.data(), text.size());
}
