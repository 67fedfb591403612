// The files that commands read, or the end of the command with the reason.
// SPDX-License-Identifier: MIT
#include "sheets/SheetFile.h"

#include "dic/DataSheet.h"

#include <QFile>
#include <QFileInfo>

namespace
{

constexpr qint64 mostBytes = 64 << 20;

[[noreturn]] void endUnread(const QString& fileName, const QString& reason)
{
    throw tEnd{ exitUsage, QStringLiteral("cannot read %1: %2").arg(fileName, reason) };
}

} // namespace

void loadSheet(CDataSheet& sheet, const QString& fileName, tSheetLines* lines)
{
    if (sheet.load(fileName, lines) != CDataSheet::loaded)
        throw tEnd{ exitUsage, sheet.error() };
}

QByteArray contentOf(const QString& fileName)
{
    if (const QFileInfo info(fileName); info.exists() && !info.isFile())
        endUnread(fileName, QStringLiteral("not a file"));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        endUnread(fileName, file.errorString());
    QByteArray content = file.read(mostBytes + 1);
    if (file.error() != QFileDevice::NoError)
        endUnread(fileName, file.errorString());
    if (content.size() > mostBytes)
        endUnread(fileName, QStringLiteral("it is larger than 64 MiB"));
    return content;
}
