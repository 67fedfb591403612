// Where the sample data sheet is.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

inline QString demoSheet()
{
    return QStringLiteral(VELMORA_SHARE "/velmora-demo.eds");
}
