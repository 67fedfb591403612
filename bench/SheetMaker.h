// Makes electronic data sheets of any size for the benchmarks.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QTemporaryDir>

/// Writes a data sheet of `objects` RECORD objects with five entries each, about 600 bytes an object.
void writeSheet(const QString& fileName, int objects);

/// Such a sheet in a temporary folder.
class CSheet
{
public:
    explicit CSheet(int objects);

    QString fileName() const { return m_folder.filePath(QStringLiteral("sheet.eds")); }
    qint64 size() const;

private:
    QTemporaryDir m_folder;
};
