// Does one thing and ends, so that instructions and memory of that thing alone can be counted: see bench.sh.
// SPDX-License-Identifier: MIT
#include "CodecWork.h"
#include "LoadWork.h"
#include "SheetMaker.h"
#include "dic/CANopen.h"

#include <QFile>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include <malloc.h>

namespace
{

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
};

constexpr char usage[] = "usage: velmora-count nothing|load|lines|kept|peak FILE\n"
                         "       velmora-count write FILE OBJECTS\n"
                         "       velmora-count qt-version\n"
                         "       velmora-count domain|string|encode|decode LENGTH RUNS\n";

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
    if (argc == 4)
        for (const tCodec& codec : codecs)
            if (what == codec.name)
                return codec.run(std::atoi(argv[2]), std::atoi(argv[3])) ? EXIT_SUCCESS : EXIT_FAILURE;
    std::fputs(usage, stderr);
    return 2;
}

} // namespace

int main(int argc, char* argv[])
{
    return run(argc, argv);
}
