// A gateway and its devices in their own thread, for tests and benchmarks whose client blocks the calling thread.
// SPDX-License-Identifier: MIT
#pragma once

#include "gateway/SimulatedGateway.h"

#include <QThread>

#include <memory>

/// Example: `CGatewayThread gateway; gateway.addNode(5, "demo.eds"); gateway.start(); connectTo(gateway.port());`
class CGatewayThread
{
public:
    CGatewayThread() = default;
    ~CGatewayThread();
    Q_DISABLE_COPY_MOVE(CGatewayThread)

    /// Before `start`. @return an empty text, or the error
    QString addNode(unsigned nodeId, const QString& fileName) { return m_network.add(nodeId, fileName); }

    /// Before `start`. Of several faults that hit a command, the first counts.
    void setFaults(const QList<tFault>& faults) { m_faults = faults; }

    /// Before `start`: `log` is called in the gateway's thread.
    void setLog(const tLog& log) { m_log = log; }

    /// Accepts clients of this machine from now on, until destroyed. @return an empty text, or why it cannot listen
    QString start(quint16 port = 0);

    /// The port listened on; 0 before `start`.
    quint16 port() const { return m_port; }

private:
    CSimulatedNetwork m_network;
    QList<tFault> m_faults;
    tLog m_log;
    QThread m_thread;
    std::unique_ptr<QObject> m_context; // lives in the thread: what must run there is invoked on it
    std::unique_ptr<CSimulatedGateway> m_gateway;
    quint16 m_port = 0;
};
