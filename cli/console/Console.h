// Standard output and standard error of velmora-cli.
// SPDX-License-Identifier: MIT
#pragma once

#include "console/ExitStatus.h"

#include <QByteArray>
#include <QString>

#include <cstdio>

/// Results go to standard output, all else to standard error. Texts are written as UTF-8.
class CConsole
{
public:
    /// The streams are borrowed.
    explicit CConsole(FILE* output = stdout, FILE* error = stderr);
    ~CConsole(); ///< removes the progress line
    Q_DISABLE_COPY_MOVE(CConsole)

    /// Writes text to standard output, without a line end of its own. Ends the command with `exitUsage` when it cannot
    /// be written, for example to a full disk. When nobody reads it any more, it is dropped: the work goes on.
    void write(const QByteArray& text);
    /// A line of results.
    void line(const QString& text) { write(text.toUtf8() + '\n'); }
    /// Hands over what was written, for those who follow it; ends as `write` does.
    void flush();

    /// A line "velmora-cli: TEXT" to standard error.
    void message(const QString& text);

    /// Whether nobody reads standard output any more: what only shows something can end.
    bool isClosed() const { return m_isClosed; }

    /// Shows how far a command is, in one line that the next call overwrites; only on a terminal. An empty text removes
    /// the line.
    void progress(const QString& text);
    /// Whether progress is shown at all.
    bool hasProgress() const { return m_hasTerminal; }

private:
    void check(bool written);
    void fail(int error);

    FILE* const m_output;
    FILE* const m_error;
    const bool m_hasTerminal;
    bool m_showsProgress = false;
    bool m_isClosed = false;
    int m_lost = 0; // the error of a message that found output it could not hand over
};
