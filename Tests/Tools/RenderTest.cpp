// SPDX-License-Identifier: LicenseRef-Halyard
// What `halyard render` does to sound.
#include <gmock/gmock.h>
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Tools/HalyardRunner.h"

namespace brt {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr int kLatencyFrames = 1667;
constexpr int kDoubleWav = SF_FORMAT_WAV | SF_FORMAT_DOUBLE;

class RenderTest : public HalyardTest {};

std::vector<double> impulse(int frameCount, int place) {
    std::vector<double> samples(static_cast<std::size_t>(frameCount));
    samples[static_cast<std::size_t>(place)] = 0.5;
    return samples;
}

std::size_t loudestPlace(const std::vector<double>& samples) {
    const auto quieter = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
    return static_cast<std::size_t>(std::max_element(samples.begin(), samples.end(), quieter) - samples.begin());
}

double largestDifference(const std::vector<double>& a, const std::vector<double>& b) {
    EXPECT_EQ(a.size(), b.size());
    double largest = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) largest = std::max(largest, std::fabs(a[i] - b[i]));
    return largest;
}

TEST_F(RenderTest, outputHasTheInputsLengthAndLinesUp) {
    for (const int length : {1, 2, 1666, 1667, 1668, 4096, 20000})
        for (const int place : {0, length / 2, length - 1}) {
            write("in.wav", soundOf(impulse(length, place), kDoubleWav));
            runWell("render in.wav out.wav --force");
            const Sound out = read("out.wav");
            ASSERT_EQ(out.frameCount(), length);
            EXPECT_EQ(loudestPlace(out.samples), static_cast<std::size_t>(place)) << length;
            // The filters pass 0.485 of the rate on each side of 0, so this much of an impulse is left at its place.
            EXPECT_NEAR(out.samples[static_cast<std::size_t>(place)], 0.5 * 0.97, 1e-3) << length;
        }
}

TEST_F(RenderTest, aPresetIsWorthItsValues) {
    write("in.wav", soundOf(quietMusic(6000, 0.9), kDoubleWav));
    const auto rendered = [&](const std::string& options) {
        runWell("render in.wav out.wav --force " + options);
        return read("out.wav").samples;
    };
    const auto soft = rendered("--gain 5 --hardness 50 --out-gain -4.3");
    EXPECT_LT(largestDifference(rendered("--preset '+5dB Soft-Clip'"), soft), 1e-12);
    EXPECT_LT(largestDifference(rendered("--preset '+5dB Soft-Clip' --hardness 100 --out-gain -1"),
                                rendered("--gain 5 --out-gain -1")),
              1e-12)
        << "what is named beside the preset counts";
    for (const std::string name : {"a.cpf", "a.fxp"}) {
        runWell("preset convert FactoryROM.cbf " + name + " --preset '+5dB Soft-Clip'");
        EXPECT_LT(largestDifference(rendered("--preset " + name), soft), 1e-12);
    }
    runWell("preset convert FactoryROM.cbf all.cbf");
    runWell("preset convert AppDataGlobal_routing-presets-sys swap.cpf --preset 'Stereo Swap'");
    const std::pair<const char*, const char*> refusals[] = {
        {"'+5dB Soft'", "'FactoryROM.cbf' has no preset '+5dB Soft'"},
        {"all.cbf", "'all.cbf' holds 7 presets; make a file of one"},
        {"swap.cpf", "preset 'BTIO:Stereo Swap' can't be used: "},
    };
    for (const auto& [preset, errors] : refusals) {
        const Outcome outcome = run("render in.wav new.wav --preset " + std::string(preset));
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.errors, HasSubstr(errors));
    }
    EXPECT_THAT(files(), Not(testing::Contains("new.wav")));
}

TEST_F(RenderTest, anEmptyFileGivesAnEmptyFile) {
    write("in.wav", soundOf({}, kDoubleWav, 2));
    runWell("render in.wav out.wav --residue-out residue.wav --plot picture.png");
    EXPECT_EQ(read("out.wav").frameCount(), 0);
    EXPECT_EQ(read("residue.wav").frameCount(), 0);
    EXPECT_THAT(bytes("picture.png"), testing::StartsWith("\x89PNG"));
}

