// Reading many entries of a device.
// SPDX-License-Identifier: MIT
#include "network/NodeReading.h"

#include "dic/CANopenObjectEntry.h"
#include "network/TypedValue.h"
#include "sheets/EntryText.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace
{

using tEntry = CCANopenObjectEntry;

} // namespace

int readEntry(const tDevice& device, tSnapshotEntry& entry)
{
    entry.value.reset();
    entry.wrongText.clear();
    entry.abortCode.reset();
    const auto [bytes, failure] = device.network.read(static_cast<BYTE>(device.node), static_cast<WORD>(entry.index),
                                                      static_cast<BYTE>(entry.subIndex));
    if (failure && failure->silent)
        throw tEnd{ exitNetwork, QStringLiteral("%1: %2").arg(nameOf(entry), failure->text) };
    if (failure) {
        if (failure->status == exitAborted)
            entry.abortCode = failure->abortCode;
        device.console.message(QStringLiteral("%1: %2").arg(nameOf(entry), failure->text));
        return failure->status;
    }
    holdValue(entry, bytes, static_cast<unsigned>(device.node));
    if (!typedValue::sizeDiffers(entry.type, bytes.size()))
        return exitDone;
    warnOfSize(device.console, nameOf(entry), entry.type, bytes.size());
    return exitDifference;
}

int readEntries(const tDevice& device, tSnapshot& snapshot, const std::function<bool(const tSnapshotEntry&)>& wanted)
{
    snapshot.nodeId = static_cast<unsigned>(device.node);
    const auto total = std::count_if(snapshot.entries.cbegin(), snapshot.entries.cend(), wanted);
    int status = exitDone;
    int done = 0;
    for (tSnapshotEntry& entry : snapshot.entries) {
        if (!wanted(entry)) {
            entry.value.reset();
            entry.wrongText.clear();
            continue;
        }
        ++done;
        if (device.console.hasProgress())
            device.console.progress(QStringLiteral("%1 of %2: %3").arg(done).arg(total).arg(nameOf(entry)));
        try {
            status = graver(status, readEntry(device, entry));
        } catch (const tEnd& end) {
            throw tEnd{ end.status, QStringLiteral("%1; %2 of %3 entries were read")
                                        .arg(end.message, QString::number(done - 1), QString::number(total)) };
        }
    }
    device.console.progress(QString());
    return status;
}

void warnOfSize(CConsole& console, const QString& name, int type, qsizetype size)
{
    console.message(QStringLiteral("%1: warning: the device has %2 bytes, which is no %3")
                        .arg(name, QString::number(size), dataTypeName(type)));
}

QString namesOf(const std::vector<const tSnapshotEntry*>& entries)
{
    constexpr std::size_t most = 10;
    QStringList names;
    for (std::size_t place = 0; place < std::min(most, entries.size()); ++place)
        names += nameOf(*entries[place]);
    const QString text = names.join(QStringLiteral(", "));
    return entries.size() <= most ? text : QStringLiteral("%1 and %2 more").arg(text).arg(entries.size() - most);
}

void tellEntries(CConsole& console, const char* what, const std::vector<const tSnapshotEntry*>& entries)
{
    if (!entries.empty())
        console.message(QLatin1String(what) + namesOf(entries));
}

bool isReadable(const tSnapshotEntry& entry)
{
    return entry.access != tEntry::accessWO;
}

int graver(int status, int other)
{
    constexpr int order[] = { exitDone, exitDifference, exitUsage, exitAborted, exitNetwork, exitInterrupted };
    const auto* place = std::find(std::begin(order), std::end(order), status);
    return std::find(place, std::end(order), other) != std::end(order) ? other : status;
}
