// A document window that is connected to a node of a scripted gateway.
// SPDX-License-Identifier: MIT
#pragma once

#include "GatewayLink.h"
#include "NewDocument.h"

/// The document of `sheet`, connected to `node`. Selecting an entry that can be read is a command to the gateway, too.
///
///     COnlineDocument document(sheetOf(0x2000, CCANopenObjectEntry::typeUnsigned8));
///     document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 0x1F\r\n");
///     document.press("2000: Value");
class COnlineDocument : public CGatewayLink, public CNewDocument
{
public:
    explicit COnlineDocument(const QByteArray& sheet, int node = 5);
};
