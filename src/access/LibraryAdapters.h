// Functions of the device-access libraries with the signatures that the facade calls: where they differ, adapters.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"
#include "cop/cop_api.h"
#include "cop/cop_sdo.h"

#include <algorithm>
#include <cstring>

namespace libraryAdapters
{

/// Copies at most `size` characters of the text, the terminating zero included.
inline std::int32_t copyText(const char* text, char* buffer, short size)
{
    if (buffer == nullptr)
        return ERR_NULL_POINTER;
    const std::size_t length = std::strlen(text) + 1;
    std::memcpy(buffer, text, std::min(length, static_cast<std::size_t>(std::max<short>(size, 0))));
    return ERR_NO_ERROR;
}

inline std::int32_t initMaster(long board, void* param, BYTE baudrate)
{
    return cop_init(board == -1 ? -1 : 0, param, baudrate); // any board but -1 is refused; `long` may not fit into int
}

inline std::int32_t setMasterTimeout(WORD timeout, WORD* previous)
{
    const WORD old = sdo_timeout(timeout);
    if (previous != nullptr)
        *previous = old;
    return ERR_NO_ERROR;
}

inline int masterAnswer()
{
    return cop_error == ERR_TIMEOUT ? CCANopenAccess::answerNone : CCANopenAccess::answerWhole;
}

inline std::int32_t setMasterLineTimeout(std::int32_t, std::int32_t*)
{
    return ERR_NOT_SUPPORTED;
}

inline std::int32_t endMasterTransfersWhen(bool (*ended)())
{
    sdo_end_when(ended);
    return ERR_NO_ERROR;
}

inline std::int32_t endGatewayTransfersWhen(bool (*)())
{
    return ERR_NOT_SUPPORTED;
}

inline std::int32_t setGatewayLineTimeout(std::int32_t milliseconds, std::int32_t* previous)
{
    const std::int32_t old = top_line_timeout(milliseconds);
    if (previous != nullptr)
        *previous = old;
    return ERR_NO_ERROR;
}

inline std::int32_t transmitByMaster(std::int32_t cob_id, short length, const BYTE* data)
{
    return cop_transmit(static_cast<std::uint32_t>(cob_id), length, data);
}

inline std::int32_t requestByMaster(std::int32_t cob_id, short* length, BYTE* data)
{
    return cop_request(static_cast<std::uint32_t>(cob_id), length, data);
}

inline std::int32_t readMasterQueue(WORD* cob_id, short* length, BYTE* data)
{
    if (cob_id == nullptr)
        return cop_queue_read(nullptr, length, data);
    std::uint32_t identifier = 0;
    const std::int32_t result = cop_queue_read(&identifier, length, data);
    // Kept: 32 bits are written through a pointer to 16, for which the caller must have room.
    if (result == ERR_NO_ERROR)
        std::memcpy(cob_id, &identifier, sizeof identifier);
    return result;
}

inline std::int32_t masterHardware(char* buffer, short size)
{
    return copyText(cop_hardware(), buffer, size);
}

inline std::int32_t masterSoftware(char* buffer, short size)
{
    return copyText(cop_software(), buffer, size);
}

inline std::int32_t initGateway(long, void* param, BYTE baudrate)
{
    if (param == nullptr)
        return ERR_NULL_POINTER;
    auto* gateway = static_cast<_top_param*>(param);
    return top_init(gateway->addr, gateway->port, &gateway->settings, baudrate);
}

} // namespace libraryAdapters
