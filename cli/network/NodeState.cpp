// A node that is in pre-operational for the time in which its PDO parameters are written.
// SPDX-License-Identifier: MIT
#include "network/NodeState.h"

#include "console/Interrupt.h"

#include <QDeadlineTimer>

#include <chrono>

namespace
{

// States in heartbeats (CiA 301).
constexpr int preOperational = 0x7F;
constexpr int bootUp = 0;
constexpr int unknownState = -1;
constexpr int stateMask = 0x7F;
constexpr unsigned heartbeat = 0x700; // plus the node-id
constexpr WORD producerHeartbeatTime = 0x1017;
constexpr int heartbeatSlack = 500; // milliseconds that a heartbeat may be late
constexpr int patience = 3000;      // milliseconds after which a wait is told

// The state in the next heartbeat, for which `time` milliseconds are waited. Those that came before are old, and a node
// that has just booted may be on its way to another state.
int awaitHeartbeat(CNetwork& network, unsigned node, int time)
{
    network.watchOthers();
    const QDeadlineTimer deadline(time);
    while (!deadline.hasExpired()) {
        const auto message = network.takeMessage();
        if (!message) {
            sleepUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(1));
            continue;
        }
        if (message->identifier != heartbeat + node || message->data.size() != 1) {
            network.watch(*message);
            continue;
        }
        const int state = message->data[0] & stateMask;
        if (state != bootUp)
            return state;
    }
    return unknownState;
}

int stateOf(const tDevice& device)
{
    if (device.network.isGateway())
        return unknownState;
    const auto [bytes, failure] = device.network.read(static_cast<BYTE>(device.node), producerHeartbeatTime, 0);
    if (failure || bytes.size() != 2)
        return unknownState;
    const int period = static_cast<unsigned char>(bytes[0]) | static_cast<unsigned char>(bytes[1]) << 8;
    if (period == 0)
        return unknownState;
    const int wait = 2 * period + heartbeatSlack;
    if (wait > patience)
        device.console.message(
            QStringLiteral("waiting for a heartbeat of node %1, which comes every %2 ms").arg(device.node).arg(period));
    return awaitHeartbeat(device.network, static_cast<unsigned>(device.node), wait);
}

} // namespace

void CPreOperational::begin()
{
    m_state = stateOf(m_device);
    m_begun = true;
    send(&CCANopenAccess::enterPreOperationalState);
    m_isCertain = true;
    say("is in pre-operational while its PDO parameters are written");
}

void CPreOperational::end(bool start)
{
    if (!m_begun)
        return;
    if (m_state == preOperational) {
        say("stays in pre-operational, as it was");
    } else if (m_state == unknownState && !start) {
        say("stays in pre-operational");
    } else {
        m_isCertain = false;
        send(&CCANopenAccess::startRemoteNode);
        say(m_state == unknownState ? "was started again; its state before is not known" : "is operational again");
    }
    m_begun = false;
}

void CPreOperational::abandon()
{
    if (m_begun)
        say(m_isCertain ? "is still in pre-operational" : "may be in pre-operational");
    m_begun = false;
}

void CPreOperational::send(bool (CCANopenAccess::*command)(BYTE node))
{
    const auto failure = m_device.network.run(
        [&](CCANopenAccess& access) { return (access.*command)(static_cast<BYTE>(m_device.node)); });
    if (failure)
        throw tEnd{ failure->status, failure->text };
}

void CPreOperational::say(const char* what)
{
    m_device.console.message(QStringLiteral("node %1 %2").arg(m_device.node).arg(QLatin1String(what)));
}
