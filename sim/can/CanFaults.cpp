// What becomes of the SDO answers on CAN under a fault.
// SPDX-License-Identifier: MIT
#include "can/CanFaults.h"

#include "can/SdoFrames.h"

namespace
{

constexpr quint32 firstFloodId = 0x181; // the PDOs of all nodes
constexpr quint32 lastFloodId = 0x57F;
constexpr unsigned unknownSpecifier = 0xE0;

bool isSegment(const tSdoStep& step)
{
    const unsigned specifier = specifierOf(step.answer.data);
    return specifier == scsUploadSegment || specifier == scsDownloadSegment;
}

// The answer with other bits in one of its bytes.
tCanFrame changed(const tSdoStep& step, qsizetype place, unsigned bits)
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
    return { isSegment(step) && step.number == argument + 1 ? changed(step, 0, sdoToggle) : step.answer };
}

tCanFrames wrongCommand(quint32 argument, const tSdoStep& step)
{
    return { step.number == argument ? changed(step, 0, specifierOf(step.answer.data) ^ unknownSpecifier)
                                     : step.answer };
}

tCanFrames cutFrame(quint32 argument, const tSdoStep& step)
{
    tCanFrame frame = step.answer;
    if (step.number == argument)
        frame.data.chop(1);
    return { frame };
}

// Only the answer to an initiate has a multiplexor. The data of the foreign one differ, too: a client that takes them
// shows it.
tCanFrames foreignFirst(quint32, const tSdoStep& step)
{
    if (step.number != 1)
        return { step.answer };
    tCanFrame foreign = changed(step, sdoMultiplexorAt, 1);
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

// A download has its abort from the server, in place of the last confirmation.
tCanFrames abortBehindLast(quint32, const tSdoStep& step)
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

} // namespace

namespace canFaults
{
const tCanFault silence{ nullptr, nullptr, noFrame };
const tCanFault delay{ milliseconds, nullptr, nullptr };
const tCanFault twice{ nullptr, nullptr, twoFrames };
const tCanFault abort{ nullptr, abortInitiate, nullptr };
const tCanFault stall{ nullptr, nullptr, frameBefore };
const tCanFault toggle{ nullptr, nullptr, wrongToggle };
const tCanFault command{ nullptr, nullptr, wrongCommand };
const tCanFault shortFrame{ nullptr, nullptr, cutFrame };
const tCanFault foreign{ nullptr, nullptr, foreignFirst };
const tCanFault flood{ nullptr, nullptr, floodFirst };
const tCanFault segment{ nullptr, abortSegment, nullptr };
const tCanFault last{ nullptr, abortLast, abortBehindLast };
const tCanFault filler{ nullptr, fillUnused, nullptr };
const tCanFault empty{ nullptr, sendEmptySegments, nullptr };
const tCanFault surplus{ nullptr, sendSurplus, nullptr };
const tCanFault endless{ nullptr, sendEndlessly, nullptr };
} // namespace canFaults

tSdoDefects sdoDefects(const tFault* fault)
{
    tSdoDefects defects;
    if (fault != nullptr && fault->kind->can->defects != nullptr)
        fault->kind->can->defects(fault->argument, defects);
    return defects;
}

int answerDelay(const tFault* fault)
{
    return fault != nullptr && fault->kind->can->delay != nullptr ? fault->kind->can->delay(fault->argument) : 0;
}

tCanFrames answerFrames(const tFault* fault, const tSdoStep& step)
{
    return fault != nullptr && fault->kind->can->frames != nullptr ? fault->kind->can->frames(fault->argument, step)
                                                                   : tCanFrames{ step.answer };
}
