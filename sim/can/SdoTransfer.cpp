// An SDO transfer on CAN that has ended, and its line in the log.
// SPDX-License-Identifier: MIT
#include "can/SdoTransfer.h"

#include "device/SdoLog.h"
#include "device/SimulatedNode.h"
#include "device/TypeWords.h"

QByteArray describeTransfer(unsigned nodeId, const CSimulatedNode& node, const tSdoTransfer& transfer)
{
    const tTypeWord* type = &typeWordFor(node.typeOf(transfer.index, transfer.subIndex));
    const bool failed = transfer.abortCode != abortNone;
    const int width = type->type.width;
    if (width != 0 && !transfer.data.isEmpty() && transfer.data.size() != width)
        type = &typeWordFor(std::nullopt);
    const QByteArray value = failed && transfer.data.isEmpty() ? QByteArray() : shownValue(*type, transfer.data);
    const QByteArray result = failed            ? "ERROR: " + hexadecimal(transfer.abortCode, 8)
                              : transfer.writes ? QByteArray("OK")
                                                : value;
    return sdoLine({ nodeId, transfer.writes ? "write" : "read", transfer.index, transfer.subIndex, type->word,
                     transfer.writes ? value : QByteArray(), result });
}
