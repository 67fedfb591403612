// Reports conditions that must always hold: a warning in the log, never an abort.
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// Warns when `condition` is false; `text` is the condition or the name of the null argument, `source` the module.
/// @return `condition`
inline bool assertion(bool condition, const char* text, const char* source, int line)
{
    if (!condition)
        qWarning("ASSERT: \"%s\" in %s (%d)", text, source, line);
    return condition;
}
