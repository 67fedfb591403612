// Puts frames on the bus: a few at once, many no faster than a real bus carries them.
// SPDX-License-Identifier: MIT
#pragma once

#include "can/CanFrame.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <deque>
#include <functional>

/// Keeps the order. Many frames without pauses would overrun the receivers, which a real bus never does.
class CCanSender : public QObject
{
    Q_OBJECT

public:
    /// About what a bus of 1 Mbit/s carries.
    static constexpr qint64 framesPerMillisecond = 10;
    /// The most frames that are sent at a time, also when the timer is late.
    static constexpr qint64 longestBurst = 100;
    /// The most frames that wait; further ones are lost, as on a bus that is overloaded.
    static constexpr std::size_t waitingLimit = 200000;

    /// `write` puts a frame on the bus.
    explicit CCanSender(const std::function<void(const tCanFrame&)>& write, QObject* parent = nullptr);

    /// Writes the frames: at once when they are few and none waits, otherwise from the event loop.
    void send(const tCanFrames& frames);

private:
    void sendWaiting();

    std::function<void(const tCanFrame&)> m_write;
    std::deque<tCanFrame> m_waiting;
    QTimer m_timer;
    QElapsedTimer m_sinceBurst;
};
