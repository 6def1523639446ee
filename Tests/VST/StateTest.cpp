// SPDX-License-Identifier: LicenseRef-Halyard
// What hosts store and bring back.
#include <algorithm>

#include "VstHost.h"

namespace brt {
namespace {

using StateTest = VstFixture;
using Chunk = VstHost::Chunk;

TEST_F(StateTest, aChunkIsAPrefixATagAndAPackedState) {
    VstHost host;
    ASSERT_TRUE(host.open());
    for (const bool isPreset : {false, true}) {
        const Chunk chunk = host.chunk(isPreset);
        ASSERT_GT(chunk.size(), 28u);
        EXPECT_EQ(std::count(chunk.begin(), chunk.begin() + 16, 0), 16);
        EXPECT_EQ(std::string(chunk.begin() + 16, chunk.begin() + 20), isPreset ? "aprs" : "abnk");
        std::uint32_t a = 1;
        std::uint32_t b = 0;
        for (std::size_t i = 20; i < 24; ++i) b += a += chunk[i];
        const std::uint32_t check = b % 65521 << 16 | a % 65521;
        for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(chunk[24 + i], check >> 8 * i & 0xff) << i;
        EXPECT_EQ(chunk[28], 0x78) << "a zlib stream";
    }
    EXPECT_EQ(host.call(effGetChunk), 0);
}

TEST_F(StateTest, comesBackInAnotherInstance) {
    VstHost one;
    VstHost two;
    ASSERT_TRUE(one.open());
    ASSERT_TRUE(two.open());
    one.set(kGain, 0.75f);
    one.set(kResidue, 1.0f);
    one.set(kBypass, 1.0f);
    one.setProgramName("Mine");
    EXPECT_EQ(two.setChunk(one.chunk()), 1);
    for (std::int32_t i = 0; i < kHostParamCount; ++i) EXPECT_EQ(two.get(i), one.get(i)) << i;
    EXPECT_EQ(two.programName(), "Mine");
    EXPECT_EQ(two.chunk(), one.chunk());

    // As a host that brings each parameter back once more.
    for (std::int32_t i = 0; i < kHostParamCount; ++i) two.set(i, two.get(i));
    EXPECT_EQ(two.chunk(), one.chunk());

    one.set(kGain, 0.25f);
    EXPECT_EQ(two.setChunk(one.chunk(true), true), 1);
    EXPECT_EQ(two.get(kGain), 0.25f);
}

TEST_F(StateTest, whatIsNoStateChangesNothing) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.set(kGain, 0.75f);
    const Chunk good = host.chunk();
    const Chunk preset = host.chunk(true);
    const auto refused = [&](const Chunk& chunk, bool isPreset = false) {
        testing::internal::CaptureStderr();  // a user is told, on standard error where there is no window
        const std::intptr_t result = host.setChunk(chunk, isPreset);
        testing::internal::GetCapturedStderr();
        return result == 0 && host.chunk() == good;
    };
    EXPECT_TRUE(refused(good, true));
    EXPECT_TRUE(refused(preset));
    EXPECT_TRUE(refused({}));
    EXPECT_TRUE(refused(Chunk(16)));
    EXPECT_TRUE(refused(Chunk(17)));
    for (std::size_t size = 17; size < good.size(); size += 1 + size / 16)
        EXPECT_TRUE(refused({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)})) << size;
    for (const std::size_t place :
         {std::size_t{16}, std::size_t{20}, std::size_t{24}, std::size_t{28}, good.size() - 1}) {
        Chunk bad = good;
        bad[place] ^= 1;
        EXPECT_TRUE(refused(bad)) << place;
    }
    Chunk chunk = good;
    EXPECT_EQ(host.call(effSetChunk, 0, 100), 0);
    EXPECT_EQ(host.call(effSetChunk, 0, -1, chunk.data()), 0);
    EXPECT_EQ(host.call(effSetChunk, 0, std::intptr_t{1} << 40, chunk.data()), 0);
    EXPECT_EQ(host.chunk(), good);
    // The prefix is no part of it.
    std::fill_n(chunk.begin(), 16, std::uint8_t{7});
    EXPECT_EQ(host.setChunk(chunk), 1);
}

}  // namespace
}  // namespace brt
