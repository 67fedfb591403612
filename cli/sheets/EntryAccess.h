// What the access type of an entry allows.
// SPDX-License-Identifier: MIT
#pragma once

#include "dic/CANopenObjectEntry.h"

/// Whether entries with this `CCANopenObjectEntry::TEntryAccess`, or any other number, can be written at all.
constexpr bool isWritable(int access)
{
    return access != CCANopenObjectEntry::accessRO && access != CCANopenObjectEntry::accessCONST;
}
