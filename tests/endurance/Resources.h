// What a long run uses: memory and descriptors, after a warm-up and at the end.
// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QElapsedTimer>
#include <QFile>

#include <cstdio>

namespace endurance
{

/// Kilobytes of memory that this process has in use.
inline long residentMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).replace("kB", "").trimmed().toLong();
    return 0;
}

inline qsizetype openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

/// How much memory may grow from the warm-up, a tenth of the operations, to the end. The heap of the address sanitizer
/// keeps what is freed.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr long mostGrowth = 1'000'000;
#elif defined(__has_feature)
inline constexpr long mostGrowth = __has_feature(address_sanitizer) ? 1'000'000 : 1024;
#else
inline constexpr long mostGrowth = 1024;
#endif

/// Memory and descriptors from the warm-up on.
class CResources
{
public:
    /// `each`: kilobytes that an operation may keep, where the toolkit keeps some.
    explicit CResources(int operations, long each = 0)
        : m_warm(operations / 10), m_growth(mostGrowth + each * operations)
    {
        m_clock.start();
    }

    void step(int done)
    {
        if (done == m_warm) {
            m_memory = residentMemory();
            m_descriptors = openDescriptors();
        }
    }

    /// Prints the summary. @return the exit status of the program
    int finish(int problems, const char* noun, int done)
    {
        const long memory = residentMemory();
        const auto descriptors = openDescriptors();
        if (memory > m_memory + m_growth) {
            std::printf("PROBLEM: the memory grows\n");
            ++problems;
        }
        if (descriptors != m_descriptors) {
            std::printf("PROBLEM: descriptors stay open\n");
            ++problems;
        }
        std::printf("%d %s in %.1f s; VmRSS %ld kB after warm-up, %ld kB at the end; descriptors %d, %d; %d problems\n",
                    done, noun, static_cast<double>(m_clock.elapsed()) / 1000, m_memory, memory,
                    static_cast<int>(m_descriptors), static_cast<int>(descriptors), problems);
        return problems == 0 ? 0 : 1;
    }

private:
    const int m_warm;
    const long m_growth;
    long m_memory = 0;
    qsizetype m_descriptors = 0;
    QElapsedTimer m_clock;
};

} // namespace endurance
