// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CDSPModDelay.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace brt {
namespace {

using Samples = std::vector<double>;

Samples noise(std::size_t length) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> spread(-1.0, 1.0);
    Samples signal(length);
    for (double& sample : signal) sample = spread(random);
    return signal;
}

struct Change {
    int at;
    int delay;
};

// What the line should do, sample by sample: at most one fade at a time, of which the last wish follows.
Samples reference(const Samples& in, int delay, const std::vector<Change>& changes, int fadeSamples) {
    Samples out;
    int old = delay;
    int wish = -1;
    int fadePlace = fadeSamples;
    const auto tap = [&](int n, int by) { return n >= by ? in[static_cast<std::size_t>(n - by)] : 0.0; };
    for (int n = 0; n < static_cast<int>(in.size()); ++n) {
        for (const Change& change : changes)
            if (change.at == n) wish = change.delay;
        if (fadePlace == fadeSamples && wish >= 0) {
            if (wish != delay) {
                old = std::exchange(delay, wish);
                fadePlace = 0;
            }
            wish = -1;
        }
        const double weight =
            fadePlace < fadeSamples ? 0.5 + 0.5 * std::cos(std::numbers::pi * fadePlace / fadeSamples) : 0.0;
        fadePlace = std::min(fadePlace + 1, fadeSamples);
        out.push_back(weight * tap(n, old) + (1.0 - weight) * tap(n, delay));
    }
    return out;
}

// In the second row the ring grows where it begins anew.
TEST(CDSPModDelay, changesFadeAndTheLastWishHolds) {
    CAudioBufferPool pool;
    const Samples in = noise(30000);
    const std::vector<Change> kChanges[] = {
        {{100, 1667}, {300, 5}, {500, 3000}, {9000, 0}, {15000, 2500}, {15001, 20}},
        {{2048, 1000}, {4096, 2000}, {9216, 3000}, {12288, 0}},
    };
    constexpr double kRate = 48000.0;
    for (const std::vector<Change>& changes : kChanges) {
        const Samples expected = reference(in, 10, changes, static_cast<int>(std::lround(0.015 * kRate)));
        for (const int block : {1, 37, 256, 512}) {
            CDSPModDelay delay(pool, kRate, 10);
            Samples out = in;
            std::size_t next = 0;
            for (int start = 0; start < static_cast<int>(in.size());) {
                while (next < changes.size() && changes[next].at == start) delay.setDelay(changes[next++].delay);
                int count = std::min(block, static_cast<int>(in.size()) - start);
                if (next < changes.size()) count = std::min(count, changes[next].at - start);
                delay.process(out.data() + start, out.data() + start, count);
                start += count;
            }
            for (std::size_t i = 0; i < in.size(); ++i) ASSERT_NEAR(out[i], expected[i], 1e-9) << i << " in " << block;
        }
    }
    EXPECT_EQ(pool.heldCount(), 0);
}

TEST(CDSPModDelay, startsAfreshAfterAReset) {
    CAudioBufferPool pool;
    CDSPModDelay delay(pool, 44100.0, 700);
    Samples loud(4000, 1.0);
    delay.process(loud.data(), loud.data(), 4000);
    delay.setDelay(100);
    delay.reset();
    Samples out(2000, 0.5);
    delay.process(out.data(), out.data(), 2000);
    for (std::size_t i = 0; i < out.size(); ++i) ASSERT_EQ(out[i], i < 100 ? 0.0 : 0.5) << i;
}

}  // namespace
}  // namespace brt
