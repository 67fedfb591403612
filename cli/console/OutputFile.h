// A file that a command writes: complete, or not there.
// SPDX-License-Identifier: MIT
#pragma once

#include "console/Console.h"

#include <QByteArray>
#include <QString>

/// Writes `content` to the file in place of what it held; to standard output when the name is empty or "-". Ends the
/// command with `exitUsage` when it cannot be written; the file is then as it was. Devices and pipes are written to.
void writeOutput(CConsole& console, const QString& fileName, const QByteArray& content);
