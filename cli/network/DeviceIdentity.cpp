// Whether a device is of the kind that a file is made for.
// SPDX-License-Identifier: MIT
#include "network/DeviceIdentity.h"

#include "dic/DataSheet.h"
#include "network/TypedValue.h"

#include <algorithm>

namespace
{

// What tells one device from another. A revision may differ between devices of one kind.
constexpr struct tIdentityRow {
    unsigned index;
    unsigned subIndex;
    bool refuses;
} identity[] = { { 0x1000, 0, true }, { 0x1018, 1, true }, { 0x1018, 2, true }, { 0x1018, 3, false } };

int compareEntry(const tSnapshotEntry& entry, const tIdentityRow& row, const tDevice& device)
{
    tSnapshotEntry expected = entry;
    if (!expected.value)
        expected.value = entry.defaultValue;
    const QString name = QStringLiteral("%1 (%2)").arg(nameOf(entry), visibleLine(entry.name));
    if (!expected.value) {
        if (row.refuses)
            device.console.message(QStringLiteral("the file has no value of %1").arg(name));
        return row.refuses ? exitDifference : exitDone;
    }
    tSnapshotEntry present = expected;
    const int status = readEntry(device, present);
    if (present.value == expected.value)
        return exitDone;
    if (present.value)
        device.console.message(QStringLiteral("%1 is %2 in the file and %3 in the device")
                                   .arg(name, shownValue(expected, device.node), shownValue(present, device.node)));
    return row.refuses ? graver(status, exitDifference) : exitDone;
}

} // namespace

int compareIdentity(const tSnapshot& file, const tDevice& device)
{
    bool compared = false;
    int status = exitDone;
    for (const tIdentityRow& row : identity) {
        const auto entry = std::find_if(file.entries.cbegin(), file.entries.cend(), [&row](const auto& each) {
            return each.index == row.index && each.subIndex == row.subIndex;
        });
        if (entry == file.entries.cend())
            continue;
        compared |= row.refuses;
        status = graver(status, compareEntry(*entry, row, device));
    }
    if (compared)
        return status;
    device.console.message(QStringLiteral("the file does not tell of which device it is (1000, 1018)"));
    return exitDifference;
}

QString shownValue(const tSnapshotEntry& entry, int node)
{
    if (!entry.value)
        return QStringLiteral("?");
    const QByteArray bytes = valueOfNode(entry, static_cast<unsigned>(node));
    return visibleLine(typedValue::textOf(entry.type, bytes, valueFormats::modeHex));
}
