// A file that a command writes: complete, or not there.
// SPDX-License-Identifier: MIT
#include "console/OutputFile.h"

#include <QSaveFile>

void writeOutput(CConsole& console, const QString& fileName, const QByteArray& content)
{
    if (fileName.isEmpty() || fileName == QLatin1String("-")) {
        console.write(content);
        return;
    }
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        throw tEnd{ exitUsage, QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString()) };
}
