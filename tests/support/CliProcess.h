// velmora-cli as a process of its own.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QProcess>
#include <QStringList>

#include <csignal>

/// Runs from construction to destruction:
///
///     CCliProcess run({ "read", "-i", interface, "-n", "5", "1017" });
///     QCOMPARE(run.shown(), "0x03E8\n-- 0\n");
class CCliProcess
{
public:
    /// `folder`: where it runs; that of the test by itself.
    explicit CCliProcess(const QStringList& arguments, const QString& folder = QString())
    {
        m_process.setWorkingDirectory(folder);
        m_process.start(VELMORA_CLI, arguments);
    }
    ~CCliProcess()
    {
        m_process.kill();
        m_process.waitForFinished(patience);
    }
    CCliProcess(const CCliProcess&) = delete;
    CCliProcess& operator=(const CCliProcess&) = delete;

    void interrupt() const { ::kill(static_cast<pid_t>(m_process.processId()), SIGINT); }

    /// Waits for the end. @return the exit status; -1 when it did not end by itself
    int status()
    {
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(patience))
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    /// Standard output, then "--" and the exit status, then standard error without the name of the program; after the
    /// end.
    QString shown()
    {
        const int ended = status();
        m_output += QString::fromUtf8(m_process.readAllStandardOutput());
        m_errors += QString::fromUtf8(m_process.readAllStandardError());
        return QString("%1-- %2\n%3").arg(m_output).arg(ended).arg(QString(m_errors).replace("velmora-cli: ", ""));
    }

private:
    QProcess m_process;
    QString m_output;
    QString m_errors;
};
