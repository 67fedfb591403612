// Findings as lines that a test compares.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SheetCheck.h"

#include <QStringList>

/// Each as "LINE:COLUMN RULE".
inline QStringList findingLines(const tCheckResult& result)
{
    QStringList lines;
    for (const tFinding& finding : result.findings) {
        const auto name = rowOf(finding.rule).name;
        lines << QString("%1:%2 ").arg(finding.place.line).arg(finding.column) +
                     QString::fromLatin1(name.data(), qsizetype(name.size()));
    }
    return lines;
}

inline tRuleSet allRules()
{
    return tRuleSet().set();
}
