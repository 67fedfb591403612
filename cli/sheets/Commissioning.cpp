// What a device configuration file tells about the device that it was made for.
// SPDX-License-Identifier: MIT
#include "sheets/Commissioning.h"

#include "base/NodeId.h"
#include "dic/IniReader.h"
#include "sheets/EntryText.h"

#include <QFile>

#include <string_view>

unsigned commissionedNodeId(const QString& fileName)
{
    unsigned nodeId = 0;
    CIniReader reader(QFile::encodeName(fileName).constData());
    for (int item = reader.moveToNextItem(); item > 0; item = reader.moveToNextItem())
        if (reader.section() == std::string_view(commissioning::section) && reader.keyName() == commissioning::nodeId)
            if (const auto number = numberIn(reader.getKeyValue(), highestNodeId); number && *number > 0)
                nodeId = *number;
    return nodeId;
}