TEST_F(RenderTest, soundBelowClippingPassesUnchanged) {
    const std::vector<double> music = quietMusic(8000, 0.99);
    write("in.wav", soundOf(music, kDoubleWav));
    runWell("render in.wav out.wav");
    EXPECT_LT(largestDifference(read("out.wav").samples, music), 1e-8);
}

TEST_F(RenderTest, keptLatencyDelaysAndLosesNothing) {
    write("in.wav", soundOf(quietMusic(3000, 1), kDoubleWav));
    runWell("render in.wav aligned.wav --gain 6");
    EXPECT_THAT(runWell("render in.wav late.wav --gain 6 --keep-latency"), HasSubstr("1,667 frames late"));
    std::vector<double> late = read("late.wav").samples;
    ASSERT_EQ(late.size(), 3000u + kLatencyFrames);
    late.erase(late.begin(), late.begin() + kLatencyFrames);
    EXPECT_EQ(late, read("aligned.wav").samples);
}

TEST_F(RenderTest, blockSizeDoesNotChangeABit) {
    write("in.wav", soundOf(quietMusic(3000, 1), kDoubleWav));
    runWell("render in.wav reference.wav --gain 12 --hardness 60");
    for (const int block : {1, 7, 64, 623, 625, 8192}) {
        runWell("render in.wav out.wav --gain 12 --hardness 60 --force --block " + std::to_string(block));
        EXPECT_EQ(bytes("out.wav"), bytes("reference.wav")) << block;
    }
}

TEST_F(RenderTest, channelsStayApart) {
    // A different sound in each of 16 channels must arrive there, as it does alone.
    constexpr int kChannels = 16;
    constexpr int kFrames = 1000;
    std::vector<double> samples(kChannels * kFrames);
    const std::vector<double> music = quietMusic(kFrames, 1);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = music[i / kChannels] / static_cast<double>(1 + i % kChannels);
    write("in.wav", soundOf(samples, SF_FORMAT_WAVEX | SF_FORMAT_DOUBLE, kChannels));
    runWell("render in.wav out.wav --gain 9");
    const Sound out = read("out.wav");
    ASSERT_EQ(out.channelCount, kChannels);
    for (const int channel : {0, 7, 15}) {
        std::vector<double> alone;
        std::vector<double> arrived;
        for (std::size_t i = static_cast<std::size_t>(channel); i < samples.size(); i += kChannels) {
            alone.push_back(samples[i]);
            arrived.push_back(out.samples[i]);
        }
        write("alone.wav", soundOf(alone, kDoubleWav));
        runWell("render alone.wav alone-out.wav --gain 9 --force");
        EXPECT_EQ(arrived, read("alone-out.wav").samples) << channel;
    }
}

TEST_F(RenderTest, integersBelowClippingComeBackBitForBit) {
    // The filters' error is far below half a step, so every sample must round to where it came from.
    for (const int sampleFormat : {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24}) {
        write("in.wav", soundOf(quietMusic(6000, 0.9), SF_FORMAT_WAV | sampleFormat));
        runWell("render in.wav out.wav --force");
        const Sound out = read("out.wav");
        EXPECT_EQ(out.format & SF_FORMAT_SUBMASK, sampleFormat);
        EXPECT_EQ(out.samples, read("in.wav").samples);
    }
}

