// Saving the values of a device.
// SPDX-License-Identifier: MIT
#include "network/Dump.h"

#include "console/OutputFile.h"
#include "dic/CANopenObjectEntry.h"
#include "dic/DataSheet.h"
#include "network/NodeReading.h"
#include "sheets/DcfText.h"
#include "sheets/FirstEntries.h"
#include "sheets/SheetFile.h"
#include "sheets/SnapshotText.h"

namespace
{

constexpr struct {
    const char* ending;
    tDumpFormat format;
} endings[] = { { ".csv", dumpCsv }, { ".json", dumpJson }, { ".dcf", dumpDcf } };

tDumpFormat formatOf(const tDumpOptions& options)
{
    if (options.format)
        return *options.format;
    for (const auto& row : endings)
        if (options.output.endsWith(QLatin1String(row.ending), Qt::CaseInsensitive))
            return row.format;
    return dumpTable;
}

// Tells the values that a configuration file cannot hold. An empty one needs no line there when it is empty in the sheet,
// too.
QByteArray configurationOf(const tDumpOptions& options, const CDataSheet& sheet, const tSnapshot& snapshot,
                           CConsole& console, int& status)
{
    const auto described = firstEntries(sheet.dictionary());
    const tDcfText dcf = dcfText(options.sheet, snapshot);
    for (const std::size_t place : dcf.unwritten) {
        const tSnapshotEntry& entry = snapshot.entries[place];
        if (entry.value->isEmpty() && described[place].entry.getDefaultValue().isEmpty())
            continue;
        console.message(QStringLiteral("%1: a DCF cannot hold its value; CSV and JSON can").arg(nameOf(entry)));
        status = graver(status, exitDifference);
    }
    return dcf.text;
}

QByteArray textOf(const tDumpOptions& options, const CDataSheet& sheet, const tSnapshot& snapshot, CConsole& console,
                  int& status)
{
    switch (formatOf(options)) {
    case dumpCsv:
        return snapshotAsCsv(snapshot);
    case dumpJson:
        return snapshotAsJson(snapshot);
    case dumpDcf:
        return configurationOf(options, sheet, snapshot, console, status);
    case dumpTable:
        break;
    }
    return snapshotAsTable(snapshot);
}

} // namespace

int dumpDevice(const tDumpOptions& options, CConsole& console)
{
    CDataSheet sheet;
    loadSheet(sheet, options.sheet);
    tSnapshot snapshot = snapshotOf(sheet, static_cast<unsigned>(options.node));
    CNetwork network(options.network, console);
    int status = exitDone;
    try {
        status = readEntries({ network, options.node, console }, snapshot, isReadable);
    } catch (const tEnd& end) {
        throw tEnd{ end.status, QStringLiteral("%1; nothing was saved").arg(end.message) };
    }
    writeOutput(console, options.output, textOf(options, sheet, snapshot, console, status));
    return status;
}
