// A file that a command writes: complete, or not there.
// SPDX-License-Identifier: MIT
#include "console/OutputFile.h"

#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace
{

bool put(QFileDevice& file, const QByteArray& content)
{
    // Without the flush, a commit would not tell that the last bytes were not written.
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
}

// What a file system says that cannot do it is no error.
int syncError(int descriptor)
{
    int error = 0;
    do
        error = fsync(descriptor) == 0 ? 0 : errno;
    while (error == EINTR);
    return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP ? 0 : error;
}

[[noreturn]] void endUnwritten(const QString& fileName, const QString& reason)
{
    throw tEnd{ exitUsage, QStringLiteral("cannot write %1: %2").arg(fileName, reason) };
}
[[noreturn]] void endUnwritten(const QFileDevice& file, const QString& fileName)
{
    endUnwritten(fileName, file.errorString());
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
    if (!put(file, content))
        endUnwritten(file, fileName);
    // A commit would pass over the error of a disk that takes the bytes only now.
    if (const int error = syncError(file.handle()); error != 0)
        endUnwritten(fileName, QString::fromLocal8Bit(std::strerror(error)));
    if (!file.commit())
        endUnwritten(file, fileName);
}
