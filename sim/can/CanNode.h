// A simulated device on CAN: its SDO server, boot-up message and heartbeat.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/CanFaults.h"
#include "device/Log.h"
#include "device/SimulatedNode.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

/// What all devices on a bus share. `log` is empty when nothing is to be logged.
struct tCanContext {
    std::function<void(const tCanFrames&)> send;
    QList<tFault> faults;
    tLog log;
};

/// Is the listener of its device, so that changes made through the gateway show on the bus, too.
class CCanNode : public QObject
{
    Q_OBJECT

public:
    /// The most answers that wait under the fault "delay"; further ones are lost.
    static constexpr int delayedLimit = 1000;

    /// `node` and `context` are borrowed and must outlive this.
    CCanNode(unsigned nodeId, CSimulatedNode& node, tCanContext& context, QObject* parent);
    ~CCanNode() override;
    Q_DISABLE_COPY_MOVE(CCanNode)

    /// Sends the boot-up message and starts the heartbeat.
    void start();

    /// Gives the data of a frame to the SDO server and sends its answer. A stopped device does not answer.
    void receiveSdo(const QByteArray& request);

private:
    void handleEvent(tNodeEvent event);
    void endSdo();
    void followHeartbeatTime();
    void sendState(unsigned state);
    void answer(const tCanFrames& frames, int delay);

    unsigned m_nodeId;
    CSimulatedNode& m_node;
    tCanContext& m_context;
    CSdoServer m_server;
    const tFault* m_fault = nullptr; // of the current transfer
    QTimer m_heartbeat;
    std::unique_ptr<QObject> m_delays = std::make_unique<QObject>(); // deleting it drops the delayed answers
    int m_delayed = 0;                                               // number of delayed answers
};
