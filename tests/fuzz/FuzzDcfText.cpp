// Makes configuration files of any bytes that are a sheet: they must read back with all values, and be otherwise the
// same sheet.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "MemoryFile.h"

#include "dic/DataSheet.h"
#include "sheets/Commissioning.h"
#include "sheets/DcfText.h"
#include "sheets/EntryText.h"
#include "sheets/FirstEntries.h"

#include <set>

static QString nameOf(const CMemoryFile& file)
{
    return QString::fromLatin1(file.name());
}

// Different for neighbours; of some entries unknown, and of some longer than their type.
static std::optional<QByteArray> valueFor(const tSnapshotEntry& entry, std::size_t place)
{
    const char byte = static_cast<char>(place * 37 + entry.subIndex);
    if (place % 5 == 4)
        return std::nullopt;
    return QByteArray(static_cast<qsizetype>(place % 8 + 1), byte);
}

static void requireSameEntries(const CCANopen& before, const CCANopen& after)
{
    require(before.m_objectArray.size() == after.m_objectArray.size());
    for (std::size_t number = 0; number < before.m_objectArray.size(); ++number) {
        const CCANopenObject& was = *before.m_objectArray[number];
        const CCANopenObject& is = *after.m_objectArray[number];
        require(was.getName() == is.getName() && was.m_objectEntryArray.size() == is.m_objectEntryArray.size());
        for (std::size_t entry = 0; entry < was.m_objectEntryArray.size(); ++entry)
            require(was.m_objectEntryArray[entry]->getDefaultValue() ==
                    is.m_objectEntryArray[entry]->getDefaultValue());
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const CMemoryFile file(data, size);
    CDataSheet sheet;
    if (sheet.load(nameOf(file)) != CDataSheet::loaded)
        return 0;
    tSnapshot snapshot = snapshotOf(sheet, 5);
    for (std::size_t place = 0; place < snapshot.entries.size(); ++place)
        snapshot.entries[place].value = valueFor(snapshot.entries[place], place);
    const tDcfText dcf = dcfText(nameOf(file), snapshot);

    const CMemoryFile written(reinterpret_cast<const uint8_t*>(dcf.text.constData()), size_t(dcf.text.size()));
    CCANopen dictionary;
    tEdsReport report;
    require(loadEdsFile(dictionary, written.name(), &report));
    requireSameEntries(sheet.dictionary(), dictionary);
    require(commissionedNodeId(nameOf(written)) == 5);
    const auto entries = firstEntries(dictionary);
    require(entries.size() == snapshot.entries.size());
    const std::set<std::size_t> unwritten(dcf.unwritten.begin(), dcf.unwritten.end());
    for (std::size_t place = 0; place < entries.size(); ++place) {
        const tSnapshotEntry& entry = snapshot.entries[place];
        const auto value = report.parameterValues.find(&entries[place].entry);
        const bool isWritten = entry.value && unwritten.count(place) == 0;
        require((value != report.parameterValues.end()) == isWritten);
        require(!isWritten || value->second == sheetText(*entry.value, entry.type, entry.relative));
    }
    return 0;
}
