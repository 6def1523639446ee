// SPDX-License-Identifier: LicenseRef-Halyard
// Signals, and cores run over them, for the tests of CHalyardCore.
#pragma once

#include "Modules/CHalyardCore.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace brt {

using Samples = std::vector<double>;

inline Samples sine(int count, double cyclesPerSample, double amplitude, double phase = 0.0) {
    Samples samples(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        samples[static_cast<std::size_t>(i)] =
            amplitude * std::sin(2.0 * std::numbers::pi * cyclesPerSample * i + phase);
    return samples;
}

inline Samples noise(int count, double amplitude, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-amplitude, amplitude);
    Samples samples(static_cast<std::size_t>(count));
    std::generate(samples.begin(), samples.end(), [&] { return uniform(random); });
    return samples;
}

// From the first sample on: settings that a core gets at `begin`.
struct SettingsChange {
    int begin;
    double hardness;
    bool residue;
};

// Runs `core` over `in` in blocks of the given lengths, used in turn, cut where settings change.
inline Samples run(CHalyardCore& core, const Samples& in, const std::vector<int>& blocks,
                   const std::vector<SettingsChange>& changes = {}) {
    const int total = static_cast<int>(in.size());
    Samples out(in.size(), 99.0);
    auto change = changes.begin();
    std::size_t next = 0;
    for (int done = 0; done < total;) {
        int end = std::min(total, done + blocks[next++ % blocks.size()]);
        if (change != changes.end() && change->begin <= done) {
            core.hardness = change->hardness;
            core.residue = change->residue;
            ++change;
        }
        if (change != changes.end()) end = std::min(end, std::max(change->begin, done + 1));
        core.processBlock(in.data() + done, out.data() + done, end - done);
        done = end;
    }
    return out;
}

inline Samples run(ProcessorBuild build, const Samples& in, const std::vector<int>& blocks,
                   const std::vector<SettingsChange>& changes = {}) {
    CHalyardCore core(build);
    return run(core, in, blocks, changes);
}

inline double largestDifference(const Samples& a, const Samples& b) {
    double largest = a.size() == b.size() ? 0.0 : HUGE_VAL;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
    return largest;
}

}  // namespace brt
