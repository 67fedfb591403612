// Puts frames on the bus: a few at once, many no faster than a real bus carries them.
// SPDX-License-Identifier: MIT
#include "can/CanSender.h"

#include <algorithm>

CCanSender::CCanSender(const std::function<void(const tCanFrame&)>& write, QObject* parent)
    : QObject(parent), m_write(write)
{
    m_timer.setInterval(1);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &CCanSender::sendWaiting);
}

void CCanSender::send(const tCanFrames& frames)
{
    if (m_waiting.empty() && frames.size() <= framesPerMillisecond) {
        for (const tCanFrame& frame : frames)
            m_write(frame);
        return;
    }
    if (m_waiting.size() + static_cast<std::size_t>(frames.size()) > waitingLimit)
        return;
    m_waiting.insert(m_waiting.end(), frames.cbegin(), frames.cend());
    if (m_timer.isActive())
        return;
    m_sinceBurst.start();
    m_timer.start();
}

void CCanSender::sendWaiting()
{
    const qint64 due = std::clamp(m_sinceBurst.restart() * framesPerMillisecond, framesPerMillisecond, longestBurst);
    for (qint64 i = 0; i < due && !m_waiting.empty(); ++i) {
        m_write(m_waiting.front());
        m_waiting.pop_front();
    }
    if (m_waiting.empty())
        m_timer.stop();
}
