// The simulated devices by their node-ids. Every front-end serves the same devices.
// SPDX-License-Identifier: MIT
#include "device/SimulatedNetwork.h"

#include "dic/DataSheet.h"

QString CSimulatedNetwork::add(unsigned nodeId, const QString& fileName, bool* badSheet)
{
    if (nodeId < 1 || nodeId > lastNodeId)
        return QStringLiteral("node-id %1 is not in 1 to %2").arg(nodeId).arg(lastNodeId);
    if (node(nodeId) != nullptr)
        return QStringLiteral("node-id %1 is given twice").arg(nodeId);
    CDataSheet sheet;
    const CDataSheet::tResult result = sheet.load(fileName);
    if (badSheet != nullptr)
        *badSheet = result == CDataSheet::refused;
    if (result != CDataSheet::loaded)
        return sheet.error();
    m_nodes.emplace(nodeId, std::make_unique<CSimulatedNode>(nodeId, sheet.dictionary(), sheet.parameterValues()));
    return QString();
}

CSimulatedNode* CSimulatedNetwork::node(unsigned nodeId) const
{
    const auto found = m_nodes.find(nodeId);
    return found == m_nodes.end() ? nullptr : found->second.get();
}

QList<unsigned> CSimulatedNetwork::nodeIds() const
{
    QList<unsigned> nodeIds;
    for (const auto& [each, device] : m_nodes)
        nodeIds += each;
    return nodeIds;
}

void CSimulatedNetwork::command(unsigned nodeId, tNmtCommand command)
{
    for (const auto& [each, device] : m_nodes)
        if (nodeId == 0 || nodeId == each)
            device->command(command);
}
