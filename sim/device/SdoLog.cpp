// One SDO transfer as a line of the log, alike on every front-end.
// SPDX-License-Identifier: MIT
#include "device/SdoLog.h"

#include "gateway/GatewayTypes.h"

QByteArray sdoLine(const tSdoLine& line)
{
    QByteArray text = "node " + QByteArray::number(line.node) + ' ' + line.verb + ' ' + hexadecimal(line.index, 4) +
                      ' ' + hexadecimal(line.subIndex, 2) + ' ' + line.type;
    if (!line.value.isEmpty())
        text += ' ' + line.value;
    return text + " = " + line.result;
}

QByteArray describeTransfer(unsigned nodeId, const CSimulatedNode& node, const tSdoTransfer& transfer)
{
    const tGatewayType* type = &gatewayTypeFor(node.typeOf(transfer.index, transfer.subIndex));
    const bool failed = transfer.abortCode != abortNone;
    const int width = type->type.width;
    if (width != 0 && !transfer.data.isEmpty() && transfer.data.size() != width)
        type = &gatewayTypeFor(std::nullopt);
    const QByteArray value = failed && transfer.data.isEmpty() ? QByteArray() : shownValue(*type, transfer.data);
    const QByteArray result = failed            ? "ERROR: " + hexadecimal(transfer.abortCode, 8)
                              : transfer.writes ? QByteArray("OK")
                                                : value;
    return sdoLine({ nodeId, transfer.writes ? "write" : "read", transfer.index, transfer.subIndex, type->word,
                     transfer.writes ? value : QByteArray(), result });
}
