// English texts of the error codes and of the SDO abort codes. Plain C++.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace errorTexts
{

/// Text of an error code: "Time-out error." for -50. A value that is no error code has the table's fallback text.
/// The text is constant and never null.
const char* ofError(int error);

/// Text of an SDO abort code: "Sub-index does not exist." for 0x06090011; "Unknown SDO abort code." for other values.
const char* ofAbort(std::uint32_t code);

} // namespace errorTexts
