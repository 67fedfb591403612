// Distances of names.
// SPDX-License-Identifier: MIT
#include "sheets/NearName.h"

#include "dic/Names.h"

#include <algorithm>
#include <array>

CNearName::CNearName(std::string_view wanted)
    : m_wanted(wanted), m_distance(std::min<std::size_t>(2, wanted.size() / 3) + 1)
{
}

void CNearName::offer(std::string_view name)
{
    if (m_wanted.size() > longest || name.size() > longest)
        return;
    // row[n]: the distance of what was read of `m_wanted` and the first n letters of `name`
    std::array<std::size_t, longest + 1> row{};
    for (std::size_t n = 0; n <= name.size(); ++n)
        row[n] = n;
    for (std::size_t read = 1; read <= m_wanted.size(); ++read) {
        std::size_t corner = row[0];
        row[0] = read;
        for (std::size_t n = 1; n <= name.size(); ++n) {
            const bool same = lowerCase(m_wanted[read - 1]) == lowerCase(name[n - 1]);
            const std::size_t replaced = corner + (same ? 0 : 1);
            corner = row[n];
            row[n] = std::min({ replaced, row[n] + 1, row[n - 1] + 1 });
        }
    }
    if (row[name.size()] < m_distance) {
        m_distance = row[name.size()];
        m_best = name;
    }
}
