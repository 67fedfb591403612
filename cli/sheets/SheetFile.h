// The files that commands read, or the end of the command with the reason.
// SPDX-License-Identifier: MIT
#pragma once

#include "console/ExitStatus.h"
#include "dic/EdsLoad.h"

#include <QByteArray>
#include <QString>

class CDataSheet;

/// Loads the sheet; ends the command with `exitUsage` and the reader's reason when it does not load.
/// `lines` as for `CDataSheet::load`.
void loadSheet(CDataSheet& sheet, const QString& fileName, tSheetLines* lines = nullptr);

/// All bytes of a file. Ends the command with `exitUsage` when it cannot be read, or is no regular file, or is larger
/// than 64 MiB, which no sheet or dump is.
QByteArray contentOf(const QString& fileName);
