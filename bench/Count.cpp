// Does one thing and ends, so that instructions and memory of that thing alone can be counted: see bench.sh.
// SPDX-License-Identifier: MIT
#include "CodecWork.h"
#include "LoadWork.h"
#include "SheetMaker.h"
#include "dic/CANopen.h"
#include "sheets/SheetCheck.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <span>
#include <string>
#include <vector>

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

using tFiles = std::span<char*>;

bool forEach(tFiles files, bool (*run)(const char* file))
{
    return std::all_of(files.begin(), files.end(), run);
}

// Each file is loaded once before, so that what the process allocates once does not count.
bool printKept(tFiles files)
{
    std::size_t kept = 0;
    long long size = 0;
    bool loaded = forEach(files, loadAndFree);
    for (const char* file : files) {
        const std::size_t before = allocatedBytes();
        CCANopen dictionary;
        loaded = loaded && load(dictionary, file);
        kept += allocatedBytes() - before;
        size += QFile(QFile::decodeName(file)).size();
    }
    std::printf("%zu %lld\n", kept, size);
    return loaded;
}

// Each file is loaded once before, so that the code is in memory; what that load freed goes back to the system.
bool printPeak(tFiles files)
{
    bool loaded = forEach(files, loadAndFree);
    malloc_trim(0);
    std::ofstream reset("/proc/self/clear_refs");
    reset << 5 << std::flush; // the highest amount of memory becomes the present one
    const std::size_t allocatedBefore = allocatedBytes();
    const long long before = memory("VmRSS");
    std::vector<CCANopen> dictionaries(files.size());
    for (std::size_t n = 0; n < files.size(); ++n)
        loaded = loaded && load(dictionaries[n], files[n]);
    const long long highest = memory("VmHWM");
    std::printf("%lld %zu\n", highest - before, allocatedBytes() - allocatedBefore);
    return loaded && reset && before > 0 && highest > 0;
}

bool check(const char* file)
{
    return checkSheet(QFile::decodeName(file), tRuleSet().set()).isLoaded;
}

struct tFileAction {
    const char* name;
    bool (*run)(tFiles files);
};

constexpr tFileAction fileActions[] = {
    { "nothing", [](tFiles) { return true; } },
    { "load", [](tFiles files) { return forEach(files, loadAndFree); } },
    { "check", [](tFiles files) { return forEach(files, check); } },
    { "lines", [](tFiles files) { return forEach(files, readLines); } },
    { "kept", printKept }, // bytes that the dictionaries keep, size of the files
    { "peak", printPeak }, // growth of the process while loading, bytes that the dictionaries keep
};

constexpr char usage[] = "usage: velmora-count nothing|load|check|lines|kept|peak FILE...\n"
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
    if (argc >= 3)
        for (const tFileAction& action : fileActions)
            if (what == action.name)
                return action.run(tFiles(argv + 2, argv + argc)) ? EXIT_SUCCESS : EXIT_FAILURE;
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
