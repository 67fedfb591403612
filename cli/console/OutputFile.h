// A file that a command writes: complete, or not there.
// SPDX-License-Identifier: MIT
#pragma once

#include "console/Console.h"

#include <QByteArray>
#include <QString>

/// Whether the name stands for standard output: it is empty or "-".
bool isStandardOutput(const QString& fileName);

/// Writes `content` to the file in place of what it held, or to standard output. Ends the command with `exitUsage` when
/// it cannot be written; the file is then as it was. Devices and pipes are written to.
void writeOutput(CConsole& console, const QString& fileName, const QByteArray& content);
