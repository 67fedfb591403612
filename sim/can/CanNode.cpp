// A simulated device on CAN: its SDO server, boot-up message and heartbeat.
// SPDX-License-Identifier: MIT
#include "can/CanNode.h"

#include "can/SdoFrames.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint32 sdoAnswerId = 0x580; // the node-id is added
constexpr quint32 heartbeatId = 0x700;
constexpr unsigned heartbeatTimeIndex = 0x1017; // in milliseconds; 0: no heartbeat

constexpr unsigned bootUpByte = 0x00;

struct tStateRow {
    tNmtState state;
    unsigned byte; // in the heartbeat
};

constexpr tStateRow stateRows[] = {
    { stateStopped, 0x04 },
    { stateOperational, 0x05 },
    { statePreOperational, 0x7F },
};

unsigned stateByte(tNmtState state)
{
    return std::find_if(std::begin(stateRows), std::end(stateRows),
                        [state](const tStateRow& each) { return each.state == state; })
        ->byte;
}

} // namespace

CCanNode::CCanNode(unsigned nodeId, CSimulatedNode& node, tCanContext& context, QObject* parent)
    : QObject(parent), m_nodeId(nodeId), m_node(node), m_context(context), m_server(node)
{
    m_heartbeat.setTimerType(Qt::PreciseTimer);
    connect(&m_heartbeat, &QTimer::timeout, this, [this] { sendState(stateByte(m_node.state())); });
    m_server.setReport([this](const tSdoTransfer& transfer) {
        if (m_context.log)
            m_context.log(describeTransfer(m_nodeId, m_node, transfer));
    });
    m_node.setListener([this](tNodeEvent event) { handleEvent(event); });
}

CCanNode::~CCanNode()
{
    m_node.setListener({});
}

void CCanNode::start()
{
    endSdo();
    sendState(bootUpByte);
    m_heartbeat.stop();
    followHeartbeatTime();
}

void CCanNode::handleEvent(tNodeEvent event)
{
    if (event == nodeRestarted) {
        start();
        return;
    }
    if (!m_node.answersSdo())
        endSdo();
    followHeartbeatTime();
}

// Drops the current transfer and the delayed answers.
void CCanNode::endSdo()
{
    m_server.reset();
    m_delays = std::make_unique<QObject>();
    m_delayed = 0;
}

// Called after each event: the timer restarts only if the period changed.
void CCanNode::followHeartbeatTime()
{
    const quint64 value = numberOf(m_node.value(heartbeatTimeIndex, 0), { kindUnsigned, 2 });
    const auto period = static_cast<int>(value & 0xFFFF);
    if (period == 0)
        m_heartbeat.stop();
    else if (!m_heartbeat.isActive() || m_heartbeat.interval() != period)
        m_heartbeat.start(period);
}

void CCanNode::sendState(unsigned state)
{
    m_context.send({ { heartbeatId + m_nodeId, QByteArray(1, static_cast<char>(state)) } });
}

void CCanNode::receiveSdo(const QByteArray& request)
{
    if (!m_node.answersSdo())
        return;
    if (CSdoServer::isInitiate(request)) {
        m_fault = findFault(m_context.faults, canFaultKinds(), indexIn(request), subIndexIn(request));
        m_server.setDefects(sdoDefects(m_fault));
        if (m_fault != nullptr && m_context.log)
            m_context.log("node " + QByteArray::number(m_nodeId) + " fault " + m_fault->kind.name);
    } else if (!m_server.busy()) {
        m_fault = nullptr;
        m_server.setDefects({});
    }
    const QByteArray data = m_server.answer(request);
    if (data.isEmpty())
        return;
    const tSdoStep step{ { sdoAnswerId + m_nodeId, data }, m_server.answerCount(), m_server.multiplexor() };
    answer(answerFrames(m_fault, step), frameDelay(m_fault));
}

void CCanNode::answer(const tCanFrames& frames, int delay)
{
    if (delay == 0) {
        m_context.send(frames);
        return;
    }
    if (m_delayed >= delayedLimit)
        return;
    ++m_delayed;
    QTimer::singleShot(delay, Qt::PreciseTimer, m_delays.get(), [this, frames] {
        --m_delayed;
        m_context.send(frames);
    });
}
