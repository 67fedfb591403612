// The results of checks as text for people, as JSON, and as SARIF 2.1.0 for other programs.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SheetCheck.h"

#include <QByteArray>

#include <span>

/// One file as a compiler would: the verdict, then for each finding "FILE:LINE:COLUMN: SEVERITY: TEXT [RULE]", the
/// line, a caret and how to mend it; counts at the end. Nothing that a terminal would obey is in it.
QString findingsText(const tCheckResult& result);

/// All files: an array of objects, each with the file, the verdict and its findings.
QByteArray findingsJson(std::span<const tCheckResult> results);

/// All files as a run of this program, in the format for the results of static analysis.
QByteArray findingsSarif(std::span<const tCheckResult> results);

/// All rules with their severity and description, one a line.
QString rulesText();
