// Which nodes are there, and what they say of themselves.
// SPDX-License-Identifier: MIT
#include "network/Scan.h"

#include "base/NodeId.h"
#include "console/Interrupt.h"
#include "sheets/EntryText.h"

#include <algorithm>
#include <iterator>

namespace
{

using std::chrono::milliseconds;

constexpr milliseconds pace{ 2 };           // from one request to the next: at 125 kbit/s there is room for the answers
constexpr milliseconds longestBusy{ 2000 }; // for which a request may find no room in the interface
constexpr WORD deviceType = 0x1000;

struct tField {
    WORD index;
    BYTE subIndex;
};
constexpr tField fields[] = { { deviceType, 0 }, { 0x1018, 1 }, { 0x1018, 2 },
                              { 0x1018, 3 },     { 0x1018, 4 }, { 0x1008, 0 } };
static_assert(std::size(fields) == scanFieldCount);

// What says that a node is not there: error numbers of a gateway, and the abort code with which some report a time-out.
constexpr int notThere[] = { gatewayError - gatewayDeviceTimeout, gatewayError - gatewayNoNode };

// An upload of the device type: the command, the index, the sub-index.
QByteArray deviceTypeFrame(int command)
{
    QByteArray frame;
    for (const int byte : { command, deviceType & 0xFF, deviceType >> 8, 0, 0, 0, 0, 0 })
        frame += static_cast<char>(byte);
    return frame;
}

// The node that gives its device type, or aborts that; 0 when the message is something else.
unsigned answeringNode(const tCanMessage& message)
{
    static const QByteArray multiplexor = deviceTypeFrame(0).mid(1, 3);
    constexpr unsigned specifier = 0xE0; // of the command
    constexpr unsigned upload = 0x40;
    constexpr unsigned abort = 0x80;
    const unsigned node = message.identifier - sdoAnswerCobId; // wraps around for smaller ones
    if (node < 1 || node > highestNodeId || message.data.size() != 8 || message.data.mid(1, 3) != multiplexor)
        return 0;
    const unsigned command = static_cast<unsigned char>(message.data[0]) & specifier;
    return command == upload || command == abort ? node : 0;
}

} // namespace

CScan::CScan(CNetwork& network, const tNetworkOptions& options, CConsole& console,
             std::function<void(milliseconds)> wait)
    : m_network(network), m_options(options), m_console(console), m_wait(std::move(wait))
{
}

int CScan::run()
{
    return m_network.isGateway() ? runThroughGateway() : runOnCan();
}

QString CScan::progressText() const
{
    if (m_asked == highestNodeId)
        return QStringLiteral("all nodes were asked, %1 of those found for everything")
            .arg(std::min(m_questioned.size(), m_nodes.size()));
    return m_asked == 0 ? QStringLiteral("no node was asked") : QStringLiteral("nodes 1 to %1 were asked").arg(m_asked);
}

int CScan::runOnCan()
{
    for (unsigned node = 1; node <= highestNodeId; ++node) {
        m_console.progress(QStringLiteral("asking node %1 of %2").arg(node).arg(highestNodeId));
        sendRequest(node);
        m_wait(pace);
        takeAnswers();
    }
    m_console.progress(QStringLiteral("waiting for answers"));
    const milliseconds rest(m_options.sdoTimeout.value_or(usualSdoTimeout));
    for (milliseconds waited{ 0 }; waited < rest; waited += pace) {
        m_wait(pace);
        takeAnswers();
    }
    int status = exitDone;
    while (m_questioned.size() < m_nodes.size()) { // one that answers late comes in another round
        status = std::max(status, askFound());
        takeAnswers();
    }
    return status;
}

// The interface has room for a few messages only, and sends none as long as nobody acknowledges them.
void CScan::sendRequest(unsigned node)
{
    static const QByteArray request = deviceTypeFrame(0x40);
    const auto* data = reinterpret_cast<const BYTE*>(request.constData());
    for (milliseconds busy{ 0 };; busy += pace) {
        const auto failure = m_network.run([&](CCANopenAccess& access) {
            return access.transmitMessage(static_cast<WORD>(sdoRequestCobId + node), static_cast<short>(request.size()),
                                          data);
        });
        if (!failure)
            break;
        if (m_network.access().getLastError() != ERR_TRANSMITTER_BUSY || busy >= longestBusy)
            throw tEnd{ exitNetwork,
                        QStringLiteral("the interface sends nothing: %1; %2").arg(failure->text, progressText()) };
        m_wait(pace);
        takeAnswers();
    }
    m_asked = node;
    m_network.expectLateAnswer(node);
}

