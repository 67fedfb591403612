// Digits of numbers in texts.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

/// The value of a decimal or hexadecimal digit; 16, which no base has, for any other character.
constexpr std::uint32_t digitOf(char character)
{
    if ('0' <= character && character <= '9')
        return static_cast<std::uint32_t>(character - '0');
    if ('a' <= character && character <= 'f')
        return static_cast<std::uint32_t>(character - 'a') + 10;
    if ('A' <= character && character <= 'F')
        return static_cast<std::uint32_t>(character - 'A') + 10;
    return 16;
}
