// Ends the event loop on SIGINT and SIGTERM, as if the application had quit by itself.
// SPDX-License-Identifier: MIT
#include "SignalQuit.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr int quitSignals[] = { SIGINT, SIGTERM };

// A signal handler may only write; the event loop reads the other end.
int quitPipe[2] = { -1, -1 };

void writeQuit(int)
{
    const ssize_t written = write(quitPipe[1], "", 1);
    static_cast<void>(written); // a full pipe means that a quit is already due
}

} // namespace

CSignalQuit::CSignalQuit(QObject* parent) : QObject(parent)
{
    if (pipe2(quitPipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* notifier = new QSocketNotifier(quitPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    for (int each : quitSignals)
        std::signal(each, writeQuit);
}

CSignalQuit::~CSignalQuit()
{
    for (int each : quitSignals)
        std::signal(each, SIG_DFL);
    for (int end : quitPipe)
        if (end >= 0)
            close(end);
}
