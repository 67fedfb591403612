// The connection of velmora-cli to a CANopen network.
// SPDX-License-Identifier: MIT
#include "network/Network.h"

#include "access/ErrorTexts.h"
#include "access/InterfaceText.h"
#include "base/NodeId.h"
#include "console/Interrupt.h"
#include "dic/NumberText.h"
#include "network/InterfaceName.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace
{

constexpr BYTE usualBaudRate = 3; // 250 kbit/s, as the window has it; SocketCAN and gateways have their own
constexpr int sendFailed = -793;
constexpr int mostWaiting = 20000; // messages that the queue can hold, and some
constexpr unsigned noNode = 0;     // for operations that are no transfers

// What the numbers after "Error:" mean (CiA 309-3).
struct tGatewayError {
    int number;
    const char* text;
};
constexpr tGatewayError gatewayErrors[] = {
    { 100, "it does not support the command" },      { 101, "it does not understand the command" },
    { 102, "its state does not allow the command" }, { gatewayDeviceTimeout, "no answer of the device in time" },
    { gatewayNoNetwork, "no such network" },         { gatewayNoNode, "no such node" },
};

QString gatewayText(int number)
{
    const auto* row = std::find_if(std::begin(gatewayErrors), std::end(gatewayErrors),
                                   [number](const tGatewayError& each) { return each.number == number; });
    const QString text = QStringLiteral("the gateway answers error %1").arg(number);
    return row == std::end(gatewayErrors) ? text : QStringLiteral("%1 (%2)").arg(text, QLatin1String(row->text));
}

struct tAnswerText {
    CCANopenAccess::TAnswer answer;
    const char* text;
};
constexpr tAnswerText answerTexts[] = {
    { CCANopenAccess::answerNone, "the gateway does not answer" },
    { CCANopenAccess::answerClosed, "the gateway has closed the connection" },
    { CCANopenAccess::answerCut, "the answer of the gateway is cut" },
    { CCANopenAccess::answerOdd, "the gateway answers something that is no value" },
};

} // namespace

CNetwork::CNetwork(const tNetworkOptions& options, CConsole& console)
    : m_console(console), m_sdoTimeout(options.sdoTimeout.value_or(usualSdoTimeout))
{
    noteInterrupts();
    const auto connect = [&] {
        open(options);
        setTimeouts(options);
    };
    tellWhenInterrupted(connect, [] { return QStringLiteral("nothing was sent to a device"); });
    if (!m_isGateway)
        m_access.endTransfersWhen(isInterrupted);
}

CNetwork::~CNetwork()
{
    watchOthers();
}

void CNetwork::open(const tNetworkOptions& options)
{
    if (!isInterfaceName(options.interface))
        throw tEnd{ exitUsage,
                    QStringLiteral("\"%1\" is no interface: a CAN interface is a name such as can0; a gateway is "
                                   "localhost:60000, or an address and a port such as 192.168.1.10:5000")
                        .arg(options.interface) };
    const QByteArray name = options.interface.toLocal8Bit();
    tInterface interface = classifyInterface(name.constData());
    m_isGateway = interface.library == libraryGateway;
    if (m_access.initialize(interface.library, -1, interface.record(), usualBaudRate))
        return;
    endWhenInterrupted();
    throw tEnd{
        exitNetwork,
        m_isGateway ? QStringLiteral("%1: no gateway answers there").arg(options.interface)
                    : QStringLiteral("%1: there is no such CAN interface, or it cannot be used").arg(options.interface)
    };
}

void CNetwork::setTimeouts(const tNetworkOptions& options)
{
    if (m_isGateway && options.gatewayTimeout)
        m_access.setLineTimeout(*options.gatewayTimeout, nullptr);
    if (!options.sdoTimeout)
        return;
    const auto failure = run(
        [&](CCANopenAccess& access) { return access.setSDOTimeout(static_cast<WORD>(*options.sdoTimeout), nullptr); });
    if (failure)
        m_console.message(QStringLiteral("warning: the SDO time-out is not set: %1").arg(failure->text));
}

tReadResult CNetwork::read(BYTE node, WORD index, BYTE subIndex)
{
    begin();
    short length = 0;
    const bool done = m_access.read(node, index, subIndex, &length, m_buffer.data(), longestValue);
    tReadResult result{ {}, transferFailure(done, node) };
    if (!result.failure && length == longestValue)
        result.failure = { exitNetwork, 0, QStringLiteral("the value is longer than %1 bytes").arg(length - 1) };
    if (!result.failure)
        result.bytes = QByteArray(reinterpret_cast<const char*>(m_buffer.data()), length);
    return result;
}

std::optional<tFailure> CNetwork::write(BYTE node, WORD index, BYTE subIndex, const QByteArray& bytes, bool isNumber)
{
    begin();
    if (auto refused = refusal(bytes))
        return refused;
    const auto size = static_cast<short>(bytes.size());
    const auto* data = reinterpret_cast<const BYTE*>(bytes.constData()); // a zero byte follows them
    const auto byte = [data](int place) { return static_cast<std::uint32_t>(data[place]) << (8 * place); };
    bool done = false;
    // Numbers go as numbers, as the window sends them: a gateway has words for them.
    if (isNumber && size == 1)
        done = m_access.writeUnsigned8(node, index, subIndex, data[0]);
    else if (isNumber && size == 2)
        done = m_access.writeUnsigned16(node, index, subIndex, static_cast<std::uint16_t>(byte(0) | byte(1)));
    else if (isNumber && size == 4)
        done = m_access.writeUnsigned32(node, index, subIndex, byte(0) | byte(1) | byte(2) | byte(3));
    else
        done = m_access.write(node, index, subIndex, size, data);
    return transferFailure(done, node);
}

