// A file that a command writes: complete, or not there.
// SPDX-License-Identifier: MIT
#include "console/OutputFile.h"

#include <QFileInfo>
#include <QSaveFile>

namespace
{

template <typename File>
void writeFile(File& file, const QByteArray& content, bool (*complete)(File& file))
{
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !complete(file))
        throw tEnd{ exitUsage, QStringLiteral("cannot write %1: %2").arg(file.fileName(), file.errorString()) };
}

} // namespace

void writeOutput(CConsole& console, const QString& fileName, const QByteArray& content)
{
    if (fileName.isEmpty() || fileName == QLatin1String("-")) {
        console.write(content);
        return;
    }
    const QFileInfo place(fileName);
    if (place.exists() && !place.isFile() && !place.isDir()) { // to be replaced by a file it is not
        QFile device(fileName);
        writeFile<QFile>(device, content, [](QFile& written) { return written.flush(); });
        return;
    }
    QSaveFile file(fileName);
    writeFile<QSaveFile>(file, content, [](QSaveFile& written) { return written.commit(); });
}
