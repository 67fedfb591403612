// The rules that data sheets are checked by.
// SPDX-License-Identifier: MIT
#include "sheets/SheetRules.h"

#include <algorithm>
#include <iterator>

namespace
{

// clang-format off
constexpr tRuleRow rules[] = {
    { ruleSyntax, severityError, "syntax", "a line that is no section, key or comment stops the browser" },
    { ruleNoObjects, severityError, "no-objects", "the file describes no object at all" },

    { ruleIgnoredSection, severityWarning, "ignored-section",
      "the name of an object's section is written so that the browser ignores it, as with a leading zero" },
    { ruleUnknownSection, severityWarning, "unknown-section", "CiA 306 knows no section of that name" },
    { ruleEmptySection, severityWarning, "empty-section", "a section without keys describes nothing" },
    { ruleMissingSection, severityWarning, "missing-section",
      "every sheet has FileInfo, DeviceInfo and MandatoryObjects" },
    { ruleDuplicateSection, severityWarning, "duplicate-section", "a section, index or sub-index is there twice" },

    { ruleDuplicateIndex, severityWarning, "duplicate-index", "an index is listed twice" },
    { ruleMissingObject, severityWarning, "missing-object", "an object is listed, or has entries, but has no section" },
    { ruleUnlistedObject, severityWarning, "unlisted-object", "an object has a section, but no list names it" },
    { ruleLateList, severityWarning, "late-list",
      "an object has its section before the list that names it, and the browser mixes it up with another" },
    { ruleMissingMandatory, severityWarning, "missing-mandatory", "every device has the objects 1000, 1001 and 1018" },
    { ruleWrongList, severityWarning, "wrong-list",
      "an object is in the list of others: ManufacturerObjects has 2000 to 5FFF" },
    { ruleListNumber, severityWarning, "list-number", "the lines of a list are numbered from 1 without gaps" },

    { ruleUnknownKey, severityWarning, "unknown-key", "CiA 306 knows no key of that name in its section" },
    { ruleSpelling, severityWarning, "spelling", "the browser knows a key or a section in another spelling only" },
    { ruleDuplicateKey, severityWarning, "duplicate-key", "a key is in its section twice" },
    { ruleMissingKey, severityWarning, "missing-key", "a key that its section must have is missing or empty" },
    { ruleKeyOrder, severityWarning, "key-order", "a key has no effect in the browser before, or after, ObjectType" },
    { ruleDcfInEds, severityWarning, "dcf-in-eds",
      "what belongs to a configured device (DCF) is in a data sheet (EDS)" },

    { ruleNotANumber, severityWarning, "not-a-number",
      "a word, or a number too large, where the browser needs a number" },
    { ruleNodeId, severityWarning, "node-id", "NodeID is none of the node-ids 1 to 127" },
    { ruleUnknownType, severityWarning, "unknown-type", "CiA 301 has no data type of that number" },
    { ruleUnknownAccess, severityWarning, "unknown-access",
      "an access type is none of ro, wo, rw, rwr, rww and const" },
    { ruleUnknownObjectType, severityWarning, "unknown-object-type", "CiA 301 has no object code of that number" },

    { ruleCount, severityWarning, "count",
      "SupportedObjects, Lines or NrOfEntries differs from the lines that are there" },
    { ruleSubCount, severityWarning, "sub-count", "SubNumber differs from the sub-indexes that are there" },
    { ruleMissingSub0, severityWarning, "missing-sub-index-0",
      "every array and every record has the sub-index 0, the highest one in use" },
    { ruleHighestSub, severityWarning, "highest-sub-index", "the value of sub-index 0 is not the highest sub-index" },
    { rulePdoCount, severityWarning, "pdo-count", "NrOfRXPDO or NrOfTXPDO differs from the PDOs that are there" },
    { ruleSubOfVariable, severityWarning, "sub-of-variable", "an object that is no array or record has sub-indexes" },

    { ruleValueType, severityWarning, "value-type", "a value or a limit does not fit its data type" },
    { ruleLimits, severityWarning, "limits", "limits contradict each other, or a value lies outside of them" },

    { ruleMappingMissing, severityWarning, "mapping-missing", "a PDO maps a parameter that is not in the sheet" },
    { ruleNotMappable, severityWarning, "not-mappable", "a PDO maps a parameter that cannot be mapped into it" },
    { ruleMappingLength, severityWarning, "mapping-length",
      "a PDO maps a parameter with a length that is not its own" },

    { rulePdoLength, severityWarning, "pdo-length", "a PDO maps more than the 64 bits that a CAN frame has" },

    { ruleMissingObjectType, severityWarning, "missing-object-type",
      "without ObjectType the browser has no entry for a variable" },
    { ruleCompactSubObj, severityWarning, "compact-sub-obj",
      "the browser does not have the entries that CompactSubObj stands for" },
    { ruleModules, severityWarning, "modules", "the browser does not have the objects of modules" },
    { ruleLineEnds, severityWarning, "line-ends", "a carriage return alone ends no line for the browser" },
    { ruleFileInfoOrder, severityNote, "file-info-order",
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
