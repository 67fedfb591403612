// The program candump of can-utils: somebody else's look at vcan0.
// SPDX-License-Identifier: MIT
#pragma once

#include "RawCan.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// Logs vcan0 from the end of its construction on.
class CCandump
{
public:
    CCandump()
    {
        m_process.setStandardOutputFile(logName());
        m_process.start("candump", { "-L", "-r", "4000000", "vcan0" });
        m_process.waitForStarted();
        const CRawCan bus;
        const QDeadlineTimer deadline(isRunning() ? 5000 : 0);
        while (frames().isEmpty() && !deadline.hasExpired()) {
            bus.send("7FF#");
            QTest::qSleep(50);
        }
        m_before = frames().size();
    }
    ~CCandump() { end(); }
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// Ends it. @return the frames that it has seen
    QStringList end()
    {
        m_process.terminate();
        m_process.waitForFinished();
        return frames().mid(m_before);
    }

private:
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
