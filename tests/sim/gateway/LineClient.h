// A client of the gateway that speaks in lines.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QByteArray>
#include <QString>
#include <QTcpSocket>

/// A client that blocks its thread; the gateway has to run in another thread or process.
class CLineClient
{
public:
    explicit CLineClient(quint16 port)
    {
        m_socket.connectToHost(QStringLiteral("127.0.0.1"), port);
        m_socket.waitForConnected(patience);
    }

    void send(const QByteArray& bytes)
    {
        m_socket.write(bytes);
        m_socket.flush();
    }

    /// The next line without its CR LF; "(nothing)" when none arrives, "(closed)" when none can.
    QByteArray line()
    {
        while (!m_input.contains('\n')) {
            if (!m_socket.waitForReadyRead(patience))
                return m_socket.state() == QAbstractSocket::ConnectedState ? "(nothing)" : "(closed)";
            m_input += m_socket.readAll();
        }
        const qsizetype end = m_input.indexOf('\n');
        const QByteArray line = m_input.left(end);
        m_input.remove(0, end + 1);
        return line.endsWith('\r') ? line.chopped(1) : line;
    }

    /// Sends a command line and takes the next line as its answer.
    QByteArray ask(const QByteArray& command)
    {
        send(command + "\r\n");
        return line();
    }

private:
    QTcpSocket m_socket;
    QByteArray m_input;
};
