// Data sheets that were installed with the programs.
// SPDX-License-Identifier: MIT
#include "dic/InstalledSheet.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString findSheet(const QString& fileName)
{
    if (fileName.contains(u'/') || QFileInfo::exists(fileName))
        return fileName;
    const QString program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    const QString installed = QDir::cleanPath(program + QStringLiteral("/../../share/velmora/") + fileName);
    return QFileInfo(installed).isFile() ? installed : fileName;
}
