// The phases of transfers in which the client awaits an answer, and how it treats the first byte of that answer.
// SPDX-License-Identifier: MIT
#pragma once

#include "SdoBus.h"

#include <QTest>

#include <vector>

/// How an answer is treated, by its first byte.
enum tVerdict { good, unexpected, wrongToggle, aborted };
struct tVerdicts {
    int last; // the row is for first bytes up to this one that no earlier row covers
    tVerdict verdict;
};
using tVerdictTable = std::vector<tVerdicts>;

inline const tVerdictTable writeInitiateVerdicts = {
    { 0x5F, unexpected }, { 0x60, good }, { 0x7F, unexpected }, { 0x80, aborted }, { 0xFF, unexpected },
};
inline const tVerdictTable writeSegmentVerdicts[] = {
    // clang-format off
    { { 0x1F, unexpected }, { 0x2F, good }, { 0x3F, wrongToggle },
      { 0x7F, unexpected }, { 0x9F, aborted }, { 0xFF, unexpected } },
    { { 0x1F, unexpected }, { 0x2F, wrongToggle }, { 0x3F, good },
      { 0x7F, unexpected }, { 0x9F, aborted }, { 0xFF, unexpected } },
    // clang-format on
};
inline const tVerdictTable readInitiateVerdicts = {
    { 0x3F, unexpected }, { 0x5F, good }, { 0x7F, unexpected }, { 0x9F, aborted }, { 0xFF, unexpected },
};
inline const tVerdictTable readSegmentVerdicts[] = {
    { { 0x0F, good }, { 0x1F, wrongToggle }, { 0x7F, unexpected }, { 0x9F, aborted }, { 0xFF, unexpected } },
    { { 0x0F, wrongToggle }, { 0x1F, good }, { 0x7F, unexpected }, { 0x9F, aborted }, { 0xFF, unexpected } },
};

/// A transfer that succeeds.
struct tSdoTalk {
    QString (*run)();
    const char* success;
    std::vector<std::pair<const char*, const char*>> exchanges; // request and answer
};

inline const tSdoTalk writeTwoBytes = { [] { return written(2); },
                                        "0",
                                        { { "2B 08 20 01 01 02 00 00", "60 08 20 01 00 00 00 00" } } };
inline const tSdoTalk writeSegments = { [] { return written(15); },
                                        "0",
                                        { { "21 08 20 01 0F 00 00 00", "60 08 20 01 00 00 00 00" },
                                          { "00 01 02 03 04 05 06 07", "20 00 00 00 00 00 00 00" },
                                          { "10 08 09 0A 0B 0C 0D 0E", "30 00 00 00 00 00 00 00" },
                                          { "0D 0F 00 00 00 00 00 00", "20 00 00 00 00 00 00 00" } } };
inline const tSdoTalk readTwoBytes = { [] { return readInto(20); },
                                       "0: 01 02",
                                       { { "40 08 20 01 00 00 00 00", "4B 08 20 01 01 02 00 00" } } };
inline const tSdoTalk readSegments = { [] { return readInto(20); },
                                       "0: 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F | 00",
                                       { { "40 08 20 01 00 00 00 00", "41 08 20 01 0F 00 00 00" },
                                         { "60 00 00 00 00 00 00 00", "00 01 02 03 04 05 06 07" },
                                         { "70 00 00 00 00 00 00 00", "10 08 09 0A 0B 0C 0D 0E" },
                                         { "60 00 00 00 00 00 00 00", "0D 0F 00 00 00 00 00 00" } } };

struct tSdoPhase {
    const char* name;
    bool multiplexed; // answers about other objects are ignored
    const tVerdictTable& verdicts;
    const tSdoTalk& transfer;
    size_t place; // of its exchange

    const char* answer() const { return transfer.exchanges[place].second; }
};

inline const tSdoPhase sdoPhases[] = {
    { "expedited download", true, writeInitiateVerdicts, writeTwoBytes, 0 },
    { "download initiate", true, writeInitiateVerdicts, writeSegments, 0 },
    { "first download segment", false, writeSegmentVerdicts[0], writeSegments, 1 },
    { "second download segment", false, writeSegmentVerdicts[1], writeSegments, 2 },
    { "last download segment", false, writeSegmentVerdicts[0], writeSegments, 3 },
    { "expedited upload", true, readInitiateVerdicts, readTwoBytes, 0 },
    { "upload initiate", true, readInitiateVerdicts, readSegments, 0 },
    { "first upload segment", false, readSegmentVerdicts[0], readSegments, 1 },
    { "second upload segment", false, readSegmentVerdicts[1], readSegments, 2 },
    { "last upload segment", false, readSegmentVerdicts[0], readSegments, 3 },
};

/// A test's rows: one for each phase, or for each whose answers are compared with the object.
inline void addSdoPhases(bool multiplexedOnly = false)
{
    QTest::addColumn<int>("place");
    for (const tSdoPhase& phase : sdoPhases)
        if (phase.multiplexed || !multiplexedOnly)
            QTest::newRow(phase.name) << int(&phase - sdoPhases);
}

/// The phase of the row that is being tested.
inline const tSdoPhase& fetchedPhase()
{
    QFETCH(int, place);
    return sdoPhases[place];
}

/// A bus on which the transfer gets as far as the request of the phase. The test gives the answers to it.
struct CPhaseBus : CSdoBus {
    explicit CPhaseBus(const tSdoPhase& phase) : transfer(phase.transfer)
    {
        talk(0, phase.place);
        request = &CSdoBus::talk(transfer.exchanges[phase.place].first);
    }
    /// The exchanges of the transfer from `from` to the one before `to`.
    void talk(size_t from, size_t to)
    {
        for (size_t at = from; at < to; ++at)
            CSdoBus::talk(transfer.exchanges[at].first, transfer.exchanges[at].second);
    }
    void talkFrom(size_t from) { talk(from, transfer.exchanges.size()); }
    void talkAll() { talkFrom(0); }
    const tSdoTalk& transfer;
    CFakeBusRequest* request; // stays valid: the script only grows
};
