// Faults on request: how they are written, and which SDO accesses they hit.
// SPDX-License-Identifier: MIT
#include "Faults.h"

#include "dic/NumberText.h"

#include <QStringList>

#include <algorithm>

namespace
{

// Index and sub-index are always hexadecimal.
std::optional<quint32> readHexadecimal(const QString& text, quint32 minimum, quint32 maximum)
{
    bool ok = false;
    const quint32 value = text.toUInt(&ok, 16);
    if (!ok || value < minimum || value > maximum)
        return std::nullopt;
    return value;
}

// what = kind [ "=" number ]; the result is null, or why the text is wrong
const char* readWhat(const QString& what, tFaultKinds kinds, tFault& fault)
{
    const qsizetype equals = what.indexOf(u'=');
    const auto kind = std::find_if(kinds.begin(), kinds.end(), [name = what.left(equals)](const tFaultKind& each) {
        return name == QLatin1String(each.name);
    });
    if (kind == kinds.end())
        return "unknown kind";
    fault.kind = *kind;
    fault.argument = kind->argument;
    if (equals < 0)
        return kind->number == numberNeeded ? "a number is missing, as in error=103" : nullptr;
    const auto number = readNumber(what.mid(equals + 1));
    if (kind->number == numberNone || !number || number->negative || number->bits > kind->highest)
        return "wrong number after '='";
    fault.argument = static_cast<quint32>(number->bits);
    return nullptr;
}

// place = index [ ":" sub-index ]; the result as above
const char* readPlace(const QString& place, tFault& fault)
{
    const qsizetype colon = place.indexOf(u':');
    fault.index = readHexadecimal(place.left(colon), 1, 0xFFFF);
    if (!fault.index)
        return "wrong index after '@'";
    if (colon < 0)
        return nullptr;
    fault.subIndex = readHexadecimal(place.mid(colon + 1), 0, 0xFF);
    return fault.subIndex ? nullptr : "wrong sub-index after ':'";
}

} // namespace

bool tFault::hits(quint32 atIndex, quint32 atSubIndex) const
{
    return index.value_or(atIndex) == atIndex && subIndex.value_or(atSubIndex) == atSubIndex;
}

// fault = what [ "@" place ]
std::optional<tFault> readFault(const QString& text, tFaultKinds kinds, QString* message)
{
    const qsizetype at = text.indexOf(u'@');
    tFault fault;
    const char* error = readWhat(text.left(at), kinds, fault);
    if (error == nullptr && at >= 0)
        error = readPlace(text.mid(at + 1), fault);
    if (error == nullptr)
        return fault;
    *message = QStringLiteral("fault \"%1\": %2").arg(text, QLatin1String(error));
    return std::nullopt;
}

const tFault* findFault(const QList<tFault>& faults, tFaultKinds kinds, quint32 index, quint32 subIndex)
{
    const auto found = std::find_if(faults.cbegin(), faults.cend(), [=](const tFault& each) {
        return contains(kinds, each.kind) && each.hits(index, subIndex);
    });
    return found == faults.cend() ? nullptr : &*found;
}

QString faultHelp(const QString& heading, tFaultKinds kinds)
{
    QStringList lines{ QStringLiteral(" %1:").arg(heading) };
    for (const tFaultKind& kind : kinds)
        lines += QStringLiteral("  %1 %2").arg(QLatin1String(kind.name), -9).arg(QLatin1String(kind.what));
    return lines.join(u'\n');
}
