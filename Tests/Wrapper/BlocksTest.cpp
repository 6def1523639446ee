// SPDX-License-Identifier: LicenseRef-Halyard
// Blocks as hosts hand them in: of any length and form, with events, in any floating-point state.
#include "WrapperFixture.h"

#include <xmmintrin.h>

#include <bit>
#include <cmath>
#include <numbers>

namespace brt {
namespace {

class BlocksTest : public WrapperFixture {
protected:
    static constexpr int kFrames = 6000;

    static Sound tones() {
        Sound sound = silence(kFrames);
        for (int i = 0; i < kFrames; ++i) {
            const double phase = 2.0 * std::numbers::pi * i / 48000.0;
            // What single precision holds, so that both forms hear the same.
            sound[0][at(i)] = static_cast<float>(1.4 * std::sin(997.0 * phase));
            sound[1][at(i)] = static_cast<float>(0.8 * std::sin(5011.0 * phase));
        }
        return sound;
    }
    static std::size_t at(int index) { return static_cast<std::size_t>(index); }

    // The whole sound in blocks of those lengths, in turn, of that form.
    template <class Sample>
    static Sound playAs(const Sound& input, const std::vector<int>& lengths, bool isInterleaved, bool isInPlace) {
        PlainInstance instance;
        instance.start();
        const bool isDouble = sizeof(Sample) == 8;
        instance.setInputFormat({2, isDouble, isInterleaved});
        instance.setOutputFormat({2, isDouble, isInterleaved});
        instance.setExtParam(1, 0.25);
        Sound output = silence(kFrames);
        int position = 0;
        for (int turn = 0; position < kFrames; ++turn) {
            const int frames = std::min(lengths[at(turn) % lengths.size()], kFrames - position);
            std::vector<Sample> in(at(frames) * 2);
            const auto place = [&](int channel, int i) {
                return isInterleaved ? at(i) * 2 + at(channel) : at(channel) * at(frames) + at(i);
            };
            for (int channel = 0; channel < 2; ++channel)
                for (int i = 0; i < frames; ++i)
                    in[place(channel, i)] = static_cast<Sample>(input[at(channel)][at(position + i)]);
            std::vector<Sample> other(in.size());
            std::vector<Sample>& out = isInPlace ? in : other;
            const void* const inputs[] = {in.data(), isInterleaved ? nullptr : in.data() + frames};
            void* const outputs[] = {out.data(), isInterleaved ? nullptr : out.data() + frames};
            instance.process(inputs, outputs, frames);
            for (int channel = 0; channel < 2; ++channel)
                for (int i = 0; i < frames; ++i)
                    output[at(channel)][at(position + i)] = static_cast<double>(out[place(channel, i)]);
            position += frames;
        }
        return output;
    }
};

TEST_F(BlocksTest, soundIsTheSameInBlocksOfAnyLengthAndForm) {
    const Sound input = tones();
    const Sound wanted = playAs<double>(input, {kFrames}, false, false);
    EXPECT_GT(*std::max_element(wanted[0].begin(), wanted[0].end()), 0.5);
    for (const std::vector<int>& lengths : {std::vector<int>{64}, {1, 511, 0, 513, 7}, {2048, 55}}) {
        EXPECT_EQ(playAs<double>(input, lengths, false, false), wanted);
        EXPECT_EQ(playAs<double>(input, lengths, false, true), wanted);
        EXPECT_EQ(playAs<double>(input, lengths, true, false), wanted);
        EXPECT_EQ(playAs<double>(input, lengths, true, true), wanted);
    }
    Sound rounded = wanted;
    for (Channel& channel : rounded)
        for (double& sample : channel) sample = static_cast<float>(sample);
    EXPECT_EQ(playAs<float>(input, {480}, false, true), rounded);
    EXPECT_EQ(playAs<float>(input, {480}, true, false), rounded);
}

TEST_F(BlocksTest, missingBuffersAreSilenceAndAreLeftAlone) {
    PlainInstance instance;
    instance.start();
    const Sound input = tones();
    Channel left(kFrames, 9.0);
    const void* const inputs[] = {nullptr, input[1].data()};
    void* const outputs[] = {left.data(), nullptr};
    instance.process(inputs, outputs, kFrames);
    EXPECT_EQ(left, Channel(kFrames));
    instance.process(nullptr, nullptr, 100);
    instance.process(inputs, outputs, 0);
    // More channels than the graph has are silent.
    instance.setOutputFormat({3, true, false});
    Channel third(64, 9.0);
    void* const three[] = {left.data(), nullptr, third.data()};
    instance.process(inputs, three, 64);
    EXPECT_EQ(third, Channel(64));
}

// Sees at which frames events arrive, and how long the chunks are that they leave.
TEST_F(BlocksTest, eventsLandAtTheirSamples) {
    class Listener final : public CAudioWrapper {
    public:
        void hostAutomate(int, double) override {}
        void hostUpdateDisplay() override {}
        void hostBeginEdit(int) override {}
        void hostEndEdit(int) override {}
        void onQueuedEvent0(const CHostEvent& event) override {
            frames.push_back(event.fields[0]);
            seconds.push_back(env().streamSeconds());
        }
        std::vector<int> frames;
        std::vector<double> seconds;
    };
    Listener instance;
    ASSERT_EQ(messageOf(instance.init()), "");
    instance.initConnections();
    instance.setEnvSampleRate(48000.0);
    instance.setInputFormat({2, true, false});
    instance.setOutputFormat({2, true, false});
    instance.activate();
    const double start = instance.env().streamSeconds();
    for (const int frame : {600, -5, 1099, 600, 0, 1100})
        instance.queueEvent({.frameOffset = frame, .kind = CHostEvent::EKind::kMidi, .fields = {frame}});
    play(instance, silence(1100));
    EXPECT_EQ(instance.frames, (std::vector<int>{-5, 0, 600, 600, 1099}));
    ASSERT_EQ(instance.seconds.size(), 5U);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_NEAR((instance.seconds[i] - start) * 48000.0, std::max(instance.frames[i], 0), 1e-6);
    play(instance, silence(2000));
    EXPECT_EQ(instance.frames.size(), 5U) << "what lies behind the block is gone";
}

// The curve's hardness changes at once, so the change can be seen to begin at the very sample.
TEST_F(BlocksTest, automationBeginsAtTheSampleThatItNames) {
    const Sound input = tones();
    const auto render = [&](int splitAt, bool asEvent) {
        PlainInstance instance;
        instance.start();
        Sound output = silence(0);
        const auto playPart = [&](int first, int end) {
            Sound part = {{input[0].begin() + first, input[0].begin() + end},
                          {input[1].begin() + first, input[1].begin() + end}};
            const Sound played = play(instance, part);
            for (std::size_t c = 0; c < 2; ++c) output[c].insert(output[c].end(), played[c].begin(), played[c].end());
        };
        if (asEvent) {
            instance.queueEvent({.frameOffset = splitAt,
                                 .kind = CHostEvent::EKind::kParam,
                                 .fields = {2, std::bit_cast<std::int32_t>(0.1F)}});
            playPart(0, kFrames);
        } else {
            playPart(0, splitAt);
            instance.setExtParam(2, 0.1F);
            playPart(splitAt, kFrames);
        }
        return output;
    };
    for (const int frame : {0, 1, 600, 1024, 2777}) EXPECT_EQ(render(frame, true), render(frame, false)) << frame;
    EXPECT_NE(render(2777, true), render(2778, true)) << "a loud sample is being clipped there";
}

TEST_F(BlocksTest, theHostFindsItsFloatingPointStateAgain) {
    PlainInstance instance;
    instance.start();
    const Sound input = tones();
    for (const unsigned state : {0x1F80U, 0x9FC0U, 0x7F80U, 0x1F80U | 0x40U}) {
        _mm_setcsr(state);
        play(instance, input);
        EXPECT_EQ(_mm_getcsr() & ~0x3FU, state & ~0x3FU);
        instance.deactivate();
        instance.activate();
        EXPECT_EQ(_mm_getcsr() & ~0x3FU, state & ~0x3FU);
    }
    _mm_setcsr(0x1F80U);
}

TEST_F(BlocksTest, aSecondResumeBringsItsLayoutAndRate) {
    PlainInstance instance;
    instance.start(1, 44100.0);
    Sound mono = silence(4096, 1);
    play(instance, mono, 1);
    instance.setChannels(2);
    instance.resume(2, 48000.0, true);
    EXPECT_EQ(instance.env().sampleRate(), 48000.0);
    const Sound input = tones();
    play(instance, input);
    const Sound output = play(instance, input);
    EXPECT_GT(*std::max_element(output[0].begin(), output[0].end()), 0.5);
    EXPECT_GT(*std::max_element(output[1].begin(), output[1].end()), 0.5);
}

TEST_F(BlocksTest, whatChangedLastBeforeASuspendIsHeardAfterIt) {
    PlainInstance instance;
    instance.start();
    const Sound input = tones();
    const auto settled = [&] {
        play(instance, input);
        return play(instance, input);
    };
    settled();
    instance.setExtParam(3, 0.2);
    play(instance, silence(64));
    instance.setExtParam(3, 0.6);
    play(instance, silence(64));
    instance.deactivate();
    instance.activate();
    const Sound after = settled();
    PlainInstance fresh;
    fresh.start();
    fresh.setExtParam(3, 0.6);
    play(fresh, silence(4096));
    fresh.deactivate();
    fresh.activate();
    play(fresh, input);
    EXPECT_EQ(after, play(fresh, input));
}

}  // namespace
}  // namespace brt
