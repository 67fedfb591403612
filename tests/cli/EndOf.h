// How a piece of a command ends.
// SPDX-License-Identifier: MIT
#pragma once

#include "console/ExitStatus.h"

/// "2: the message" when the function ends the command, else the empty text.
template <typename Function>
QString endOf(Function function)
{
    try {
        (void)function();
        return QString();
    } catch (const tEnd& end) {
        return QString::number(end.status) + ": " + end.message;
    }
}
