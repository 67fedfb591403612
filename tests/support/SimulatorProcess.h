// The device simulator as a process of its own, on a free port and with the sample sheet as node 5.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QRegularExpression>

#include <csignal>

/// Runs from construction to destruction:
///
///     CSimulatorProcess simulator({ "--fault", "silence@1017" });
///     QVERIFY2(simulator.port() != 0, simulator.log());
class CSimulatorProcess
{
public:
    enum tVerbosity { verbose, silent };

    explicit CSimulatorProcess(const QStringList& options = {}, tVerbosity verbosity = verbose)
    {
        m_process.setProcessChannelMode(QProcess::MergedChannels);
        QStringList arguments{ "--gateway", "0", "--node", "5=" VELMORA_SHARE "/velmora-demo.eds" };
        if (verbosity == verbose)
            arguments += "-v";
        m_process.start(VELMORA_SIM, arguments + options);
        static const QRegularExpression announcement("gateway on .* port (\\d+)\\n");
        waitForLog([this] { return announcement.match(m_log).hasMatch(); });
        m_port = announcement.match(m_log).captured(1).toUShort();
    }
    ~CSimulatorProcess()
    {
        end(SIGTERM);
        m_process.kill();
        m_process.waitForFinished(patience);
    }
    CSimulatorProcess(const CSimulatorProcess&) = delete;
    CSimulatorProcess& operator=(const CSimulatorProcess&) = delete;

    /// 0 if it did not start; the log then says why.
    unsigned short port() const { return m_port; }
    QString interface() const { return "127.0.0.1:" + QString::number(m_port); }
    QByteArray log() const { return m_log.toUtf8(); }
    /// Waits until the simulator has logged the text; false if it ends before.
    bool hasLogged(const QString& text)
    {
        return waitForLog([&] { return m_log.contains(text); });
    }
    /// Sends the signal and waits. @return the exit status; -1 if it does not end or is killed by the signal
    int end(int signal)
    {
        const auto process = static_cast<pid_t>(m_process.processId());
        const bool finished = process > 0 && ::kill(process, signal) == 0 && m_process.waitForFinished(patience);
        m_log += QString::fromUtf8(m_process.readAll());
        return finished && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

private:
    template <typename Condition>
    bool waitForLog(Condition condition)
    {
        const QDeadlineTimer deadline(patience);
        bool waiting = true;
        while (true) {
            m_log += QString::fromUtf8(m_process.readAll());
            if (condition() || !waiting)
                return condition();
            waiting = m_process.waitForReadyRead(static_cast<int>(deadline.remainingTime()));
        }
    }

    QProcess m_process;
    QString m_log;
    unsigned short m_port = 0;
};
