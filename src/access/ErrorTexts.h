// English texts of the error codes and of the SDO abort codes. Plain C++.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace errorTexts
{

/// Text of an error code, for example "Time-out error." for ERR_TIMEOUT. All other values share one text. Constant and
/// never null.
const char* ofError(int error);

/// Text of an SDO abort code, for example "Sub-index does not exist." for ABORT_NO_SUBINDEX; "Unknown SDO abort code."
/// for other values. Constant and never null.
const char* ofAbort(std::uint32_t code);

} // namespace errorTexts
