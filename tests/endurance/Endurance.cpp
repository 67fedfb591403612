// The mix of operations.
// SPDX-License-Identifier: MIT
#include "Endurance.h"

#include "DemoEntries.h"

#include <cstdio>

namespace endurance
{

namespace
{

constexpr short room = 200;

// On CAN, writing no data sends four bytes.
bool isSendable(const QByteArray& value)
{
    return !value.isEmpty() && value.size() < room;
}

// A silence may look like a success.
bool isSure(bool ok, const CCANopenAccess& access)
{
    return ok && access.lastAnswer() == CCANopenAccess::answerWhole;
}

} // namespace

tRun::tRun(int argc, char* argv[], int few)
    : operations(argc > 1 ? QByteArray(argv[1]).toInt() : few),
      seed(argc > 2 ? QByteArray(argv[2]).toUInt() : QRandomGenerator::system()->generate()),
      silences(argc > 3 ? QByteArray(argv[3]).toInt() : 0)
{
    std::printf("%d operations, seed %u\n", operations, seed);
    std::fflush(stdout);
}

COperations::COperations(quint32 seed, const QList<WORD>& slow, const QList<WORD>& faulty, bool (*isStated)(int code))
    : m_random(seed), m_slow(slow), m_faulty(faulty), m_isStated(isStated)
{
    for (const tDemoEntry& entry : CDemoEntries::all()) {
        const auto index = static_cast<WORD>(entry.index);
        const bool isGood = !slow.contains(index) && !faulty.contains(index);
        if (isGood && index >= 0x2000 && entry.readable() && entry.writable() && entry.keeps &&
            isSendable(entry.value) && isSendable(entry.other))
            m_entries.append({ index, static_cast<BYTE>(entry.subIndex), { entry.value, entry.other }, { 0 } });
    }
}

bool COperations::step(CCANopenAccess& access)
{
    const int kind = chance(100);
    if (kind < 40)
        read(access, anyEntry());
    else if (kind < 80)
        write(access, anyEntry());
    else if (kind < 90)
        touchFaulty(access, chance(100) == 0 ? m_slow : m_faulty);
    else
        other(access, kind - 90);
    return access.lastAnswer() != CCANopenAccess::answerClosed && access.getLastError() != -793;
}

void COperations::note(bool ok, const CCANopenAccess& access, const char* operation)
{
    const int code = ok ? 0 : access.getLastError();
    ++m_histogram[code];
    if (!ok && !m_isStated(code))
        problem(QStringLiteral("%1 gives %2").arg(QLatin1String(operation)).arg(code));
}

void COperations::problem(const QString& text)
{
    if (++m_problems <= 20)
        std::printf("PROBLEM: %s\n", qPrintable(text));
}

int COperations::finish(int operations)
{
    QStringList results;
    for (const auto& [code, count] : m_histogram)
        results += QStringLiteral("%1: %2").arg(code).arg(count);
    if (m_compared < operations / 10)
        problem(QStringLiteral("too few values were compared"));
    std::printf("%d entries, %d values compared; results %s\n", static_cast<int>(m_entries.size()), m_compared,
                qPrintable(results.join(QStringLiteral(", "))));
    return m_problems;
}

void COperations::read(CCANopenAccess& access, tEntry& entry)
{
    BYTE data[room + 1] = {};
    short length = 0;
    const bool ok = access.read(node, entry.index, entry.subIndex, &length, data, room);
    note(ok, access, "read");
    if (!isSure(ok, access))
        return;
    const QByteArray value(reinterpret_cast<const char*>(data), length);
    ++m_compared;
    for (const int place : entry.held)
        if (entry.choices[place] == value) {
            entry.held = { place };
            return;
        }
    problem(
        QStringLiteral("%1:%2 reads %3, written was %4")
            .arg(entry.index, 4, 16)
            .arg(entry.subIndex)
            .arg(QString::fromLatin1(value.toHex()), QString::fromLatin1(entry.choices[*entry.held.begin()].toHex())));
}

void COperations::write(CCANopenAccess& access, tEntry& entry)
{
    const int place = chance(2);
    const QByteArray& value = entry.choices[place];
    const bool ok = access.write(node, entry.index, entry.subIndex, static_cast<short>(value.size()),
                                 reinterpret_cast<const BYTE*>(value.constData()));
    note(ok, access, "write");
    if (isSure(ok, access))
        entry.held = { place };
    else
        entry.held.insert(place);
}

void COperations::touchFaulty(CCANopenAccess& access, const QList<WORD>& objects)
{
    const WORD index = objects[chance(static_cast<int>(objects.size()))];
    BYTE data[room + 1] = {};
    short length = 0;
    if (chance(2) == 0)
        note(access.read(node, index, 0, &length, data, room), access, "read of a faulty object");
    else
        note(access.write(node, index, 0, 4, data), access, "write of a faulty object");
}

void COperations::other(CCANopenAccess& access, int kind)
{
    BYTE data[8] = { 1, 2, 3, 4, 5, 6, 7, 8 };
    std::uint32_t id = 0;
    short length = 8;
    char text[100];
    switch (kind) {
    case 0:
        return note(access.startRemoteNode(node), access, "start");
    case 1:
        return note(access.enterPreOperationalState(node), access, "pre-operational");
    case 2:
        return note(access.transmitMessage(0x181, length, data), access, "transmit");
    case 3:
    case 4:
    case 5:
        return note(access.readQueue(reinterpret_cast<WORD*>(&id), &length, data), access, "receive");
    case 6:
        return note(access.getHardwareVersion(text, sizeof text), access, "hardware");
    case 7:
        return note(access.clearQueue(), access, "clear");
    default:
        return read(access, m_entries.front());
    }
}

} // namespace endurance
