// The SDO abort codes (CiA 301) that a simulated device answers with. The simulator has its own on purpose, so that
// client and server never share a mistake.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

using tAbortCode = std::uint32_t;

inline constexpr tAbortCode abortNone = 0;
inline constexpr tAbortCode abortToggle = 0x05030000;     // the toggle bit of a segment did not alternate
inline constexpr tAbortCode abortCommand = 0x05040001;    // no such command, or not at this point of a transfer
inline constexpr tAbortCode abortMemory = 0x05040005;     // more bytes than there is room for
inline constexpr tAbortCode abortWriteOnly = 0x06010001;  // a write-only entry was read
inline constexpr tAbortCode abortReadOnly = 0x06010002;   // a read-only or constant entry was written
inline constexpr tAbortCode abortNoObject = 0x06020000;   // the index is not in the dictionary
inline constexpr tAbortCode abortLength = 0x06070010;     // not the number of bytes that was announced
inline constexpr tAbortCode abortLengthHigh = 0x06070012; // more bytes than the data type has
inline constexpr tAbortCode abortLengthLow = 0x06070013;  // fewer bytes than the data type has
inline constexpr tAbortCode abortNoSubIndex = 0x06090011; // the object has no such sub-index
inline constexpr tAbortCode abortValueHigh = 0x06090031;  // above the high limit
inline constexpr tAbortCode abortValueLow = 0x06090032;   // below the low limit
inline constexpr tAbortCode abortGeneral = 0x08000000;    // general error
inline constexpr tAbortCode abortNotStored = 0x08000020;  // wrong signature: nothing is stored or restored
