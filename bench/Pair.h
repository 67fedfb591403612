// Two ways to do the same work, ours and the bare one that it is compared with.
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

/// What an object of a derived class needs is made in its constructor, which is not timed and which throws
/// std::runtime_error when that is impossible.
class CPair
{
public:
    CPair() = default;
    virtual ~CPair() = default;
    CPair(const CPair&) = delete;
    CPair& operator=(const CPair&) = delete;

    /// Does the work once. @return the seconds it took, see `secondsOf`; negative when the work failed
    virtual double ours() = 0;
    /// The same by bare means; 0 when there is nothing to compare with.
    virtual double bare() { return 0; }
};

/// Callgrind counts what is between two calls of this, when it has been started with --collect-atstart=no.
void toggleCounting();

/// The seconds that `work()` takes; -1 when it returns false. Its instructions are those that callgrind counts.
template <typename Work>
double secondsOf(Work work)
{
    toggleCounting();
    const auto start = std::chrono::steady_clock::now();
    const bool good = work();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    toggleCounting();
    return good ? taken.count() : -1;
}

/// How a pair is measured and reported by its counters "ours" and "bare".
struct tPairRow {
    std::string name;    ///< GROUP/NAME
    double items = 0;    ///< done by one run: the counters are items per second; 0: they are microseconds
    int repetitions = 1; ///< from making the pair on; of several the median counts
    std::function<std::unique_ptr<CPair>()> make;
};

/// Registers a benchmark whose runs of ours and of the bare way take turns, so that other load on the machine meets
/// both; the least time of each counts. Example, in a variable that is initialised before main:
/// `const bool added = addPair({ "load/100", 0, 1, [] { return std::make_unique<CLoad>(100); } });`
/// @return true
bool addPair(tPairRow row);

/// Runs one side of a pair once, "ours" or "bare", to count its instructions.
/// @return false when there is no such pair or side, or when the work failed
bool runOnce(const std::string& name, const std::string& side);