std::optional<tFailure> CNetwork::refusal(const QByteArray& bytes) const
{
    const int longest = m_isGateway ? top_write_max : longestValue;
    if (bytes.size() > longest)
        return tFailure{ exitUsage, 0, QStringLiteral("more than %1 bytes cannot be sent").arg(longest), false };
    if (bytes.isEmpty() && !m_isGateway)
        return tFailure{ exitUsage, 0, QStringLiteral("an empty value cannot be sent on CAN"), false };
    return std::nullopt;
}

bool CNetwork::isLost() const
{
    return m_isGateway &&
           (m_access.getLastError() == sendFailed || m_access.lastAnswer() == CCANopenAccess::answerClosed);
}

void CNetwork::waitAtLeast(int milliseconds)
{
    if (m_isGateway || milliseconds <= m_sdoTimeout)
        return;
    m_sdoTimeout = milliseconds;
    m_access.setSDOTimeout(static_cast<WORD>(milliseconds), nullptr);
}

void CNetwork::begin()
{
    endWhenInterrupted();
}

// Why a transfer with a node failed; none when it is done.
std::optional<tFailure> CNetwork::transferFailure(bool done, BYTE node)
{
    auto failure = failureOf(done, node);
    if (failure && failure->status == exitNetwork)
        m_late.insert(node);
    constexpr int watchEvery = 32;
    if (++m_transfers % watchEvery == 0)
        watchOthers();
    return failure;
}

std::optional<tFailure> CNetwork::failureOf(bool done, unsigned node) const
{
    auto refused = refusalBy(node);
    if (refused && refused->status == exitAborted)
        return refused;
    const auto answer = m_access.lastAnswer();
    if (!refused && done && (!m_isGateway || answer == CCANopenAccess::answerWhole))
        return std::nullopt;
    endWhenInterrupted();
    if (refused)
        return refused;
    const bool silent = answer == CCANopenAccess::answerNone || answer == CCANopenAccess::answerClosed;
    return tFailure{ exitNetwork, 0, m_isGateway ? gatewayTrouble() : canTrouble(node), silent };
}

// What the device or the gateway says in place of doing it. The result of the operation does not tell all of it.
std::optional<tFailure> CNetwork::refusalBy(unsigned node) const
{
    const bool isTransfer = node != noNode;
    if (!isTransfer && !m_isGateway)
        return std::nullopt; // the last transfer was another operation
    const auto number = m_access.lastRefusal();
    if (!number)
        return std::nullopt;
    if (m_isGateway && (!isTransfer || *number < lowestAbortCode)) {
        const auto error = static_cast<int>(*number);
        const bool silent = error == gatewayDeviceTimeout || error == gatewayNoNetwork || error == gatewayNoNode;
        return tFailure{ exitNetwork, 0, gatewayText(error), silent };
    }
    return tFailure{ exitAborted, *number,
                     QStringLiteral("aborted by the device: %1 (%2)")
                         .arg(hexadecimalText(*number, 8), QLatin1String(errorTexts::ofAbort(*number))) };
}

QString CNetwork::gatewayTrouble() const
{
    if (m_access.getLastError() == sendFailed)
        return QStringLiteral("the connection to the gateway is lost");
    const auto* row =
        std::find_if(std::begin(answerTexts), std::end(answerTexts),
                     [answer = m_access.lastAnswer()](const tAnswerText& each) { return each.answer == answer; });
    return row != std::end(answerTexts) ? QString::fromLatin1(row->text) : numberedError();
}

QString CNetwork::canTrouble(unsigned node) const
{
    return m_access.lastAnswer() == CCANopenAccess::answerNone
               ? QStringLiteral("no answer of node %1 within %2 ms").arg(node).arg(m_sdoTimeout)
               : numberedError();
}

QString CNetwork::numberedError() const
{
    const int error = m_access.getLastError();
    return QStringLiteral("%1 (error %2)")
        .arg(QString::fromLatin1(m_access.getErrorText(error)), QString::number(error));
}

std::optional<tCanMessage> CNetwork::takeMessage()
{
    union {
        WORD cobId;
        std::uint32_t identifier; // the facade writes 32 bits
    } place = {};
    short length = 0;
    std::array<char, 8> data{};
    if (m_isGateway || !m_access.readQueue(&place.cobId, &length, reinterpret_cast<BYTE*>(data.data())))
        return std::nullopt;
    return tCanMessage{ place.identifier, QByteArray(data.data(), length) };
}

void CNetwork::watchOthers()
{
    for (int n = 0; n < mostWaiting; ++n) {
        const auto message = takeMessage();
        if (!message)
            return;
        watch(*message);
    }
}

void CNetwork::watch(const tCanMessage& message)
{
    const unsigned node = message.identifier & highestNodeId;
    const bool answer = message.identifier > sdoAnswerCobId && message.identifier <= sdoAnswerCobId + highestNodeId;
    const bool request = message.identifier > sdoRequestCobId && message.identifier <= sdoRequestCobId + highestNodeId;
    if (m_warned || !(request || (answer && !m_late.contains(node))))
        return;
    m_warned = true;
    m_console.message(
        QStringLiteral("warning: another SDO client is at work on this bus: it talks to node %1, and answers to it "
                       "may be taken for answers to this program")
            .arg(node));
}
