// A simulated CAN bus with a data sheet as nodes 5 and 7, and everything that it sends.
// SPDX-License-Identifier: MIT
#pragma once

#include "DemoSheet.h"
#include "FaultList.h"
#include "Patience.h"
#include "SdoFrame.h"
#include "can/SimulatedCanBus.h"

#include <QTest>

#include <memory>
#include <utility>

/// Heartbeats are off, so that only what is asked for comes:
///
///     CCanBusProbe probe({ "toggle@1008" });
///     probe.ask("605 40 08 10 00 00 00 00 00");      // "585 41 08 10 00 10 00 00 00"
class CCanBusProbe
{
public:
    explicit CCanBusProbe(const QStringList& faults = {}, const QString& sheet = demoSheet())
    {
        for (const unsigned nodeId : { 5U, 7U }) {
            m_error += m_network.add(nodeId, sheet);
            stopHeartbeat(nodeId);
        }
        QString message;
        const tFaultKind onTheGatewayOnly{ "drop", "", numberNone, 0, 0 };
        const QList<tFault> list = faultList(faults, kindsWith(canFaultKinds(), onTheGatewayOnly), &message);
        m_error += message;
        m_bus = std::make_unique<CSimulatedCanBus>(m_network,
                                                   [this](const tCanFrame& frame) { m_sent += frameText(frame); });
        m_bus->setFaults(list);
        m_bus->setLog([this](const QByteArray& line) { m_log += line; });
    }
    Q_DISABLE_COPY_MOVE(CCanBusProbe)

    /// What is wrong with the data sheet or the faults; empty when nothing is.
    QString error() const { return m_error; }
    CSimulatedNetwork& network() { return m_network; }
    CSimulatedCanBus& bus() { return *m_bus; }
    QByteArrayList log() const { return m_log; }

    /// Turns the heartbeat off, as at the start: a reset turns it on again.
    void stopHeartbeat(unsigned nodeId) { m_network.node(nodeId)->write(0x1017, 0, QByteArray(2, '\0')); }

    /// Puts "605 40 08 10 00 ..." on the bus.
    void put(const QByteArray& frame) { m_bus->receive({ frame.left(3).toUInt(nullptr, 16), bytes(frame.mid(3)) }); }
    /// The frames sent since the last call.
    QByteArrayList take() { return std::exchange(m_sent, {}); }
    /// The frames that the bus sends at once after this one.
    QByteArray ask(const QByteArray& frame)
    {
        take();
        put(frame);
        return take().join(" | ");
    }
    /// Waits until `count` frames have come since the last `take`; false after the time-out.
    bool await(qsizetype count)
    {
        return QTest::qWaitFor([&] { return m_sent.size() >= count; }, patience);
    }

private:
    CSimulatedNetwork m_network;
    QByteArrayList m_sent; // since the last `take`
    QByteArrayList m_log;
    QString m_error;
    std::unique_ptr<CSimulatedCanBus> m_bus;
};
