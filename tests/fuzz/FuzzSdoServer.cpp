// Any requests to the SDO server of a simulated device, with and without its faults; then what the device holds is read
// and written by the rules.
// SPDX-License-Identifier: MIT
#include "FuzzInput.h"
#include "FuzzedDevice.h"

#include "can/SdoServer.h"
#include "dic/DataSheet.h"

#include <iterator>

using fuzzedDevice::takeIndex;

static const CCANopen& dictionary()
{
    static const fuzzedDevice::CSheet file;
    static CDataSheet sheet;
    static const bool isLoaded = sheet.load(file.name()) == CDataSheet::loaded;
    require(isLoaded);
    return sheet.dictionary();
}

static QByteArray frame(unsigned command, unsigned index, unsigned subIndex, const QByteArray& data = {})
{
    QByteArray bytes(1, char(command));
    bytes += char(index);
    bytes += char(index >> 8);
    bytes += char(subIndex);
    return (bytes + data).leftJustified(8, '\0', true);
}

static unsigned byteOf(const QByteArray& bytes, qsizetype place)
{
    return static_cast<unsigned char>(bytes[place]);
}

static quint32 numberAt4(const QByteArray& answer)
{
    quint32 number = 0;
    for (qsizetype byte = 7; byte >= 4; --byte)
        number = number << 8 | byteOf(answer, byte);
    return number;
}

static QByteArray takeBytes(CFuzzInput& input, size_t count)
{
    const std::string_view taken = input.take(count);
    return QByteArray(taken.data(), qsizetype(taken.size()));
}

/// A request that fits what the server may be doing, or any bytes.
static QByteArray takeRequest(CFuzzInput& input)
{
    const unsigned kind = input.byte();
    switch (kind >> 5) {
    case 0: { // expedited download of 1 to 4 bytes, with or without its size
        const unsigned index = takeIndex(input);
        return frame(0x22 | (kind & 3) << 2 | (kind >> 2 & 1), index, kind >> 3 & 1, takeBytes(input, 4));
    }
    case 1: { // segmented download
        const unsigned index = takeIndex(input);
        return frame(0x20 | (kind & 1), index, kind >> 1 & 1, takeBytes(input, kind >> 2 & 7));
    }
    case 2:
        return frame(0x40, takeIndex(input), kind & 1);
    case 3:
        return frame(0x60 | (kind & 0x10), 0, 0);
    case 4:
    case 5: // a segment: toggle, unused bytes, whether it is the last
        return (QByteArray(1, char(kind & 0x1F)) + takeBytes(input, 7)).leftJustified(8, '\0');
    case 6:
        return frame(0x80, takeIndex(input), 0, takeBytes(input, 4));
    default:
        return takeBytes(input, kind == 0xFF ? input.byte() % 12U : 8U);
    }
}

static tSdoDefects takeDefects(CFuzzInput& input)
{
    tSdoDefects defects;
    const unsigned which = input.byte();
    if ((which & 1) != 0)
        defects.abortCode = input.number();
    if ((which & 2) != 0)
        defects.abortedAnswer = input.byte();
    defects.lastAborted = (which & 4) != 0;
    if ((which & 8) != 0)
        defects.emptySegments = input.byte();
    if ((which & 16) != 0)
        defects.surplus = input.word();
    if ((which & 32) != 0)
        defects.endlessSegments = input.byte();
    defects.filler = char((which & 64) != 0 ? input.byte() : 0);
    return defects;
}

static bool isStated(tAbortCode code, const tSdoDefects& defects)
{
    static constexpr tAbortCode codes[] = { abortToggle,    abortCommand,    abortMemory,    abortWriteOnly,
                                            abortReadOnly,  abortNoObject,   abortLength,    abortLengthHigh,
                                            abortLengthLow, abortNoSubIndex, abortValueHigh, abortValueLow,
                                            abortGeneral,   abortNotStored };
    return code == defects.abortCode || std::find(std::begin(codes), std::end(codes), code) != std::end(codes);
}

