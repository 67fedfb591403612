// Writing the saved values of a device back.
// SPDX-License-Identifier: MIT
#include "network/Restore.h"

#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "network/NodeReading.h"
#include "network/NodeState.h"
#include "network/TypedValue.h"
#include "network/WriteOrder.h"
#include "sheets/EntryAccess.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr unsigned storeParameters = 0x1010;
constexpr char storeSignature[] = "save"; // as bytes on the bus (CiA 301)

// Indexes that are not written unless asked for: what is there tells about errors or triggers actions.
constexpr struct {
    unsigned first;
    unsigned last;
} leftOut[] = { { 0x1003, 0x1003 }, { 0x1010, 0x1011 }, { 0x1F50, 0x1F5F } };

// What tells one device from another. A revision may differ between devices of one kind.
constexpr struct {
    unsigned index;
    unsigned subIndex;
    bool refuses;
} identity[] = { { 0x1000, 0, true }, { 0x1018, 1, true }, { 0x1018, 2, true }, { 0x1018, 3, false } };

QString textOf(const tSnapshotEntry& entry, const std::optional<QByteArray>& value, int node)
{
    if (!value)
        return QStringLiteral("?");
    const QByteArray bytes = valueOfNode(entry, *value, static_cast<unsigned>(node));
    return visibleLine(typedValue::textOf(entry.type, bytes, valueFormats::modeHex));
}

class CRestore
{
public:
    CRestore(const tRestoreOptions& options, CConsole& console)
        : m_options(options),
          m_file(loadSnapshot(options.file)),
          m_device(m_file),
          m_console(console),
          m_network(options.network, console),
          m_node{ m_network, options.node, console },
          m_preOperational(m_node)
    {
    }

    int run()
    {
        try {
            if (!isSameDevice())
                return exitDifference;
            readDevice();
        } catch (const tEnd& end) {
            throw tEnd{ end.status, QStringLiteral("%1; nothing was written").arg(end.message) };
        }
        findDifferences();
        if (m_options.dryRun)
            return exitDone;
        try {
            writeAll();
            readBack();
            finish();
        } catch (const tEnd& end) {
            m_preOperational.abandon();
            throw tEnd{ end.status, QStringLiteral("%1; %2").arg(end.message, progressText()) };
        }
        m_console.message(progressText());
        return m_status;
    }

private:
    void readDevice()
    {
        m_status = readEntries(m_node, m_device, [this](const tSnapshotEntry& entry) {
            return isCompared(entry) && isReadable(entry); // still with the values of the file
        });
        if ((m_status == exitAborted || m_status == exitNetwork) && !m_options.keepGoing)
            throw tEnd{ static_cast<tExitStatus>(m_status), QStringLiteral("not all entries could be read") };
    }

    // Write-only entries are left out, too: what they have is not known, and many trigger an action.
    bool isIncluded(const tSnapshotEntry& entry) const
    {
        const bool isLeftOut = std::any_of(std::begin(leftOut), std::end(leftOut), [&entry](const auto& range) {
            return entry.index >= range.first && entry.index <= range.last;
        });
        return (!isLeftOut && isReadable(entry)) || m_options.include.count(entry.index) != 0;
    }

    bool isCompared(const tSnapshotEntry& entry) const
    {
        return entry.value && isWritable(entry.access) && isIncluded(entry);
    }

    // Tells and refuses when the device is of another kind than that of the file.
    bool isSameDevice()
    {
        bool compared = false;
        bool same = true;
        for (const auto& row : identity) {
            const auto entry = std::find_if(m_file.entries.cbegin(), m_file.entries.cend(), [&row](const auto& each) {
                return each.index == row.index && each.subIndex == row.subIndex && each.value;
            });
            if (entry == m_file.entries.cend())
                continue;
            tSnapshotEntry present = *entry;
            readEntry(m_node, present);
            if (present.value != entry->value)
                m_console.message(QStringLiteral("%1 (%2) is %3 in the file and %4 in the device")
                                      .arg(nameOf(*entry), entry->name, textOf(*entry, entry->value, m_node.node),
                                           textOf(present, present.value, m_node.node)));
            compared |= row.refuses;
            same &= !row.refuses || present.value == entry->value;
        }
        if (!compared)
            m_console.message(QStringLiteral("the file does not tell of which device it is (1000, 1018)"));
        if ((compared && same) || m_options.force)
            return true;
        m_console.message(QStringLiteral("nothing was written; --force does it nevertheless"));
        return false;
    }

    // Finds and prints them.
    void findDifferences()
    {
        for (std::size_t place = 0; place < m_file.entries.size(); ++place) {
            const tSnapshotEntry& entry = m_file.entries[place];
            const std::optional<QByteArray>& present = m_device.entries[place].value;
            if (!isCompared(entry) || present == entry.value)
                continue;
            m_wanted.push_back(&entry);
            m_console.line(QStringLiteral("%1: %2 -> %3  %4")
                               .arg(nameOf(entry), textOf(entry, present, m_node.node),
                                    textOf(entry, entry.value, m_node.node), visibleLine(entry.name)));
        }
    }

