// A data sheet from a text: as a file, and loaded into a dictionary.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <QFile>
#include <QTemporaryDir>

/// The text as a file that lives as long as the object.
class CSheetFile
{
public:
    explicit CSheetFile(const QByteArray& text, const QString& title = "sheet.eds") : m_path(m_folder.filePath(title))
    {
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write a data sheet in %s", qPrintable(m_folder.path()));
    }

    QString path() const { return m_path; }
    QByteArray name() const { return QFile::encodeName(m_path); }

private:
    QTemporaryDir m_folder;
    QString m_path;
};

/// The text as a dictionary. `result` is what the reader returned.
class CLoadedSheet
{
public:
    explicit CLoadedSheet(const QByteArray& text)
        : result(CCANopenReader(&dictionary, CCANopen::typeEDS).load(CSheetFile(text).name()))
    {
    }

    CCANopen dictionary;
    const int result;

    qsizetype count() const { return qsizetype(dictionary.m_objectArray.size()); }
    const CCANopenObject& object(size_t position) const { return *dictionary.m_objectArray[position]; }
    const CCANopenObject* operator[](size_t position) const { return &object(position); }
    const CCANopenObjectEntry& entry(size_t position, size_t number) const
    {
        return *object(position).m_objectEntryArray[number];
    }

    /// Objects and entries in the order of their creation, for example "1000[0] 1018[0 1]". An entry with another index
    /// than its object is shown with it: "1000[1018sub1]".
    QString outline() const
    {
        QStringList objects;
        for (size_t position = 0; position < dictionary.m_objectArray.size(); ++position)
            objects << outline(object(position));
        return objects.join(' ');
    }

    /// Names of the objects.
    QString names() const
    {
        QStringList names;
        for (const auto& object : dictionary.m_objectArray)
            names << object->getName();
        return names.join(' ');
    }

private:
    static QString outline(const CCANopenObject& object)
    {
        QStringList entries;
        for (size_t number = 0; number < object.m_objectEntryArray.size(); ++number) {
            const CCANopenObjectEntry& entry = *object.m_objectEntryArray[number];
            const QString subIndex = QString::number(entry.getSubindex(), 16);
            const bool own = entry.getIndex() == object.getIndex();
            entries << (own ? subIndex : QString("%1sub%2").arg(entry.getIndex(), 0, 16).arg(subIndex));
        }
        return QString("%1[%2]").arg(QString::number(object.getIndex(), 16), entries.join(' '));
    }
};
