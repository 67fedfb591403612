// A run of the real program, with a home directory of its own and keys pressed by a plugin (KeyPlugin.cpp).
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
    using tStep = std::pair<QString, QString>; ///< title of a window and what is done there, see KeyPlugin.cpp

    int status = -1;     ///< exit status; -1: it did not end by itself
    QStringList windows; ///< in which something was done
    QByteArray output;   ///< of its standard error

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

    /// The settings file after the run; empty if nothing was stored.
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
        variables.insert("QT_QPA_GENERIC_PLUGINS", "velmora-test-keys");
        variables.insert("VELMORA_TEST_STEPS", steps);
        variables.insert("HOME", m_home.path());
        variables.insert("XDG_CONFIG_HOME", m_home.filePath("config"));
        variables.remove("DISPLAY");
        variables.remove("WAYLAND_DISPLAY");
        return variables;
    }

    QTemporaryDir m_home;
};
