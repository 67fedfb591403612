// A gateway and its devices in their own thread, for tests and benchmarks whose client blocks the calling thread.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayThread.h"

CGatewayThread::~CGatewayThread()
{
    if (!m_thread.isRunning())
        return;
    QMetaObject::invokeMethod(
        m_context.get(), [this] { m_gateway.reset(); }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

QString CGatewayThread::start(quint16 port)
{
    m_context = std::make_unique<QObject>();
    m_context->moveToThread(&m_thread);
    m_thread.start();
    QString error;
    QMetaObject::invokeMethod(
        m_context.get(),
        [&] {
            m_gateway = std::make_unique<CSimulatedGateway>(m_network);
            m_gateway->setFaults(m_faults);
            m_gateway->setLog(m_log);
            error = m_gateway->listen(port);
            m_port = m_gateway->port();
        },
        Qt::BlockingQueuedConnection);
    return error;
}
