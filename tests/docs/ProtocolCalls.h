// The calls that docs/protocols.md shows, made from their text.
// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

/// Makes a call as the page writes it, with what it delivers: "sdo_read_16bit(5, 0x1017, 0)" gives "0, 0x3E8".
/// Arguments are numbers, texts in double quotes, or bytes in hexadecimal; buffers are given by their size.
QString makeProtocolCall(const QString& call);

/// The names of all calls that it knows.
QStringList protocolCalls();
