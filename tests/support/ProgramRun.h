// A run of the real program, with a home of its own and a hand on its keyboard (e2e/Hand.cpp).
// SPDX-License-Identifier: MIT
#pragma once

#include "Patience.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

/// Runs from construction to its end:
///
///     const CProgramRun run({ { "Initialize CAN Interface", "Esc" }, { frame, "Ctrl+Q" } });
///     QVERIFY2(run.status == 0, run.output);
class CProgramRun
{
public:
    using tStep = std::pair<QString, QString>; ///< title of a window and what is done there, see Hand.cpp

    int status = -1;     ///< -1: it did not end by itself
    QStringList windows; ///< in which something was done
    QByteArray output;   ///< what it said on standard error

    explicit CProgramRun(const QList<tStep>& steps)
    {
        QFile file(m_home.filePath("steps"));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no steps");
        for (const auto& [window, action] : steps)
            file.write((window + '\t' + action + '\n').toUtf8());
        file.close();

        QProcess program;
        program.setProcessEnvironment(environment(file.fileName()));
        program.start(VELMORA_PROGRAM, {});
        if (program.waitForFinished(patience) && program.exitStatus() == QProcess::NormalExit)
            status = program.exitCode();
        else
            program.kill();
        program.waitForFinished(patience);
        windows = QString::fromUtf8(program.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        output = program.readAllStandardError();
    }

    /// What the settings hold after the run; empty when nothing was worth keeping.
    QByteArray settings() const
    {
        QFile file(m_home.filePath("config/Brask Works.conf"));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private:
    QProcessEnvironment environment(const QString& steps) const
    {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        variables.insert("QT_QPA_PLATFORM", "offscreen");
        variables.insert("QT_PLUGIN_PATH", VELMORA_TEST_PLUGINS);
        variables.insert("QT_QPA_GENERIC_PLUGINS", "velmora-test-hand");
        variables.insert("VELMORA_TEST_STEPS", steps);
        variables.insert("HOME", m_home.path());
        variables.insert("XDG_CONFIG_HOME", m_home.filePath("config"));
        variables.remove("DISPLAY");
        variables.remove("WAYLAND_DISPLAY");
        return variables;
    }

    QTemporaryDir m_home;
};
