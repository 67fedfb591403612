// The objects of a sheet by their index.
// SPDX-License-Identifier: MIT
#include "sheets/ObjectChecks.h"

#include <algorithm>

namespace
{

constexpr unsigned keyOf(const tEntryRecord& entry)
{
    return unsigned{ entry.index } << 8 | entry.subIndex;
}

} // namespace

CObjectIndex::CObjectIndex(tSheetModel& model) : m_model(model), m_first(0x10000, -1)
{
    for (std::size_t place = 0; place < model.objects.size(); ++place)
        if (int& first = m_first[model.objects[place].index]; first < 0)
            first = static_cast<int>(place);
    if (!std::ranges::is_sorted(model.entries, {}, keyOf))
        std::ranges::stable_sort(model.entries, {}, keyOf);
}

const tObjectRecord* CObjectIndex::object(unsigned short index) const
{
    const int place = m_first[index];
    return place < 0 ? nullptr : &m_model.objects[static_cast<std::size_t>(place)];
}

const tEntryRecord* CObjectIndex::entry(unsigned short index, unsigned subIndex) const
{
    const auto all = entries(index);
    const auto found = std::ranges::lower_bound(all, subIndex, {}, &tEntryRecord::subIndex);
    return found != all.end() && found->subIndex == subIndex ? &*found : nullptr;
}

std::span<const tEntryRecord> CObjectIndex::entries(unsigned short index) const
{
    const auto first = std::ranges::lower_bound(m_model.entries, index, {}, &tEntryRecord::index);
    const auto last = std::ranges::upper_bound(m_model.entries, index, {}, &tEntryRecord::index);
    return { first, last };
}
