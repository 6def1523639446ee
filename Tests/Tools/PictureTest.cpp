// SPDX-License-Identifier: LicenseRef-Halyard
// Measurements, pictures and the demo's music.
#include <gmock/gmock.h>
#include <sndfile.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "Tools/Halyard/CChart.h"
#include "Tools/Halyard/CSpectrumAnalyser.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/DemoSignal.h"
#include "Tools/Halyard/Peak.h"
#include "Tools/Halyard/SummaryText.h"
#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

class PictureTest : public HalyardTest {
protected:
    // Width and height as the PNG's header tells.
    std::pair<int, int> pngSize(const std::string& name) const {
        const std::string png = bytes(name);
        EXPECT_THAT(png, testing::StartsWith("\x89PNG\r\n"));
        const auto number = [&](std::size_t at) {
            int value = 0;
            for (std::size_t i = at; i < at + 4; ++i) value = value << 8 | static_cast<unsigned char>(png.at(i));
            return value;
        };
        return {number(16), number(20)};
    }
};

TEST_F(PictureTest, measureFindsWhatTheChainPromises) {
    const auto report = nlohmann::json::parse(runWell("measure --json --rate 48000 --plot chain.png"));
    EXPECT_EQ(report["linearPath"]["latencySamples"], 1667);
    EXPECT_EQ(report["linearPath"]["impulsePeakSample"], 1667);
    // Two blocks of the long filters, less the silent sample with which an instance is activated.
    EXPECT_EQ(report["linearPath"]["leadingZeroSamples"], 2 * 624 - 1);
    EXPECT_LT(report["linearPath"]["passBandErrorDb"].get<double>(), 1e-6);
    EXPECT_NEAR(report["linearPath"]["halfGainFraction"].get<double>(), 0.485, 1e-5);
    EXPECT_LT(report["nulls"]["toneErrorDb"].get<double>(), -180);
    EXPECT_TRUE(report["nulls"]["silentResidueDb"].is_null());  // exactly silent
    EXPECT_LT(report["nulls"]["unclippedLineDb"].get<double>(), -230);
    EXPECT_LT(report["nulls"]["residueSumErrorDb"].get<double>(), -250);
    ASSERT_EQ(report["rates"].size(), 1u);
    bool hasFifteenKilohertz = false;
    for (const auto& row : report["rates"][0]["aliases"]) {
        const double worstDb = row["worstLineDb"];
        // The filters must not add to what clipping itself leaves, which is known by formula.
        if (!row["floorDb"].is_null()) {
            EXPECT_NEAR(worstDb, row["floorDb"].get<double>(), 0.5) << row;
        }
        if (row["amplitude"] == 2.0 && row["hardnessPercent"] == 100.0 && row["frequencyHz"] > 14000) {
            hasFifteenKilohertz = true;
            EXPECT_LT(worstDb, -99);
        }
    }
    EXPECT_TRUE(hasFifteenKilohertz);
    for (const auto& cost : report["costs"]) {
        EXPECT_GT(cost["nanosecondsPerSample"], 0);
        EXPECT_GT(cost["channelsInRealTime"]["48000"], 0);
    }
    EXPECT_EQ(pngSize("chain.png"), std::make_pair(2360, 1720));
}

TEST_F(PictureTest, plotDrawsAnySound) {
    write("music.wav", soundOf(quietMusic(9000, 0.9), SF_FORMAT_WAV | SF_FORMAT_PCM_16));
    write("silence.wav", soundOf(std::vector<double>(100), SF_FORMAT_WAV | SF_FORMAT_PCM_16));
    write("empty.wav", soundOf({}, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 2));
    for (const std::string name : {"music", "silence", "empty"}) {
        runWell("plot " + name + ".wav " + name + ".png --gain 12 --hardness 50");
        EXPECT_EQ(pngSize(name + ".png"), std::make_pair(2360, 1720));
    }
    EXPECT_NE(bytes("music.png"), bytes("silence.png"));
}

