// The rules that data sheets are checked by: their names, how much each weighs, and what it says.
// SPDX-License-Identifier: MIT
#pragma once

#include <bitset>
#include <optional>
#include <span>
#include <string_view>

enum tSeverity { severityNote, severityWarning, severityError };

// clang-format off
enum tRule : unsigned {
    ruleSyntax, ruleNoObjects,
    ruleIgnoredSection, ruleUnknownSection, ruleEmptySection, ruleMissingSection, ruleDuplicateSection,
    ruleDuplicateIndex, ruleMissingObject, ruleUnlistedObject, ruleLateList, ruleMissingMandatory, ruleWrongList,
    ruleListNumber,
    ruleUnknownKey, ruleSpelling, ruleDuplicateKey, ruleMissingKey, ruleKeyOrder, ruleDcfInEds,
    ruleNotANumber, ruleNodeId, ruleUnknownType, ruleUnknownAccess, ruleUnknownObjectType,
    ruleCount, ruleSubCount, ruleMissingSub0, ruleHighestSub, rulePdoCount, ruleSubOfVariable,
    ruleValueType, ruleLimits,
    ruleMappingMissing, ruleNotMappable, ruleMappingLength, rulePdoLength,
    ruleMissingObjectType, ruleCompactSubObj, ruleModules, ruleLineEnds,
    ruleFileInfoOrder,
    ruleTotal
};
// clang-format on

struct tRuleRow {
    tRule rule;
    tSeverity severity;
    std::string_view name;        ///< by which it is switched
    std::string_view description; ///< one line
};

/// All rules, in the order of `tRule`.
std::span<const tRuleRow> sheetRules();

/// The row of a rule.
const tRuleRow& rowOf(tRule rule);

/// No value where no rule has that name.
std::optional<tRule> ruleByName(std::string_view name);

/// "error", "warning" or "note".
std::string_view nameOf(tSeverity severity);

/// Which rules are on.
using tRuleSet = std::bitset<ruleTotal>;
