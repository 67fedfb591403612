// Dumps that were written as CSV or JSON.
// SPDX-License-Identifier: MIT
#pragma once

#include "sheets/Snapshot.h"

// `fileName` is for messages. What is malformed ends the command with `exitUsage` and a message that names the line, in
// JSON the entry where the line is not known. A type that is no standard one reads as 0, which is a user-defined one,
// too: its name in a dump does not tell its number.

tSnapshot snapshotFromCsv(const QByteArray& text, const QString& fileName);
tSnapshot snapshotFromJson(const QByteArray& text, const QString& fileName);
