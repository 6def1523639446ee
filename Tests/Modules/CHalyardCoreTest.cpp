// SPDX-License-Identifier: LicenseRef-Halyard
// What a host relies on: the same samples for any blocking and in any build, settings that take effect at once, and a
// core that survives whatever comes in.
#include "Modules/CHalyardCore.h"

#include <limits>

#include "Modules/CoreRuns.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

namespace brt {
namespace {

constexpr double kFullScaleRounding = 1e-13;
const std::vector<int> kWhole = {1 << 30};

// Changes of every kind at odd places, some inside one sub-block, some at its ends and at those of a hop.
const std::vector<SettingsChange> kChanges = {
    {0, 1.0, false},     {100, 0.5, false},  {101, 0.5, true},   {144, 0.0, false},   {623, 0.998, true},
    {624, 0.997, false}, {700, 1.0, true},   {1248, 0.3, false}, {1249, 0.31, false}, {1250, 0.32, true},
    {1300, 0.2, true},   {1344, 0.2, false}, {2000, 1.0, false}, {2500, 0.5, false},
};

class CHalyardCoreTest : public ::testing::TestWithParam<ProcessorBuild> {};

TEST_P(CHalyardCoreTest, anyBlockingGivesTheSameBits) {
    const Samples in = noise(6000, 2.0, 1);
    std::mt19937 random(2);
    std::vector<int> randomBlocks(200);
    for (int& length : randomBlocks) length = 1 + static_cast<int>(random() % 300);
    for (const auto& changes : {std::vector<SettingsChange>{{0, 1.0, false}}, {{0, 0.5, false}}, kChanges}) {
        const Samples whole = run(GetParam(), in, kWhole, changes);
        for (const auto& blocks : std::vector<std::vector<int>>{
                 {1}, {7}, {64}, {512}, {623}, {624}, {625}, {4096}, {1, 1000}, {47, 1}, randomBlocks})
            EXPECT_EQ(run(GetParam(), in, blocks, changes), whole) << ::testing::PrintToString(blocks[0]);
    }
}

TEST_P(CHalyardCoreTest, agreesWithThePortableBuild) {
    const Samples in = noise(6000, 3.0, 3);
    std::vector<std::vector<SettingsChange>> all = {kChanges};
    for (double hardness : {0.0, 0.5, 0.997, 1.0})
        for (bool residue : {false, true}) all.push_back({{0, hardness, residue}});
    for (const auto& changes : all) {
        const Samples expected = run(ProcessorBuild::kPortable, in, {512}, changes);
        EXPECT_LT(largestDifference(run(GetParam(), in, {512}, changes), expected), kFullScaleRounding)
            << changes[0].hardness << changes[0].residue;
    }
}

TEST_P(CHalyardCoreTest, hardFrom998) {
    const Samples in = noise(3000, 2.0, 4);
    const auto at = [&](double hardness) { return run(GetParam(), in, kWhole, {{0, hardness, false}}); };
    const Samples hard = at(1.0);
    EXPECT_EQ(at(0.998), hard);
    const double difference = largestDifference(at(0.997), hard);
    EXPECT_GT(difference, 1e-5);
    EXPECT_LT(difference, 2e-2);
}

TEST_P(CHalyardCoreTest, softIsNotTransparentFarBelowClipping) {
    const Samples in = sine(5000, 0.05, 1e-7), out = run(GetParam(), in, kWhole, {{0, 0.0, false}});
    for (std::size_t i = 3500; i < 5000; ++i) ASSERT_NEAR(out[i], 0.99938646 * in[i - 1667], 1e-15) << i;
}

// Below clipping nothing is taken away, and the residue is silence to the last bit.
TEST_P(CHalyardCoreTest, hardResidueIsSilentBelowClipping) {
    const Samples out = run(GetParam(), sine(4000, 5.0 / 48.0, 0.5), {512}, {{0, 1.0, true}});
    EXPECT_EQ(out, Samples(4000, 0.0));
    EXPECT_GT(largestDifference(run(GetParam(), sine(4000, 5.0 / 48.0, 0.5), {512}, {{0, 0.5, true}}), out), 1e-3);
}

TEST_P(CHalyardCoreTest, outputLessResidueIsTheUnclippedChain) {
    const Samples in = noise(5000, 2.0, 5);
    Samples quiet = in;
    for (double& x : quiet) x /= 1024.0;
    const Samples linear = run(GetParam(), quiet, kWhole);
    for (double hardness : {0.4, 1.0}) {
        const Samples clipped = run(GetParam(), in, kWhole, {{0, hardness, false}});
        const Samples residue = run(GetParam(), in, kWhole, {{0, hardness, true}});
        for (std::size_t i = 0; i < in.size(); ++i)
            ASSERT_NEAR(clipped[i] - residue[i], 1024.0 * linear[i], 1e-12) << i;
    }
}

TEST_P(CHalyardCoreTest, resetMakesItNew) {
    const Samples in = noise(3000, 1.5, 6);
    CHalyardCore core(GetParam());
    core.hardness = 0.5;
    const Samples first = run(core, in, {100});
    core.reset();
    EXPECT_EQ(core.hardness, 0.5);
    EXPECT_EQ(run(core, in, {100}), first);
}

TEST_P(CHalyardCoreTest, recoversFromWhatIsNoNumber) {
    const Samples in = noise(4000, 1.5, 7);
    const double inf = std::numeric_limits<double>::infinity();
    for (double hardness : {0.5, 1.0}) {
        const Samples clean = run(GetParam(), in, {64}, {{0, hardness, false}});
        CHalyardCore core(GetParam());
        core.hardness = hardness;
        Samples bad = in;
        bad[1000] = std::numeric_limits<double>::quiet_NaN();
        bad[1001] = inf;
        bad[2500] = -inf;
        bad[2501] = std::numeric_limits<double>::max();
        run(core, bad, {64});
        core.reset();
        EXPECT_EQ(run(core, in, {64}), clean);

        // Without a reset too, once the bad samples have left the filters.
        run(core, bad, {64});
        const Samples after = run(core, noise(8000, 1.5, 8), {64});
        EXPECT_TRUE(std::all_of(after.begin() + 5000, after.end(), [](double x) { return std::isfinite(x); }));
    }
}

TEST_P(CHalyardCoreTest, answersANaNAsThePortableBuildDoes) {
    Samples in = noise(5000, 1.5, 9);
    in[1000] = std::numeric_limits<double>::quiet_NaN();
    const auto areNumbers = [&](ProcessorBuild build, double hardness) {
        std::vector<bool> are;
        for (const double x : run(build, in, {512}, {{0, hardness, false}})) are.push_back(std::isfinite(x));
        return are;
    };
    // The hard limit gives nothing but numbers; the soft curve has none to give, until the filters have forgotten.
    EXPECT_EQ(areNumbers(GetParam(), 1.0), std::vector<bool>(in.size(), true));
    const std::vector<bool> mixed = areNumbers(GetParam(), 0.5);
    EXPECT_EQ(mixed, areNumbers(ProcessorBuild::kPortable, 0.5));
    EXPECT_EQ(std::count(mixed.begin(), mixed.begin() + 1248, false), 0);
    EXPECT_FALSE(mixed[2000]);
    EXPECT_TRUE(mixed.back());
}

TEST_P(CHalyardCoreTest, leavesTheHostsTreatmentOfDenormalsAlone) {
    const Samples in(700, 1e-310);
    Samples out(700);
    CHalyardCore core(GetParam());
    core.processBlock(in.data(), out.data(), 700);
    core.processBlock(in.data(), out.data(), 700);
    EXPECT_TRUE(std::all_of(out.begin(), out.end(), [](double x) { return std::abs(x) < 1e-300; }));
    volatile double denormal = 1e-310;
    EXPECT_GT(denormal * 0.5, 0.0);
}

TEST_P(CHalyardCoreTest, emptyBlocksDoNothing) {
    CHalyardCore core(GetParam());
    EXPECT_TRUE(core.isReady());
    EXPECT_EQ(core.build(), GetParam());
    core.processBlock(nullptr, nullptr, 0);
    core.processBlock(nullptr, nullptr, -1);
}

INSTANTIATE_TEST_SUITE_P(Builds, CHalyardCoreTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

}  // namespace
}  // namespace brt
