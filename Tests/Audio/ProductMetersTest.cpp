// SPDX-License-Identifier: LicenseRef-Halyard
// The product's meters in its running graph: when they come, what they show, what they cost. The meters' own tests are
// those of Modules.
#include <cmath>
#include <numbers>

#include "CollectedRecords.h"
#include "GraphFixture.h"

namespace brt {
namespace {

constexpr double kRate = 48000.0;
constexpr const char* kReduction = "plugin.modMain.modHal.modHalyardMeter";
constexpr const char* kDifference = "plugin.modMain.modMeterIODiff";
constexpr const char* kLevel = "plugin.modMain.modMeterOut";

class ProductMetersTest : public GraphFixture {
protected:
    CAudioEnv& env() { return collector().env(); }
    CollectedRecords collect(double framesPerSecond = 40.0) { return collectFrom(*m_viz, framesPerSecond); }
    void watch() {
        for (const char* const path : {kReduction, kDifference, kLevel}) m_viz->addListener(m_viz->getSlot(path));
    }
    // What a meter of the first channel shows at the end.
    static const CAudioVizDataMeter& last(const CollectedRecords& collected, const char* path) {
        int index = collected.count(path) - 1;
        while (index > 0 && collected.meter(path, index).channel != 0) --index;
        return collected.meter(path, index);
    }
};

// Listeners count in the first block; their meters run from the second on, a whole frame until the first record.
TEST_F(ProductMetersTest, aListenerGetsRecordsAFrameAfterTheBlockThatCountedIt) {
    EXPECT_EQ(env().frameRate(), 40.0) << "the project's own rate";
    for (const int block : {512, 400}) {
        watch();
        const double start = env().streamSeconds();
        std::map<std::string, int> firstBlocks;
        for (int i = 1; firstBlocks.size() < 3 && i < 100; ++i) {
            run({Samples(static_cast<std::size_t>(block)), Samples(static_cast<std::size_t>(block))}, {block});
            const CollectedRecords collected = collect();
            EXPECT_NEAR(collected.position, start + i * block / kRate, 1e-9);
            for (const char* const path : {kReduction, kDifference, kLevel}) {
                if (collected.count(path) == 0 || !firstBlocks.emplace(path, i).second) continue;
                EXPECT_EQ(collected.count(path), 2) << "a record for each channel";
                const double frame = path == kDifference ? 8000.0 : 1200.0;
                EXPECT_NEAR(collected.meter(path, 1).time, start + (block + frame / 2.0) / kRate, 1e-9);
            }
        }
        EXPECT_EQ(firstBlocks[kReduction], 1 + (1200 + block - 1) / block);
        EXPECT_EQ(firstBlocks[kLevel], 1 + (1200 + block - 1) / block);
        EXPECT_EQ(firstBlocks[kDifference], 1 + (8000 + block - 1) / block);
        for (const char* const path : {kReduction, kDifference, kLevel}) m_viz->removeListener(m_viz->getSlot(path));
        settle();
    }
}

TEST_F(ProductMetersTest, eachShowsWhatItIsFor) {
    set("plugin.modMain.modHal.ingain", 4.0);
    set("plugin.modMain.modHal.outgain", 0.25);
    watch();
    settle();
    collect();
    const Samples tone = sine(24000, 997.0 / kRate, 0.5);
    const std::vector<Samples> out = run({tone, tone});
    const CollectedRecords collected = collect();
    EXPECT_NEAR(last(collected, kReduction).level, 0.5, 0.005) << "2 behind the input gain, limited to 1";
    EXPECT_NEAR(last(collected, kLevel).peak, 0.25, 0.05);

    // The output's power against the input's, both on their way from 1 with 3 seconds.
    const auto powerOf = [](const Samples& signal) {
        const double rest = std::exp(-2.0 * std::numbers::pi / (3.0 * 1.362) * 0.5);
        double sum = 0.0;
        for (const double sample : signal) sum += sample * sample;
        return rest + (1.0 - rest) * sum / static_cast<double>(signal.size());
    };
    EXPECT_NEAR(last(collected, kDifference).level, std::sqrt(powerOf(out[0]) / powerOf(tone)), 0.03);
}

TEST_F(ProductMetersTest, theirTimesAreThoseOfTheSettings) {
    const Samples silence(static_cast<std::size_t>(kRate / 10));
    const Samples tone = sine(9600, 997.0 / kRate, 0.9);
    set("plugin.modMain.modHal.ingain", 2.0);
    watch();
    settle();
    for (const double release : {0.75, 0.02}) {
        set("plugin.modMain.meter-releasetime", release);
        run({tone, tone});
        collect();
        run({silence, silence});
        const CollectedRecords collected = collect();
        EXPECT_EQ(last(collected, kLevel).level < 0.1, release < 0.1);
        EXPECT_EQ(last(collected, kReduction).level > 0.95, release < 0.1);
        EXPECT_GT(last(collected, kLevel).peak, 0.9) << "held for a second";
    }
    set("plugin.modMain.meter-releasetime", 0.75);
}

}  // namespace
}  // namespace brt
