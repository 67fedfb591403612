// Finds the objects of a data sheet by their index while it is read.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopenObject.h"

#include <array>
#include <cstddef>
#include <limits>
#include <memory>

/// The first object of each index. In pages, since a data sheet uses few ranges of the indexes.
class CFirstObjects
{
public:
    /// Null when there is none.
    CCANopenObject* find(unsigned short index) const
    {
        const std::unique_ptr<tPage>& page = m_pages[index / pageSize];
        return page ? (*page)[index % pageSize] : nullptr;
    }
    /// Unless there is one already.
    void add(CCANopenObject& object)
    {
        std::unique_ptr<tPage>& page = m_pages[object.getIndex() / pageSize];
        if (!page)
            page = std::make_unique<tPage>();
        if (CCANopenObject*& first = (*page)[object.getIndex() % pageSize]; first == nullptr)
            first = &object;
    }

private:
    static constexpr std::size_t pageSize = 256;
    using tPage = std::array<CCANopenObject*, pageSize>;
    std::array<std::unique_ptr<tPage>, (std::numeric_limits<unsigned short>::max() + 1) / pageSize> m_pages;
};
