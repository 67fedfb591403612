// The simulated devices by their node-ids. Every front-end serves the same devices.
// SPDX-License-Identifier: MIT
#pragma once

#include "device/SimulatedNode.h"

#include <QList>
#include <QString>

#include <map>
#include <memory>

class CSimulatedNetwork
{
public:
    /// Adds a device that serves the data sheet `fileName`, or a device configuration file (".dcf") with its values.
    /// @return an empty text, or what is wrong: the node-id (out of range or taken) or the file (unreadable, with a
    /// syntax error, without objects). `badSheet`, where given, becomes true when the contents of the file are wrong
    QString add(unsigned nodeId, const QString& fileName, bool* badSheet = nullptr);

    /// The device with this node-id; null when there is none. Owned by the network.
    CSimulatedNode* node(unsigned nodeId) const;

    /// The node-ids of all devices, in rising order.
    QList<unsigned> nodeIds() const;

    /// Sends an NMT command to one device or, with 0, to all. NMT is not confirmed: an absent device is no error.
    void command(unsigned nodeId, tNmtCommand command);

private:
    std::map<unsigned, std::unique_ptr<CSimulatedNode>> m_nodes;
};
