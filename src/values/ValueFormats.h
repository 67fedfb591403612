// The text of a value in each display mode.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

namespace valueFormats
{

/// How values are shown. Settings store these numbers; any other number shows as hexadecimal.
enum TDisplayMode : int { modeHex = 0, modeDec = 1, modeOct = 2 };

/// Whether a value has been read from a device or is about to be sent to it.
enum tDirection { read, sent };

/// The text of an integer. `type` is the number of the data type, Integer8 to Unsigned32; `bits` holds the value as
/// two's complement; bits above the width of the type are ignored. Empty for other data types.
/// Example: -1 as Integer8 is "-1", "377" or "0xFF".
QString integer(int type, tDirection direction, std::uint32_t bits, TDisplayMode mode);

/// The texts of `length` bytes, each followed by a blank: "0x12 0x34 ".
QString bytes(const std::uint8_t* data, int length, TDisplayMode mode);

} // namespace valueFormats
