// The ASCII gateway in front of the simulated devices: a TCP server for several clients.
// SPDX-License-Identifier: MIT
#pragma once

#include "gateway/GatewayConnection.h"

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>

/// Lives in one thread with an event loop; `listen` is called there. The network is borrowed.
class CSimulatedGateway : public QObject
{
    Q_OBJECT

public:
    /// The most clients at a time; further ones are disconnected at once, so that nobody takes all descriptors.
    static constexpr int clientLimit = 100;

    explicit CSimulatedGateway(CSimulatedNetwork& network, QObject* parent = nullptr);

    /// Of several faults that hit a command, the first counts. Set before the first client connects.
    void setFaults(const QList<tFault>& faults) { m_context.faults = faults; }

    /// Called with every line of the log, in the gateway's thread. Set before the first client connects.
    void setLog(const tLog& log) { m_context.log = log; }

    /// Starts to accept clients. Port 0 takes any free one, which `port()` then returns.
    /// @return an empty text, or why it cannot ("The bound address is already in use")
    QString listen(quint16 port, const QHostAddress& address = QHostAddress::LocalHost);

    quint16 port() const { return m_server.serverPort(); }

private:
    void accept();

    CGatewayCommands m_commands;
    tGatewayContext m_context;
    QTcpServer m_server;
    int m_clients = 0; // accepted so far
};
