// The faults of the gateway: their kinds, and what each does to the answer of an SDO command.
// SPDX-License-Identifier: MIT
#include "gateway/GatewayFaults.h"

#include "gateway/GatewayCommands.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr qsizetype overlongLine = 2000; // characters; the line buffer of the client holds 1023

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

// With the sequence number of the previous command, as a late answer would have it.
QByteArray otherLine(quint32 sequence, const QByteArray& answer)
{
    return lineOf(sequence - 1, answer);
}

QByteArray bothLines(quint32 sequence, const QByteArray& answer)
{
    return otherLine(sequence, answer) + lineOf(sequence, answer);
}

// The right answer, followed by blanks.
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

// A kind and what the gateway does then. Null pointers change nothing.
struct tGatewayFault {
    tFaultKind kind{};
    int (*delay)(quint32 argument) = nullptr;                                  // milliseconds before the answer
    QByteArray (*text)(quint32 argument) = nullptr;                            // the answer in place of the command's
    QByteArray (*lines)(quint32 sequence, const QByteArray& answer) = nullptr; // sent in place of the one right line
    tDelivery delivery = deliverLines;
};

constexpr tGatewayFault rows[] = {
    // on CAN as well
    { .kind = commonFaults::silence, .lines = noLine },
    { .kind = commonFaults::delay, .delay = milliseconds },
    { .kind = commonFaults::twice, .lines = bothLines },
    { .kind = commonFaults::abort, .text = abortText },
    // on the gateway only
    { .kind = { "drop", "the connection is closed", numberNone, 0, 0 }, .delivery = deliverDrop },
    { .kind = { "garbage", "bytes that are no answer, after the right number", numberNone, 0, 0 },
      .lines = garbageLine },
    { .kind = { "sequence", "the answer with the number of the command before", numberNone, 0, 0 },
      .lines = otherLine },
    { .kind = { "bytewise", "the answer, one byte at a time", numberNone, 0, 0 }, .delivery = deliverBytewise },
    { .kind = { "overlong", "the answer in a line of more than 2000 characters", numberNone, 0, 0 },
      .lines = paddedLine },
    { .kind = { "error", "gateway error NUMBER", numberNeeded, 0, commonFaults::anyNumber }, .text = errorText },
};

constexpr auto kinds = kindsOf(rows);

// The row of the fault's kind. Without a fault, a row that changes nothing.
const tGatewayFault& rowOf(const tFault* fault)
{
    static constexpr tGatewayFault noFault;
    if (fault == nullptr)
        return noFault;
    return *std::find_if(std::begin(rows), std::end(rows),
                         [fault](const tGatewayFault& each) { return each.kind == fault->kind; });
}

} // namespace

tFaultKinds gatewayFaultKinds()
{
    return kinds;
}

const tFault* findFault(const QList<tFault>& faults, const tGatewayRequest& request)
{
    if (request.error != gatewayNoError || !request.isSdo())
        return nullptr;
    return findFault(faults, kinds, request.index, request.subIndex);
}

std::optional<QByteArray> faultAnswer(const tFault* fault)
{
    const auto text = rowOf(fault).text;
    return text != nullptr ? std::optional(text(fault->argument)) : std::nullopt;
}

int lineDelay(const tFault* fault)
{
    const auto delay = rowOf(fault).delay;
    return delay != nullptr ? delay(fault->argument) : 0;
}

QByteArray answerLines(const tFault* fault, quint32 sequence, const QByteArray& answer)
{
    const auto lines = rowOf(fault).lines;
    return lines != nullptr ? lines(sequence, answer) : lineOf(sequence, answer);
}

tDelivery lineDelivery(const tFault* fault)
{
    return rowOf(fault).delivery;
}
