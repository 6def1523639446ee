// SPDX-License-Identifier: LicenseRef-Halyard
// The product's chain as a whole: latency, bypass, groups, solo, changes of layout.
#include "GraphFixture.h"

#include <cmath>

#include "Modules/CHalyardCore.h"

namespace brt {
namespace {

constexpr int kLatency = 1667;

class GraphTest : public GraphFixture {
protected:
    // What one clipper alone makes of a signal.
    static Samples clipped(const Samples& signal, double gain, double hardness) {
        CHalyardCore core;
        core.hardness = hardness;
        Samples in = signal;
        for (double& sample : in) sample *= gain;
        Samples out(in.size());
        for (std::size_t i = 0; i < in.size(); i += 512)
            core.processBlock(in.data() + i, out.data() + i,
                              static_cast<int>(std::min<std::size_t>(512, in.size() - i)));
        return out;
    }
    static Samples delayed(const Samples& signal, int by) {
        Samples out(signal.size(), 0.0);
        std::copy(signal.begin(), signal.end() - by, out.begin() + by);
        return out;
    }
    static double largestDifference(const Samples& a, const Samples& b, std::size_t from = 0) {
        double largest = 0.0;
        for (std::size_t i = from; i < a.size(); ++i) largest = std::max(largest, std::abs(a[i] - b[i]));
        return largest;
    }
};

TEST_F(GraphTest, clipsAtTheDefaultsAndTellsItsLatency) {
    const Samples left = noise(6000, 1);
    const Samples right = noise(6000, 2);
    const auto out = run({left, right});
    EXPECT_EQ(collector().env().latencySamples(), kLatency);
    EXPECT_EQ(out[0], clipped(left, 1.0, 1.0));
    EXPECT_EQ(out[1], clipped(right, 1.0, 1.0));
    for (const std::string& line : log()) EXPECT_EQ(line.find(" // "), std::string::npos) << line;
}

TEST_F(GraphTest, anyBlockingGivesTheSameSamples) {
    const Samples left = noise(5000, 3);
    const Samples right = noise(5000, 4);
    const auto whole = run({left, right});
    for (const std::vector<int>& blocks : {std::vector<int>{1, 2, 3}, {64}, {0, 511, 5, 0, 96}}) {
        m_graph->reset();
        EXPECT_EQ(run({left, right}, blocks), whole);
    }
}

TEST_F(GraphTest, bypassIsTheInputLateByTheLatencyBitForBit) {
    for (const double rate : {44100.0, 96000.0, 192000.0}) {
        setInput({{0, 0}, {1, 0}}, rate);
        const Samples left = noise(8000, 5);
        const Samples right = noise(8000, 6);
        set("plugin.modMain.bypass-enable", 1.0);
        run({left, right}, {512});  // the fade to the dry signal is over
        const int fadeSamples = static_cast<int>(0.015 * rate) + 2 * 512;
        m_graph->reset();
        const auto out = run({left, right}, {77, 512, 3});
        EXPECT_EQ(out[0], delayed(left, kLatency)) << rate;
        EXPECT_EQ(out[1], delayed(right, kLatency)) << rate << fadeSamples;
        set("plugin.modMain.bypass-enable", 0.0);
        run({left, right}, {512});
        m_graph->reset();
    }
}

TEST_F(GraphTest, eachGroupHasItsOwnValues) {
    setInput({{0, 0}, {1, 1}}, 48000.0);
    set("plugin.modMain.modHal.ingain", 4.0, 0);
    set("plugin.modMain.modHal.hardness", 0.3, 1);
    settle();
    const Samples left = noise(5000, 7);
    const Samples right = noise(5000, 8);
    const auto out = run({left, right});
    EXPECT_EQ(out[0], clipped(left, 4.0, 1.0));
    EXPECT_EQ(out[1], clipped(right, 1.0, 0.3));
}

TEST_F(GraphTest, soloSilencesTheOtherGroups) {
    setInput({{0, 0}, {1, 1}}, 48000.0);
    const std::vector<Samples> in = {noise(6000, 9), noise(6000, 10)};
    set("plugin.modMain.io-params.channel-group-solo", 1.0, 1);
    run(in);
    auto out = run(in);
    EXPECT_LE(largestDifference(out[0], Samples(out[0].size(), 0.0)), 1.001e-11);
    EXPECT_GT(largestDifference(out[1], Samples(out[1].size(), 0.0)), 0.5);
    for (const double sample : out[0]) ASSERT_NE(sample, 0.0) << "silence is a guard signal";
    set("plugin.modMain.io-params.channel-group-solo", 1.0, 0);
    run(in);
    out = run(in);
    EXPECT_GT(largestDifference(out[0], Samples(out[0].size(), 0.0)), 0.5) << "all that are soloed pass";
    set("plugin.modMain.io-params.channel-group-solo", 0.0, 0);
    set("plugin.modMain.io-params.channel-group-solo", 0.0, 1);
    run(in);
    out = run(in);
    EXPECT_GT(largestDifference(out[0], Samples(out[0].size(), 0.0)), 0.5);
}

// It has no fade: what is not soloed ends and begins with a step. What is soloed goes on without a flaw.
TEST_F(GraphTest, theSoloStageComesAndGoesAtOnce) {
    setInput({{0, 0}, {1, 1}}, 48000.0);
    const Samples tone = sine(30000, 997.0 / 48000.0, 1.0);
    const int on = 64 * 100;
    const int off = 64 * 305;
    const auto out = run({tone, tone}, {64}, [&](int start) {
        if (start == on || start == off) set("plugin.modMain.io-params.channel-group-solo", start == on ? 1.0 : 0.0, 1);
    });
    Samples wanted = clipped(tone, 1.0, 1.0);
    EXPECT_EQ(out[1], wanted);
    const auto stepAt = [&](int n) {
        return std::abs(out[0][static_cast<std::size_t>(n)] - out[0][static_cast<std::size_t>(n - 1)]);
    };
    RecordProperty("stepOn", std::to_string(stepAt(on)));
    RecordProperty("stepOff", std::to_string(stepAt(off)));
    std::fill(wanted.begin() + on, wanted.begin() + off, 0.0);
    EXPECT_LE(largestDifference(out[0], wanted), 1.001e-11);
}

// The largest step from one sample to the next, against that of the steady signals on both sides.
TEST_F(GraphTest, gainAndBypassChangeWithoutAClick) {
    const double cycles = 997.0 / 48000.0;
    const Samples in = sine(40000, cycles, 0.9);
    const auto out = run({in, in}, {64}, [&](int start) {
        if (start == 64 * 100) set("plugin.modMain.modHal.outgain", 0.5);
        if (start == 64 * 200) set("plugin.modMain.bypass-enable", 1.0);
        if (start == 64 * 210) set("plugin.modMain.bypass-enable", 0.0);
        if (start == 64 * 215) set("plugin.modMain.bypass-enable", 1.0);
        if (start == 64 * 400) set("plugin.modMain.modHal.ingain", 1.05);
    });
    const double steepest = 0.9 * 1.05 * 2.0 * std::numbers::pi * cycles;
    const double fadeSlope = 0.9 * std::numbers::pi / (2.0 * 0.015 * 48000.0);
    double largest = 0.0;
    for (std::size_t i = kLatency + 1; i < out[0].size(); ++i)
        largest = std::max(largest, std::abs(out[0][i] - out[0][i - 1]));
    EXPECT_LE(largest, steepest + fadeSlope);
    // The last bypass holds, with the dry signal.
    EXPECT_EQ(out[0].back(), in[in.size() - 1 - kLatency]);
}

TEST_F(GraphTest, aChangeDuringAFadeIsHeardInTheEndAndSurvivesAReset) {
    const Samples in(6000, 0.1);
    run({in, in}, {64}, [&](int start) {
        if (start == 64 * 10) set("plugin.modMain.modHal.outgain", 0.25);
        if (start == 64 * 12) set("plugin.modMain.modHal.outgain", 0.5);
    });
    EXPECT_NEAR(run({in, in})[0].back(), 0.05, 1e-9);
    run({in, in}, {64}, [&](int start) {
        if (start == 64 * 85) set("plugin.modMain.modHal.outgain", 0.25);
        if (start == 64 * 87) set("plugin.modMain.modHal.outgain", 0.75);
    });
    m_graph->reset();
    EXPECT_NEAR(run({in, in}, {64})[0].back(), 0.075, 1e-9);
}

// Whatever its length: a host may send each with another one.
TEST_F(GraphTest, aSteadyBlockAsksForNoMemory) {
    const std::vector<Samples> in = {noise(4096, 12), noise(4096, 13)};
    std::vector<Samples> out(2, Samples(512));
    run(in);
    const double* const inputs[] = {in[0].data(), in[1].data()};
    double* const outputs[] = {out[0].data(), out[1].data()};
    const CNoAllocationScope trap;
    for (const int frames : {512, 1, 64, 65, 200, 0, 511, 512}) m_graph->process(inputs, outputs, 2, frames);
}

TEST_F(GraphTest, channelsThatComeTakeTheModulesOfThoseThatGo) {
    const int stock = graph().cores().count();
    setInput({{2, 0}, {3, 0}}, 48000.0);
    run({noise(512, 16), noise(512, 17)});
    EXPECT_EQ(graph().cores().count(), stock);
}

}  // namespace
}  // namespace brt
