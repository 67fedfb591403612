// Reading and sending a parameter: one row a data type, read and text, text and send.
// SPDX-License-Identifier: MIT
#include "values/ParameterTransfer.h"

#include "CANopenAccess.h"
#include "CANopenTypes.h"
#include "dic/CANopenObjectEntry.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace
{

using access = CCANopenAccess;
using types = CCANopenTypes;
using entry = CCANopenObjectEntry;
using namespace parameterTransfer;
using valueFormats::modeDec;

using tRead = tResult (*)(const tParameter& from);
using tSend = tResult (*)(const tParameter& to, const QString& input);

template <typename Value, bool (access::*operation)(BYTE, WORD, BYTE, Value*)>
tResult readInteger(const tParameter& from)
{
    Value value = 0;
    if (!(from.access.*operation)(from.node, from.index, from.subIndex, &value))
        return { transferFailed, {} };
    return { transferDone,
             valueFormats::integer(from.type, valueFormats::read, static_cast<std::uint32_t>(value), from.mode) };
}

template <typename Value, bool (*convert)(const char*, Value*), bool (access::*operation)(BYTE, WORD, BYTE, Value)>
tResult sendInteger(const tParameter& to, const QString& input)
{
    Value value = 0;
    if (!convert(input.toLatin1().constData(), &value))
        return { textInvalid, {} };
    if (!(to.access.*operation)(to.node, to.index, to.subIndex, value))
        return { transferFailed, {} };
    return { transferDone,
             valueFormats::integer(to.type, valueFormats::sent, static_cast<std::uint32_t>(value), to.mode) };
}

/// Reads at most `size` bytes to `data`. @return their number, inside the buffer whatever the facade reports; none when
/// it failed
std::optional<int> readBytes(const tParameter& from, BYTE* data, int size)
{
    short received = 0;
    if (!from.access.read(from.node, from.index, from.subIndex, &received, data, static_cast<short>(size)))
        return std::nullopt;
    return std::clamp<int>(received, 0, size);
}

/// `data` has one readable byte after its `length` bytes.
bool sendBytes(const tParameter& to, const BYTE* data, int length)
{
    return to.access.write(to.node, to.index, to.subIndex, static_cast<short>(length), data);
}

tResult readString(const tParameter& from)
{
    std::array<BYTE, longestString + 1> buffer{};
    if (!readBytes(from, buffer.data(), longestString))
        return { transferFailed, {} };
    const auto* characters = reinterpret_cast<const char*>(buffer.data());
    return { transferDone, QString::fromLatin1(characters) }; // to the first zero byte
}

tResult sendString(const tParameter& to, const QString& input)
{
    const QByteArray characters = input.left(longestString).toLatin1();
    const auto* data = reinterpret_cast<const BYTE*>(characters.constData());
    // Kept: a sent string has no text, so that the value on screen becomes empty: compatible behaviour.
    return { sendBytes(to, data, static_cast<int>(characters.size())) ? transferDone : transferFailed, {} };
}

template <typename Moment, bool (*toText)(Moment, QString&)>
QString momentText(const Moment& moment, int length, valueFormats::TDisplayMode mode)
{
    if (mode != modeDec)
        return valueFormats::bytes(moment.data, length, mode);
    QString text;
    toText(moment, text);
    return text;
}

template <typename Moment, bool (*toText)(Moment, QString&)>
tResult readMoment(const tParameter& from)
{
    Moment moment{};
    const std::optional<int> length = readBytes(from, moment.data, sizeof moment.data);
    if (!length)
        return { transferFailed, {} };
    return { transferDone, momentText<Moment, toText>(moment, *length, from.mode) };
}

template <typename Moment, bool (*convert)(const char*, Moment*), bool (*toText)(Moment, QString&)>
tResult sendMoment(const tParameter& to, const QString& input)
{
    Moment moment{};
    if (!convert(input.toLatin1().constData(), &moment))
        return { textInvalid, {} };
    constexpr int length = sizeof moment.data;
    std::array<BYTE, sizeof moment.data + 1> buffer{};
    std::copy_n(moment.data, length, buffer.begin());
    if (!sendBytes(to, buffer.data(), length))
        return { transferFailed, {} };
    return { transferDone, momentText<Moment, toText>(moment, length, to.mode) };
}

tResult readDomain(const tParameter& from)
{
    std::array<BYTE, longestDomain> buffer{};
    const std::optional<int> length = readBytes(from, buffer.data(), longestDomain);
    if (!length)
        return { transferFailed, {} };
    return { transferDone, valueFormats::bytes(buffer.data(), *length, from.mode) };
}

tResult sendNothing(const tParameter&, const QString&)
{
    return { typeNotSupported, {} };
}

struct tTransfer {
    int type;
    tRead read;
    tSend send;
};

// The last row stands for every other data type.
// clang-format off
constexpr tTransfer transfers[] = {
    { entry::typeInteger8,      readInteger<SDO_t_INTEGER8, &access::readInteger8>,
                                sendInteger<SDO_t_INTEGER8, &types::ascii2integer8, &access::writeInteger8> },
    { entry::typeInteger16,     readInteger<SDO_t_INTEGER16, &access::readInteger16>,
                                sendInteger<SDO_t_INTEGER16, &types::ascii2integer16, &access::writeInteger16> },
    { entry::typeInteger32,     readInteger<SDO_t_INTEGER32, &access::readInteger32>,
                                sendInteger<SDO_t_INTEGER32, &types::ascii2integer32, &access::writeInteger32> },
    { entry::typeUnsigned8,     readInteger<SDO_t_UNSIGNED8, &access::readUnsigned8>,
                                sendInteger<SDO_t_UNSIGNED8, &types::ascii2unsigned8, &access::writeUnsigned8> },
    { entry::typeUnsigned16,    readInteger<SDO_t_UNSIGNED16, &access::readUnsigned16>,
                                sendInteger<SDO_t_UNSIGNED16, &types::ascii2unsigned16, &access::writeUnsigned16> },
    { entry::typeUnsigned32,    readInteger<SDO_t_UNSIGNED32, &access::readUnsigned32>,
                                sendInteger<SDO_t_UNSIGNED32, &types::ascii2unsigned32, &access::writeUnsigned32> },
    { entry::typeVisibleString, readString, sendString },
    { entry::typeDate,          readMoment<SDO_t_DATE, &types::date2ascii>,
                                sendMoment<SDO_t_DATE, &types::ascii2date, &types::date2ascii> },
    { entry::typeTimeOfDay,     readMoment<SDO_t_TIME_OF_DAY, &types::timeOfDay2ascii>,
                                sendMoment<SDO_t_TIME_OF_DAY, &types::ascii2timeOfDay, &types::timeOfDay2ascii> },
    { entry::typeVoid,          readDomain, sendNothing },
};
// clang-format on

const tTransfer& transferOf(int type)
{
    return *std::find_if(std::begin(transfers), std::end(transfers) - 1,
                         [type](const tTransfer& row) { return row.type == type; });
}

} // namespace

parameterTransfer::tResult parameterTransfer::read(const tParameter& parameter)
{
    return transferOf(parameter.type).read(parameter);
}

parameterTransfer::tResult parameterTransfer::send(const tParameter& parameter, const QString& input)
{
    return transferOf(parameter.type).send(parameter, input);
}
