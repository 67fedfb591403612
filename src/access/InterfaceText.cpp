// Reading the text that names a CAN interface.
// SPDX-License-Identifier: MIT
#include "access/InterfaceText.h"

#include <cstdint>
#include <cstdio>

void* tInterface::record()
{
    if (library == libraryGateway)
        return &top;
    return &can;
}

tInterface classifyInterface(const char* text)
{
    tInterface interface;
    if (text == nullptr)
        return interface;

    // sscanf limits a number that does not fit into long to the range of long (glibc).
    long parts[4] = { 127, 0, 0, 1 };
    long port = 0;
    const bool dotted =
        std::sscanf(text, "%li.%li.%li.%li:%li", &parts[0], &parts[1], &parts[2], &parts[3], &port) == 5;
    if (dotted) {
        std::uint64_t address = 0;
        for (const long part : parts)
            address = address * 256 + static_cast<std::uint64_t>(part);
        interface.top.addr = static_cast<std::uint32_t>(address);
    }
    if (dotted || std::sscanf(text, "localhost:%li", &port) == 1) {
        interface.library = libraryGateway;
        interface.top.port = static_cast<std::uint16_t>(port);
        return interface;
    }
    interface.library = librarySocketCAN;
    interface.can.ifname = text;
    return interface;
}
