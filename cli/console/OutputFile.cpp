// A file that a command writes: complete, or not there.
// SPDX-License-Identifier: MIT
#include "console/OutputFile.h"

#include <QFileInfo>
#include <QSaveFile>

namespace
{

bool put(QFileDevice& file, const QByteArray& content)
{
    // Without the flush, a commit would not tell that the last bytes were not written.
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

[[noreturn]] void endUnwritten(const QFileDevice& file, const QString& fileName)
{
    throw tEnd{ exitUsage, QStringLiteral("cannot write %1: %2").arg(fileName, file.errorString()) };
}

} // namespace

bool isStandardOutput(const QString& fileName)
{
    return fileName.isEmpty() || fileName == QLatin1String("-");
}

void writeOutput(CConsole& console, const QString& fileName, const QByteArray& content)
{
    if (isStandardOutput(fileName)) {
        console.write(content);
        return;
    }
    if (const QFileInfo info(fileName); info.exists() && !info.isFile() && !info.isDir()) {
        QFile device(fileName); // or a pipe: not to be replaced by a file
        if (!put(device, content))
            endUnwritten(device, fileName);
        return;
    }
    QSaveFile file(fileName);
    if (!put(file, content) || !file.commit())
        endUnwritten(file, fileName);
}
