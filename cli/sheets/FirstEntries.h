// The entries of a dictionary that count.
// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

class CCANopen;
class CCANopenObject;
class CCANopenObjectEntry;

struct tFirstEntry {
    const CCANopenObject& object;
    const CCANopenObjectEntry& entry;
};

/// Where an index or a sub-index is described twice, the first one counts, as in a simulated device. In the order of
/// the sheet; valid as long as the dictionary.
std::vector<tFirstEntry> firstEntries(const CCANopen& dictionary);
