// Data sheets of a test: files with the text that it gives.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

/// A file in a folder of its own.
class CSheetFile
{
public:
    explicit CSheetFile(const QByteArray& text, const QString& name = QStringLiteral("device.eds"))
        : m_name(m_folder.filePath(name))
    {
        QFile file(m_name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("no temporary file");
    }

    QString name() const { return m_name; }

private:
    QTemporaryDir m_folder;
    QString m_name;
};

/// The text of a sheet with one variable, named "Value" unless told otherwise. `more` are further lines of its section.
inline QByteArray sheetOf(int index, int type, const QByteArray& access = "rw", const QByteArray& name = "Value",
                          const QByteArray& more = "")
{
    const QByteArray place = QByteArray::number(index, 16);
    return "[ManufacturerObjects]\n1=0x" + place + "\n[" + place + "]\nParameterName=" + name +
           "\nObjectType=7\nDataType=" + QByteArray::number(type) + "\nAccessType=" + access + "\n" + more;
}
