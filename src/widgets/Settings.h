// The persistent settings, with their keys, limits and defaults. Lists are stored in ten numbered slots.
// SPDX-License-Identifier: MIT
#pragma once

#include "values/ValueFormats.h"

#include <QStringList>

namespace settings
{

/// Slots of a stored list; further elements are not written.
inline constexpr int listSlots = 10;

/// The recently used files, most recent first: the used slots in order. A missing or empty slot counts as unused.
QStringList recentFiles();

/// Writes the list to the slots 1 upwards, at most ten elements. Slots after the last one written keep their value.
void setRecentFiles(const QStringList& files);

/// The interfaces that could be initialised, most recent first; stored like the recent files.
QStringList usedInterfaces();
void setUsedInterfaces(const QStringList& interfaces);

/// The stored display mode; hexadecimal when none is stored. A stored number that is no mode is returned unchanged.
valueFormats::TDisplayMode displayMode();
void setDisplayMode(valueFormats::TDisplayMode mode);

/// `list` with `name` as its first element and without other elements equal to it. Compares case-sensitively.
QStringList promoted(const QStringList& list, const QString& name);

/// `list` without any element equal to `name`. Compares case-sensitively.
QStringList without(const QStringList& list, const QString& name);

} // namespace settings