void CScan::takeAnswers()
{
    while (const auto message = m_network.takeMessage())
        takeAnswer(*message);
}

void CScan::takeAnswer(const tCanMessage& message)
{
    const unsigned node = answeringNode(message);
    if (node == 0 || node > m_asked) {
        m_network.watch(message);
        return;
    }
    m_network.expectNoAnswer(node);
    const bool known =
        std::any_of(m_nodes.cbegin(), m_nodes.cend(), [node](const tFoundNode& found) { return found.node == node; });
    if (known)
        m_console.message(
            QStringLiteral("warning: node %1 answers twice: two devices may have this node-id").arg(node));
    else
        add(node);
}

void CScan::add(unsigned node)
{
    const auto place = std::upper_bound(m_nodes.begin(), m_nodes.end(), node,
                                        [](unsigned id, const tFoundNode& found) { return id < found.node; });
    m_nodes.insert(place, tFoundNode{ node, {} });
}

int CScan::askFound()
{
    int status = exitDone;
    for (tFoundNode& found : m_nodes)
        if (std::find(m_questioned.cbegin(), m_questioned.cend(), found.node) == m_questioned.cend())
            status = std::max(status, askNode(found));
    return status;
}

// Aborts leave values out. A node that does not answer any more is not asked again.
int CScan::askNode(tFoundNode& found)
{
    m_console.progress(QStringLiteral("reading node %1").arg(found.node));
    for (std::size_t field = 0; field < std::size(fields); ++field) {
        const auto [index, subIndex] = fields[field];
        if (found.values[field])
            continue;
        const auto [bytes, failure] = m_network.read(static_cast<BYTE>(found.node), index, subIndex);
        if (!failure) {
            found.values[field] = bytes;
        } else if (failure->status != exitAborted) {
            m_console.message(QStringLiteral("node %1, %2: %3")
                                  .arg(QString::number(found.node), parameterText(index, subIndex), failure->text));
            m_questioned.push_back(found.node);
            return exitNetwork;
        }
    }
    m_questioned.push_back(found.node);
    return exitDone;
}

int CScan::runThroughGateway()
{
    int status = exitDone;
    for (unsigned node = 1; node <= highestNodeId; ++node) {
        m_console.progress(QStringLiteral("asking node %1 of %2").arg(node).arg(highestNodeId));
        const auto [bytes, failure] = m_network.read(static_cast<BYTE>(node), deviceType, 0);
        const bool absent = failure && (std::find(std::begin(notThere), std::end(notThere),
                                                  m_network.access().getLastError()) != std::end(notThere) ||
                                        failure->abortCode == ABORT_TIMEOUT);
        if (failure && failure->status == exitNetwork && !absent)
            throw tEnd{ exitNetwork,
                        QStringLiteral("node %1: %2; %3").arg(QString::number(node), failure->text, progressText()) };
        m_asked = node;
        if (absent)
            continue;
        add(node);
        if (!failure)
            m_nodes.back().values[scanDeviceType] = bytes;
        status = std::max(status, askNode(m_nodes.back()));
    }
    return status;
}

int scanNetwork(const tNetworkOptions& options, tScanFormat format, CConsole& console)
{
    CNetwork network(options, console);
    CScan scan(network, options, console,
               [](milliseconds time) { sleepUntil(std::chrono::steady_clock::now() + time); });
    const auto print = [&] {
        console.progress(QString());
        console.write(scanText(scan.nodes(), format));
    };
    int status = exitDone;
    try {
        tellWhenInterrupted([&] { status = scan.run(); }, [&] { return scan.progressText(); });
    } catch (const tEnd&) {
        print();
        throw;
    }
    print();
    if (scan.nodes().empty())
        throw tEnd{ exitNetwork, QStringLiteral("no node answers") };
    return status;
}
