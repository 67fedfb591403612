// The differences between two sets of values.
// SPDX-License-Identifier: MIT
#include "network/Compare.h"

#include "console/JsonText.h"
#include "dic/CANopenObjectEntry.h"
#include "network/NodeReading.h"
#include "network/TypedValue.h"
#include "sheets/Csv.h"
#include "sheets/EntryText.h"
#include "sheets/TextTable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <map>

namespace
{

using tEntry = CCANopenObjectEntry;
using tKey = std::pair<unsigned, unsigned>;

constexpr unsigned errorRegister = 0x1001;
constexpr unsigned errorField = 0x1003;
const char notThere[] = "-";

bool changesByItself(const tSnapshotEntry& entry)
{
    return entry.access == tEntry::accessRO || entry.index == errorRegister || entry.index == errorField;
}

// Whether there is anything to compare.
bool hasValue(const tSnapshotEntry& entry)
{
    return entry.value || !entry.wrongText.isEmpty();
}

QString valueText(const tSnapshotEntry& entry, const tSnapshotEntry& like)
{
    if (!entry.value)
        return QStringLiteral("\"%1\" (no value)").arg(entry.wrongText);
    if (entry.relative)
        return dumpedText(*entry.value, like.type, true);
    return typedValue::textOf(like.type, *entry.value, valueFormats::modeHex);
}

std::map<tKey, const tSnapshotEntry*> entriesOf(const tSnapshot& snapshot)
{
    std::map<tKey, const tSnapshotEntry*> entries;
    for (const tSnapshotEntry& entry : snapshot.entries)
        entries.emplace(tKey{ entry.index, entry.subIndex }, &entry);
    return entries;
}

// Whether the value of the first one, restored to the node of the second one, is the value there. A node that is not
// known is taken for the other one.
bool hasSameValue(const tSnapshotEntry& first, unsigned firstNode, const tSnapshotEntry& second, unsigned secondNode)
{
    if (!first.value || !second.value || first.relative == second.relative)
        return first.value == second.value && first.wrongText == second.wrongText;
    const unsigned node = secondNode != 0 ? secondNode : firstNode;
    return node != 0 && valueOfNode(first, node) == valueOfNode(second, node);
}

// What is in `source` with a value and not described in `other` at all.
void addMissing(std::vector<tDifference>& differences, const tSnapshot& source, const tSnapshot& other, bool isFirst)
{
    const auto known = entriesOf(other);
    for (const tSnapshotEntry& entry : source.entries) {
        if (!hasValue(entry) || known.contains({ entry.index, entry.subIndex }))
            continue;
        const QString value = valueText(entry, entry);
        const QString none = QLatin1String(notThere);
        differences.push_back({ &entry, isFirst ? value : none, isFirst ? none : value, changesByItself(entry) });
    }
}

bool differs(const tSnapshotEntry& first, const tSnapshot& firstSet, const tSnapshotEntry& second,
             const tSnapshot& secondSet)
{
    return hasValue(first) && hasValue(second) && !hasSameValue(first, firstSet.nodeId, second, secondSet.nodeId);
}

const QStringList& columns()
{
    static const QStringList names = { QStringLiteral("parameter"), QStringLiteral("first"), QStringLiteral("second"),
                                       QStringLiteral("name"), QStringLiteral("note") };
    return names;
}

QStringList rowOf(const tDifference& difference)
{
    return { nameOf(*difference.first), difference.firstValue, difference.secondValue, difference.first->name,
             difference.byItself ? QStringLiteral("changes by itself") : QString() };
}

QByteArray jsonOf(const std::vector<tDifference>& differences)
{
    QJsonArray array;
    for (const tDifference& difference : differences) {
        const QStringList row = rowOf(difference);
        QJsonObject object;
        for (qsizetype column = 0; column + 1 < row.size(); ++column)
            object.insert(columns()[column], row[column]);
        object.insert(QStringLiteral("byItself"), difference.byItself);
        array += object;
    }
    return jsonText(QJsonDocument(array));
}

// The header names what was compared.
void print(CConsole& console, const std::vector<tDifference>& differences, const tCompareOptions& options,
           const QStringList& compared)
{
    if (options.format == compareJson) {
        console.write(jsonOf(differences));
        return;
    }
    std::vector<QStringList> rows{ columns() };
    if (options.format == compareTable) {
        rows.front()[1] = compared.front();
        rows.front()[2] = compared.back();
    }
    for (const tDifference& difference : differences)
        rows.push_back(rowOf(difference));
    if (options.format == compareTable) {
        if (!differences.empty())
            console.write(textTable(rows));
        return;
    }
    console.write(csvText(rows));
}

// Tells what could not be read when the dump was made, and therefore is not compared.
void tellMissing(const tSnapshot& dump, const QString& name, const tSnapshot& other, CConsole& console)
{
    if (!dump.isDump)
        return;
    const auto known = entriesOf(other);
    std::vector<const tSnapshotEntry*> missing;
    for (const tSnapshotEntry& entry : dump.entries) {
        if (!entry.value && isReadable(entry) && known.contains({ entry.index, entry.subIndex }))
            missing.push_back(&entry);
    }
    if (!missing.empty())
        console.message(QStringLiteral("not compared, since %1 has no value: %2").arg(name, namesOf(missing)));
}

// The device, read where the file knows a value.
tSnapshot snapshotOfDevice(const tCompareOptions& options, const tSnapshot& file, CConsole& console, int& status)
{
    tSnapshot snapshot = options.sheet.isEmpty() ? file : loadSnapshot(options.sheet);
    const auto known = entriesOf(file);
    CNetwork network(options.network, console);
    const tDevice device{ network, options.node, console };
    status = readEntries(device, snapshot, [&known](const tSnapshotEntry& entry) {
        const auto place = known.find({ entry.index, entry.subIndex });
        return place != known.end() && hasValue(*place->second) && isReadable(entry);
    });
    if (status == exitDifference) // a size that was told
        status = exitDone;
    return snapshot;
}

} // namespace

