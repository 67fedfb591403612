// The faults on CAN: their kinds, and what each does to the answers of an SDO transfer.
// SPDX-License-Identifier: MIT
#include "can/CanFaults.h"

#include "can/SdoFrames.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr quint32 firstFloodId = 0x181; // the PDOs of all nodes
constexpr quint32 lastFloodId = 0x57F;
constexpr unsigned unknownSpecifier = 0xE0;

// The highest numbers that a fault takes.
constexpr quint32 mostFrames = 100000;
constexpr quint32 mostSegments = 100000;
constexpr quint32 mostBytes = 1000000;
constexpr quint32 anyByte = 0xFF;

bool isSegment(const tSdoStep& step)
{
    const unsigned specifier = specifierOf(step.answer.data);
    return specifier == scsUploadSegment || specifier == scsDownloadSegment;
}

// The answer with some bits of one byte inverted.
tCanFrame inverted(const tSdoStep& step, qsizetype place, unsigned bits)
{
    tCanFrame frame = step.answer;
    frame.data[place] = static_cast<char>(byteAt(frame.data, place) ^ bits);
    return frame;
}

int milliseconds(quint32 argument)
{
    return static_cast<int>(argument);
}

tCanFrames noFrame(quint32, const tSdoStep&)
{
    return {};
}

tCanFrames frameBefore(quint32 argument, const tSdoStep& step)
{
    return step.number < argument ? tCanFrames{ step.answer } : tCanFrames();
}

tCanFrames twoFrames(quint32, const tSdoStep& step)
{
    return { step.answer, step.answer };
}

tCanFrames wrongToggle(quint32 argument, const tSdoStep& step)
{
    return { isSegment(step) && step.number == argument + 1 ? inverted(step, 0, sdoToggle) : step.answer };
}

tCanFrames wrongCommand(quint32 argument, const tSdoStep& step)
{
    return { step.number == argument ? inverted(step, 0, specifierOf(step.answer.data) ^ unknownSpecifier)
                                     : step.answer };
}

tCanFrames cutFrame(quint32 argument, const tSdoStep& step)
{
    tCanFrame frame = step.answer;
    if (step.number == argument)
        frame.data.chop(1);
    return { frame };
}

// Only the answer to an initiate has a multiplexor. The foreign answer has other data, so that a client that accepts it
// shows a wrong value.
tCanFrames foreignFirst(quint32, const tSdoStep& step)
{
    if (step.number != 1)
        return { step.answer };
    tCanFrame foreign = inverted(step, sdoMultiplexorAt, 1);
    foreign.data[sdoDataAt] = static_cast<char>(~byteAt(foreign.data, sdoDataAt));
    return { foreign, step.answer };
}

tCanFrames floodFirst(quint32 argument, const tSdoStep& step)
{
    tCanFrames frames;
    frames.reserve(static_cast<qsizetype>(argument) + 1);
    for (quint32 i = 0; i < argument; ++i)
        frames += { firstFloodId + i % (lastFloodId - firstFloodId + 1), littleEndian(i, sdoFrameSize) };
    frames += step.answer;
    return frames;
}

// For uploads. In a download the server itself aborts (`lastAborted`).
tCanFrames abortAfterLast(quint32, const tSdoStep& step)
{
    const unsigned command = byteAt(step.answer.data, 0);
    if ((command & (sdoSpecifierMask | sdoLastSegment)) != (scsUploadSegment | sdoLastSegment))
        return { step.answer };
    return { step.answer, { step.answer.cobId, abortFrame(step.multiplexor, abortGeneral) } };
}

void abortInitiate(quint32 argument, tSdoDefects& defects)
{
    defects.abortedAnswer = 1;
    defects.abortCode = argument;
}

void abortSegment(quint32 argument, tSdoDefects& defects)
{
    defects.abortedAnswer = argument + 1;
}

void abortLast(quint32, tSdoDefects& defects)
{
    defects.lastAborted = true;
}

void fillUnused(quint32 argument, tSdoDefects& defects)
{
    defects.filler = static_cast<char>(argument);
}

void sendEmptySegments(quint32 argument, tSdoDefects& defects)
{
    defects.emptySegments = argument;
}

