// A run of velmora-cli.
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QProcess>

/// Runs the program from construction to its end, in `folder`.
class CCliRun
{
public:
    int status = -1; ///< exit status; -1: it did not end by itself
    QString output;  ///< standard output
    QString errors;  ///< standard error

    explicit CCliRun(const QStringList& arguments, const QString& folder = {})
    {
        QProcess program;
        program.setWorkingDirectory(folder);
        program.start(VELMORA_CLI, arguments);
        if (program.waitForFinished(patience) && program.exitStatus() == QProcess::NormalExit)
            status = program.exitCode();
        else
            program.kill();
        program.waitForFinished(patience);
        output = QString::fromUtf8(program.readAllStandardOutput());
        errors = QString::fromUtf8(program.readAllStandardError());
    }
};
