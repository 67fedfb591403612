// Saving the values of a device.
// SPDX-License-Identifier: MIT
#include "network/Dump.h"

#include "console/OutputFile.h"
#include "dic/DataSheet.h"
#include "network/NodeReading.h"
#include "sheets/DcfText.h"
#include "sheets/FirstEntries.h"
#include "sheets/SheetFile.h"
#include "sheets/SnapshotText.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <vector>

namespace
{

constexpr struct {
    const char* ending;
    tDumpFormat format;
} endings[] = { { ".csv", dumpCsv }, { ".json", dumpJson }, { ".dcf", dumpDcf }, { ".txt", dumpTable } };

using tEntries = std::vector<const tSnapshotEntry*>;

bool endsIn(const QString& fileName, const char* ending)
{
    return fileName.endsWith(QLatin1String(ending), Qt::CaseInsensitive);
}

[[noreturn]] void refuse(const QString& output, const QString& why)
{
    throw tEnd{ exitUsage, QStringLiteral("%1 is not written: %2").arg(visibleText(output), why) };
}

tDumpFormat formatOf(const tDumpOptions& options)
{
    if (options.format)
        return *options.format;
    for (const auto& row : endings)
        if (endsIn(options.output, row.ending))
            return row.format;
    if (!isStandardOutput(options.output))
        refuse(options.output,
               QStringLiteral("the end of its name tells no format: .csv, .json, .dcf or .txt (or --format)"));
    return dumpTable;
}

// By whatever path, or by a link.
bool isSameFile(const QString& a, const QString& b)
{
    std::error_code error; // one of them is not there
    return std::filesystem::equivalent(QFile::encodeName(a).toStdString(), QFile::encodeName(b).toStdString(), error);
}

// Whether the name, and the file that it leads to, are those of a configuration.
bool isConfiguration(const QString& fileName)
{
    return endsIn(fileName, ".dcf") && endsIn(QFileInfo(fileName).canonicalFilePath(), ".dcf");
}

// Ends the command when the dump would spoil a sheet. The configuration that is the sheet can be renewed.
void checkOutput(const tDumpOptions& options, tDumpFormat format)
{
    if (isStandardOutput(options.output))
        return;
    if (format == dumpDcf && endsIn(options.output, ".eds"))
        refuse(options.output,
               QStringLiteral("a configuration would be read as a data sheet there: its name ends in .dcf"));
    const bool isRenewed = format == dumpDcf && isConfiguration(options.output) && isConfiguration(options.sheet);
    if (!isRenewed && isSameFile(options.output, options.sheet))
        refuse(options.output, QStringLiteral("it is the sheet"));
}

// Tells the values that a configuration file cannot hold. One without a line there is not known; where it is empty in
// the sheet, too, a device that is reset has it nevertheless.
QByteArray configurationOf(const tDumpOptions& options, const CDataSheet& sheet, const tSnapshot& snapshot,
                           CConsole& console, int& status)
{
    const tDcfText dcf = dcfText(options.sheet, snapshot);
    const auto described = firstEntries(sheet.dictionary());
    tEntries unwritten;
    tEntries empty;
    for (const std::size_t place : dcf.unwritten) {
        const tSnapshotEntry& entry = snapshot.entries[place];
        const bool isDefault = entry.value->isEmpty() && described[place].entry.getDefaultValue().isEmpty();
        (isDefault ? empty : unwritten).push_back(&entry);
    }
    tellEntries(console, "empty as in the sheet, for which a DCF has no line: ", empty);
    tellEntries(console, "a DCF cannot hold these values, CSV and JSON can: ", unwritten);
    if (!unwritten.empty())
        status = graver(status, exitDifference);
    return dcf.text;
}

QByteArray textOf(const tDumpOptions& options, tDumpFormat format, const CDataSheet& sheet, const tSnapshot& snapshot,
                  CConsole& console, int& status)
{
    switch (format) {
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

// Names the entries that could be read, but have not brought a value.
void tellMissing(const tSnapshot& snapshot, CConsole& console)
{
    tEntries missing;
    int readable = 0;
    for (const tSnapshotEntry& entry : snapshot.entries) {
        readable += isReadable(entry) ? 1 : 0;
        if (isReadable(entry) && !entry.value)
            missing.push_back(&entry);
    }
    if (!missing.empty())
        console.message(QStringLiteral("%1 of %2 entries have no value: %3")
                            .arg(QString::number(missing.size()), QString::number(readable), namesOf(missing)));
}

} // namespace

int dumpDevice(const tDumpOptions& options, CConsole& console)
{
    const tDumpFormat format = formatOf(options);
    checkOutput(options, format);
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
    const auto isAnswered = [](const tSnapshotEntry& entry) { return entry.value || entry.abortCode; };
    if (status == exitNetwork && std::none_of(snapshot.entries.cbegin(), snapshot.entries.cend(), isAnswered))
        throw tEnd{ exitNetwork, QStringLiteral("no entry could be read; nothing was saved") };
    writeOutput(console, options.output, textOf(options, format, sheet, snapshot, console, status));
    tellMissing(snapshot, console);
    return status;
}
