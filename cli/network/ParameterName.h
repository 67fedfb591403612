// The names of parameters on the command line.
// SPDX-License-Identifier: MIT
#pragma once

#include "base/CANopenErrors.h"

#include <QString>

class CCANopen;
class CCANopenObjectEntry;

/// A parameter as it was named, and its entry in the sheet.
struct tParameterName {
    WORD index;
    BYTE subIndex;
    const CCANopenObjectEntry* entry; ///< the first description of it; null without a sheet, or when it has none
};

/// Reads "1018:1", "0x1018sub1", "1017" (sub-index 0), index and sub-index hexadecimal, or the name in the sheet:
/// "Identity object/Vendor-ID", and the name of the object alone where it has no other entry than sub-index 0. Names
/// are compared as they are written. `sheet` may be null. Ends the command with `exitUsage` when there is no such
/// parameter: a wrong form, an unknown or ambiguous name, also one that reads as the number of another parameter
/// ("ADC", "1017"). The message has the names that may be meant.
tParameterName readParameterName(const QString& text, const CCANopen* sheet);
