// What the rows about loading a data sheet do, and what they are compared with.
// SPDX-License-Identifier: MIT
#pragma once

class CCANopen;

/// @return false when the sheet does not load
bool load(CCANopen& dictionary, const char* file);

/// From opening the file to the freed dictionary. @return false when the sheet does not load
bool loadAndFree(const char* file);

/// Cuts the file into lines with std::getline. @return false when it has none
bool readLines(const char* file);
