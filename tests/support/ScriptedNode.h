// A node on a real CAN bus that follows a script, frame by frame, in a thread of its own.
// SPDX-License-Identifier: MIT
#pragma once

#include "RawCan.h"

#include <QDeadlineTimer>

#include <atomic>
#include <deque>
#include <functional>
#include <thread>

/// `play` starts the steps, which run in order; an unexpected frame ends them. The node receives the SDO requests to
/// all nodes and nothing else.
///
///     CScriptedNode node;
///     node.expect("605#4000100000000000").answer("585#4300100091010F00");
///     node.play();
///     QCOMPARE(sdo_read_32bit(5, 0x1000, 0, &value), 0);
///     QCOMPARE(node.difference(), QString());
class CScriptedNode
{
public:
    /// What the node does when a frame has come, in the order of the calls.
    class CStep
    {
    public:
        explicit CStep(const QString& frame) : m_frame(frame) {}
        CStep& answer(const QString& frame)
        {
            return act([frame](CRawCan& bus) { bus.send(frame); });
        }
        CStep& wait(int milliseconds)
        {
            return act([milliseconds](CRawCan&) { usleep(static_cast<useconds_t>(milliseconds) * 1000); });
        }
        CStep& act(const std::function<void(CRawCan&)>& action)
        {
            m_actions.push_back(action);
            return *this;
        }

    private:
        friend class CScriptedNode;
        QString m_frame;
        std::deque<std::function<void(CRawCan&)>> m_actions;
    };

    explicit CScriptedNode(const char* interface = "vcan0") : m_bus(interface) { m_bus.receiveOnly(0x600, 0x780); }
    ~CScriptedNode()
    {
        m_stopped = true;
        finish();
    }
    CScriptedNode(const CScriptedNode&) = delete;
    CScriptedNode& operator=(const CScriptedNode&) = delete;

    CStep& expect(const QString& frame)
    {
        m_steps.emplace_back(frame);
        return m_steps.back();
    }
    /// Takes requests and answers alternately.
    void expectInTurns(const QStringList& frames)
    {
        for (qsizetype i = 0; i < frames.size(); i += 2)
            expect(frames[i]).answer(frames.value(i + 1));
    }
    void play()
    {
        m_thread = std::thread([this] { run(); });
    }
    /// Waits until the node has ended.
    void finish()
    {
        if (m_thread.joinable())
            m_thread.join();
    }
    /// Waits until the node has ended. Empty if exactly the expected frames came; otherwise what differed.
    QString difference()
    {
        finish();
        const QStringList more = m_bus.receiveAll();
        return m_difference.isEmpty() && !more.isEmpty() ? "unexpected: " + more.join(' ') : m_difference;
    }

private:
    void run()
    {
        for (CStep& step : m_steps) {
            const QString frame = next();
            if (frame != step.m_frame) {
                m_difference = "expected " + step.m_frame + ", got " + (frame.isEmpty() ? "nothing" : frame);
                return;
            }
            for (const auto& action : step.m_actions)
                action(m_bus);
        }
    }
    QString next() const
    {
        const QDeadlineTimer deadline(patience);
        QString frame;
        while (frame.isEmpty() && !m_stopped && !deadline.hasExpired())
            frame = m_bus.receive(20);
        return frame;
    }

    CRawCan m_bus;
    std::deque<CStep> m_steps;
    std::thread m_thread;
    std::atomic<bool> m_stopped = false;
    QString m_difference;
};
