// What the fuzzers share: a check that ends the process, and the bytes of a run taken one after the other.
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// A failed check says where it stands and ends the process, which is what the fuzzer looks for.
inline void require(bool condition, const char* file = __builtin_FILE(), int line = __builtin_LINE())
{
    if (condition)
        return;
    std::fprintf(stderr, "%s:%d: failed\n", file, line);
    std::abort();
}

/// Every function moves past what it takes. After the end all numbers are 0 and all texts empty.
class CFuzzInput
{
public:
    CFuzzInput(const uint8_t* data, size_t size) : m_rest(reinterpret_cast<const char*>(data), size) {}

    bool atEnd() const { return m_rest.empty(); }

    uint8_t byte() { return static_cast<uint8_t>(take(1).empty() ? 0 : m_taken.front()); }
    bool flag() { return (byte() & 1) != 0; }
    uint16_t word()
    {
        const unsigned low = byte();
        return static_cast<uint16_t>(low | unsigned{ byte() } << 8);
    }
    uint32_t number()
    {
        const uint32_t low = word();
        return low | uint32_t{ word() } << 16;
    }

    /// At most so many characters.
    std::string_view take(size_t most)
    {
        m_taken = m_rest.substr(0, most);
        m_rest.remove_prefix(m_taken.size());
        return m_taken;
    }
    /// Up to the next line feed, which is taken and not returned.
    std::string_view line()
    {
        const std::string_view taken = take(std::min(m_rest.find('\n'), m_rest.size()));
        m_rest.remove_prefix(std::min<size_t>(1, m_rest.size()));
        return taken;
    }
    std::string_view rest() { return take(m_rest.size()); }

private:
    std::string_view m_rest;
    std::string_view m_taken;
};