void sendSurplus(quint32 argument, tSdoDefects& defects)
{
    defects.surplus = argument;
}

void sendEndlessly(quint32 argument, tSdoDefects& defects)
{
    defects.endlessSegments = argument;
}

// A kind and what happens on CAN then. Null pointers change nothing.
struct tCanFault {
    tFaultKind kind{};
    int (*delay)(quint32 argument) = nullptr;                               // milliseconds before the answer
    void (*defects)(quint32 argument, tSdoDefects& defects) = nullptr;      // of the server, from the initiate on
    tCanFrames (*frames)(quint32 argument, const tSdoStep& step) = nullptr; // what is sent in place of the right answer
};

constexpr tCanFault rows[] = {
    // on the gateway as well
    { .kind = commonFaults::silence, .frames = noFrame },
    { .kind = commonFaults::delay, .delay = milliseconds },
    { .kind = commonFaults::twice, .frames = twoFrames },
    { .kind = commonFaults::abort, .defects = abortInitiate },
    // on CAN only
    { .kind = { "stall", "no answer from answer NUMBER of a transfer on (2); 1 answers the initiate", numberOptional, 2,
                mostSegments },
      .frames = frameBefore },
    { .kind = { "toggle", "the wrong toggle bit in the answer to segment NUMBER (1)", numberOptional, 1, mostSegments },
      .frames = wrongToggle },
    { .kind = { "command", "an unknown command specifier in answer NUMBER (1)", numberOptional, 1, mostSegments },
      .frames = wrongCommand },
    { .kind = { "short", "only 7 bytes in answer NUMBER (1)", numberOptional, 1, mostSegments }, .frames = cutFrame },
    { .kind = { "foreign", "before the answer to the initiate the same for another index", numberNone, 0, 0 },
      .frames = foreignFirst },
    { .kind = { "flood", "NUMBER frames with other COB-IDs before each answer (1000)", numberOptional, 1000,
                mostFrames },
      .frames = floodFirst },
    { .kind = { "segment", "abort 0x08000000 in place of the answer to segment NUMBER (1)", numberOptional, 1,
                mostSegments },
      .defects = abortSegment },
    { .kind = { "last", "abort 0x08000000 in place of the last confirmation; after the last segment of an upload",
                numberNone, 0, 0 },
      .defects = abortLast,
      .frames = abortAfterLast },
    { .kind = { "filler", "the unused bytes of answers are NUMBER (0xFF)", numberOptional, 0xFF, anyByte },
      .defects = fillUnused },
    { .kind = { "empty", "NUMBER segments without data before an upload (3)", numberOptional, 3, mostSegments },
      .defects = sendEmptySegments },
    { .kind = { "surplus", "an upload has NUMBER bytes more than it announces (1000)", numberOptional, 1000,
                mostBytes },
      .defects = sendSurplus },
    { .kind = { "endless", "an upload does not end; abort 0x08000000 after NUMBER segments (10000)", numberOptional,
                10000, mostSegments },
      .defects = sendEndlessly },
};

constexpr auto kinds = kindsOf(rows);

// The row of the fault's kind. Without a fault, a row that changes nothing.
const tCanFault& rowOf(const tFault* fault)
{
    static constexpr tCanFault noFault;
    if (fault == nullptr)
        return noFault;
    return *std::find_if(std::begin(rows), std::end(rows),
                         [fault](const tCanFault& each) { return each.kind == fault->kind; });
}

} // namespace

tFaultKinds canFaultKinds()
{
    return kinds;
}

tSdoDefects sdoDefects(const tFault* fault)
{
    tSdoDefects defects;
    if (const auto set = rowOf(fault).defects)
        set(fault->argument, defects);
    return defects;
}

int frameDelay(const tFault* fault)
{
    const auto delay = rowOf(fault).delay;
    return delay != nullptr ? delay(fault->argument) : 0;
}

tCanFrames answerFrames(const tFault* fault, const tSdoStep& step)
{
    const auto frames = rowOf(fault).frames;
    return frames != nullptr ? frames(fault->argument, step) : tCanFrames{ step.answer };
}