std::vector<tDifference> compareSnapshots(const tSnapshot& first, const tSnapshot& second)
{
    std::vector<tDifference> differences;
    const auto others = entriesOf(second);
    for (const tSnapshotEntry& entry : first.entries) {
        const auto place = others.find({ entry.index, entry.subIndex });
        if (place == others.end() || !differs(entry, first, *place->second, second))
            continue;
        differences.push_back({ &entry, valueText(entry, entry), valueText(*place->second, entry),
                                changesByItself(entry) || changesByItself(*place->second) });
    }
    addMissing(differences, first, second, true);
    addMissing(differences, second, first, false);
    return differences;
}

int compare(const tCompareOptions& options, CConsole& console)
{
    const bool withDevice = !options.network.interface.isEmpty();
    if (options.files.size() != (withDevice ? 1 : 2))
        throw tEnd{ exitUsage, withDevice ? QStringLiteral("a device is compared with one file")
                                          : QStringLiteral("two files are compared, or a device (-i, -n) and a file") };
    int status = exitDone;
    const tSnapshot first = loadSnapshot(options.files.front());
    const tSnapshot second =
        withDevice ? snapshotOfDevice(options, first, console, status) : loadSnapshot(options.files.back());
    tellMissing(first, options.files.front(), second, console);
    if (!withDevice)
        tellMissing(second, options.files.back(), first, console);
    const auto differences = compareSnapshots(first, second);
    const QString other = withDevice ? QStringLiteral("node %1").arg(options.node) : options.files.back();
    print(console, differences, options, { options.files.front(), other });
    for (const tDifference& difference : differences)
        if (options.all || !difference.byItself)
            return graver(status, exitDifference);
    return status;
}
