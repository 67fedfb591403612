// Faults on request: how they are written, and which SDO accesses they hit. The kinds and what each does are in
// gateway/GatewayFaults.cpp and can/CanFaults.cpp.
// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

/// Whether "=NUMBER" follows the kind.
enum tFaultNumber { numberNone, numberOptional, numberNeeded };

/// What can go wrong. Kinds with the same name are equal: one kind that both front-ends know.
struct tFaultKind {
    const char* name;
    const char* what; // for the help
    tFaultNumber number;
    quint32 argument; // the number when none is given
    quint32 highest;  // the highest number allowed

    friend bool operator==(const tFaultKind& a, const tFaultKind& b)
    {
        return std::string_view(a.name) == std::string_view(b.name);
    }
};

using tFaultKinds = std::span<const tFaultKind>;

inline bool contains(tFaultKinds kinds, const tFaultKind& kind)
{
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

/// The kinds of a front-end, taken from its rows: each row has a `kind` and what the front-end does then.
template <typename Row, std::size_t count>
constexpr std::array<tFaultKind, count> kindsOf(const Row (&rows)[count])
{
    std::array<tFaultKind, count> kinds{};
    std::transform(std::begin(rows), std::end(rows), kinds.begin(), [](const Row& row) { return row.kind; });
    return kinds;
}

/// The kinds that both front-ends know. What they do is in the rows of each.
namespace commonFaults
{
inline constexpr quint32 anyNumber = 0xFFFFFFFF;
inline constexpr quint32 longestDelay = 3600000; // an hour, in milliseconds

inline constexpr tFaultKind silence{ "silence", "no answer", numberNone, 0, 0 };
inline constexpr tFaultKind delay{ "delay", "the answer comes NUMBER milliseconds late (1500)", numberOptional, 1500,
                                   longestDelay };
inline constexpr tFaultKind twice{ "double",
                                   "two lines at once, the first with another number; on CAN each answer twice",
                                   numberNone, 0, 0 };
inline constexpr tFaultKind abort{ "abort", "SDO abort code NUMBER", numberNeeded, 0, anyNumber };
} // namespace commonFaults

/// A fault as it was asked for.
struct tFault {
    tFaultKind kind{};
    quint32 argument = 0;
    std::optional<quint32> index;    // none: every SDO access
    std::optional<quint32> subIndex; // none: every entry of the object

    bool hits(quint32 atIndex, quint32 atSubIndex) const;
};

/// Reads "KIND[=NUMBER][@INDEX[:SUB]]", where KIND is the name of one of `kinds`. INDEX and SUB are hexadecimal, with
/// or without "0x": "silence", "delay=200@2000", "abort=0x06060000@0x2000:1".
/// @return no value when the text is wrong; `message` then says why
std::optional<tFault> readFault(const QString& text, tFaultKinds kinds, QString* message);

/// The first fault of one of these kinds that hits the entry; null when none does.
const tFault* findFault(const QList<tFault>& faults, tFaultKinds kinds, quint32 index, quint32 subIndex);

/// For the help: the heading, then one line for each kind.
QString faultHelp(const QString& heading, tFaultKinds kinds);