/// The value as a client reads it; none when the transfer is refused.
static std::optional<QByteArray> upload(CSdoServer& server, unsigned index)
{
    const QByteArray first = server.answer(frame(0x40, index, 0));
    require(first.mid(1, 3) == frame(0, index, 0).mid(1, 3));
    if (byteOf(first, 0) == 0x80)
        return std::nullopt;
    require((byteOf(first, 0) & 0xE1) == 0x41);
    if ((byteOf(first, 0) & 2) != 0)
        return first.mid(4, 4 - (byteOf(first, 0) >> 2 & 3));
    QByteArray data;
    for (unsigned toggle = 0;; toggle ^= 0x10) {
        const QByteArray part = server.answer(frame(0x60 | toggle, 0, 0));
        const unsigned command = byteOf(part, 0);
        require((command & 0xF0) == toggle);
        data += part.mid(1, 7 - (command >> 1 & 7));
        require(data.size() <= qsizetype(numberAt4(first)));
        if ((command & 1) != 0)
            break;
    }
    require(data.size() == qsizetype(numberAt4(first)));
    return data;
}

/// Writes in segments. @return the abort code, 0 after success
static quint32 download(CSdoServer& server, unsigned index, const QByteArray& data, qsizetype announced)
{
    QByteArray answer = server.answer(frame(0x21, index, 0, QByteArray(1, char(announced))));
    qsizetype at = 0;
    for (unsigned toggle = 0; byteOf(answer, 0) != 0x80; toggle ^= 0x10) {
        require(byteOf(answer, 0) == (at == 0 ? 0x60U : 0x20U | (toggle ^ 0x10U)));
        if (at == 8)
            return 0;
        const qsizetype count = std::min<qsizetype>(7, data.size() - at);
        const unsigned last = at + count == data.size() ? 1 : 0;
        const QByteArray head(1, char(toggle | unsigned(7 - count) << 1 | last));
        answer = server.answer((head + data.mid(at, count)).leftJustified(8, '\0'));
        at = last != 0 ? 8 : at + count;
    }
    return numberAt4(answer);
}

struct tReports {
    int ended = 0;
    int written = 0;
};

static void anyRequests(CSdoServer& server, const tSdoDefects& defects, CFuzzInput& input, const tReports& reports)
{
    for (int count = 0; count < 200 && !input.atEnd(); ++count) {
        const QByteArray request = takeRequest(input);
        const bool wasBusy = server.busy();
        const int ended = reports.ended;
        const QByteArray answer = server.answer(request);
        const bool isAbort = request.size() == 8 && (byteOf(request, 0) & 0xE0) == 0x80;
        require(answer.size() == (request.size() != 8 || isAbort ? 0 : 8));
        require(!isAbort || !server.busy());
        if (!answer.isEmpty() && byteOf(answer, 0) == 0x80)
            require(!server.busy() && isStated(numberAt4(answer), defects));
        require(reports.ended - ended <= 1);
        if (!CSdoServer::isInitiate(request))
            require(reports.ended - ended == (wasBusy && !server.busy() ? 1 : 0));
    }
}

/// The server without defects, whatever it was doing before.
static void byTheRules(CSdoServer& server, CSimulatedNode& node, CFuzzInput& input)
{
    server.setDefects({});
    const unsigned index = takeIndex(input);
    const tSdoData held = node.read(index, 0);
    const auto value = upload(server, index);
    require(value.has_value() == (held.abortCode == abortNone) && (!value || *value == held.data));
    const QByteArray data = takeBytes(input, input.byte() % 12);
    const QByteArray before = node.value(index, 0);
    const tAbortCode expected = node.checkWrite(index, 0, data.size());
    const quint32 code = download(server, index, data, data.size());
    require(expected == abortNone || code == expected);
    require(code == abortNone || code == expected || code == abortValueHigh || code == abortValueLow);
    const QByteArray& now = code == abortNone ? data : before;
    require(node.value(index, 0) == now);
    require(download(server, index, data, data.size() + 1) != abortNone && node.value(index, 0) == now);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CFuzzInput input(data, size);
    static const CSimulatedNode fresh(5, dictionary());
    CSimulatedNode node = fresh;
    CSdoServer server(node);
    const tSdoDefects defects = takeDefects(input);
    server.setDefects(defects);
    tReports reports;
    int changes = 0;
    node.setListener([&](tNodeEvent) { ++changes; });
    server.setReport([&](const tSdoTransfer& transfer) {
        ++reports.ended;
        reports.written += transfer.writes && transfer.abortCode == abortNone;
        require(transfer.data.size() <= longestDownload);
        require(!describeTransfer(5, node, transfer).contains('\n'));
    });
    byTheRules(server, node, input);
    server.setDefects(defects);
    changes = reports.written = 0;
    anyRequests(server, defects, input, reports);
    require(changes <= reports.written); // storing changes no value
    byTheRules(server, node, input);
    node.command(nmtResetNode);
    return 0;
}
