// The command grammar of the ASCII gateway: reads a line as a command and its arguments.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayGrammar.h"

#include "device/SimulatedNode.h"
#include "gateway/LineScanner.h"

#include <QList>

#include <optional>

namespace
{

// Tried from top to bottom: the first rule that matches the whole line applies.
constexpr tGatewayRule rules[] = {
    { "read|r", commandRead, { argIndex, argSubIndex, argType }, 0, formNode },
    { "write|w", commandWrite, { argIndex, argSubIndex, argType, argValue }, 0, formNode },
    { "start", commandNmt, {}, nmtStart, formNode },
    { "stop", commandNmt, {}, nmtStop, formNode },
    { "preoperational|preop", commandNmt, {}, nmtPreOperational, formNode },
    { "reset node", commandNmt, {}, nmtResetNode, formNode },
    { "reset communication|comm", commandNmt, {}, nmtResetCommunication, formNode },
    { "init", commandInit, { argBitRate }, 0, formPlain },
    { "set sdo_timeout", commandSetTimeOut, { argTime }, 0, formPlain },
    { "info hardware", commandInfo, {}, infoHardware, formPlain },
    { "info software", commandInfo, {}, infoSoftware, formPlain },
    { "info firmware", commandInfo, {}, infoFirmware, formPlain },
    { "info copyright", commandInfo, {}, infoCopyright, formPlain },
    { "info version", commandInfo, {}, infoVersion, formPlain },
    { "send", commandRemoteFrame, { argIdentifier, argRtr, argLength }, 0, formPlain },
    { "send", commandSend, { argIdentifier, argLength }, 0, formDataLine },
    { "receive|recv", commandReceive, {}, 0, formPlain },
};

constexpr char rtrWord[] = "rtr";

bool isWord(const QByteArray& word, const QByteArray& alternatives)
{
    const auto each = alternatives.split('|');
    for (const QByteArray& alternative : each)
        if (word.compare(alternative, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

bool takeWords(CLineScanner& scanner, const char* words)
{
    const auto each = QByteArray(words).split(' ');
    for (const QByteArray& word : each)
        if (!isWord(scanner.word(), word))
            return false;
    return true;
}

bool store(std::optional<quint32> number, quint32& place)
{
    place = number.value_or(0);
    return number.has_value();
}

bool takeType(CLineScanner& scanner, tGatewayRequest& request)
{
    request.type = findTypeWord(scanner.word());
    if (request.type != nullptr && request.type->encode == nullptr)
        request.error = gatewayNotSupported;
    return request.type != nullptr && request.type->encode != nullptr;
}

bool takeValue(CLineScanner& scanner, tGatewayRequest& request)
{
    const auto bytes = request.type->encode(scanner.rest(), request.type->type);
    request.data = bytes.value_or(QByteArray());
    return bytes.has_value();
}

bool takeArgument(CLineScanner& scanner, tArgument argument, tGatewayRequest& request)
{
    switch (argument) {
    case argNone:
        return true;
    case argIndex:
        return store(scanner.number(0xFFFF), request.index);
    case argSubIndex:
        return store(scanner.number(0xFF), request.subIndex);
    case argType:
        return takeType(scanner, request);
    case argValue:
        return takeValue(scanner, request);
    case argIdentifier:
        return store(scanner.number(0xFFFFFFFF), request.identifier);
    case argRtr:
        return isWord(scanner.word(), rtrWord);
    case argLength:
        return store(scanner.number(0xFFFF), request.number);
    case argBitRate:
        return store(scanner.number(8), request.number);
    case argTime:
        return store(scanner.number(0xFFFF), request.number);
    }
    return false;
}

bool takeArguments(CLineScanner& scanner, const tGatewayRule& rule, tGatewayRequest& request)
{
    for (tArgument argument : rule.arguments)
        if (!takeArgument(scanner, argument, request))
            return false;
    return scanner.atEnd();
}

// "send" has a data line, even with wrong arguments, unless it asks for a remote frame.
bool hasDataLine(CLineScanner afterWords, const tGatewayRule& rule)
{
    afterWords.word(); // the identifier
    return rule.form == formDataLine && !isWord(afterWords.word(), rtrWord);
}

// command = [ node ] words arguments
void readCommand(CLineScanner& scanner, tGatewayRequest& request)
{
    const auto node = scanner.number(0xFFFFFFFF);
    request.node = node.value_or(0);
    request.error = gatewayNotSupported;
    for (const tGatewayRule& rule : rules) {
        CLineScanner ahead = scanner;
        if (!takeWords(ahead, rule.words))
            continue;
        request.error = gatewaySyntax;
        request.awaitsData = hasDataLine(ahead, rule);
        const bool nodeFits = (rule.form == formNode) == node.has_value();
        if (!nodeFits || !takeArguments(ahead, rule, request))
            continue;
        request.rule = &rule;
        request.error = gatewayNoError;
        return;
    }
}

} // namespace

tGatewayRequest readRequest(const QByteArray& line)
{
    tGatewayRequest request;
    request.error = gatewaySyntax;
    CLineScanner scanner(line);
    if (!scanner.character('['))
        return request;
    const auto sequence = scanner.number(0xFFFFFFFF, ']');
    if (!sequence || !scanner.character(']'))
        return request;
    request.sequence = *sequence;
    if (!scanner.atEnd())
        readCommand(scanner, request);
    return request;
}

void readDataLine(const QByteArray& line, tGatewayRequest& request)
{
    request.awaitsData = false;
    CLineScanner scanner(line);
    while (!scanner.atEnd()) {
        const auto byte = scanner.number(0xFF);
        if (!byte)
            break;
        request.data.append(static_cast<char>(*byte));
    }
    const bool complete = scanner.atEnd() && request.data.size() == static_cast<qsizetype>(request.number);
    if (!complete || request.number > longestMessage)
        request.error = gatewaySyntax;
}
