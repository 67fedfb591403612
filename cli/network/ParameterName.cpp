// The names of parameters on the command line.
//
//     parameter = index [ ( ":" | "sub" ) sub-index ] | name [ "/" name ]
//     index     = [ "0x" ] 1 to 4 hexadecimal digits
//     sub-index = [ "0x" ] 1 or 2 hexadecimal digits
// SPDX-License-Identifier: MIT
#include "network/ParameterName.h"

#include "console/ExitStatus.h"
#include "dic/CANopen.h"
#include "network/NearParameters.h"
#include "sheets/EntryText.h"

#include <QRegularExpression>

#include <algorithm>
#include <optional>

namespace
{

using tObject = CCANopenObject;

const CCANopenObjectEntry* entryOf(const CCANopen* sheet, WORD index, BYTE subIndex)
{
    const int place = sheet != nullptr ? sheet->find(index) : -1;
    if (place < 0)
        return nullptr;
    const tObject& object = *sheet->m_objectArray[static_cast<std::size_t>(place)];
    const int entry = object.find(subIndex);
    return entry < 0 ? nullptr : object.m_objectEntryArray[static_cast<std::size_t>(entry)].get();
}

// All parameters of that name, each once.
QList<tParameterName> namedParameters(const QString& text, const CCANopen& sheet)
{
    QList<tParameterName> found;
    for (const auto& object : sheet.m_objectArray) {
        for (const auto& entry : object->m_objectEntryArray) {
            const bool named = text == object->getName() + u'/' + entry->getName() ||
                               (entry->getSubindex() == 0 && text == object->getName());
            const bool known = std::any_of(found.cbegin(), found.cend(), [&](const tParameterName& other) {
                return other.index == object->getIndex() && other.subIndex == entry->getSubindex();
            });
            if (named && !known)
                found += { object->getIndex(), entry->getSubindex(), entry.get() };
        }
    }
    return found;
}

QString listed(const QList<tParameterName>& parameters)
{
    QStringList texts;
    for (const tParameterName& parameter : parameters)
        texts += parameterText(parameter.index, parameter.subIndex);
    return texts.join(QStringLiteral(", "));
}

std::optional<tParameterName> numberedParameter(const QString& text, const CCANopen* sheet)
{
    static const QRegularExpression numbers(
        QStringLiteral("^(?:0x)?([0-9a-f]{1,4})(?:(?::|sub)(?:0x)?([0-9a-f]{1,2}))?$"),
        QRegularExpression::CaseInsensitiveOption);
    const auto match = numbers.match(text);
    if (!match.hasMatch() || text.endsWith(u'\n'))
        return std::nullopt;
    const auto index = static_cast<WORD>(match.captured(1).toUInt(nullptr, 16));
    const auto subIndex = static_cast<BYTE>(match.captured(2).toUInt(nullptr, 16));
    return tParameterName{ index, subIndex, entryOf(sheet, index, subIndex) };
}

bool hasSeveralEntries(const tObject& object)
{
    return std::any_of(object.m_objectEntryArray.cbegin(), object.m_objectEntryArray.cend(),
                       [](const auto& entry) { return entry->getSubindex() != 0; });
}

// The name of an object alone stands for its only entry.
void refuseSeveralEntries(const QString& text, const CCANopen& sheet)
{
    for (const auto& object : sheet.m_objectArray)
        if (text == object->getName() && hasSeveralEntries(*object))
            throw tEnd{
                exitUsage,
                QStringLiteral("\"%1\" has several entries: write %2").arg(text, quotedNames(entryNames(*object)))
            };
}

// For a text that is the number of one parameter and the name of others.
void refuseOtherNames(const QString& text, const tParameterName& number, const QList<tParameterName>& names)
{
    for (const tParameterName& name : names)
        if (name.index != number.index || name.subIndex != number.subIndex)
            throw tEnd{ exitUsage, QStringLiteral("\"%1\" is an index and the name of %2: write 0x%3 or %2")
                                       .arg(text, listed(names), parameterText(number.index, number.subIndex)) };
}

} // namespace

tParameterName readParameterName(const QString& text, const CCANopen* sheet)
{
    const auto names = sheet != nullptr ? namedParameters(text, *sheet) : QList<tParameterName>();
    if (const auto number = numberedParameter(text, sheet)) {
        if (!text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
            refuseOtherNames(text, *number, names);
        return *number;
    }
    if (sheet != nullptr && names.size() == 1) {
        refuseSeveralEntries(text, *sheet);
        return names.first();
    }
    if (names.size() > 1)
        throw tEnd{ exitUsage,
                    QStringLiteral("\"%1\" is the name of several parameters: %2").arg(text, listed(names)) };
    const QString why = sheet == nullptr ? QStringLiteral("; names need a data sheet (-s)")
                                         : QStringLiteral(", and no name in the data sheet");
    const QStringList near = sheet == nullptr ? QStringList() : nearNames(text, *sheet);
    throw tEnd{ exitUsage,
                QStringLiteral("\"%1\" is no parameter such as 1018:1 or 0x1018sub1%2%3")
                    .arg(text, why, near.isEmpty() ? QString() : QStringLiteral("; near is ") + quotedNames(near)) };
}
