// Runs of velmora-cli, and what came of them.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <csignal>

/// A run to its end.
struct tCliRun {
    int status = -1; ///< -1: it did not end by itself
    QByteArray output;
    QByteArray error;
};

inline tCliRun runProcess(QProcess& process, const QString& program, const QStringList& arguments)
{
    process.start(program, arguments);
    tCliRun run;
    if (process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit)
        run.status = process.exitCode();
    else
        process.kill();
    process.waitForFinished(patience);
    run.output = process.readAllStandardOutput();
    run.error = process.readAllStandardError();
    return run;
}

inline tCliRun runProgram(const QString& program, const QStringList& arguments, const QString& folder = {})
{
    QProcess process;
    process.setWorkingDirectory(folder);
    return runProcess(process, program, arguments);
}

/// In an environment of its own.
inline tCliRun runProgram(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    return runProcess(process, program, arguments);
}

inline tCliRun runCli(const QStringList& arguments, const QString& folder = {})
{
    return runProgram(VELMORA_CLI, arguments, folder);
}

/// Runs a line of the shell, in which "$0" is the program and "$1" the first argument.
inline tCliRun runCliInShell(const QString& line, const QStringList& arguments)
{
    return runProgram("/bin/sh", QStringList{ "-c", line, VELMORA_CLI } + arguments);
}

/// Runs from construction on:
///
///     CCliRun run({ "read", "-i", gateway, "-n", "5", "1017" });
///     QCOMPARE(run.status(), 0);
///     QCOMPARE(run.output(), "0x03E8\n");
class CCliRun
{
public:
    /// `folder`: where it runs; that of the test by itself.
    explicit CCliRun(const QStringList& arguments, const QString& folder = {})
    {
        m_process.setWorkingDirectory(folder);
        m_process.start(VELMORA_CLI, arguments);
    }
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
    QString error()
    {
        m_error += m_process.readAllStandardError();
        return QString::fromUtf8(m_error);
    }
    /// Standard output, then "--" and the exit status, then standard error without the name of the program; after the
    /// end.
    QString outcome()
    {
        const int ended = status();
        return QString("%1-- %2\n%3").arg(output()).arg(ended).arg(error().replace("velmora-cli: ", ""));
    }
    /// Waits until it has written that many lines to standard output.
    bool hasWritten(qsizetype lines)
    {
        while (output().count(u'\n') < lines)
            if (!m_process.waitForReadyRead(patience))
                return false;
        return true;
    }
    /// Waits until it has said so on standard error.
    bool hasTold(const QString& text)
    {
        m_process.setReadChannel(QProcess::StandardError);
        bool comes = true;
        while (comes && !error().contains(text))
            comes = m_process.waitForReadyRead(patience);
        m_process.setReadChannel(QProcess::StandardOutput);
        return comes;
    }
    void interrupt(int signal = SIGINT) { ::kill(static_cast<pid_t>(m_process.processId()), signal); }
    /// Nobody reads its standard output any more.
    void closeOutput() { m_process.closeReadChannel(QProcess::StandardOutput); }

private:
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_error;
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
