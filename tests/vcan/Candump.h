// The program candump of can-utils, which logs vcan0 independently of this project.
// SPDX-License-Identifier: MIT
#pragma once

#include "RawCan.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// Logs vcan0 from construction on.
class CCandump
{
public:
    CCandump()
    {
        m_process.setStandardOutputFile(logName());
        m_process.start("candump", { "-L", "-r", "4000000", "vcan0" });
        m_process.waitForStarted(patience);
        awaitFrame("7FF#");
        m_before = frames().size();
    }
    ~CCandump() { end(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Ends it. @return the frames logged, and one or more "7FE#" after them
    QStringList end()
    {
        awaitFrame("7FE#");
        m_process.terminate();
        m_process.waitForFinished(patience);
        return frames().mid(m_before);
    }

private:
    /// Sends the frame until the log has it: candump may not have opened its socket yet.
    void awaitFrame(const QString& frame) const
    {
        const CRawCan bus;
        const QDeadlineTimer deadline(isRunning() ? patience : 0);
        while (!frames().contains(frame) && !deadline.hasExpired()) {
            bus.send(frame);
            QTest::qSleep(50);
        }
    }
    QString logName() const { return m_folder.filePath("log"); }
    QStringList frames() const
    {
        QFile log(logName());
        if (!log.open(QIODevice::ReadOnly))
            return QStringList();
        QStringList frames;
        for (const QString& line : QString::fromLatin1(log.readAll()).split('\n', Qt::SkipEmptyParts))
            frames += line.section(' ', 2);
        return frames;
    }

    QTemporaryDir m_folder;
    QProcess m_process;
    qsizetype m_before = 0;
};
