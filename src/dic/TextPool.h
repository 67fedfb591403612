// Most texts of a data sheet are the same few words: equal ones share their memory.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/Utf8Text.h"

#include <QString>

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// Texts by their UTF-8. Of equal short texts that come near each other, all but the first share its memory.
class CTextPool
{
public:
    /// @return the text, valid until the next call
    const QString& text(const char* utf8)
    {
        const std::string_view wanted(utf8);
        if (wanted.size() > longestShared)
            return m_longText = textFromUtf8(wanted);
        tSlot& slot = m_slots[std::hash<std::string_view>()(wanted) % m_slots.size()];
        if (slot.utf8 != wanted) {
            slot.text = textFromUtf8(wanted);
            slot.utf8 = wanted;
        }
        return slot.text;
    }

private:
    struct tSlot {
        std::string utf8;
        QString text = QStringLiteral("");
    };
    static constexpr std::size_t longestShared = 64; // bounds the memory of the slots
    std::vector<tSlot> m_slots{ 512 };
    QString m_longText;
};
