// What becomes of the gateway's answers under a fault.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayFaults.h"

#include "gateway/GatewayCommands.h"

namespace
{

constexpr qsizetype overlongLine = 2000; // characters; clients keep 1023

QByteArray lineOf(quint32 sequence, const QByteArray& answer)
{
    return '[' + QByteArray::number(sequence) + "] " + answer + "\r\n";
}

QByteArray noLine(quint32, const QByteArray&)
{
    return QByteArray();
}

QByteArray garbageLine(quint32 sequence, const QByteArray&)
{
    return lineOf(sequence, "?%\x80\xFF\x01&*~");
}

// The number of the command before, as a late answer would carry it.
QByteArray otherLine(quint32 sequence, const QByteArray& answer)
{
    return lineOf(sequence - 1, answer);
}

QByteArray bothLines(quint32 sequence, const QByteArray& answer)
{
    return otherLine(sequence, answer) + lineOf(sequence, answer);
}

// The answer is right, the blanks behind it are too many.
QByteArray paddedLine(quint32 sequence, const QByteArray& answer)
{
    return lineOf(sequence, answer.leftJustified(overlongLine, ' '));
}

int milliseconds(quint32 argument)
{
    return static_cast<int>(argument);
}
QByteArray errorText(quint32 argument)
{
    return "ERROR: " + QByteArray::number(argument);
}
QByteArray abortText(quint32 argument)
{
    return abortAnswer(argument).text;
}

} // namespace

namespace gatewayFaults
{
const tGatewayFault silence{ deliverLines, nullptr, nullptr, noLine };
const tGatewayFault delay{ deliverLines, milliseconds, nullptr, nullptr };
const tGatewayFault drop{ deliverDrop, nullptr, nullptr, nullptr };
const tGatewayFault garbage{ deliverLines, nullptr, nullptr, garbageLine };
const tGatewayFault sequence{ deliverLines, nullptr, nullptr, otherLine };
const tGatewayFault twoLines{ deliverLines, nullptr, nullptr, bothLines };
const tGatewayFault bytewise{ deliverBytewise, nullptr, nullptr, nullptr };
const tGatewayFault overlong{ deliverLines, nullptr, nullptr, paddedLine };
const tGatewayFault error{ deliverLines, nullptr, errorText, nullptr };
const tGatewayFault abort{ deliverLines, nullptr, abortText, nullptr };
} // namespace gatewayFaults

const tFault* findFault(const QList<tFault>& faults, const tGatewayRequest& request)
{
    if (request.error != gatewayNoError || !request.isSdo())
        return nullptr;
    return findFault(faults, frontGateway, request.index, request.subIndex);
}

QByteArray answerLines(const tFault* fault, quint32 sequence, const QByteArray& answer)
{
    return fault != nullptr && fault->kind->gateway->lines != nullptr ? fault->kind->gateway->lines(sequence, answer)
                                                                      : lineOf(sequence, answer);
}
