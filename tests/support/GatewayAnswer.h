// What a scripted gateway answers, and how: texts name the sequence number of the command as "[#]".
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdlib>
#include <string>

/// An answer of the fake gateway; a plain text converts to one. "[#]" stands for the number of the command that is
/// answered, "[#-1]" and "[#+2]" for its neighbours: `{ "[#-1] OK\r\n[#] 0x1F\r\n", tGatewayAnswer::byteByByte }`
struct tGatewayAnswer {
    enum THow { together = 0, byteByByte = 1, hangUp = 2, reset = 4 }; // may be combined; hang up: after the text

    std::string text; // empty: silence
    int how = together;
    std::chrono::milliseconds delay = {};

    tGatewayAnswer(std::string answer, int manner = together, std::chrono::milliseconds wait = {})
        : text(std::move(answer)), how(manner), delay(wait)
    {
    }
    tGatewayAnswer(const char* answer, int manner = together, std::chrono::milliseconds wait = {})
        : tGatewayAnswer(std::string(answer), manner, wait)
    {
    }
};

namespace gatewayText
{

/// The sequence number at the start of a command line, 0 when there is none.
inline long numberOf(const std::string& command)
{
    return command.starts_with('[') ? std::strtol(command.c_str() + 1, nullptr, 10) : 0;
}

/// `text` with the numbers filled in: "[#]" as `number`, "[#+1]" as its successor and so on.
inline std::string numbered(std::string text, long number)
{
    for (std::size_t place = 0; (place = text.find("[#", place)) != std::string::npos; ++place) {
        const std::size_t end = text.find(']', place);
        const long offset = std::strtol(text.c_str() + place + 2, nullptr, 10);
        text.replace(place + 1, end - place - 1, std::to_string(number + offset));
    }
    return text;
}

} // namespace gatewayText
