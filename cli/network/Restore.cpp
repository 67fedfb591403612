// Writing the saved values of a device back.
// SPDX-License-Identifier: MIT
#include "network/Restore.h"

#include "dic/CANopenObjectEntry.h"
#include "dic/DataSheet.h"
#include "dic/ValueTypes.h"
#include "network/DeviceIdentity.h"
#include "network/NodeState.h"
#include "network/UnitWriter.h"
#include "network/WriteOrder.h"
#include "sheets/EntryAccess.h"
#include "sheets/EntryText.h"

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

constexpr char nothingDiffers[] = "nothing differs";
constexpr int longestStoring = 10000; // milliseconds that a device may write into its flash memory

using tEntries = std::vector<const tSnapshotEntry*>;

bool contains(const tEntries& entries, const tSnapshotEntry* entry)
{
    return std::find(entries.cbegin(), entries.cend(), entry) != entries.cend();
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
          m_preOperational(m_node),
          m_writer(m_node, m_device)
    {
    }

    int run()
    {
        try {
            refuseWrongTexts();
            if (const int status = identityStatus(); status != exitDone)
                return status;
            readDevice();
        } catch (const tEnd& end) {
            throw tEnd{ end.status, QStringLiteral("%1; nothing was written").arg(end.message) };
        }
        findDifferences();
        refuseWhatCannotBeSent();
        tellRemarks();
        if (m_options.dryRun) {
            if (m_wanted.empty())
                m_console.message(QLatin1String(nothingDiffers));
            if (hasPdoParameters())
                m_console.message(
                    QStringLiteral("node %1 would be in pre-operational while they are written").arg(m_node.node));
            return exitDone;
        }
        try {
            writeAll();
            readBack();
            finish();
        } catch (const tEnd& end) {
            endEarly(end);
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
        if (m_status == exitDifference) // a size that was told: it counts where the value of the file is another one
            m_status = exitDone;
        if (m_status != exitDone && !m_options.keepGoing)
            throw tEnd{ static_cast<tExitStatus>(m_status), QStringLiteral("not all entries could be read") };
    }

    // Write-only entries are left out, too: what they have is not known, and many trigger an action.
    bool isIncluded(const tSnapshotEntry& entry) const
    {
        const bool isLeftOut = std::any_of(std::begin(leftOut), std::end(leftOut), [&entry](const auto& range) {
            return entry.index >= range.first && entry.index <= range.last;
        });
        return !m_options.exclude.contains(entry.index) &&
               ((!isLeftOut && isReadable(entry)) || m_options.include.contains(entry.index));
    }

    bool isCompared(const tSnapshotEntry& entry) const
    {
        return entry.value && isWritable(entry.access) && isIncluded(entry);
    }

    // A value that cannot be written must not be left out without a word.
    void refuseWrongTexts() const
    {
        tEntries wrong;
        for (const tSnapshotEntry& entry : m_file.entries)
            if (!entry.wrongText.isEmpty() && isWritable(entry.access) && isIncluded(entry))
                wrong.push_back(&entry);
        for (const tSnapshotEntry* entry : wrong)
            m_console.message(QStringLiteral("%1: \"%2\" is no value of type %3")
                                  .arg(nameOf(*entry), visibleLine(entry->wrongText), dataTypeName(entry->type)));
        if (!wrong.empty())
            throw tEnd{
                exitUsage,
                QStringLiteral("not all values of %1 can be written (--exclude leaves them out)").arg(m_options.file)
            };
    }

    void refuseWhatCannotBeSent() const
    {
        for (const tSnapshotEntry* entry : m_wanted)
            if (const auto refused = m_network.refusal(*entry->value))
                throw tEnd{ refused->status,
                            QStringLiteral("%1: %2; nothing was written").arg(nameOf(*entry), refused->text) };
    }

    // Refuses a device of another kind than that of the file.
    int identityStatus()
    {
        const int status = compareIdentity(m_file, m_node);
        if (status == exitDone || m_options.force)
            return exitDone;
        m_console.message(QStringLiteral("nothing was written; --force does it nevertheless"));
        return status;
    }

    // Tells what is easily taken for something else.
    void tellRemarks() const
    {
        tEntries missing; // could not be read when the dump was made
        for (const tSnapshotEntry& entry : m_file.entries)
            if (m_file.isDump && !entry.value && isWritable(entry.access) && isReadable(entry) && isIncluded(entry))
                missing.push_back(&entry);
        tellEntries(m_console, "left as they are, since the file has no value: ", missing);
        tEntries absolute;
        tEntries outputs; // which act at once
        for (const tSnapshotEntry* entry : m_wanted) {
            if (entry->offset && !entry->relative && m_file.nodeId != static_cast<unsigned>(m_node.node))
                absolute.push_back(entry);
            if (entry->access == CCANopenObjectEntry::accessRWW)
                outputs.push_back(entry);
        }
        tellEntries(m_console, "written as they are in the file, since they do not depend on its node-id: ", absolute);
        tellEntries(m_console, "warning: process outputs are among them (--exclude leaves them out): ", outputs);
    }

    bool isAsInTheFile(const tSnapshotEntry& present, const tSnapshotEntry& entry) const
    {
        const auto node = static_cast<unsigned>(m_node.node);
        return present.value && valueOfNode(present, node) == valueOfNode(entry, node);
    }

    // Finds and prints them.
    void findDifferences()
    {
        for (std::size_t place = 0; place < m_file.entries.size(); ++place) {
            const tSnapshotEntry& entry = m_file.entries[place];
            const tSnapshotEntry& present = m_device.entries[place];
            if (!isCompared(entry) || isAsInTheFile(present, entry))
                continue;
            m_wanted.push_back(&entry);
            m_console.line(QStringLiteral("%1: %2 -> %3  %4")
                               .arg(nameOf(entry), shownValue(present, m_node.node), shownValue(entry, m_node.node),
                                    visibleLine(entry.name)));
        }
    }

    bool hasPdoParameters() const
    {
        return std::any_of(m_wanted.cbegin(), m_wanted.cend(),
                           [](const auto* entry) { return isPdoParameter(entry->index); });
    }

    bool isWritten(const tSnapshotEntry* entry) const { return contains(m_written, entry); }

    // Only then the node may be operational again.
    bool arePdosWritten() const
    {
        return std::all_of(m_wanted.cbegin(), m_wanted.cend(),
                           [this](const auto* entry) { return !isPdoParameter(entry->index) || isWritten(entry); });
    }

    void writeAll()
    {
        if (hasPdoParameters())
            m_preOperational.begin();
        readNeeded();
        const auto writes = orderOfWrites(m_wanted, m_file, m_device,
                                          [this](const tSnapshotEntry& entry) { return isCompared(entry); });
        for (auto first = writes.cbegin(); first != writes.cend();) {
            const auto last =
                std::find_if(first, writes.cend(), [first](const tWrite& write) { return write.unit != first->unit; });
            writeUnit({ first, last });
            first = last;
        }
    }

    // What belongs together is written to its end, or what the device had is written back.
    void writeUnit(const std::vector<tWrite>& unit)
    {
        tEntries written;
        for (const tWrite& write : unit) {
            m_console.progress(QStringLiteral("writing %1").arg(nameOf(*write.entry)));
            const auto failure = m_writer.send(write);
            if (!failure) {
                if (!write.isStep && contains(m_wanted, write.entry))
                    written.push_back(write.entry);
                continue;
            }
            const tEnd end{ failure->status, QStringLiteral("%1: %2").arg(nameOf(*write.entry), failure->text) };
            const bool isRefused = end.status != exitNetwork; // otherwise it may have been written
            const bool goesOn = isRefused && m_options.keepGoing;
            const bool isWhole = goesOn && write.isApart;
            if (isRefused && !isWhole)
                writeBack(end);
            if (!goesOn)
                throw end;
            m_console.message(end.message);
            m_status = graver(m_status, end.status);
            if (!isWhole)
                return;
        }
        m_writer.complete();
        m_written.insert(m_written.end(), written.cbegin(), written.cend());
    }

    // Ctrl-C does not hide why.
    void writeBack(const tEnd& reason)
    {
        try {
            m_writer.writeBack();
        } catch (const tEnd& end) {
            throw tEnd{ end.status, QStringLiteral("%1; %2").arg(reason.message, end.message) };
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
                holdValue(entry, bytes, static_cast<unsigned>(m_node.node));
        }
    }

    void readBack()
    {
        m_phase = "not all was read back";
        for (const tSnapshotEntry* entry : m_written) {
            if (!isReadable(*entry))
                continue;
            tSnapshotEntry present = *entry;
            const int status = readEntry(m_node, present);
            if (isAsInTheFile(present, *entry))
                continue;
            m_status = graver(m_status, status);
            if (!present.value)
                continue;
            m_console.message(
                QStringLiteral("%1: reads back as %2, not as %3")
                    .arg(nameOf(*entry), shownValue(present, m_node.node), shownValue(*entry, m_node.node)));
            m_status = graver(m_status, exitDifference);
        }
    }

    // Stores before the node is brought back: some devices store in pre-operational only.
    void finish()
    {
        m_phase = nullptr;
        if (const auto failure = store())
            throw tEnd{ failure->status, QStringLiteral("1010:1: %1").arg(failure->text) };
        m_phase = nullptr;
        leavePreOperational();
    }

    void leavePreOperational()
    {
        if (arePdosWritten())
            m_preOperational.end(m_options.start);
        else
            m_preOperational.abandon();
    }

    // Ends the command for the reason, and tells what was done and what was not.
    [[noreturn]] void endEarly(const tEnd& reason)
    {
        QString text = reason.message;
        tExitStatus status = reason.status;
        try {
            if (status == exitAborted || status == exitUsage)
                leavePreOperational();
            else
                m_preOperational.abandon();
        } catch (const tEnd& end) {
            text += QStringLiteral("; ") + end.message;
            status = end.status;
        }
        throw tEnd{ status, QStringLiteral("%1; %2").arg(text, progressText()) };
    }

    // Writing into a flash memory takes longer than any other access. A gateway has a time-out of its own.
    std::optional<tFailure> store()
    {
        if (!m_options.store)
            return std::nullopt;
        if (m_status != exitDone) {
            m_console.message(QStringLiteral("the device was not told to store its parameters"));
            return std::nullopt;
        }
        m_phase = "the device may have stored its parameters or not";
        m_network.waitAtLeast(longestStoring);
        auto failure =
            m_network.write(static_cast<BYTE>(m_node.node), storeParameters, 1, QByteArray(storeSignature), true);
        if (failure && failure->status == exitAborted)
            m_phase = nullptr;
        if (!failure)
            m_console.message(QStringLiteral("node %1 has stored its parameters").arg(m_node.node));
        return failure;
    }

    // What was done, and what was not.
    QString progressText() const
    {
        tEntries missing;
        for (const tSnapshotEntry* entry : m_wanted)
            if (!isWritten(entry))
                missing.push_back(entry);
        QString text = QStringLiteral("%1 of %2 values were written").arg(m_written.size()).arg(m_wanted.size());
        if (m_wanted.empty())
            text = QLatin1String(nothingDiffers);
        if (!missing.empty())
            text += QStringLiteral("; not written: %1").arg(namesOf(missing));
        if (m_phase != nullptr)
            text += QStringLiteral("; ") + QLatin1String(m_phase);
        if (const QString halfWay = m_writer.halfWay(); !halfWay.isEmpty())
            text += QStringLiteral("; left half-way: %1").arg(halfWay);
        if (const QString uncertain = m_writer.uncertain(); !uncertain.isEmpty())
            text += QStringLiteral("; sent, but perhaps not written: %1").arg(visibleLine(uncertain));
        return text;
    }

    const tRestoreOptions& m_options;
    const tSnapshot m_file;
    tSnapshot m_device; // the same entries with the values of the device
    CConsole& m_console;
    CNetwork m_network;
    const tDevice m_node;
    CPreOperational m_preOperational;
    CUnitWriter m_writer;
    tEntries m_wanted;             // of the file
    tEntries m_written;            // of these
    const char* m_phase = nullptr; // what is not done when it ends now, beside what is not written
    int m_status = exitDone;
};

} // namespace

int restore(const tRestoreOptions& options, CConsole& console)
{
    return CRestore(options, console).run();
}
