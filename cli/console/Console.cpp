// Standard output and standard error of velmora-cli.
// SPDX-License-Identifier: MIT
#include "console/Console.h"

#include <cerrno>
#include <csignal>
#include <cstring>

#include <unistd.h>

CConsole::CConsole(FILE* output, FILE* error)
    : m_output(output), m_error(error), m_hasTerminal(isatty(fileno(error)) == 1)
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that goes away is seen by `write`
}

CConsole::~CConsole()
{
    progress(QString());
}

void CConsole::write(const QByteArray& text)
{
    progress(QString());
    if (m_isClosed)
        return;
    const auto size = static_cast<std::size_t>(text.size());
    check(std::fwrite(text.constData(), 1, size, m_output) == size);
}

void CConsole::flush()
{
    if (!m_isClosed)
        check(std::fflush(m_output) == 0);
}

void CConsole::check(bool written)
{
    if (!written)
        fail(errno);
    if (m_lost != 0)
        fail(m_lost);
}

void CConsole::fail(int error)
{
    m_isClosed |= error == EPIPE;
    if (m_isClosed)
        return;
    throw tEnd{ exitUsage,
                QStringLiteral("cannot write the output: %1").arg(QString::fromLocal8Bit(std::strerror(error))) };
}

void CConsole::message(const QString& text)
{
    progress(QString());
    // Where both go to one file, in the order in which they were written. What fails here is lost: a later call would
    // find nothing to complain of.
    if (std::fflush(m_output) != 0 && m_lost == 0)
        m_lost = errno;
    std::fprintf(m_error, "velmora-cli: %s\n", text.toUtf8().constData());
}

void CConsole::progress(const QString& text)
{
    if (!m_hasTerminal || (text.isEmpty() && !m_showsProgress))
        return;
    std::fprintf(m_error, "\r\033[K%s", text.toUtf8().constData());
    std::fflush(m_error);
    m_showsProgress = !text.isEmpty();
}
