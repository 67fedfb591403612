// Data sheets that were installed with the programs.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The installed data sheet of this name, where there is nothing of this name here and it has no folder; else the name.
QString findSheet(const QString& fileName);
