// Registration and measurement of pairs.
// SPDX-License-Identifier: MIT
#include "Pair.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include <valgrind/callgrind.h>

namespace
{

std::vector<tPairRow>& rows()
{
    static std::vector<tPairRow> all; // filled before main
    return all;
}

struct tLeast {
    double seconds = std::numeric_limits<double>::max();
    bool good = true;

    double add(double taken)
    {
        good = good && taken >= 0;
        seconds = std::min(seconds, taken);
        return taken;
    }
};

void measure(benchmark::State& state, const tPairRow& row)
{
    try {
        const std::unique_ptr<CPair> pair = row.make();
        tLeast ours, bare;
        for (auto _ : state) {
            state.SetIterationTime(std::max(ours.add(pair->ours()), 0.0));
            bare.add(pair->bare());
            if (!ours.good || !bare.good)
                return state.SkipWithError("the work failed");
        }
        const auto reported = [&row](double seconds) { return row.items > 0 ? row.items / seconds : seconds * 1e6; };
        state.counters["ours"] = reported(ours.seconds);
        if (bare.seconds > 0)
            state.counters["bare"] = reported(bare.seconds);
    } catch (const std::runtime_error& error) {
        state.SkipWithError(error.what());
    }
}

} // namespace

void toggleCounting()
{
    CALLGRIND_TOGGLE_COLLECT;
}

bool addPair(tPairRow row)
{
    rows().push_back(std::move(row));
    const tPairRow added = rows().back();
    benchmark::RegisterBenchmark(added.name.c_str(), measure, added)
        ->Unit(benchmark::kMicrosecond)
        ->Repetitions(added.repetitions)
        ->UseManualTime();
    return true;
}

bool runOnce(const std::string& name, const std::string& side)
{
    const auto row = std::find_if(rows().begin(), rows().end(), [&name](auto& any) { return any.name == name; });
    if (row == rows().end())
        return false;
    try {
        const std::unique_ptr<CPair> pair = row->make();
        return (side == "ours" && pair->ours() >= 0) || (side == "bare" && pair->bare() >= 0);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
        return false;
    }
}
