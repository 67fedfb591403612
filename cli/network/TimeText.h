// Times on the command line.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

/// The milliseconds of "100ms", "2s", "1.5s" or "1min", at most those of a day; parts of one are left out. None for
/// another text.
std::optional<int> millisecondsOf(const QString& text);
