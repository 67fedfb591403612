// Whether two texts of data sheets mean the same value.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// True for equal texts, and for those that stand for the same number or the same bytes: "0x10" and "16", "01 2A" and
/// "012a", "$NODEID+1" and "1 + $NODEID". A text that is no value of its type equals only itself.
bool isSameValue(const QString& textA, int dataTypeA, const QString& textB, int dataTypeB);
