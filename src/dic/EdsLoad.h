// Loads a data sheet into an object dictionary.
// SPDX-License-Identifier: MIT
#pragma once

class CCANopen;

/// Reads the sheet (name as `QFile::encodeName` gives it) and adds what it describes to the dictionary, in time linear
/// in the size of the file. A file that cannot be opened reads as an empty one.
/// @return false after a line that is not INI syntax; what was read before it stays in the dictionary
bool loadEdsFile(CCANopen& dictionary, const char* fileName);
