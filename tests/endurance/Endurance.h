// Operations without end on a simulated node: a random mix of good and faulty ones, and what came of them.
// SPDX-License-Identifier: MIT
#pragma once

#include "CANopenAccess.h"

#include <QByteArray>
#include <QList>
#include <QRandomGenerator>
#include <QString>

#include <map>
#include <set>

namespace endurance
{

/// The node of the operations.
inline constexpr BYTE node = 5;

/// The arguments of a driver: OPERATIONS SEED SILENCES.
struct tRun {
    int operations;
    quint32 seed;
    int silences; // only TestGatewayEndurance has them

    /// Prints the first two. Without arguments: `few`, another seed each time, and no silences.
    tRun(int argc, char* argv[], int few);
};

/// Chooses operations, carries them out on node 5, and compares what is read with what was written.
class COperations
{
public:
    /// `faulty`: objects with faults; `slow`: those that make the client wait. `isStated`: whether the code of a
    /// failure is one that the headers state.
    COperations(quint32 seed, const QList<WORD>& slow, const QList<WORD>& faulty, bool (*isStated)(int code));

    /// A random number below `most`.
    int chance(int most) { return static_cast<int>(m_random.bounded(most)); }
    /// One operation. @return whether the connection is still good
    bool step(CCANopenAccess& access);
    void problem(const QString& text);
    /// Prints the results. @return how many problems there were
    int finish(int operations);

private:
    struct tEntry {
        WORD index;
        BYTE subIndex;
        QByteArray choices[2];
        std::set<int> held; // places in `choices` of the values that the node may have
    };

    tEntry& anyEntry() { return m_entries[chance(static_cast<int>(m_entries.size()))]; }
    void note(bool ok, const CCANopenAccess& access, const char* operation);
    void read(CCANopenAccess& access, tEntry& entry);
    void write(CCANopenAccess& access, tEntry& entry);
    void touchFaulty(CCANopenAccess& access, const QList<WORD>& objects);
    void other(CCANopenAccess& access, int kind);

    QRandomGenerator m_random;
    const QList<WORD> m_slow;
    const QList<WORD> m_faulty;
    bool (*const m_isStated)(int code);
    QList<tEntry> m_entries;
    std::map<int, int> m_histogram;
    int m_problems = 0;
    int m_compared = 0;
};

} // namespace endurance
