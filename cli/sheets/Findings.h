// What a check finds, each finding with its place.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SheetRules.h"

#include <QString>

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

/// A part of a line, in bytes of its UTF-8.
struct tPlace {
    int line = 0; ///< from 1; 0: nowhere
    int offset = 0;
    int length = 0;
};

/// What a finding says, and how to mend it, perhaps empty.
struct tAdvice {
    QString text;
    QString mend;
};

struct tFinding {
    tRule rule = ruleSyntax;
    tPlace place;
    tAdvice advice;
    // Filled in when the findings are complete.
    int column = 0;  ///< in characters, from 1
    int length = 0;  ///< in characters
    QString excerpt; ///< of the line, without control characters; empty where there is no such line
    int caret = 0;   ///< characters before the place in the excerpt
    int caretLength = 0;
};

/// A part of the file for a message: visible, and cut where it is long.
QString shown(std::string_view utf8);

class CFindings
{
public:
    /// Findings of one rule that are kept of a file. A sheet of a megabyte of rubbish would have a million.
    static constexpr int mostOfARule = 1000;

    explicit CFindings(const tRuleSet& rules) : m_rules(rules) {}

    /// `compose` gives the advice; it is called only when the finding is kept.
    template <typename Compose>
    void add(tRule rule, const tPlace& place, Compose compose)
    {
        if (m_rules[rule] && ++m_counts[rule] <= mostOfARule)
            m_findings.push_back({ rule, place, compose(), 0, 0, {}, 0, 0 });
    }

    /// All of them, in the order of their places, with columns and excerpts from the file. `isRead` becomes false when
    /// these cannot be read.
    std::vector<tFinding> take(const char* fileName, bool& isRead);

    /// How many of a rule were found.
    int count(tRule rule) const { return m_counts[rule]; }

private:
    const tRuleSet m_rules;
    std::array<int, ruleTotal> m_counts{};
    std::vector<tFinding> m_findings;
};
