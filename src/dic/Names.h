// Names of the model's enumerations: one look-up for both directions, and the tables that several classes share.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <array>
#include <span>
#include <string_view>

/// When a text matches a name: if it equals the name or begins with it, in the same case or in any case.
enum TNameMatch { matchWord, matchWordNoCase, matchPrefix, matchPrefixNoCase };
/// `useReadOnly`: the name is recognised, but its number is never shown by it.
enum TNameUse { useBothWays, useReadOnly };

struct tName {
    std::string_view text;
    int value;
    TNameMatch match;
    TNameUse use = useBothWays;
};
/// Rows are tried from top to bottom in both directions; the first match counts.
using TNames = std::span<const tName>;

constexpr char lowerCase(char c)
{
    return 'A' <= c && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool nameMatches(const tName& name, std::string_view text)
{
    const bool prefix = name.match == matchPrefix || name.match == matchPrefixNoCase;
    const bool anyCase = name.match == matchWordNoCase || name.match == matchPrefixNoCase;
    if (text.size() < name.text.size() || (!prefix && text.size() > name.text.size()))
        return false;
    for (std::size_t i = 0; i < name.text.size(); ++i)
        if (anyCase ? lowerCase(text[i]) != lowerCase(name.text[i]) : text[i] != name.text[i])
            return false;
    return true;
}

constexpr int valueOf(TNames names, std::string_view text, int unknown)
{
    for (const tName& name : names)
        if (nameMatches(name, text))
            return name.value;
    return unknown;
}

constexpr std::string_view nameOf(TNames names, int value, std::string_view unknown)
{
    for (const tName& name : names)
        if (name.value == value && name.use == useBothWays)
            return name.text;
    return unknown;
}

/// The number of a name; `unknown` for a text, or a null pointer, that matches no row.
int valueByName(TNames names, const char* text, int unknown);
/// The name of a number; `unknown` for a number without a row.
QString nameByValue(TNames names, int value, std::string_view unknown);

/// States of files, objects, entries and devices. `Owner` is the class with the enumerators.
template <typename Owner>
constexpr auto stateNames(TNameMatch match)
{
    return std::array{
        tName{ "Public", Owner::statePublic, match },
        tName{ "Protected", Owner::stateProtected, match },
        tName{ "Private", Owner::statePrivate, match },
    };
}

/// Categories of objects and entries.
template <typename Owner>
constexpr auto categoryNames(TNameMatch match)
{
    return std::array{
        tName{ "Optional", Owner::categoryOptional, match },
        tName{ "Mandatory", Owner::categoryMandatory, match },
        tName{ "Conditional", Owner::categoryConditional, match },
    };
}

/// Data types that objects and entries have in common.
template <typename Owner>
constexpr auto dataTypeNames()
{
    return std::array{
        tName{ "Boolean", Owner::typeBoolean, matchWordNoCase },
        tName{ "Integer8", Owner::typeInteger8, matchWordNoCase },
        tName{ "Integer16", Owner::typeInteger16, matchWordNoCase },
        tName{ "Integer32", Owner::typeInteger32, matchWordNoCase },
        tName{ "Unsigned8", Owner::typeUnsigned8, matchWordNoCase },
        tName{ "Unsigned16", Owner::typeUnsigned16, matchWordNoCase },
        tName{ "Unsigned32", Owner::typeUnsigned32, matchWordNoCase },
        tName{ "Real32", Owner::typeReal32, matchWordNoCase },
        tName{ "Visible String", Owner::typeVisibleString, matchWordNoCase },
        tName{ "Octet String", Owner::typeOctetString, matchWordNoCase },
        tName{ "Date", Owner::typeDate, matchWordNoCase },
        tName{ "Time Of Day", Owner::typeTimeOfDay, matchWordNoCase },
        tName{ "Time Difference", Owner::typeTimeDifference, matchWordNoCase },
        tName{ "Domain", Owner::typeDomain, matchWordNoCase },
        tName{ "Integer24", Owner::typeInteger24, matchWordNoCase },
        tName{ "Real64", Owner::typeReal64, matchWordNoCase },
        tName{ "Integer40", Owner::typeInteger40, matchWordNoCase },
        tName{ "Integer48", Owner::typeInteger48, matchWordNoCase },
        tName{ "Integer56", Owner::typeInteger56, matchWordNoCase },
        tName{ "Integer64", Owner::typeInteger64, matchWordNoCase },
        tName{ "Unsigned24", Owner::typeUnsigned24, matchWordNoCase },
        tName{ "Unsigned40", Owner::typeUnsigned40, matchWordNoCase },
        tName{ "Unsigned48", Owner::typeUnsigned48, matchWordNoCase },
        tName{ "Unsigned56", Owner::typeUnsigned56, matchWordNoCase },
        tName{ "Unsigned64", Owner::typeUnsigned64, matchWordNoCase },
    };
}
