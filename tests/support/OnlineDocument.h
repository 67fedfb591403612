// A document window that is connected to a node behind a scripted gateway.
// SPDX-License-Identifier: MIT
#pragma once

#include "DocumentUser.h"
#include "GatewayLink.h"

/// The document of `sheet`, connected to `node`. Selecting an entry that can be read is a command to the gateway, too.
///
///     COnlineDocument document(sheetOf(0x2000, CCANopenObjectEntry::typeUnsigned8));
///     document.gateway.expect("[#] 5 read 0x2000 0x0 u8\r\n", "[#] 0x1F\r\n");
///     document.press("2000: Value");
class COnlineDocument : public CGatewayLink, public CDocumentUser
{
public:
    explicit COnlineDocument(const QByteArray& sheet, int node = 5)
    {
        if (!open(sheet, &access, node))
            qFatal("the sheet was not opened");
        forgetStatuses();
    }
};

/// A sheet with one variable, named "Value" unless told otherwise. `more` are further lines of its section.
inline QByteArray sheetOf(int index, int type, const QByteArray& access = "rw", const QByteArray& name = "Value",
                          const QByteArray& more = "")
{
    const QByteArray place = QByteArray::number(index, 16);
    return "[ManufacturerObjects]\n1=0x" + place + "\n[" + place + "]\nParameterName=" + name +
           "\nObjectType=7\nDataType=" + QByteArray::number(type) + "\nAccessType=" + access + "\n" + more;
}
