// A run of velmora-cli.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QProcess>
#include <QStringList>

#include <csignal>

/// Runs from construction on:
///
///     CCliRun run({ "read", "-i", gateway, "-n", "5", "1017" });
///     QCOMPARE(run.status(), 0);
///     QCOMPARE(run.output(), "0x03E8\n");
class CCliRun
{
public:
    explicit CCliRun(const QStringList& arguments) { m_process.start(QStringLiteral(VELMORA_CLI), arguments); }
    ~CCliRun()
    {
        m_process.kill();
        m_process.waitForFinished(patience);
    }
    CCliRun(const CCliRun&) = delete;
    CCliRun& operator=(const CCliRun&) = delete;

    /// Waits for the end. @return the exit status; -1 when a signal or the test's patience ended it
    int status()
    {
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(patience))
            return -1;
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    /// What it wrote, after its end.
    QString output()
    {
        m_output += m_process.readAllStandardOutput();
        return QString::fromUtf8(m_output);
    }
    QString error() { return QString::fromUtf8(m_process.readAllStandardError()); }
    /// Waits until it has written that many lines to standard output.
    bool hasWritten(qsizetype lines)
    {
        while (output().count(u'\n') < lines)
            if (!m_process.waitForReadyRead(patience))
                return false;
        return true;
    }
    void interrupt(int signal = SIGINT) { ::kill(static_cast<pid_t>(m_process.processId()), signal); }
    /// Nobody reads its standard output any more.
    void closeOutput() { m_process.closeReadChannel(QProcess::StandardOutput); }

private:
    QProcess m_process;
    QByteArray m_output;
};

/// Everything a run has shown, for one comparison: "status 0, output \"0x03E8\\n\", error \"\"".
inline QString shown(int status, const QString& output, const QString& error)
{
    return QString("status %1\n%2--\n%3").arg(status).arg(output, error);
}
inline QString shown(CCliRun& run)
{
    const int status = run.status();
    return shown(status, run.output(), run.error());
}
/// The same of a program that is run to its end.
inline QString shownBy(const QStringList& arguments)
{
    CCliRun run(arguments);
    return shown(run);
}
