// Which of some names was meant by one that is none of them.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

/// Keeps the nearest name of those offered: with at most two letters added, left out or replaced, or a third of them in
/// a short name. Upper and lower case are the same.
class CNearName
{
public:
    explicit CNearName(std::string_view wanted);

    void offer(std::string_view name);
    /// Empty where none was near.
    std::string_view best() const { return m_best; }

private:
    static constexpr std::size_t longest = 32; // names of data sheets are shorter

    const std::string_view m_wanted;
    std::size_t m_distance; // of the best one, or one more than is near
    std::string_view m_best;
};
