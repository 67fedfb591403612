// Names, version and copyright texts of the program, each written once. Needs no Qt.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>

namespace product
{

inline constexpr char name[] = "Velmora";
inline constexpr char title[] = "CANopen Object Browser";
inline constexpr char version[] = "0.2";
inline constexpr char revision[] = "$Rev: 61 $";
inline constexpr char organisation[] = "Brask Works";
inline constexpr char licence[] = "Released under the MIT License";
inline constexpr char copyright[] = "2009-2026 Brask Works";
inline constexpr char homePage[] = "https://velmora.example";

/// Number of the build, read from a revision keyword such as `$Rev: 61 $`; 0 when the text has another form.
inline int buildNumber(const char* keyword = revision)
{
    int number = 0;
    return std::sscanf(keyword, "$Rev: %i $", &number) == 1 ? number : 0;
}

} // namespace product
