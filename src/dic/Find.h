// Look-up in the arrays of the model.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// Position of the first element whose `getter` returns `wanted`, or -1. No element may be null.
template <typename Array, typename Getter, typename Value>
int positionOf(const Array& array, Getter getter, const Value& wanted)
{
    for (std::size_t position = 0; position < array.size(); ++position)
        if (((*array[position]).*getter)() == wanted)
            return static_cast<int>(position);
    return -1;
}
