// A document window that is connected to a node of a scripted gateway.
// SPDX-License-Identifier: MIT
#include "OnlineDocument.h"

COnlineDocument::COnlineDocument(const QByteArray& sheet, int node)
{
    if (!open(sheet, &access, node))
        qFatal("the sheet was not opened");
    forgetStatuses();
}
