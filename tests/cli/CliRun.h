// A run of velmora-cli, and what came of it.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QProcess>

struct tCliRun {
    int status = -1; ///< -1: it did not end by itself
    QByteArray output;
    QByteArray error;
};

inline tCliRun runProgram(const QString& program, const QStringList& arguments)
{
    QProcess process;
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

inline tCliRun runCli(const QStringList& arguments)
{
    return runProgram(VELMORA_CLI, arguments);
}

/// Runs a line of the shell, in which "$0" is the program and "$1" the first argument.
inline tCliRun runCliInShell(const QString& line, const QStringList& arguments)
{
    return runProgram("/bin/sh", QStringList{ "-c", line, VELMORA_CLI } + arguments);
}
