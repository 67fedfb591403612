// Encodes any bytes group by group and decodes them again, and decodes any characters, within their buffers.
// The first byte of the input is the room, the rest the data.
// SPDX-License-Identifier: MIT
#include "tcp/base64.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

// A failed check ends the process, which is what the fuzzer looks for.
static void require(bool condition)
{
    if (!condition)
        std::abort();
}

/// Encoded data decode to the same bytes, with every length.
static void roundTrip(const uint8_t* data, int length)
{
    uint8_t group[4] = {}; // the byte after a group is zero
    std::memcpy(group, data, static_cast<size_t>(length));
    char text[4];
    require(base64_encode(group, length, text, 4) == length + 1);
    uint8_t again[3] = {};
    require(base64_decode(text, length + 1, again, 3) == length);
    require(std::memcmp(again, data, static_cast<size_t>(length)) == 0);
}

/// Any group, with buffers of the exact size, so that the address sanitizer finds overruns.
static void anyGroup(const uint8_t* data, int length, int room)
{
    char text[5] = {};
    std::memcpy(text, data, static_cast<size_t>(length));
    const auto size = static_cast<size_t>(room);
    const std::unique_ptr<uint8_t[]> bytes(new uint8_t[size]());
    const int decoded = base64_decode(text, length, bytes.get(), room);
    require(decoded >= 0 && decoded <= std::min(room, 3));
    const std::unique_ptr<char[]> characters(new char[size]());
    const int encoded = base64_encode(data, std::min(length, 3), characters.get(), room);
    require(encoded >= 0 && encoded <= room);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    for (size_t place = 1; place < size; place += 3)
        roundTrip(data + place, static_cast<int>(std::min<size_t>(3, size - place)));
    for (size_t place = 1; place + 4 <= size; place += 4)
        for (int length = 1; length <= 4; ++length)
            anyGroup(data + place, length, data[0] % 6);
    return 0;
}
