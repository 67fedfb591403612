// The check of a data sheet: the browser's verdict, and what the rules find.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Findings.h"

#include <QString>

#include <vector>

struct tCheckResult {
    QString fileName;
    QString verdict;                ///< what the browser says; the reason when it does not load the file
    bool isRead = false;            ///< false: there is no such file, or it cannot be read, and nothing else is known
    bool isLoaded = false;          ///< the browser loads it
    std::vector<tFinding> findings; ///< in the order of their places
    /// How often each rule was broken; more often than there are findings of it where those are too many.
    std::array<int, ruleTotal> counts{};

    /// Findings of that severity.
    int count(tSeverity severity) const;
};

/// Checks a sheet by the rules that are on, in time linear in the size of the file. A file is a configuration (DCF) by
/// its name, as `CDataSheet` has it.
tCheckResult checkSheet(const QString& fileName, const tRuleSet& rules);
