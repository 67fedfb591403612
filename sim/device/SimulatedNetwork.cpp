// The simulated devices by their node-ids. Every front-end serves the same devices.
// SPDX-License-Identifier: MIT
#include "device/SimulatedNetwork.h"

#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace
{

// Why the file cannot be read; empty when it can. CCANopenReader would read such a file as an empty one.
QString readError(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (!info.exists())
        return QStringLiteral("no such file: %1").arg(fileName);
    if (!info.isFile())
        return QStringLiteral("not a file: %1").arg(fileName);
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot read %1").arg(fileName);
    return QString();
}

} // namespace

QString CSimulatedNetwork::add(unsigned nodeId, const QString& fileName)
{
    if (nodeId < 1 || nodeId > lastNodeId)
        return QStringLiteral("node-id %1 is not in 1 to %2").arg(nodeId).arg(lastNodeId);
    if (node(nodeId) != nullptr)
        return QStringLiteral("node-id %1 is given twice").arg(nodeId);
    QString error = readError(fileName);
    if (!error.isEmpty())
        return error;
    CCANopen dictionary;
    CCANopenReader reader(&dictionary, CCANopen::typeEDS);
    if (!reader.load(QFile::encodeName(fileName).constData()))
        return QStringLiteral("not a valid data sheet: %1").arg(fileName);
    auto device = std::make_unique<CSimulatedNode>(nodeId, dictionary);
    if (device->objectCount() == 0)
        return QStringLiteral("no objects in %1").arg(fileName);
    m_nodes.emplace(nodeId, std::move(device));
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
