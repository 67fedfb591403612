// Runs the benchmarks off-screen.
// SPDX-License-Identifier: MIT
#include "Pair.h"

#include <QApplication>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    if (argc == 4 && std::strcmp(argv[1], "--once") == 0) // --once NAME ours|bare
        return runOnce(argv[2], argv[3]) ? EXIT_SUCCESS : EXIT_FAILURE;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
