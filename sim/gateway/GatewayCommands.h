// What the gateway's commands do: SDO transfers and NMT commands on the simulated devices, and messages of the clients.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/SimulatedNetwork.h"
#include "gateway/GatewayGrammar.h"

#include <QByteArray>

#include <cstddef>
#include <deque>
#include <map>

/// The answer to one command, without sequence number and line end.
struct tGatewayAnswer {
    QByteArray text;     // "OK", a value, or "ERROR: " and a number
    QByteArray readable; // the value for the log; empty: the text
    int delay = 0;       // milliseconds until it is sent
};

/// "ERROR: 103".
tGatewayAnswer errorAnswer(tGatewayError error);
/// "ERROR: 0x06020000".
tGatewayAnswer abortAnswer(tAbortCode code);

/// One for all clients of a gateway: they share the devices, the SDO time-out and the queue of messages.
class CGatewayCommands
{
public:
    /// The most messages that wait to be received; further ones are refused.
    static constexpr std::size_t queueLimit = 1000;

    /// `network` is borrowed and must outlive this.
    explicit CGatewayCommands(CSimulatedNetwork& network) : m_network(network) {}

    /// Carries out a request, or answers its error. When the device is absent or stopped, the answer is a time-out
    /// error, delayed by the SDO time-out (500 ms unless a client has set another).
    tGatewayAnswer execute(const tGatewayRequest& request);

private:
    struct tMessage {
        quint32 identifier;
        QByteArray data;
    };

    tGatewayAnswer read(const tGatewayRequest& request);
    tGatewayAnswer write(const tGatewayRequest& request);
    tGatewayAnswer nmt(const tGatewayRequest& request);
    tGatewayAnswer init(const tGatewayRequest& request);
    tGatewayAnswer setTimeOut(const tGatewayRequest& request);
    tGatewayAnswer info(const tGatewayRequest& request);
    tGatewayAnswer send(const tGatewayRequest& request);
    tGatewayAnswer remoteFrame(const tGatewayRequest& request);
    tGatewayAnswer receive(const tGatewayRequest& request);
    CSimulatedNode* sdoServer(const tGatewayRequest& request, tGatewayAnswer& error) const;

    CSimulatedNetwork& m_network;
    std::deque<tMessage> m_queue;             // sent and not yet received, the oldest first
    std::map<quint32, QByteArray> m_lastSent; // by identifier: answers a remote frame
    int m_timeOut = 500;                      // milliseconds
};

/// A request and its answer as one line of the log: `node 5 read 0x2000 0x01 u16 = 0x1234`,
/// `node 5 write 0x2010 0x00 d "text" = OK`, `node 5 read 0x5FFF 0x00 u8 = ERROR: 0x06020000`. For SDO requests only.
QByteArray describeSdo(const tGatewayRequest& request, const tGatewayAnswer& answer);