TEST_F(RenderTest, sampleFormatsRoundToTheNearestAndCutAboveFullScale) {
    // Hard clipping of a loud high tone overshoots full scale behind the filters.
    std::vector<double> loud = quietMusic(3000, 3.0);
    write("in.wav", soundOf(loud, kDoubleWav));
    runWell("render in.wav exact.wav");
    const std::vector<double> exact = read("exact.wav").samples;
    const auto overs = std::count_if(exact.begin(), exact.end(), [](double s) { return std::fabs(s) > 1; });
    ASSERT_GT(overs, 0);
    struct Case {
        const char* name;
        int code;
        int bits;
    };
    for (const Case& c : {Case{"8", SF_FORMAT_PCM_U8, 8}, Case{"16", SF_FORMAT_PCM_16, 16},
                          Case{"24", SF_FORMAT_PCM_24, 24}, Case{"32", SF_FORMAT_PCM_32, 32}}) {
        const std::string text = runWell("render in.wav out.wav --force --format " + std::string(c.name));
        EXPECT_THAT(text, HasSubstr("over        " + std::to_string(overs) + " sample"));
        const Sound out = read("out.wav");
        EXPECT_EQ(out.format & SF_FORMAT_SUBMASK, c.code);
        const double scale = std::ldexp(1.0, c.bits - 1);
        for (std::size_t i = 0; i < exact.size(); ++i)
            ASSERT_EQ(out.samples[i] * scale, std::clamp(std::nearbyint(exact[i] * scale), -scale, scale - 1)) << i;
    }
    runWell("render in.wav out.wav --force --format float");
    const std::vector<double> floats = read("out.wav").samples;
    for (std::size_t i = 0; i < exact.size(); ++i) ASSERT_EQ(floats[i], static_cast<float>(exact[i]));
}

TEST_F(RenderTest, theEndingChoosesTheContainer) {
    write("in.wav", soundOf(quietMusic(2000, 0.9), SF_FORMAT_WAV | SF_FORMAT_PCM_24));
    const std::vector<double> expected = read("in.wav").samples;
    struct Case {
        const char* ending;
        int container;
    };
    for (const Case& c : {Case{"flac", SF_FORMAT_FLAC}, Case{"aiff", SF_FORMAT_AIFF}, Case{"AIF", SF_FORMAT_AIFF},
                          Case{"caf", SF_FORMAT_CAF}, Case{"w64", SF_FORMAT_W64}, Case{"rf64", SF_FORMAT_RF64}}) {
        const std::string name = "out." + std::string(c.ending);
        runWell("render in.wav " + name);
        const Sound out = read(name);
        EXPECT_EQ(out.format & SF_FORMAT_TYPEMASK, c.container) << name;
        EXPECT_EQ(out.format & SF_FORMAT_SUBMASK, SF_FORMAT_PCM_24) << name;
        EXPECT_EQ(out.samples, expected) << name;
        // And each of them is read again.
        runWell("render " + name + " back.wav --force");
        EXPECT_EQ(read("back.wav").samples, expected) << name;
    }
}

TEST_F(RenderTest, outputLessResidueIsTheUnclippedChain) {
    constexpr double kScale = 1.0 / 16;  // exact, and so quiet that nothing clips
    const std::vector<double> loud = quietMusic(6000, 1);
    std::vector<double> quiet = loud;
    for (double& sample : quiet) sample *= kScale;
    write("loud.wav", soundOf(loud, kDoubleWav));
    write("quiet.wav", soundOf(quiet, kDoubleWav));
    runWell("render quiet.wav unclipped.wav --gain 12 --out-gain -3");
    std::vector<double> unclipped = read("unclipped.wav").samples;
    for (double& sample : unclipped) sample /= kScale;

    for (const std::string hardness : {"100", "30"}) {
        runWell("render loud.wav out.wav --gain 12 --out-gain -3 --force --residue-out residue.wav --hardness " +
                hardness);
        std::vector<double> difference = read("out.wav").samples;
        const std::vector<double> residue = read("residue.wav").samples;
        EXPECT_GT(std::fabs(residue[loudestPlace(residue)]), 0.5);
        for (std::size_t i = 0; i < difference.size(); ++i) difference[i] -= residue[i];
        EXPECT_LT(largestDifference(difference, unclipped), 1e-11) << hardness;

        runWell("render loud.wav only.wav --gain 12 --out-gain -3 --force --residue --hardness " + hardness);
        EXPECT_EQ(read("only.wav").samples, residue);
    }
    // The residue of a 24-bit render keeps what an integer could not hold.
    runWell("render loud.wav out.wav --gain 24 --format 24 --force --residue-out residue.wav");
    const Sound residue = read("residue.wav");
    EXPECT_EQ(residue.format & SF_FORMAT_SUBMASK, SF_FORMAT_FLOAT);
    EXPECT_GT(std::fabs(residue.samples[loudestPlace(residue.samples)]), 5);
}

