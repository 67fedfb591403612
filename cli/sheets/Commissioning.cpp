// What a device configuration file tells about the device that it was made for.
// SPDX-License-Identifier: MIT
#include "sheets/Commissioning.h"

#include "base/NodeId.h"
#include "dic/DataSheet.h"
#include "dic/IniReader.h"
#include "sheets/EntryText.h"
#include "sheets/SheetFile.h"

#include <QFile>

#include <string_view>

namespace
{

// Calls `use` with the reader at each key of the section.
template <typename Use>
void readSection(const QString& fileName, Use use)
{
    CIniReader reader(QFile::encodeName(fileName).constData());
    for (int item = reader.moveToNextItem(); item > 0; item = reader.moveToNextItem())
        if (reader.section() == std::string_view(commissioning::section))
            use(reader);
    if (!reader.isWhole())
        throw tEnd{ exitUsage, unreadText(fileName) };
}

} // namespace

unsigned commissionedNodeId(const QString& fileName)
{
    unsigned nodeId = 0;
    readSection(fileName, [&nodeId](const CIniReader& reader) {
        if (reader.keyName() != commissioning::nodeId)
            return;
        if (const auto number = numberIn(reader.getKeyValue(), highestNodeId); number && *number > 0)
            nodeId = *number;
    });
    return nodeId;
}

tCommissioningLines commissioningLines(const QString& fileName)
{
    tCommissioningLines lines;
    readSection(fileName, [&lines](const CIniReader& reader) {
        lines.last = reader.getLineOfError();
        if (reader.keyName() == commissioning::nodeId)
            lines.nodeId = lines.last;
    });
    return lines;
}
