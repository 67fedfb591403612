// Ctrl-C.
// SPDX-License-Identifier: MIT
#include "console/Interrupt.h"

#include "console/ExitStatus.h"

#include <csignal>
#include <ctime>

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

void sleepUntil(std::chrono::steady_clock::time_point moment)
{
    while (true) {
        endWhenInterrupted();
        const auto rest = moment - std::chrono::steady_clock::now();
        if (rest <= rest.zero())
            return;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(rest);
        const timespec time = { seconds.count(), std::chrono::nanoseconds(rest - seconds).count() };
        nanosleep(&time, nullptr); // a signal ends it
    }
}

void endWhenInterrupted()
{
    if (isInterrupted())
        throw tEnd{ exitInterrupted, QStringLiteral("interrupted") };
}
