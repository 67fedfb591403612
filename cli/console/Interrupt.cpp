// Ctrl-C.
// SPDX-License-Identifier: MIT
#include "console/Interrupt.h"

#include <csignal>
#include <ctime>
#include <initializer_list>

#include <unistd.h>

namespace
{

volatile std::sig_atomic_t interrupted = 0;
volatile std::sig_atomic_t repeated = 0; // how often, since then
constexpr std::sig_atomic_t mostRepeated = 3;

extern "C" void endProgram(int)
{
    static constexpr char text[] = "velmora-cli: interrupted in the midst of an operation\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text, sizeof text - 1);
    _exit(exitInterrupted);
}

extern "C" void noteSignal(int signal)
{
    if (signal == SIGALRM)
        repeated = repeated + 1;
    const bool again = signal != SIGALRM && repeated > 0; // not the same signal twice, as a group of processes gets it
    if (again || repeated >= mostRepeated)
        endProgram(signal);
    interrupted = 1;
    alarm(1); // comes here again
}

void handleSignals(void (*handler)(int), std::initializer_list<int> signals)
{
    struct sigaction action = {};
    action.sa_handler = handler; // without SA_RESTART: waiting calls return
    for (const int signal : signals)
        sigaction(signal, &action, nullptr);
}

} // namespace

void endAtInterrupts()
{
    handleSignals(endProgram, { SIGINT, SIGTERM });
}

void noteInterrupts()
{
    handleSignals(noteSignal, { SIGINT, SIGTERM, SIGALRM });
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
        if (rest <= std::chrono::nanoseconds::zero())
            return;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(rest);
        const timespec time = { seconds.count(),
                                std::chrono::duration_cast<std::chrono::nanoseconds>(rest - seconds).count() };
        nanosleep(&time, nullptr); // a signal ends it
    }
}

void endWhenInterrupted()
{
    if (isInterrupted())
        throw tEnd{ exitInterrupted, QStringLiteral("interrupted") };
}
