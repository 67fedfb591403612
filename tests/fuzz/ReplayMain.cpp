// Runs a fuzzer's entry point once for each file in the folders given on the command line.
// SPDX-License-Identifier: MIT
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

static void replay(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    std::printf("%s, %zu bytes\n", path.c_str(), bytes.size());
    std::fflush(stdout);
    // A copy of exactly this size on the heap, so that the address sanitizer finds reads after its end.
    const std::vector<uint8_t> copy(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(copy.data(), copy.size());
}

int main(int argc, char** argv)
{
    std::set<std::filesystem::path> seeds;
    for (int argument = 1; argument < argc; ++argument)
        for (const auto& entry : std::filesystem::directory_iterator(argv[argument]))
            seeds.insert(entry.path());
    for (const auto& seed : seeds)
        replay(seed);
    std::printf("%zu seeds\n", seeds.size());
    return seeds.empty() ? 1 : 0;
}
