// SPDX-License-Identifier: LicenseRef-Halyard
// The half-band stages against the textbook: zeros between the samples, a plain convolution, every second sample.
#include "Modules/HalfbandStages.h"

#include <algorithm>
#include <random>
#include <vector>

#include "Modules/CHalfbandDownsampler.h"
#include "Modules/CHalfbandUpsampler.h"
#include "Modules/CRingCascade.h"

#include <gtest/gtest.h>

namespace brt {
namespace {

constexpr double kRounding = 2e-15;  // of a few sums of values up to 4

std::vector<double> noise(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    std::vector<double> samples(static_cast<std::size_t>(count));
    std::generate(samples.begin(), samples.end(), [&] { return uniform(random); });
    return samples;
}

double at(const std::vector<double>& samples, int i) {
    return i >= 0 && i < static_cast<int>(samples.size()) ? samples[static_cast<std::size_t>(i)] : 0.0;
}

// The whole filter around its centre, zeros at even distances included: the value at distance `n`.
long double tapAt(const HalfbandFilter& filter, int n) {
    const int distance = std::abs(n);
    if (distance == 0) return 1.0L;
    return distance % 2 == 1 && distance < 2 * filter.tapCount ? filter.taps[distance / 2] : 0.0L;
}

// Sample `n` of `samples` convolved with the filter.
long double convolved(const HalfbandFilter& filter, const std::vector<double>& samples, int n) {
    long double sum = 0.0L;
    for (int m = -2 * filter.tapCount; m <= 2 * filter.tapCount; ++m) sum += tapAt(filter, m) * at(samples, n - m);
    return sum;
}

std::vector<double> doubled(const HalfbandStage& stage, const std::vector<double>& in) {
    std::vector<double> stuffed, out;
    for (double x : in) stuffed.insert(stuffed.end(), {x, 0.0});
    for (int n = 0; n < 2 * static_cast<int>(in.size()); ++n)
        out.push_back(static_cast<double>(convolved(stage.filter, stuffed, n - 2 * stage.delay)));
    return out;
}

std::vector<double> halved(const HalfbandStage& stage, const std::vector<double>& in) {
    std::vector<double> out;
    for (int n = 0; n < static_cast<int>(in.size()); n += 2)
        out.push_back(static_cast<double>(convolved(stage.filter, in, n - stage.delay)));
    return out;
}

void expectNear(const std::vector<double>& expected, const std::vector<double>& actual) {
    ASSERT_EQ(expected.size(), actual.size());
    for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_NEAR(expected[i], actual[i], kRounding) << i;
}

// Cuts `total` into counts of 1 to `most`; the last one ends it exactly.
std::vector<int> cuts(int total, int most, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<int> counts;
    while (total > 0) {
        counts.push_back(std::min(total, 1 + static_cast<int>(random() % static_cast<unsigned>(most))));
        total -= counts.back();
    }
    return counts;
}

TEST(HalfbandStages, windowsAndDelaysOfAllStages) {
    struct Row {
        int taps, base, mirrorLen, delay, firstReadPos;
    };
    const Row up[] = {{14, 13, 27, 14, 997}, {6, 5, 11, 6, 1013}, {5, 4, 9, 5, 1015},
                      {4, 3, 7, 4, 1017},    {3, 2, 5, 3, 1019},  {3, 2, 5, 3, 1019}};
    const Row down[] = {{3, 5, 11, 6, 1013},  {3, 5, 11, 6, 1013},   {4, 7, 14, 7, 1010},
                        {5, 9, 19, 10, 1005}, {6, 11, 23, 12, 1001}, {14, 27, 55, 28, 969}};
    const CRingCascade rings(kCascadeStages);
    for (int i = 0; i < kHalfbandStages; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(kCascadeStages.up[i].filter.tapCount, up[i].taps);
        EXPECT_EQ(rings.up(i).base(), up[i].base);
        EXPECT_EQ(rings.up(i).mirrorLen(), up[i].mirrorLen);
        EXPECT_EQ(rings.up(i).delay(), up[i].delay);
        EXPECT_EQ(rings.up(i).readPos(), up[i].firstReadPos);
        EXPECT_EQ(kCascadeStages.down[i].filter.tapCount, down[i].taps);
        EXPECT_EQ(rings.down(i).base(), down[i].base);
        EXPECT_EQ(rings.down(i).mirrorLen(), down[i].mirrorLen);
        EXPECT_EQ(rings.down(i).delay(), down[i].delay);
        EXPECT_EQ(rings.down(i).readPos(), down[i].firstReadPos);
    }
    EXPECT_EQ(kCascadeStages.delayAt2x, 1686);
}

// Whatever the delay in front, every halving finds an even sum, and no stage pads by more than one sample.
TEST(HalfbandStages, paddingMakesEveryDelayWhole) {
    for (int latency : {0, 1, 2, 3, 1648, 1649}) {
        const CascadeStages stages = makeCascadeStages(latency);
        int delay = latency;
        for (const HalfbandStage& stage : stages.up) delay = (delay + stage.delay) * 2;
        for (const HalfbandStage& stage : stages.down) {
            EXPECT_LE(stage.delay - stage.base, 1);
            EXPECT_EQ((delay + stage.delay) % 2, 0);
            delay = (delay + stage.delay) / 2;
        }
        EXPECT_EQ(delay, stages.delayAt2x);
    }
}

TEST(HalfbandStages, aSideSumsToOneHalf) {
    for (const HalfbandFilter& filter : {kFilterA, kFilterB, kFilterC, kFilterD, kFilterE}) {
        double sum = 0.0;
        for (int i = 0; i < filter.tapCount; ++i) sum += filter.taps[i];
        EXPECT_NEAR(sum, 0.5, 1e-6);
    }
}

// Long enough to go round the rings several times, in counts that end anywhere.
TEST(CHalfbandUpsampler, isAConvolutionOfTheStuffedSignal) {
    const std::vector<double> in = noise(5000, 1);
    for (const HalfbandStage& description : kCascadeStages.up) {
        const std::vector<double> expected = doubled(description, in);
        for (int most : {1, 37, 5000}) {
            CHalfbandUpsampler stage(description);
            std::vector<double> out(2 * in.size());
            int done = 0;
            for (int count : cuts(5000, most, 2)) {
                stage.process(in.data() + done, count, out.data() + 2 * done);
                done += count;
            }
            expectNear(expected, out);
        }
    }
}

TEST(CHalfbandUpsampler, takesInputThatAlreadyLiesInItsRing) {
    const std::vector<double> in = noise(5000, 3);
    CHalfbandUpsampler stage(kCascadeStages.up[1]);
    std::vector<double> out(2 * in.size());
    for (int done = 0; done < 5000;) {
        const int count = std::min(stage.room(), 5000 - done);
        ASSERT_GT(count, 0);
        std::copy_n(in.begin() + done, count, stage.writePointer());
        stage.process(stage.writePointer(), count, out.data() + 2 * done);
        done += count;
    }
    expectNear(doubled(kCascadeStages.up[1], in), out);
}

TEST(CHalfbandDownsampler, isAConvolutionOfWhichEverySecondSampleIsKept) {
    const std::vector<double> in = noise(6000, 4);
    for (const HalfbandStage& description : kCascadeStages.down) {
        const std::vector<double> expected = halved(description, in);
        for (int most : {2, 74, 6000}) {
            CHalfbandDownsampler stage(description);
            std::vector<double> work = in, out;
            int done = 0;
            for (int count : cuts(3000, most / 2, 5)) {
                double* samples = work.data() + done;
                stage.process(samples, 2 * count, samples);
                EXPECT_EQ(stage.pending(), 0);
                out.insert(out.end(), samples, samples + count);
                done += 2 * count;
            }
            expectNear(expected, out);
        }
    }
}

TEST(CHalfbandDownsampler, roundsAnOddCountUpOnce) {
    CHalfbandDownsampler stage(kCascadeStages.down[0]);
    double out[4];
    const std::vector<double> in = noise(8, 6);
    stage.process(in.data(), 3, out);
    EXPECT_EQ(stage.pending(), -1);
    stage.process(in.data() + 3, 1, out);
    EXPECT_EQ(stage.pending(), 0);
}

TEST(CRingCascade, subBlocksFillTheRingsWithoutAWrap) {
    CRingCascade rings(kCascadeStages);
    int longest = 0;
    for (int done = 0; done < 4000;) {
        const int count = rings.subBlockLength(4000 - done);
        ASSERT_GE(count, 1) << done;
        EXPECT_LE(count * 64, rings.up(5).room());
        std::fill_n(rings.input(), 2 * count, 0.0);
        rings.process(count, ClipSettings{});
        longest = std::max(longest, count);
        done += count;
    }
    EXPECT_EQ(longest, 15);
    EXPECT_EQ(rings.subBlockLength(1), 1);
}

TEST(CRingCascade, resetForgetsEverything) {
    const std::vector<double> in = noise(3000, 7);
    const auto run = [&](CRingCascade& rings) {
        std::vector<double> out;
        for (int done = 0; done < 1500;) {
            const int count = rings.subBlockLength(1500 - done);
            std::copy_n(in.begin() + 2 * done, 2 * count, rings.input());
            const double* result = rings.process(count, ClipSettings{0.5, false});
            out.insert(out.end(), result, result + 2 * count);
            done += count;
        }
        return out;
    };
    CRingCascade rings(kCascadeStages);
    const std::vector<double> first = run(rings);
    rings.reset();
    EXPECT_EQ(first, run(rings));
}

}  // namespace
}  // namespace brt
