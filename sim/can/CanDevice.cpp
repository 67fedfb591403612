// The simulated CAN bus on an interface of this machine, through Qt's CAN bus library.
// SPDX-License-Identifier: MIT
#include "can/CanDevice.h"

#include <QCanBus>
#include <QCanBusFrame>
#include <QLoggingCategory>

#include <cerrno>
#include <cstring>
#include <net/if.h>

namespace
{

constexpr int watchInterval = 1000; // milliseconds

// Suppresses the library's warning that libsocketcan is missing: it is needed only to set a bit rate.
QString connectDevice(std::unique_ptr<QCanBusDevice>& device, const QString& interface)
{
    QLoggingCategory::setFilterRules(QStringLiteral("qt.canbus*=false\ndefault.warning=false"));
    QString error;
    device.reset(QCanBus::instance()->createDevice(QStringLiteral("socketcan"), interface, &error));
    if (device && !device->connectDevice()) {
        error = device->errorString();
        device.reset();
    }
    QLoggingCategory::setFilterRules(QStringLiteral("qt.canbus*=false"));
    return error;
}

} // namespace

CCanDevice::CCanDevice(CSimulatedNetwork& network, QObject* parent)
    : QObject(parent), m_bus(network, [this](const tCanFrame& frame) { write(frame); })
{
    m_watch.setInterval(watchInterval);
    connect(&m_watch, &QTimer::timeout, this, &CCanDevice::watch);
}

CCanDevice::~CCanDevice()
{
    if (m_device)
        m_device->disconnectDevice();
}

void CCanDevice::setLog(const tLog& log)
{
    m_log = log;
    m_bus.setLog(log);
}

QString CCanDevice::open(const QString& interface)
{
    // Checked first, since the library would cut a name that is too long and open another interface.
    m_interface = interface.toLocal8Bit();
    m_interfaceIndex = ::if_nametoindex(m_interface.constData());
    if (m_interfaceIndex == 0)
        return QString::fromLocal8Bit(std::strerror(errno));
    QString error = connectDevice(m_device, interface);
    if (!m_device)
        return error;
    connect(m_device.get(), &QCanBusDevice::framesReceived, this, &CCanDevice::receive);
    m_watch.start();
    m_bus.start();
    return QString();
}

// Extended, remote and error frames are ignored.
void CCanDevice::receive()
{
    while (m_device->framesAvailable() > 0) {
        const QCanBusFrame frame = m_device->readFrame();
        if (frame.frameType() == QCanBusFrame::DataFrame && !frame.hasExtendedFrameFormat())
            m_bus.receive({ frame.frameId(), frame.payload() });
    }
}

// A frame that cannot be sent is lost, as on a bus without another node; later ones are still tried.
void CCanDevice::write(const tCanFrame& frame)
{
    if (!m_device)
        return;
    const bool sent = m_device->writeFrame(QCanBusFrame(frame.cobId, frame.data));
    if (sent == m_sendFailed && m_log)
        m_log(sent ? QByteArray("can sends again") : "can cannot send: " + m_device->errorString().toLocal8Bit());
    m_sendFailed = !sent;
}

// The library reports no error when the interface is removed.
void CCanDevice::watch()
{
    if (::if_nametoindex(m_interface.constData()) == m_interfaceIndex)
        return;
    m_watch.stop();
    Q_EMIT interfaceRemoved();
}
