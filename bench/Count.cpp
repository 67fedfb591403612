// Does one thing and ends, so that instructions and memory of that thing alone can be counted: see bench.sh.
// SPDX-License-Identifier: MIT
#include "CountedCodec.h"
#include "SheetMaker.h"
#include "dic/CANopen.h"
#include "dic/CANopenReader.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <string>

#include <malloc.h>

namespace
{

bool load(CCANopen& dictionary, const char* file)
{
    return CCANopenReader(&dictionary, CCANopen::typeEDS).load(file) == 1;
}

bool loadAndFree(const char* file)
{
    CCANopen dictionary;
    return load(dictionary, file);
}

bool readLines(const char* file)
{
    std::ifstream stream(file);
    std::size_t characters = 0;
    for (std::string line; std::getline(stream, line);)
        characters += line.size();
    return characters > 0;
}

std::size_t allocatedBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// A field of /proc/self/status in bytes: "VmRSS" is the memory in use, "VmHWM" the highest amount so far.
long long memory(const char* field)
{
    std::ifstream status("/proc/self/status");
    const std::string start = std::string(field) + ':';
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(start))
            return std::atoll(line.c_str() + start.size()) * 1024;
    return -1;
}

bool printKept(const char* file)
{
    const std::size_t before = allocatedBytes();
    CCANopen dictionary;
    const bool loaded = load(dictionary, file);
    std::printf("%zu %lld\n", allocatedBytes() - before, static_cast<long long>(QFile(QFile::decodeName(file)).size()));
    return loaded;
}

// The file is loaded once before, so that the code is in memory; what that load freed goes back to the system.
bool printPeak(const char* file)
{
    const bool loadedBefore = loadAndFree(file);
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5; // the highest amount of memory becomes the present one
    const std::size_t allocatedBefore = allocatedBytes();
    const long long before = memory("VmRSS");
    CCANopen dictionary;
    const bool loaded = loadedBefore && load(dictionary, file);
    std::printf("%lld %zu\n", memory("VmHWM") - before, allocatedBytes() - allocatedBefore);
    return loaded;
}

bool printPeakOfProcess()
{
    return std::printf("%lld\n", memory("VmHWM")) > 0;
}

using tSeconds = std::chrono::duration<double>;

// Runs both in turns for about two seconds, and at least three times.
bool printTimes(const char* file)
{
    constexpr int leastRuns = 3;
    constexpr tSeconds enough(2);
    const auto timeOf = [file](bool (*run)(const char*), tSeconds& least) {
        const auto start = std::chrono::steady_clock::now();
        const bool succeeded = run(file);
        least = std::min<tSeconds>(least, std::chrono::steady_clock::now() - start);
        return succeeded;
    };
    tSeconds loading(std::numeric_limits<double>::max());
    tSeconds lines = loading;
    const auto start = std::chrono::steady_clock::now();
    for (int runs = 0; runs < leastRuns || std::chrono::steady_clock::now() - start < enough; ++runs)
        if (!timeOf(loadAndFree, loading) || !timeOf(readLines, lines))
            return false;
    std::printf("%.0f %.0f\n", loading.count() * 1e6, lines.count() * 1e6);
    return true;
}

struct tFileAction {
    const char* name;
    bool (*run)(const char* file);
};

constexpr tFileAction fileActions[] = {
    { "nothing", [](const char*) { return true; } },
    { "load", loadAndFree },
    { "lines", readLines },
    { "kept", printKept }, // bytes that the dictionary keeps, size of the file
    { "peak", printPeak }, // growth of the process while loading, bytes that the dictionary keeps
    // Highest memory of the process.
    { "process-peak", [](const char* file) { return loadAndFree(file) && printPeakOfProcess(); } },
    { "nothing-peak", [](const char*) { return printPeakOfProcess(); } },
    { "times", printTimes }, // least microseconds of "load" and of "lines"
};

constexpr char usage[] = "usage: velmora-count nothing|load|lines|kept|peak|process-peak|nothing-peak|times FILE\n"
                         "       velmora-count write FILE OBJECTS\n"
                         "       velmora-count qt-version\n"
                         "       velmora-count domain|string|encode|decode LENGTH RUNS\n"
                         "       velmora-count domain|string|encode|decode LENGTH\n";

// Converts `argv`; without runs it prints bytes per second.
bool codec(const tCodec& codec, int argc, char* argv[])
{
    const int length = std::atoi(argv[2]);
    if (argc > 3)
        return codec.run(length, std::atoi(argv[3]));
    double best = 0;
    for (int attempt = 0; attempt < 20; ++attempt) {
        constexpr int runs = 200;
        const auto start = std::chrono::steady_clock::now();
        if (!codec.run(length, runs))
            return false;
        const tSeconds time = std::chrono::steady_clock::now() - start;
        best = std::max(best, length * double(runs) / time.count());
    }
    std::printf("%.0f\n", best);
    return true;
}

int run(int argc, char* argv[])
{
    const std::string what = argc > 1 ? argv[1] : "";
    if (what == "qt-version") {
        std::puts(qVersion());
        return EXIT_SUCCESS;
    }
    if (what == "write" && argc == 4) {
        writeSheet(QFile::decodeName(argv[2]), std::atoi(argv[3]));
        return EXIT_SUCCESS;
    }
    if (argc == 3)
        for (const tFileAction& action : fileActions)
            if (what == action.name)
                return action.run(argv[2]) ? EXIT_SUCCESS : EXIT_FAILURE;
    if (argc == 3 || argc == 4)
        for (const tCodec& row : codecs)
            if (what == row.name)
                return codec(row, argc, argv) ? EXIT_SUCCESS : EXIT_FAILURE;
    std::fputs(usage, stderr);
    return 2;
}

} // namespace

int main(int argc, char* argv[])
{
    return run(argc, argv);
}
