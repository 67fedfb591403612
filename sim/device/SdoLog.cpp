// One SDO transfer as a line of the log, the same for every front-end.
// SPDX-License-Identifier: MIT
#include "device/SdoLog.h"

#include "device/TypeWords.h"

QByteArray sdoLine(const tSdoLine& line)
{
    QByteArray text = "node " + QByteArray::number(line.node) + ' ' + line.verb + ' ' + hexadecimal(line.index, 4) +
                      ' ' + hexadecimal(line.subIndex, 2) + ' ' + line.type;
    if (!line.value.isEmpty())
        text += ' ' + line.value;
    return text + " = " + line.result;
}
