// Ranges of numbers as a list, to check classifications.
// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>

struct tRange {
    int first;
    int last;
};

/// True when the number lies in one of the ranges, ends included.
inline bool isIn(std::initializer_list<tRange> ranges, int number)
{
    for (const tRange& range : ranges)
        if (range.first <= number && number <= range.last)
            return true;
    return false;
}
