// Values of a data sheet against their data type and their limits.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/SectionReader.h"

/// Checks default value, parameter value and limits of an object's or entry's section.
void checkValues(const tSection& section, int dataType, CFindings& findings);
