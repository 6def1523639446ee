// SPDX-License-Identifier: LicenseRef-Halyard
// Which container holds what, for files too large to write in a test.
#include "Tools/Halyard/SoundFormat.h"

#include <gtest/gtest.h>
#include <sndfile.h>

#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

constexpr std::int64_t kFiveHoursFrames = 5 * 3600 * 48000;  // 5.2 GB in stereo and 24 bit

int settled(const char* name, int channelCount, std::int64_t frameCount) {
    SoundFormat format{containerOfExtension(name), SampleFormat::kInt24, 48000, channelCount};
    settleContainer(format, frameCount, name);
    return format.container;
}

TEST(SoundFormat, wavGrowsWithItsContent) {
    EXPECT_EQ(settled("a.wav", 2, 1000), SF_FORMAT_WAV);
    EXPECT_EQ(settled("a.wav", 3, 1000), SF_FORMAT_WAVEX);
    EXPECT_EQ(settled("a.wav", 2, kFiveHoursFrames), SF_FORMAT_RF64);
}

TEST(SoundFormat, whatDoesNotFitIsRefused) {
    EXPECT_THROW(settled("a.aiff", 2, kFiveHoursFrames), CToolError);
    EXPECT_EQ(settled("a.caf", 2, kFiveHoursFrames), SF_FORMAT_CAF);
    EXPECT_EQ(settled("a.flac", 8, kFiveHoursFrames), SF_FORMAT_FLAC);
    EXPECT_THROW(settled("a.flac", 9, 1000), CToolError);
}

TEST(SoundFormat, eachInputFormatHasOneThatHoldsIt) {
    EXPECT_EQ(sampleFormatHolding(SF_FORMAT_WAV | SF_FORMAT_PCM_U8), SampleFormat::kInt8);
    EXPECT_EQ(sampleFormatHolding(SF_FORMAT_CAF | SF_FORMAT_ALAC_20), SampleFormat::kInt24);
    EXPECT_EQ(sampleFormatHolding(SF_FORMAT_WAV | SF_FORMAT_ULAW), SampleFormat::kInt16);
    EXPECT_EQ(sampleFormatHolding(SF_FORMAT_OGG | SF_FORMAT_VORBIS), SampleFormat::kFloat);
}

}  // namespace
}  // namespace brt
