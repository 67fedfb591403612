// Reading a parameter of a device as text, and sending a text to it, by the data type of its entry.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"
#include "values/ValueFormats.h"

#include <QString>

class CCANopenAccess;

namespace parameterTransfer
{

/// The parameter of a node, and how its value is written as text.
struct tParameter {
    CCANopenAccess& access; ///< the caller's, with a library bound to it
    BYTE node;              ///< 1 to `highestNodeId`
    WORD index;
    BYTE subIndex;
    int type; ///< the data type's number, `CCANopenObjectEntry::TEntryType`; any number is allowed
    valueFormats::TDisplayMode mode;
};

enum TOutcome : int {
    transferDone,
    transferFailed,   ///< the facade's last error and last abort tell why
    textInvalid,      ///< nothing was sent: the text is no value of the type
    typeNotSupported, ///< nothing was sent: values of this type cannot be sent as text
};

struct tResult {
    TOutcome outcome;
    QString text; ///< the value; empty unless the transfer is done
};

/// Longest values, in bytes: what is longer is cut.
inline constexpr int longestString = 256;
inline constexpr int longestDomain = 1024;

/// Reads the value with one SDO transfer. Integers show as `valueFormats::integer`, a VISIBLE_STRING as Latin-1 up to
/// its first zero byte, a DATE or TIME_OF_DAY as date and time in decimal mode; everything else shows byte by byte as
/// `valueFormats::bytes`. Never answers `textInvalid` or `typeNotSupported`.
/// Example: 10 read as UNSIGNED16 in hexadecimal mode is "0x000A".
tResult read(const tParameter& parameter);

/// Sends the value that `input` stands for with one SDO transfer. Integers, dates and times are read as by
/// `CCANopenTypes`, a VISIBLE_STRING is sent as Latin-1. The text of the result shows the value as sent; for a
/// VISIBLE_STRING it is empty. All other types are not supported.
tResult send(const tParameter& parameter, const QString& input);

} // namespace parameterTransfer
