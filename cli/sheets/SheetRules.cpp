// The rules that data sheets are checked by.
// SPDX-License-Identifier: MIT
#include "sheets/SheetRules.h"

#include <algorithm>
#include <iterator>

namespace
{

// clang-format off
constexpr tRuleRow rules[] = {
    { ruleSyntax, "syntax", severityError, "a line that is no section, key or comment stops the browser" },
    { ruleNoObjects, "no-objects", severityError, "the file describes no object at all" },

    { ruleIgnoredSection, "ignored-section", severityWarning,
      "the name of an object's section is written so that the browser ignores it, as with a leading zero" },
    { ruleUnknownSection, "unknown-section", severityWarning, "CiA 306 knows no section of that name" },
    { ruleEmptySection, "empty-section", severityWarning, "a section without keys describes nothing" },
    { ruleMissingSection, "missing-section", severityWarning,
      "every sheet has FileInfo, DeviceInfo and MandatoryObjects" },
    { ruleDuplicateSection, "duplicate-section", severityWarning, "a section, index or sub-index is there twice" },

    { ruleDuplicateIndex, "duplicate-index", severityWarning, "an index is listed twice" },
    { ruleMissingObject, "missing-object", severityWarning, "an object is listed, or has entries, but has no section" },
    { ruleUnlistedObject, "unlisted-object", severityWarning, "an object has a section, but no list names it" },
    { ruleMissingMandatory, "missing-mandatory", severityWarning, "every device has the objects 1000, 1001 and 1018" },
    { ruleWrongList, "wrong-list", severityWarning,
      "an object is in the list of others: ManufacturerObjects has 2000 to 5FFF" },
    { ruleListNumber, "list-number", severityWarning, "the lines of a list are numbered from 1 without gaps" },

    { ruleUnknownKey, "unknown-key", severityWarning, "CiA 306 knows no key of that name in its section" },
    { ruleSpelling, "spelling", severityWarning, "the browser knows a key or a section in another spelling only" },
    { ruleDuplicateKey, "duplicate-key", severityWarning, "a key is in its section twice" },
    { ruleMissingKey, "missing-key", severityWarning, "a key that its section must have is missing or empty" },
    { ruleKeyOrder, "key-order", severityWarning, "a key has no effect in the browser before, or after, ObjectType" },
    { ruleDcfInEds, "dcf-in-eds", severityWarning,
      "what belongs to a configured device (DCF) is in a data sheet (EDS)" },

    { ruleNotANumber, "not-a-number", severityWarning,
      "a word, or a number too large, where the browser needs a number" },
    { ruleUnknownType, "unknown-type", severityWarning, "CiA 301 has no data type of that number" },
    { ruleUnknownAccess, "unknown-access", severityWarning,
      "an access type is none of ro, wo, rw, rwr, rww and const" },
    { ruleUnknownObjectType, "unknown-object-type", severityWarning, "CiA 301 has no object code of that number" },

    { ruleCount, "count", severityWarning,
      "SupportedObjects, Lines or NrOfEntries differs from the lines that are there" },
    { ruleSubCount, "sub-count", severityWarning, "SubNumber differs from the sub-indexes that are there" },
    { ruleHighestSub, "highest-sub-index", severityWarning, "the value of sub-index 0 is not the highest sub-index" },
    { rulePdoCount, "pdo-count", severityWarning, "NrOfRXPDO or NrOfTXPDO differs from the PDOs that are there" },
    { ruleSubOfVariable, "sub-of-variable", severityWarning, "an object that is no array or record has sub-indexes" },

    { ruleValueType, "value-type", severityWarning, "a value or a limit does not fit its data type" },
    { ruleLimits, "limits", severityWarning, "limits contradict each other, or a value lies outside of them" },

    { ruleMappingMissing, "mapping-missing", severityWarning, "a PDO maps a parameter that is not in the sheet" },
    { ruleNotMappable, "not-mappable", severityWarning, "a PDO maps a parameter that cannot be mapped into it" },
    { ruleMappingLength, "mapping-length", severityWarning,
      "a PDO maps a parameter with a length that is not its own" },

    { ruleMissingObjectType, "missing-object-type", severityNote,
      "without ObjectType the browser shows no entry for a variable" },
    { ruleFileInfoOrder, "file-info-order", severityNote,
      "after DeviceInfo, FileInfo tells the browser neither EDS version nor description" },
};
// clang-format on

constexpr bool areInOrder()
{
    for (unsigned place = 0; place < std::size(rules); ++place)
        if (rules[place].rule != place)
            return false;
    return std::size(rules) == ruleTotal;
}
static_assert(areInOrder());

} // namespace

std::span<const tRuleRow> sheetRules()
{
    return rules;
}

const tRuleRow& rowOf(tRule rule)
{
    return rules[rule];
}

std::optional<tRule> ruleByName(std::string_view name)
{
    const auto* const row = std::ranges::find(rules, name, &tRuleRow::name);
    return row == std::end(rules) ? std::nullopt : std::optional(row->rule);
}

std::string_view nameOf(tSeverity severity)
{
    constexpr std::string_view names[] = { "note", "warning", "error" };
    return names[severity];
}
