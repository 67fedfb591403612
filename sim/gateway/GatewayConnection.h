// One client of the gateway: reads its lines, sends the answers, and applies the faults.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/Log.h"
#include "gateway/GatewayCommands.h"
#include "gateway/GatewayFaults.h"

#include <QByteArray>
#include <QObject>
#include <QTcpSocket>

/// What all connections of a gateway share. `log` is empty when nothing is to be logged.
struct tGatewayContext {
    CGatewayCommands& commands;
    QList<tFault> faults;
    tLog log;
};

/// Answers the commands of one client in order, one at a time: the next command waits until a delayed answer is sent.
class CGatewayConnection : public QObject
{
    Q_OBJECT

public:
    /// Lines that are longer get an error and are skipped to their end.
    static constexpr qsizetype longestLine = 65536;

    /// Takes over the connected `socket`, and deletes itself when the client disconnects. `name` is for the log.
    CGatewayConnection(QTcpSocket* socket, tGatewayContext& context, const QByteArray& name, QObject* parent);

private:
    void process();
    bool takeLine(QByteArray& line);
    void handleLine(const QByteArray& line);
    void execute(const tGatewayRequest& request);
    void deliver(const tFault* fault, const QByteArray& lines);
    void sendNextByte();
    void log(const QByteArray& text) const;

    QTcpSocket* m_socket;
    tGatewayContext& m_context;
    QByteArray m_name;
    QByteArray m_input;
    qsizetype m_taken = 0;        // characters of m_input already handled
    qsizetype m_scanned = 0;      // characters of m_input already searched for a line end
    QByteArray m_head;            // the beginning of a line that is too long
    bool m_skipping = false;      // up to the end of a line that is too long
    bool m_busy = false;          // an answer is delayed, or being sent byte by byte
    tGatewayRequest m_unfinished; // when it awaits data, its data line comes next
    QByteArray m_output;          // what is sent one byte at a time
};
