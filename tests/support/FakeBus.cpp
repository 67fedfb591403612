// The fake CAN bus: its script, its wire and what it has recorded. FakeBusCalls.cpp has the system calls.
// SPDX-License-Identifier: MIT
#include "FakeBus.h"

#include <QDebug>
#include <QDir>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <linux/can.h>
#include <unistd.h>

CFakeBus::CFakeBus() : m_start(1'000'000'000'000'000 + 999'990), m_now(m_start)
{
    current = this;
}

CFakeBus::~CFakeBus()
{
    can_exit();
    current = nullptr;
    for (const auto& [descriptor, socket] : m_sockets)
        if (socket.open)
            ::close(descriptor);
}

CFakeBusRequest& CFakeBus::expect(uint32_t id, const char* data)
{
    can_frame frame = {};
    const QByteArray bytes = QByteArray::fromHex(data);
    frame.can_id = id;
    frame.len = __u8(bytes.size());
    std::memcpy(frame.data, bytes.constData(), size_t(qMin<qsizetype>(bytes.size(), sizeof frame.data)));
    return m_script.emplace_back(fakeBusText(&frame, sizeof frame));
}

bool CFakeBus::finished()
{
    QStringList problems = m_problems;
    for (size_t next = m_played; next < m_script.size(); ++next)
        problems += "expected and not written: " + m_script[next].frame();
    for (const QString& text : problems.mid(0, 10))
        qWarning("fake bus: %s", qPrintable(text));
    return problems.isEmpty();
}

void CFakeBus::inject(uint32_t id, const char* data)
{
    put(0, fakeBusFrame(id, -1, data));
}

void CFakeBus::injectAfter(int milliseconds, uint32_t id, const char* data)
{
    put(milliseconds * qint64(1000), fakeBusFrame(id, -1, data));
}

void CFakeBus::injectLength(uint32_t id, int length, const char* data)
{
    put(0, fakeBusFrame(id, length, data));
}

void CFakeBus::injectBytes(const QByteArray& bytes, int afterMilliseconds)
{
    put(afterMilliseconds * qint64(1000), bytes);
}

int CFakeBus::waiting() const
{
    return int(std::distance(m_wire.begin(), m_wire.upper_bound(m_now)));
}

void CFakeBus::fail(ECall call, int error, int nth, int times)
{
    m_failures.push_back({ call, nth, times, error, -1 });
}

void CFakeBus::shorten(ECall call, int bytes, int nth)
{
    m_failures.push_back({ call, nth, 1, 0, bytes });
}

qint64 CFakeBus::milliseconds() const
{
    return (m_now - m_start) / 1000;
}

int CFakeBus::descriptors() const
{
    return int(std::count_if(m_sockets.begin(), m_sockets.end(), [](const auto& entry) { return entry.second.open; }));
}

int CFakeBus::descriptorsOfProcess()
{
    return int(QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

// Counts the call. @return its failure, or null if it succeeds
const CFakeBus::tFailure* CFakeBus::failure(ECall call)
{
    ++m_count[call];
    if (before)
        before(call);
    const tFailure* found = nullptr;
    for (tFailure& armed : m_failures) {
        if (armed.call != call || --armed.nth > 0 || armed.nth <= -armed.times)
            continue;
        m_failing = armed;
        errno = armed.error;
        found = &m_failing;
    }
    return found;
}

bool CFakeBus::readable() const
{
    const auto next = [](const tFailure& armed) {
        return armed.call == Read && armed.result < 0 && armed.nth <= 1 && armed.nth - 1 > -armed.times;
    };
    const bool arrived = !m_wire.empty() && m_wire.begin()->first <= m_now;
    return arrived || std::any_of(m_failures.begin(), m_failures.end(), next);
}

void CFakeBus::play(const QString& frame)
{
    m_written += frame;
    if (m_played == m_script.size())
        return problem("written and not expected: " + frame);
    const CFakeBusRequest& request = m_script[m_played];
    if (request.frame() != frame)
        return problem("expected " + request.frame() + ", written " + frame);
    ++m_played;
    for (const auto& answer : request.answers())
        put(answer.delay, answer.bytes);
}

void CFakeBus::put(qint64 delay, const QByteArray& bytes)
{
    m_wire.emplace(m_now + delay, bytes);
}

void CFakeBus::problem(const QString& text)
{
    m_problems += text;
}
