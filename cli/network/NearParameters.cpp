// Names of parameters that may be meant by a text that is none.
// SPDX-License-Identifier: MIT
#include "network/NearParameters.h"

#include "dic/CANopen.h"
#include "dic/DataSheet.h"
#include "sheets/NearName.h"

#include <string>
#include <vector>

namespace
{

bool isSame(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// The nearest of the names, or of the entries by their own names.
QStringList nearest(const QString& text, const CCANopen& sheet)
{
    std::vector<std::string> names;
    std::vector<QString> parameters;
    for (const auto& object : sheet.m_objectArray) {
        const QStringList entries = entryNames(*object);
        for (qsizetype place = 0; place < entries.size(); ++place) {
            names.push_back(entries[place].toStdString());
            names.push_back(object->m_objectEntryArray[static_cast<std::size_t>(place)]->getName().toStdString());
            parameters.insert(parameters.end(), 2, entries[place]);
        }
    }
    const std::string wanted = text.toStdString();
    CNearName near(wanted);
    for (const std::string& name : names)
        near.offer(name);
    for (std::size_t place = 0; place < names.size(); ++place)
        if (!near.best().empty() && names[place].data() == near.best().data())
            return { parameters[place] };
    return {};
}

} // namespace

QStringList entryNames(const CCANopenObject& object)
{
    const auto& entries = object.m_objectEntryArray;
    if (entries.size() == 1 && entries.front()->getSubindex() == 0)
        return { object.getName() };
    QStringList names;
    for (const auto& entry : entries)
        names += object.getName() + u'/' + entry->getName();
    return names;
}

QStringList nearNames(const QString& text, const CCANopen& sheet)
{
    QStringList names;
    for (const auto& object : sheet.m_objectArray) {
        const QStringList entries = entryNames(*object);
        const bool ofObject = isSame(text, object->getName()) || isSame(text, object->getName() + u'/');
        for (qsizetype place = 0; place < entries.size(); ++place)
            if (ofObject || isSame(text, entries[place]) ||
                isSame(text, object->m_objectEntryArray[static_cast<std::size_t>(place)]->getName()))
                names += entries[place];
    }
    return names.isEmpty() ? nearest(text, sheet) : names;
}

QString quotedNames(const QStringList& names)
{
    constexpr qsizetype most = 6;
    QStringList quoted;
    for (const QString& name : names.mid(0, most))
        quoted += u'"' + visibleText(name) + u'"';
    if (names.size() > most)
        quoted += QStringLiteral("...");
    return quoted.join(QStringLiteral(", "));
}
