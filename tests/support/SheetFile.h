// A data sheet with the text that a test gives, in a folder of its own.
// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

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
