// Misbehaviour on request: the kinds of faults, and which SDO accesses a fault hits.
// SPDX-License-Identifier: MIT
#include "Faults.h"

#include "can/CanFaults.h"
#include "gateway/GatewayFaults.h"
#include "device/NumberText.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint32 longestDelay = 3600000; // an hour, in milliseconds
constexpr quint32 mostFrames = 100000;
constexpr quint32 mostSegments = 100000;
constexpr quint32 mostBytes = 1000000;
constexpr quint32 anyByte = 0xFF;
constexpr quint32 anyNumber = 0xFFFFFFFF;

namespace gateway = gatewayFaults;
namespace can = canFaults;

constexpr tFaultKind kinds[] = {
    { "silence", "no answer", numberNone, 0, 0, &gateway::silence, &can::silence },
    { "delay", "the answer comes NUMBER milliseconds late (1500)", numberOptional, 1500, longestDelay, &gateway::delay,
      &can::delay },
    { "double", "two lines at once, the first with another number; on CAN each answer twice", numberNone, 0, 0,
      &gateway::twoLines, &can::twice },
    { "abort", "SDO abort code NUMBER", numberNeeded, 0, anyNumber, &gateway::abort, &can::abort },

    { "drop", "the connection is closed", numberNone, 0, 0, &gateway::drop, nullptr },
    { "garbage", "bytes that are no answer, behind the right number", numberNone, 0, 0, &gateway::garbage, nullptr },
    { "sequence", "the answer with the number of the command before", numberNone, 0, 0, &gateway::sequence, nullptr },
    { "bytewise", "the answer, one byte at a time", numberNone, 0, 0, &gateway::bytewise, nullptr },
    { "overlong", "the answer in a line of more than 2000 characters", numberNone, 0, 0, &gateway::overlong, nullptr },
    { "error", "gateway error NUMBER", numberNeeded, 0, anyNumber, &gateway::error, nullptr },

    { "stall", "no answer from answer NUMBER of a transfer on (2); 1 answers the initiate", numberOptional, 2,
      mostSegments, nullptr, &can::stall },
    { "toggle", "the wrong toggle bit in the answer to segment NUMBER (1)", numberOptional, 1, mostSegments, nullptr,
      &can::toggle },
    { "command", "an unknown command specifier in answer NUMBER (1)", numberOptional, 1, mostSegments, nullptr,
      &can::command },
    { "short", "only 7 bytes in answer NUMBER (1)", numberOptional, 1, mostSegments, nullptr, &can::shortFrame },
    { "foreign", "before the answer to the initiate the same for another index", numberNone, 0, 0, nullptr,
      &can::foreign },
    { "flood", "NUMBER frames with other COB-IDs before each answer (1000)", numberOptional, 1000, mostFrames, nullptr,
      &can::flood },
    { "segment", "abort 0x08000000 in place of the answer to segment NUMBER (1)", numberOptional, 1, mostSegments,
      nullptr, &can::segment },
    { "last", "abort 0x08000000 in place of the last confirmation; behind the last segment of an upload", numberNone, 0,
      0, nullptr, &can::last },
    { "filler", "the unused bytes of answers are NUMBER (0xFF)", numberOptional, 0xFF, anyByte, nullptr, &can::filler },
    { "empty", "NUMBER segments without data before an upload (3)", numberOptional, 3, mostSegments, nullptr,
      &can::empty },
    { "surplus", "an upload has NUMBER bytes more than it announces (1000)", numberOptional, 1000, mostBytes, nullptr,
      &can::surplus },
    { "endless", "an upload does not end; abort 0x08000000 after NUMBER segments (10000)", numberOptional, 10000,
      mostSegments, nullptr, &can::endless },
};

const tFaultKind* kindByName(const QString& name)
{
    const auto row = std::find_if(std::begin(kinds), std::end(kinds),
                                  [&name](const tFaultKind& each) { return name == QLatin1String(each.name); });
    return row == std::end(kinds) ? nullptr : row;
}

// Index and sub-index are always hexadecimal.
std::optional<quint32> readHexadecimal(const QString& text, quint32 minimum, quint32 maximum)
{
    bool ok = false;
    const quint32 value = text.toUInt(&ok, 16);
    if (!ok || value < minimum || value > maximum)
        return std::nullopt;
    return value;
}

// what = kind [ "=" number ]; the result is null or the reason why not
const char* readWhat(const QString& what, tFault& fault)
{
    const qsizetype equals = what.indexOf(u'=');
    fault.kind = kindByName(what.left(equals));
    if (fault.kind == nullptr)
        return "unknown kind";
    fault.argument = fault.kind->argument;
    if (equals < 0)
        return fault.kind->number == numberNeeded ? "a number is missing, as in error=103" : nullptr;
    const auto number = readNumber(what.mid(equals + 1));
    if (fault.kind->number == numberNone || !number || number->negative || number->bits > fault.kind->highest)
        return "wrong number behind '='";
    fault.argument = static_cast<quint32>(number->bits);
    return nullptr;
}

// place = index [ ":" sub-index ]; the result as above
const char* readPlace(const QString& place, tFault& fault)
{
    const qsizetype colon = place.indexOf(u':');
    fault.index = readHexadecimal(place.left(colon), 1, 0xFFFF);
    if (!fault.index)
        return "wrong index behind '@'";
    if (colon < 0)
        return nullptr;
    fault.subIndex = readHexadecimal(place.mid(colon + 1), 0, 0xFF);
    return fault.subIndex ? nullptr : "wrong sub-index behind ':'";
}

} // namespace

bool tFault::hits(quint32 atIndex, quint32 atSubIndex) const
{
    return index.value_or(atIndex) == atIndex && subIndex.value_or(atSubIndex) == atSubIndex;
}

// fault = what [ "@" place ]
std::optional<tFault> readFault(const QString& text, QString* message)
{
    const qsizetype at = text.indexOf(u'@');
    tFault fault;
    const char* trouble = readWhat(text.left(at), fault);
    if (trouble == nullptr && at >= 0)
        trouble = readPlace(text.mid(at + 1), fault);
    if (trouble == nullptr)
        return fault;
    *message = QStringLiteral("fault \"%1\": %2").arg(text, QLatin1String(trouble));
    return std::nullopt;
}

const tFault* findFault(const QList<tFault>& faults, tFrontEnd front, quint32 index, quint32 subIndex)
{
    const auto found = std::find_if(faults.cbegin(), faults.cend(), [=](const tFault& each) {
        return each.kind->isFor(front) && each.hits(index, subIndex);
    });
    return found == faults.cend() ? nullptr : &*found;
}

QString faultHelp()
{
    constexpr struct {
        const char* heading;
        bool gateway;
        bool can;
    } groups[] = {
        { "on the gateway and on CAN", true, true },
        { "on the gateway", true, false },
        { "on CAN", false, true },
    };
    QStringList lines;
    for (const auto& group : groups) {
        lines += QStringLiteral(" %1:").arg(QLatin1String(group.heading));
        for (const tFaultKind& kind : kinds)
            if (kind.isFor(frontGateway) == group.gateway && kind.isFor(frontCan) == group.can)
                lines += QStringLiteral("  %1 %2").arg(QLatin1String(kind.name), -9).arg(QLatin1String(kind.what));
    }
    return lines.join(u'\n');
}
