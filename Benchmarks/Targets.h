// SPDX-License-Identifier: LicenseRef-Halyard
// What the benchmarks are held against. A target names one benchmark, or two whose times are divided; the report
// prints the figure of this machine beside it. Ratios are told by preference: machines differ, ratios travel.
#pragma once

#include <benchmark/benchmark.h>

#include <string>

namespace bench {

struct Target {
    enum Bound { kAtMost, kAtLeast };

    std::string what;       // in words, as the table prints it
    std::string benchmark;  // the benchmark's full name
    std::string against;    // its figure divides that of `benchmark`; empty: the figure itself counts
    Bound bound;
    double target;
    double stretch;  // 0: none
};

// Called by static objects of the benchmark files:
//   static const bool kTargets = bench::addTarget({"blocks of 64 against 512", "chain/avx2/hard/64", ...});
// A figure is the counter kMegabytes where a benchmark sets it; else a time in nanoseconds, of one item where it calls
// SetItemsProcessed, else of one iteration.
inline constexpr const char* kMegabytes = "MB";
bool addTarget(const Target& target);

// Runs the chosen benchmarks interleaved, prints them, and then the table of targets. Returns the process's exit
// code.
int runWithTargets(int argc, char** argv);

}  // namespace bench