TEST_F(PictureTest, aFullDiskLeavesNoHalfPicture) {
    write("music.wav", soundOf(quietMusic(100, 0.9), SF_FORMAT_WAV | SF_FORMAT_PCM_16));
    std::filesystem::create_symlink("/dev/full", path("full.png"));
    const auto before = files();
    const Outcome outcome = run("render music.wav out.wav --plot full.png");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, testing::HasSubstr("'full.png': No space left on device"));
    EXPECT_EQ(files(), before);
}

TEST(DemoSignal, isTheSameAtEveryCallAndPeaksWhereItSays) {
    const CPlanarBuffer first = makeDemoSignal(DemoSignalRequest::kMinRateHz);
    const CPlanarBuffer second = makeDemoSignal(DemoSignalRequest::kMinRateHz);
    ASSERT_EQ(first.frameCount(), 10 * DemoSignalRequest::kMinRateHz);
    for (int c = 0; c < 2; ++c)
        ASSERT_TRUE(std::equal(first.channel(c), first.channel(c) + first.frameCount(), second.channel(c)));
    Peak peak;
    peak.include(first, 0, first.frameCount(), 0);
    EXPECT_NEAR(factorToDb(peak.level), -0.3, 1e-9);
    EXPECT_EQ(first.channel(0)[first.frameCount() - 1], 0.0);
}

TEST(SpectrumAnalyser, aSineReadsItsAmplitude) {
    constexpr int kOrder = 10;
    constexpr double kBin = 100;
    std::vector<double> sine(1 << kOrder);
    for (std::size_t i = 0; i < sine.size(); ++i)
        sine[i] = 0.25 * std::sin(2 * std::numbers::pi * kBin * static_cast<double>(i) / (1 << kOrder)) + 0.5;
    for (const auto window : {SpectrumWindow::kNone, SpectrumWindow::kBlackmanHarris}) {
        CSpectrumAnalyser analyser(kOrder, window);
        const std::vector<double> amplitudes = analyser.amplitudes(sine.data());
        EXPECT_NEAR(amplitudes[100], 0.25, 1e-12);
        EXPECT_NEAR(amplitudes[0], 0.5, 1e-12);
        EXPECT_LT(amplitudes[300], 1e-8);  // the window's side lobes stay below -160 dB
        EXPECT_NEAR(analyser.averageAmplitudes(sine)[100], 0.25, 1e-12);
    }
}

TEST(Axis, ticksStandOnRoundNumbers) {
    const Axis axis = linearAxis("", -1.7, 2.6, 8);
    std::vector<std::string> labels;
    for (const Tick& tick : axis.ticks) labels.push_back(tick.label);
    EXPECT_THAT(labels,
                testing::ElementsAre("\u22121.5", "\u22121.0", "\u22120.5", "0.0", "0.5", "1.0", "1.5", "2.0", "2.5"));
    const Axis frequencies = frequencyAxis("", 20, 24000);
    EXPECT_EQ(frequencies.ticks.front().label, "20");
    EXPECT_EQ(frequencies.ticks.back().label, "20k");
    EXPECT_NEAR(frequencies.placeOf(std::sqrt(20.0 * 24000)), 0.5, 1e-12);
}

TEST(NumberText, isReadable) {
    EXPECT_EQ(formatFixed(-0.001, 2), "0.00");
    EXPECT_EQ(formatFixed(-0.005001, 2), "-0.01");
    EXPECT_EQ(formatFixed(factorToDb(0), 1), "-inf");
    EXPECT_EQ(groupedDigits(0), "0");
    EXPECT_EQ(groupedDigits(999), "999");
    EXPECT_EQ(groupedDigits(1234567), "1,234,567");
    EXPECT_EQ(timeText(48000 * 61 + 48, 48000), "1:01.001");
}

}  // namespace
}  // namespace brt
