// Runs two programs in turns and prints the least of each: microseconds from its start to its end, or its highest
// memory in bytes. It is small itself: what it takes would count as memory of the programs.
//   velmora-child time|memory RUNS OURS ARGUMENT... -- BARE ARGUMENT...
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

struct tCost {
    long long microseconds = std::numeric_limits<long long>::max();
    long long memory = std::numeric_limits<long long>::max();
};

// Runs `command`, which ends with a null pointer, and lowers `least` to what it takes. False when it fails.
bool run(char* const* command, tCost& least)
{
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    int status = 0;
    rusage usage = {};
    if (posix_spawnp(&child, command[0], nullptr, nullptr, command, environ) != 0 ||
        wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != EXIT_SUCCESS) {
        std::fprintf(stderr, "velmora-child: %s failed\n", command[0]);
        return false;
    }
    const auto taken = std::chrono::steady_clock::now() - start;
    const long long microseconds = std::chrono::duration_cast<std::chrono::microseconds>(taken).count();
    least.microseconds = std::min(least.microseconds, microseconds);
    least.memory = std::min<long long>(least.memory, usage.ru_maxrss * 1024LL);
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    constexpr int firstArgument = 3;
    char** const end = argv + argc;
    char** const separator = std::find_if(argv + std::min(firstArgument, argc), end,
                                          [](const char* word) { return std::strcmp(word, "--") == 0; });
    const bool time = argc > 1 && std::strcmp(argv[1], "time") == 0;
    const bool memory = argc > 1 && std::strcmp(argv[1], "memory") == 0;
    int runs = argc > 2 ? std::atoi(argv[2]) : 0;
    if ((!time && !memory) || runs <= 0 || separator == end || separator == argv + firstArgument ||
        separator + 1 == end) {
        std::fputs("usage: velmora-child time|memory RUNS OURS ARGUMENT... -- BARE ARGUMENT...\n", stderr);
        return 2;
    }
    *separator = nullptr;
    tCost ours, bare;
    for (; runs > 0; --runs)
        if (!run(argv + firstArgument, ours) || !run(separator + 1, bare))
            return EXIT_FAILURE;
    if (time)
        std::printf("%lld %lld\n", ours.microseconds, bare.microseconds);
    else
        std::printf("%lld %lld\n", ours.memory, bare.memory);
    return EXIT_SUCCESS;
}
