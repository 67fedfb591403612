// The ASCII gateway in front of the simulated devices: a TCP server for several clients.
// SPDX-License-Identifier: MIT
#include "gateway/SimulatedGateway.h"

CSimulatedGateway::CSimulatedGateway(CSimulatedNetwork& network, QObject* parent)
    : QObject(parent), m_commands(network), m_context{ m_commands, {}, {} }, m_server(this)
{
    connect(&m_server, &QTcpServer::newConnection, this, &CSimulatedGateway::accept);
}

QString CSimulatedGateway::listen(quint16 port, const QHostAddress& address)
{
    return m_server.listen(address, port) ? QString() : m_server.errorString();
}

void CSimulatedGateway::accept()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        const QByteArray name = "client " + QByteArray::number(++m_clients);
        if (findChildren<CGatewayConnection*>(Qt::FindDirectChildrenOnly).size() < clientLimit) {
            new CGatewayConnection(socket, m_context, name, this);
            continue;
        }
        if (m_context.log)
            m_context.log(name + " refused, since " + QByteArray::number(clientLimit) + " are connected");
        delete socket;
    }
}
