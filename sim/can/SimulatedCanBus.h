// The simulated devices on a CAN bus: how they react to each frame, whatever carries the frames.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/CanNode.h"
#include "can/CanSender.h"
#include "device/SimulatedNetwork.h"

#include <QObject>

#include <map>

/// Lives in one thread with an event loop. The network is borrowed and must outlive this.
class CSimulatedCanBus : public QObject
{
    Q_OBJECT

public:
    /// Serves the devices that the network has now. `write` puts a frame on the bus.
    CSimulatedCanBus(CSimulatedNetwork& network, const std::function<void(const tCanFrame&)>& write,
                     QObject* parent = nullptr);

    /// Of several faults that hit a transfer, the first counts. Set before `start`.
    void setFaults(const QList<tFault>& faults) { m_context.faults = faults; }

    /// Called with every line of the log. Set before `start`.
    void setLog(const tLog& log) { m_context.log = log; }

    /// Sends the boot-up message of each device.
    void start();

    /// Takes a data frame from the bus. Frames that are for no device are ignored.
    void receive(const tCanFrame& frame);

private:
    void receiveNmt(const QByteArray& data);

    CSimulatedNetwork& m_network;
    CCanSender m_sender;
    tCanContext m_context;
    std::map<unsigned, CCanNode*> m_nodes; // children of this
};
