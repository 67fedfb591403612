// Ctrl-C.
// SPDX-License-Identifier: MIT
#include "console/Interrupt.h"

#include "console/ExitStatus.h"

#include <csignal>

#include <unistd.h>

namespace
{

volatile std::sig_atomic_t interrupted = 0;

extern "C" void noteSignal(int)
{
    interrupted = 1;
    alarm(1); // comes here again
}

} // namespace

void noteInterrupts()
{
    struct sigaction action = {};
    action.sa_handler = noteSignal; // without SA_RESTART: waiting calls return
    for (const int signal : { SIGINT, SIGTERM, SIGALRM })
        sigaction(signal, &action, nullptr);
}

bool isInterrupted()
{
    return interrupted != 0;
}

void endWhenInterrupted()
{
    if (isInterrupted())
        throw tEnd{ exitInterrupted, QStringLiteral("interrupted") };
}
