// SPDX-License-Identifier: LicenseRef-Halyard
// Activation and blocks, also as hosts should not but do.
#include "Audio/CAudioProcessDefBase.h"
#include "VstHost.h"

namespace brt {
namespace {

using BlockTest = VstFixture;
constexpr int kLatency = 1667;

// Bypassed the effect is a delay, once the fade to it is over.
void bypass(VstHost& host) {
    host.set(kBypass, 1.0f);
    host.play(VstHost::tone<float>(8192, 0.0));
}

template <class Sample>
void expectDelay(VstHost& host) {
    const VstSound<Sample> input = VstHost::tone<Sample>(4096);
    const VstSound<Sample> output = host.play(input);
    for (const std::size_t channel : {0u, 1u})
        for (const std::size_t i : {0u, 1u, 500u, 2000u})
            ASSERT_EQ(output[channel][i + kLatency], input[channel][i]) << channel << ", " << i;
}

TEST_F(BlockTest, soundPassesInEitherPrecision) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume();
    bypass(host);
    expectDelay<float>(host);
    expectDelay<double>(host);
    expectDelay<float>(host);
    EXPECT_EQ(host.call(effSetProcessPrecision, 0, kVstProcessPrecision64), 1);
    EXPECT_EQ(host.call(effSetProcessPrecision, 0, 2), 0);
    // What was announced and what comes are two things.
    expectDelay<float>(host);
    EXPECT_EQ(host.call(effSetProcessPrecision, 0, kVstProcessPrecision64), 1);
    expectDelay<double>(host);
    EXPECT_EQ(host.call(effSetProcessPrecision, 0, kVstProcessPrecision32), 1);
    host.suspend();
    host.resume();
    expectDelay<double>(host);
}

TEST_F(BlockTest, hostsMayProcessBeforeTheyResumeAndResumeTwice) {
    VstHost host;
    ASSERT_TRUE(host.open());
    bypass(host);
    expectDelay<float>(host);
    host.resume();
    host.resume();
    bypass(host);
    expectDelay<float>(host);
    host.suspend();
    host.suspend();
    expectDelay<float>(host);
    // Closed without a word.
}

TEST_F(BlockTest, aNewRateHoldsFromTheNextBlock) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume(44100.0f);
    host.call(effSetSampleRate, 0, 0, nullptr, 96000.0f);
    EXPECT_EQ(host.instance().env().sampleRate(), 44100.0);
    host.play(VstHost::tone<float>(64));
    EXPECT_EQ(host.instance().env().sampleRate(), 96000.0);
    bypass(host);
    expectDelay<float>(host);
}

TEST_F(BlockTest, buffersMayBeMissing) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume();
    bypass(host);
    AEffect& effect = host.effect();
    std::vector<float> sound(64, 0.5f);
    float* onlyLeft[] = {sound.data(), nullptr};
    effect.processReplacing(&effect, onlyLeft, onlyLeft, 64);
    effect.processReplacing(&effect, nullptr, onlyLeft, 64);
    effect.processReplacing(&effect, onlyLeft, nullptr, 64);
    effect.processReplacing(&effect, nullptr, nullptr, 0);
    effect.processReplacing(&effect, nullptr, nullptr, -5);
    effect.processDoubleReplacing(&effect, nullptr, nullptr, 64);
    effect.process(&effect, onlyLeft, onlyLeft, 64);
    expectDelay<float>(host);
}

TEST_F(BlockTest, anySplitOfTheStreamSoundsTheSame) {
    const VstSound<float> input = VstHost::tone<float>(6000, 2.0);
    const auto render = [&input](int block) {
        VstHost host;
        EXPECT_TRUE(host.open());
        host.resume();
        VstSound<float> whole(2);
        for (std::size_t start = 0; start < input[0].size(); start += static_cast<std::size_t>(block)) {
            const std::size_t end = std::min(start + static_cast<std::size_t>(block), input[0].size());
            VstSound<float> part;
            for (const auto& channel : input)
                part.emplace_back(channel.begin() + static_cast<std::ptrdiff_t>(start),
                                  channel.begin() + static_cast<std::ptrdiff_t>(end));
            part = host.play(part);
            for (std::size_t i = 0; i < 2; ++i) whole[i].insert(whole[i].end(), part[i].begin(), part[i].end());
        }
        return whole;
    };
    const VstSound<float> whole = render(6000);
    EXPECT_EQ(render(512), whole);
    EXPECT_EQ(render(55), whole);
}

TEST_F(BlockTest, aHostThatRendersSaysSo) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume();
    CAudioParam& offline = host.instance().collector().getParam("plugin.modMain.host-offline");
    CAudioParam& mode = host.instance().collector().getParam("plugin.modMain.host-oversampling-mode");
    EXPECT_EQ(offline.getFloat(0, 0, -1.0), 0.0);
    host.processLevel = kVstProcessLevelOffline;
    host.play(VstHost::tone<float>(64));
    EXPECT_EQ(offline.getFloat(0, 0, -1.0), 1.0);
    EXPECT_EQ(mode.getFloat(0, 0, -1.0), 2.0);
    // Still rendering, at another rate.
    host.suspend();
    host.resume(192000.0f);
    EXPECT_EQ(mode.getFloat(0, 0, -1.0), 0.0);
    host.processLevel = 2;
    host.resume();
    EXPECT_EQ(offline.getFloat(0, 0, -1.0), 0.0);
}

TEST_F(BlockTest, eventsOfAnyKindAreTaken) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume();
    VstMidiEvent late{kVstMidiType, sizeof(VstMidiEvent), 300, 0, 0, 0, {0x90, 60, 100, 0}, 0, 0, {}};
    VstMidiEvent early{kVstMidiType, sizeof(VstMidiEvent), -7, 0, 0, 0, {0xff, 255, 255, 255}, 0, 0, {}};
    VstMidiEvent beyond{kVstMidiType, sizeof(VstMidiEvent), 100000, 0, 0, 0, {0x80, 60, 100, 0}, 0, 0, {}};
    VstEvent other{6, 32, 10, 0, {}};
    struct {
        std::int32_t count = 5;
        std::intptr_t reserved = 0;
        void* events[5];
    } list{.events = {&late, nullptr, &other, &early, &beyond}};
    static_assert(offsetof(decltype(list), events) == offsetof(VstEvents, events));
    EXPECT_EQ(host.call(effProcessEvents, 0, 0, &list), 1);
    host.play(VstHost::tone<float>(512));
    list.count = -1;
    EXPECT_EQ(host.call(effProcessEvents, 0, 0, &list), 1);
    EXPECT_EQ(host.call(effProcessEvents), 0);
}

TEST_F(BlockTest, theLockForCarelessHostsIsRecursive) {
    VstHost host;
    host.product = "WaveLab";
    ASSERT_TRUE(host.open());
    host.resume();
    bypass(host);
    expectDelay<float>(host);
    host.suspend();
}

}  // namespace
}  // namespace brt
