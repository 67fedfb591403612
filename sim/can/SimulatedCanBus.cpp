// The simulated devices on a CAN bus: how they react to each frame, whatever carries the frames.
// SPDX-License-Identifier: MIT
#include "can/SimulatedCanBus.h"

#include "can/SdoFrames.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint32 nmtId = 0x000;
constexpr quint32 sdoRequestId = 0x600; // the node-id is added
constexpr qsizetype nmtSize = 2;

struct tNmtSpecifier {
    unsigned specifier;
    tNmtCommand command;
    const char* words; // for the log
};

constexpr tNmtSpecifier nmtSpecifiers[] = {
    { 0x01, nmtStart, "start" },
    { 0x02, nmtStop, "stop" },
    { 0x80, nmtPreOperational, "preoperational" },
    { 0x81, nmtResetNode, "reset node" },
    { 0x82, nmtResetCommunication, "reset communication" },
};

} // namespace

CSimulatedCanBus::CSimulatedCanBus(CSimulatedNetwork& network, const std::function<void(const tCanFrame&)>& write,
                                   QObject* parent)
    : QObject(parent),
      m_network(network),
      m_sender(write),
      m_context{ [this](const tCanFrames& frames) { m_sender.send(frames); }, {}, {} }
{
    for (const unsigned nodeId : network.nodeIds())
        m_nodes.emplace(nodeId, new CCanNode(nodeId, *network.node(nodeId), m_context, this));
}

void CSimulatedCanBus::start()
{
    for (const auto& [nodeId, node] : m_nodes)
        node->start();
}

void CSimulatedCanBus::receive(const tCanFrame& frame)
{
    if (frame.cobId == nmtId) {
        receiveNmt(frame.data);
        return;
    }
    const auto node = frame.cobId > sdoRequestId ? m_nodes.find(frame.cobId - sdoRequestId) : m_nodes.end();
    if (node != m_nodes.end())
        node->second->receiveSdo(frame.data);
}

// data = specifier node-id; node-id 0 means all nodes
void CSimulatedCanBus::receiveNmt(const QByteArray& data)
{
    if (data.size() != nmtSize)
        return;
    const auto row = std::find_if(std::begin(nmtSpecifiers), std::end(nmtSpecifiers),
                                  [&data](const tNmtSpecifier& each) { return each.specifier == byteAt(data, 0); });
    if (row == std::end(nmtSpecifiers))
        return;
    if (m_context.log)
        m_context.log("node " + QByteArray::number(byteAt(data, 1)) + ' ' + row->words);
    m_network.command(byteAt(data, 1), row->command);
}