    void writeAll()
    {
        if (std::any_of(m_wanted.cbegin(), m_wanted.cend(), [](const auto* e) { return isPdoParameter(e->index); }))
            m_preOperational.begin();
        readNeeded();
        const auto writes = orderOfWrites(m_wanted, m_file, m_device);
        for (const tWrite& write : writes) {
            m_console.progress(QStringLiteral("writing %1").arg(nameOf(*write.entry)));
            if (!send(write))
                continue;
            if (!write.isStep && std::find(m_wanted.cbegin(), m_wanted.cend(), write.entry) != m_wanted.cend())
                m_written.push_back(write.entry);
        }
    }

    // Entries of the device that the order depends on. Those that it does not give are done without.
    void readNeeded()
    {
        for (const std::size_t place : neededForOrder(m_wanted, m_device)) {
            tSnapshotEntry& entry = m_device.entries[place];
            if (!isReadable(entry))
                continue;
            const auto [bytes, failure] = m_network.read(static_cast<BYTE>(m_node.node), static_cast<WORD>(entry.index),
                                                         static_cast<BYTE>(entry.subIndex));
            if (failure && failure->silent)
                throw tEnd{ exitNetwork, QStringLiteral("%1: %2").arg(nameOf(entry), failure->text) };
            if (!failure)
                entry.value = valueToHold(entry, bytes, static_cast<unsigned>(m_node.node));
        }
    }

    // False when the device refused it and it goes on all the same.
    bool send(const tWrite& write)
    {
        const tSnapshotEntry& entry = *write.entry;
        const auto failure =
            m_network.write(static_cast<BYTE>(m_node.node), static_cast<WORD>(entry.index),
                            static_cast<BYTE>(entry.subIndex), write.bytes, isNumeric(valueType(entry.type)));
        if (!failure)
            return true;
        m_pdoFailed |= isPdoParameter(entry.index);
        const QString text = QStringLiteral("%1: %2").arg(nameOf(entry), failure->text);
        if (failure->silent || !m_options.keepGoing)
            throw tEnd{ failure->status, text };
        m_console.message(text);
        m_status = graver(m_status, failure->status);
        return false;
    }

    void readBack()
    {
        for (const tSnapshotEntry* entry : m_written) {
            if (!isReadable(*entry))
                continue;
            tSnapshotEntry present = *entry;
            m_status = graver(m_status, readEntry(m_node, present));
            if (!present.value || present.value == entry->value)
                continue;
            m_console.message(QStringLiteral("%1: reads back as %2, not as %3")
                                  .arg(nameOf(*entry), textOf(present, present.value, m_node.node),
                                       textOf(*entry, entry->value, m_node.node)));
            m_status = graver(m_status, exitDifference);
        }
    }

    // Stores before the node is brought back: some devices store in pre-operational only.
    void finish()
    {
        const auto failure = store();
        if (m_pdoFailed)
            m_preOperational.abandon();
        else
            m_preOperational.end(m_options.start);
        if (failure)
            throw tEnd{ failure->status, QStringLiteral("1010:1: %1").arg(failure->text) };
    }

    std::optional<tFailure> store()
    {
        if (!m_options.store)
            return std::nullopt;
        if (m_status != exitDone) {
            m_console.message(QStringLiteral("the device was not told to store its parameters"));
            return std::nullopt;
        }
        auto failure =
            m_network.write(static_cast<BYTE>(m_node.node), storeParameters, 1, QByteArray(storeSignature), true);
        if (!failure)
            m_console.message(QStringLiteral("node %1 has stored its parameters").arg(m_node.node));
        return failure;
    }

    // What was done, and what was not.
    QString progressText() const
    {
        constexpr qsizetype most = 10;
        QStringList missing;
        for (const tSnapshotEntry* entry : m_wanted)
            if (std::find(m_written.cbegin(), m_written.cend(), entry) == m_written.cend())
                missing += nameOf(*entry);
        QString text = QStringLiteral("%1 of %2 values were written").arg(m_written.size()).arg(m_wanted.size());
        if (!missing.isEmpty())
            text += QStringLiteral("; not written: %1").arg(missing.mid(0, most).join(QStringLiteral(", ")));
        if (missing.size() > most)
            text += QStringLiteral(" and %1 more").arg(missing.size() - most);
        return text;
    }

    const tRestoreOptions& m_options;
    const tSnapshot m_file;
    tSnapshot m_device; // the same entries with the values of the device
    CConsole& m_console;
    CNetwork m_network;
    const tDevice m_node;
    CPreOperational m_preOperational;
    std::vector<const tSnapshotEntry*> m_wanted;  // of the file
    std::vector<const tSnapshotEntry*> m_written; // of these
    bool m_pdoFailed = false;
    int m_status = exitDone;
};

} // namespace

int restore(const tRestoreOptions& options, CConsole& console)
{
    return CRestore(options, console).run();
}
