// The simulated CAN bus on an interface of this machine, through Qt's CAN bus library.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/SimulatedCanBus.h"

#include <QCanBusDevice>
#include <QObject>
#include <QTimer>

#include <memory>

/// Lives in one thread with an event loop. Continues after the interface was down and is up again.
class CCanDevice : public QObject
{
    Q_OBJECT

public:
    /// Serves the devices that the network has now.
    explicit CCanDevice(CSimulatedNetwork& network, QObject* parent = nullptr);
    ~CCanDevice() override;
    Q_DISABLE_COPY_MOVE(CCanDevice)

    void setFaults(const QList<tFault>& faults) { m_bus.setFaults(faults); }

    /// Besides the lines of the bus, the log has one when sending fails and one when it succeeds again.
    void setLog(const tLog& log);

    /// Takes part in the traffic of an interface such as "vcan0" from now on.
    /// @return an empty text, or why it cannot ("No such device")
    QString open(const QString& interface);

Q_SIGNALS:
    /// The interface was removed. No frame is sent or received any more, even if one of the same name is added.
    void interfaceRemoved();

private:
    void receive();
    void write(const tCanFrame& frame);
    void watch();

    CSimulatedCanBus m_bus;
    tLog m_log;
    std::unique_ptr<QCanBusDevice> m_device;
    QByteArray m_interface;
    unsigned m_interfaceIndex = 0;
    QTimer m_watch;
    bool m_sendFailed = false;
};
