// Ranges of indexes, as commands are given them.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <optional>

struct tIndexRange {
    unsigned first = 0;
    unsigned last = 0xFFFF;

    bool contains(unsigned index) const { return first <= index && index <= last; }
};

/// "1000-1FFF" or "1017": hexadecimal, with or without "0x". None for another text, and for a range that is empty.
std::optional<tIndexRange> indexRange(const QString& text);