TEST_F(RenderTest, theSummaryTellsWhatHappened) {
    std::vector<double> music = quietMusic(4800, 0.5);
    music[100] = std::numeric_limits<double>::quiet_NaN();
    music[200] = std::numeric_limits<double>::infinity();
    music[300] = 1e-310;
    music[400] = 1e200;
    write("in.wav", soundOf(music, kDoubleWav));
    const std::string text = runWell("render in.wav out.wav --gain 12 --hardness 50");
    const double factor = std::pow(10, 12 / 20.0);
    const auto clipped = std::count_if(music.begin(), music.end(),
                                       [=](double s) { return std::fabs(s) < 1e100 && std::fabs(s) * factor > 1; });
    ASSERT_GT(clipped, 0);
    EXPECT_THAT(text, HasSubstr("48000 Hz, 1 channel, 64-bit float, 0:00.100 (4,800 frames)"));
    EXPECT_THAT(text, HasSubstr("clipped     " + std::to_string(clipped) + " samples"));
    EXPECT_THAT(text, HasSubstr("3 samples of the input: no number of a sound"));
    EXPECT_THAT(text, HasSubstr("times real time"));
    EXPECT_THAT(text, Not(HasSubstr("-0.00 dB")));
    for (const double sample : read("out.wav").samples) ASSERT_TRUE(std::isfinite(sample));

    // A steady level of 1 raised by 12 dB and cut hard at full scale has lost exactly these 12 dB.
    write("steady.wav", soundOf(std::vector<double>(5000, 1.0), kDoubleWav));
    EXPECT_THAT(runWell("render steady.wav steady-out.wav --gain 12"), HasSubstr("reduction   12.00 dB"));
}

TEST_F(RenderTest, titlesAndMarkersGoAlong) {
    SF_INFO info{};
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    info.channels = 1;
    info.samplerate = 44100;
    SNDFILE* file = sf_open(path("in.wav").string().c_str(), SFM_WRITE, &info);
    sf_set_string(file, SF_STR_TITLE, "Second take");
    SF_BROADCAST_INFO broadcast{};
    std::snprintf(broadcast.description, sizeof(broadcast.description), "Reel 7");
    broadcast.time_reference_low = 12345;
    sf_command(file, SFC_SET_BROADCAST_INFO, &broadcast, sizeof(broadcast));
    const std::vector<double> silence(100);
    sf_writef_double(file, silence.data(), 100);
    sf_close(file);
    runWell("render in.wav out.wav");
    file = sf_open(path("out.wav").string().c_str(), SFM_READ, &info);
    ASSERT_NE(file, nullptr);
    EXPECT_STREQ(sf_get_string(file, SF_STR_TITLE), "Second take");
    ASSERT_EQ(sf_command(file, SFC_GET_BROADCAST_INFO, &broadcast, sizeof(broadcast)), SF_TRUE);
    EXPECT_STREQ(broadcast.description, "Reel 7");
    EXPECT_EQ(broadcast.time_reference_low, 12345u);
    sf_close(file);
}

TEST_F(RenderTest, aReplacedFileIsReplacedWholeAndLinksAreFollowed) {
    write("in.wav", soundOf(quietMusic(500, 0.9), kDoubleWav));
    write("old.wav", soundOf(std::vector<double>(50), kDoubleWav));
    std::filesystem::create_symlink("old.wav", path("link.wav"));
    EXPECT_EQ(run("render in.wav link.wav").status, 1);
    EXPECT_EQ(read("old.wav").frameCount(), 50);
    runWell("render in.wav link.wav --force");
    EXPECT_TRUE(std::filesystem::is_symlink(path("link.wav")));
    EXPECT_EQ(read("old.wav").frameCount(), 500);
}

}  // namespace
}  // namespace brt
