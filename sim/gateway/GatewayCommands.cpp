// What the gateway's commands do: SDO transfers and NMT commands on the simulated devices, and messages of the clients.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayCommands.h"

#include "base/Product.h"
#include "device/SdoLog.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint32 lastIdentifier = 0x7FF;

struct tInfoRow {
    int topic;
    const char* parts[2]; // joined by a blank
};

constexpr tInfoRow infoRows[] = {
    { infoHardware, { "Simulated CANopen gateway", nullptr } },
    { infoSoftware, { "velmora-sim", product::version } },
    { infoFirmware, { "velmora-sim", product::version } },
    { infoCopyright, { product::copyright, nullptr } },
    { infoVersion, { product::version, nullptr } },
};

// length { " 0x" byte }
QByteArray messageText(const QByteArray& data)
{
    QByteArray text = QByteArray::number(data.size());
    for (char byte : data)
        text += ' ' + hexadecimal(static_cast<unsigned char>(byte), 2);
    return text;
}

const tGatewayAnswer okAnswer{ "OK", {}, 0 };

} // namespace

tGatewayAnswer errorAnswer(tGatewayError error)
{
    return { "ERROR: " + QByteArray::number(error), {}, 0 };
}

tGatewayAnswer abortAnswer(tAbortCode code)
{
    return { "ERROR: " + hexadecimal(code, 8), {}, 0 };
}

tGatewayAnswer CGatewayCommands::execute(const tGatewayRequest& request)
{
    if (request.error != gatewayNoError)
        return errorAnswer(request.error);
    if (request.node > lastNodeId)
        return errorAnswer(gatewayNode);
    switch (request.rule->command) {
    case commandRead:
        return read(request);
    case commandWrite:
        return write(request);
    case commandNmt:
        return nmt(request);
    case commandInit:
        return init(request);
    case commandSetTimeOut:
        return setTimeOut(request);
    case commandInfo:
        return info(request);
    case commandRemoteFrame:
        return remoteFrame(request);
    case commandSend:
        return send(request);
    case commandReceive:
        break;
    }
    return receive(request);
}

// The device that a transfer is for; null when it cannot answer, with `error` set to what the client gets instead.
CSimulatedNode* CGatewayCommands::sdoServer(const tGatewayRequest& request, tGatewayAnswer& error) const
{
    CSimulatedNode* node = m_network.node(request.node);
    if (node != nullptr && node->answersSdo())
        return node;
    error = errorAnswer(request.node == 0 ? gatewayNode : gatewayTimeOut);
    error.delay = request.node == 0 ? 0 : m_timeOut;
    return nullptr;
}

tGatewayAnswer CGatewayCommands::read(const tGatewayRequest& request)
{
    tGatewayAnswer error;
    const CSimulatedNode* node = sdoServer(request, error);
    if (node == nullptr)
        return error;
    const tSdoData result = node->read(request.index, request.subIndex);
    if (result.abortCode != abortNone)
        return abortAnswer(result.abortCode);
    const tValueType type = request.type->type;
    if (type.width != 0 && result.data.size() != type.width)
        return abortAnswer(result.data.size() > type.width ? abortLengthHigh : abortLengthLow);
    const QByteArray text = request.type->decode(result.data, type);
    return { text, type.kind == kindOctets ? readable(result.data) : text, 0 };
}

tGatewayAnswer CGatewayCommands::write(const tGatewayRequest& request)
{
    tGatewayAnswer error;
    CSimulatedNode* node = sdoServer(request, error);
    if (node == nullptr)
        return error;
    const tAbortCode code = node->write(request.index, request.subIndex, request.data);
    return code == abortNone ? okAnswer : abortAnswer(code);
}

tGatewayAnswer CGatewayCommands::nmt(const tGatewayRequest& request)
{
    m_network.command(request.node, static_cast<tNmtCommand>(request.rule->parameter));
    return okAnswer;
}

// There is no bus and so no bit rate to set. Messages that wait are kept.
tGatewayAnswer CGatewayCommands::init(const tGatewayRequest&)
{
    return okAnswer;
}

tGatewayAnswer CGatewayCommands::setTimeOut(const tGatewayRequest& request)
{
    m_timeOut = static_cast<int>(request.number);
    return okAnswer;
}

tGatewayAnswer CGatewayCommands::info(const tGatewayRequest& request)
{
    const auto row = std::find_if(std::begin(infoRows), std::end(infoRows),
                                  [&request](const tInfoRow& each) { return each.topic == request.rule->parameter; });
    QByteArray text = row->parts[0];
    if (row->parts[1] != nullptr)
        text.append(' ').append(row->parts[1]);
    return { quoted(text), {}, 0 };
}

tGatewayAnswer CGatewayCommands::send(const tGatewayRequest& request)
{
    if (request.identifier > lastIdentifier)
        return errorAnswer(gatewaySyntax);
    if (m_queue.size() >= queueLimit)
        return errorAnswer(gatewayState);
    m_queue.push_back({ request.identifier, request.data });
    m_lastSent[request.identifier] = request.data;
    return okAnswer;
}

// Answers with the last message sent with this identifier, as its producer would; time-out when there is none.
tGatewayAnswer CGatewayCommands::remoteFrame(const tGatewayRequest& request)
{
    if (request.identifier > lastIdentifier || request.number > longestMessage)
        return errorAnswer(gatewaySyntax);
    const auto found = m_lastSent.find(request.identifier);
    if (found != m_lastSent.end())
        return { messageText(found->second), {}, 0 };
    tGatewayAnswer error = errorAnswer(gatewayTimeOut);
    error.delay = m_timeOut;
    return error;
}

tGatewayAnswer CGatewayCommands::receive(const tGatewayRequest&)
{
    if (m_queue.empty())
        return okAnswer;
    const tMessage message = m_queue.front();
    m_queue.pop_front();
    return { hexadecimal(message.identifier, 3) + ' ' + messageText(message.data), {}, 0 };
}

QByteArray describeSdo(const tGatewayRequest& request, const tGatewayAnswer& answer)
{
    const bool writes = request.rule->command == commandWrite;
    return sdoLine({ request.node, writes ? "write" : "read", request.index, request.subIndex, request.type->word,
                     writes ? shownValue(*request.type, request.data) : QByteArray(),
                     answer.readable.isEmpty() ? answer.text : answer.readable });
}
