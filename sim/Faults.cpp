// Misbehaviour on request: which commands a fault hits and what becomes of their answers.
// SPDX-License-Identifier: MIT
#include "Faults.h"

#include "GatewayCommands.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr qsizetype overlongLine = 2000;  // characters; clients keep 1023
constexpr quint64 longestDelay = 3600000; // an hour, in milliseconds
constexpr quint64 lastNumber = 0xFFFFFFFF;

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

QByteArray twoLines(quint32 sequence, const QByteArray& answer)
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

constexpr tFaultKind kinds[] = {
    { "silence", "no answer", false, 0, deliverLines, nullptr, nullptr, noLine },
    { "delay", "the answer comes NUMBER milliseconds late (1500)", false, 1500, deliverLines, milliseconds, nullptr,
      nullptr },
    { "drop", "the connection is closed", false, 0, deliverDrop, nullptr, nullptr, nullptr },
    { "garbage", "bytes that are no answer, behind the right number", false, 0, deliverLines, nullptr, nullptr,
      garbageLine },
    { "sequence", "the answer with the number of the command before", false, 0, deliverLines, nullptr, nullptr,
      otherLine },
    { "double", "two lines at once, the first with another number", false, 0, deliverLines, nullptr, nullptr,
      twoLines },
    { "bytewise", "the answer, one byte at a time", false, 0, deliverBytewise, nullptr, nullptr, nullptr },
    { "overlong", "the answer in a line of more than 2000 characters", false, 0, deliverLines, nullptr, nullptr,
      paddedLine },
    { "error", "gateway error NUMBER", true, 0, deliverLines, nullptr, errorText, nullptr },
    { "abort", "SDO abort code NUMBER", true, 0, deliverLines, nullptr, abortText, nullptr },
};

const tFaultKind* kindByName(const QString& name)
{
    const auto row = std::find_if(std::begin(kinds), std::end(kinds),
                                  [&name](const tFaultKind& each) { return name == QLatin1String(each.name); });
    return row == std::end(kinds) ? nullptr : row;
}

// Index and sub-index are always hexadecimal.
std::optional<quint32> readHexadecimal(const QString& text, quint32 minimum, quint32 maximum)
{
    bool ok = false;
    const quint32 value = text.toUInt(&ok, 16);
    if (!ok || value < minimum || value > maximum)
        return std::nullopt;
    return value;
}

// what = kind [ "=" number ]; the result is null or the reason why not
const char* readWhat(const QString& what, tFault& fault)
{
    const qsizetype equals = what.indexOf(u'=');
    fault.kind = kindByName(what.left(equals));
    if (fault.kind == nullptr)
        return "unknown kind";
    fault.argument = fault.kind->argument;
    if (equals < 0)
        return fault.kind->argumentNeeded ? "a number is missing, as in error=103" : nullptr;
    const auto number = readNumber(what.mid(equals + 1));
    const bool takesArgument = fault.kind->delay != nullptr || fault.kind->text != nullptr;
    const quint64 highest = fault.kind->delay != nullptr ? longestDelay : lastNumber;
    if (!takesArgument || !number || number->negative || number->bits > highest)
        return "wrong number behind '='";
    fault.argument = static_cast<quint32>(number->bits);
    return nullptr;
}

// place = index [ ":" sub-index ]; the result as above
const char* readPlace(const QString& place, tFault& fault)
{
    const qsizetype colon = place.indexOf(u':');
    fault.index = readHexadecimal(place.left(colon), 1, 0xFFFF);
    if (!fault.index)
        return "wrong index behind '@'";
    if (colon < 0)
        return nullptr;
    fault.subIndex = readHexadecimal(place.mid(colon + 1), 0, 0xFF);
    return fault.subIndex ? nullptr : "wrong sub-index behind ':'";
}

} // namespace

bool tFault::hits(const tGatewayRequest& request) const
{
    return request.error == gatewayNoError && request.isSdo() && index.value_or(request.index) == request.index &&
           subIndex.value_or(request.subIndex) == request.subIndex;
}

// fault = what [ "@" place ]
std::optional<tFault> readFault(const QString& text, QString* message)
{
    const qsizetype at = text.indexOf(u'@');
    tFault fault;
    const char* trouble = readWhat(text.left(at), fault);
    if (trouble == nullptr && at >= 0)
        trouble = readPlace(text.mid(at + 1), fault);
    if (trouble == nullptr)
        return fault;
    *message = QStringLiteral("fault \"%1\": %2").arg(text, QLatin1String(trouble));
    return std::nullopt;
}

const tFault* findFault(const QList<tFault>& faults, const tGatewayRequest& request)
{
    const auto found =
        std::find_if(faults.cbegin(), faults.cend(), [&request](const tFault& each) { return each.hits(request); });
    return found == faults.cend() ? nullptr : &*found;
}

QByteArray answerLines(const tFault* fault, quint32 sequence, const QByteArray& answer)
{
    return fault != nullptr && fault->kind->lines != nullptr ? fault->kind->lines(sequence, answer)
                                                             : lineOf(sequence, answer);
}

QString faultHelp()
{
    QStringList lines;
    for (const tFaultKind& kind : kinds)
        lines += QStringLiteral("  %1 %2").arg(QLatin1String(kind.name), -9).arg(QLatin1String(kind.what));
    return lines.join(u'\n');
}
