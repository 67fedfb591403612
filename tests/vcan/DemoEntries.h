// The entries of the sample sheet, read without the project's reader, with their values as they are on the bus.
// SPDX-License-Identifier: MIT
#pragma once

#include "SheetBytes.h"

#include <QFile>
#include <QList>

/// An entry of node 5.
struct tDemoEntry {
    QByteArray section; // such as "1018sub1"
    unsigned index;
    unsigned subIndex;
    QString access;
    QByteArray value; // the default
    QByteArray other; // another one within the limits
    bool keeps;       // what is written can be read again

    bool readable() const { return access != QLatin1String("wo"); }
    bool writable() const { return access != QLatin1String("ro") && access != QLatin1String("const"); }
};

class CDemoEntries
{
public:
    static QList<tDemoEntry> all()
    {
        QList<tDemoEntry> entries;
        const QMap<QString, CSheetBytes::tKeys> sections = read();
        for (auto section = sections.begin(); section != sections.end(); ++section) {
            const QString access = section->value(QStringLiteral("AccessType"));
            if (access.isEmpty())
                continue;
            const int type = section->value(QStringLiteral("DataType")).toInt(nullptr, 16);
            const unsigned index = section.key().left(4).toUInt(nullptr, 16);
            const unsigned subIndex = section.key().mid(7).toUInt(nullptr, 16);
            const bool parameters = (index == 0x1010 || index == 0x1011) && subIndex > 0; // want their signature
            const QByteArray other =
                parameters ? (index == 0x1010 ? "save" : "load") : CSheetBytes::otherValue(type, *section);
            entries += { section.key().toLatin1(),           index, subIndex,   access,
                         CSheetBytes::value(type, *section), other, !parameters };
        }
        return entries;
    }

private:
    static QMap<QString, CSheetBytes::tKeys> read()
    {
        QMap<QString, CSheetBytes::tKeys> sections;
        QFile file(VELMORA_SHARE "/velmora-demo.eds");
        if (!file.open(QIODevice::ReadOnly))
            qFatal("no sample sheet");
        QString section;
        for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n')) {
            if (line.startsWith(u'['))
                section = line.mid(1, line.size() - 2);
            else if (line.contains(u'=') && !line.startsWith(u';'))
                sections[section].insert(line.section(u'=', 0, 0), line.section(u'=', 1));
        }
        return sections;
    }
};
