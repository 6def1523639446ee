// SPDX-License-Identifier: LicenseRef-Halyard
// Which host channel is heard where: the product's routing presets, changes in play, and what suits a host by itself.
#include "WrapperFixture.h"

#include <cmath>
#include <numbers>

#include "Audio/CAudioPresetBank.h"
#include "Core/CAppData.h"
#include "Core/CMemoryReader.h"

namespace brt {
namespace {

class RoutingTest : public WrapperFixture {
protected:
    static constexpr int kLatency = 1667;

    static std::size_t at(int index) { return static_cast<std::size_t>(index); }

    void SetUp() override {
        WrapperFixture::SetUp();
        CByteBuffer bytes;
        CAppData::global().getData("routing-presets-sys", bytes, appDataTag::kPresetList);
        CMemoryReader reader(bytes.data(), bytes.size());
        ASSERT_EQ(messageOf(CAudioPresetBank::loadList(reader, m_banks)), "");
        ASSERT_EQ(m_banks.count(), 1);
        ASSERT_EQ(m_banks[0].count(), 15);
    }
    void TearDown() override {
        m_banks.clear();
        WrapperFixture::TearDown();
    }

    void choose(PlainInstance& instance, const char* name) {
        CAudioParamRegistry* registry = nullptr;
        ASSERT_EQ(messageOf(instance.root().findObjectChecked(registry, "plugin.param-registry-io")), "");
        for (const CAudioPreset* const preset : m_banks[0].presets()) {
            if (text(preset->name()) != std::string("BTIO:") + name) continue;
            CWriteSeqBuffer stream(1024);
            ASSERT_EQ(messageOf(preset->save(stream)), "");
            CByteBuffer bytes;
            stream.moveTo(bytes);
            CMemoryReader reader(bytes.data(), bytes.size());
            ASSERT_EQ(messageOf(registry->activatePreset(reader, false, CAudioParam::kAllGroups)), "");
            return;
        }
        FAIL() << name;
    }

    // What comes out once it has settled, for 0.25 on the first input and 0.5 on the second, bypassed.
    static std::pair<double, double> heard(PlainInstance& instance) {
        instance.setExtParam(0, 1.0);
        Sound input = silence(8192);
        input[0].assign(8192, 0.25);
        input[1].assign(8192, 0.5);
        play(instance, input);
        const Sound output = play(instance, input);
        return {output[0].back(), output[1].back()};
    }
    static std::vector<double> numbers(PlainInstance& instance, const char* name) {
        std::vector<double> result;
        for (int i = 0; i < 8; ++i) result.push_back(instance.value(name, 0, i));
        return result;
    }
    static std::string texts(PlainInstance& instance, const char* name, int count) {
        std::string result;
        for (int i = 0; i < count; ++i) result += text(instance.param(name).getString(0, i)) + " ";
        return result;
    }

    COwnedArray<CAudioPresetBank> m_banks;
};

TEST_F(RoutingTest, presetsDoWhatTheirNamesSay) {
    using Levels = std::pair<double, double>;
    const std::vector<std::pair<const char*, Levels>> cases = {
        {"Stereo", {0.25, 0.5}},          {"Stereo Swap", {0.5, 0.25}},          {"Mono To Stereo", {0.25, 0.25}},
        {"Stereo To Mono", {0.375, 0.0}}, {"Force Mono", {0.25, 0.0}},           {"Dual Mono", {0.25, 0.5}},
        {"Mono Side-Chain", {0.25, 0.0}}, {"5.1 Surround (Multi)", {0.25, 0.5}},
    };
    PlainInstance instance;
    instance.start();
    for (const auto& [name, levels] : cases) {
        choose(instance, name);
        EXPECT_EQ(heard(instance), levels) << name;
    }
    // Groups of their own have settings of their own.
    choose(instance, "Dual Mono");
    instance.setExtParam(0, 0.0);
    instance.param("modHal.outgain").setFloat(0.5, 1, nullptr);
    Sound input = silence(8192);
    input[0].assign(8192, 0.25);
    input[1].assign(8192, 0.5);
    play(instance, input);
    const Sound output = play(instance, input);
    EXPECT_NEAR(output[0].back(), 0.25, 1e-9);
    EXPECT_NEAR(output[1].back(), 0.25, 1e-9);
    EXPECT_EQ(instance.value("channel-counts", 0), 1.0);
    EXPECT_EQ(instance.value("channel-counts", 1), 1.0);
    // What this product has no channels for is kept all the same.
    choose(instance, "5.1 Surround (Groups)");
    EXPECT_EQ(numbers(instance, "io-params.grouping"), (std::vector<double>{0, 0, 1, 2, 3, 3, 4, 4}));
}

// A sine's own largest step, and what a fade of 15 ms between two of them adds at most: half a wave of their
// difference.
TEST_F(RoutingTest, changesInPlayDoNotClick) {
    constexpr int kFrames = 441;
    const double step = 2.0 * std::numbers::pi * 997.0 / 48000.0;
    const double fadeStep = std::numbers::pi / 2.0 / (0.015 * 48000.0);
    PlainInstance instance;
    instance.start();
    instance.setExtParam(0, 1.0);
    int frame = 0;
    double last[2] = {};
    double worst = 0.0;
    const auto playBlocks = [&](int count, bool isCounted) {
        for (int block = 0; block < count; ++block) {
            Sound input = silence(kFrames);
            for (int i = 0; i < kFrames; ++i, ++frame) {
                input[0][at(i)] = std::sin(step * frame);
                input[1][at(i)] = std::cos(step * frame);
            }
            const Sound output = play(instance, input);
            for (std::size_t channel = 0; channel < 2; ++channel) {
                for (const double sample : output[channel]) {
                    if (isCounted) worst = std::max(worst, std::abs(sample - last[channel]));
                    last[channel] = sample;
                }
            }
        }
    };
    playBlocks(20, false);
    for (const char* const name :
         {"Stereo Swap", "Mono To Stereo", "Stereo To Mono", "Stereo", "Stereo Swap", "Stereo"}) {
        choose(instance, name);
        playBlocks(1, true);  // the next one begins within the fade, the one after that behind it
        choose(instance, "Stereo Swap");
        playBlocks(9, true);
    }
    // Channels that come and go are channels that fade to and from silence.
    for (const char* const name : {"Force Mono", "Stereo", "Force Mono"}) {
        choose(instance, name);
        playBlocks(9, true);
    }
    EXPECT_LT(worst, step + 2.0 * fadeStep + 1e-6);
    EXPECT_GT(worst, 0.9 * step);
}

TEST_F(RoutingTest, routingThatNobodyTouchedSuitsTheHost) {
    PlainInstance instance;
    instance.start();
    EXPECT_EQ(texts(instance, "io-params.group-names", 3), "STEREO G-2 G-3 ");
    EXPECT_EQ(heard(instance), (std::pair{0.25, 0.5}));

    instance.deactivate();
    instance.setChannels(1);
    instance.resume(1, 48000.0, true);
    EXPECT_EQ(numbers(instance, "io-params.in-routing"), (std::vector<double>{1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(texts(instance, "io-params.group-names", 1), "MONO ");
    CByteBuffer mono;
    ASSERT_EQ(messageOf(instance.getState(mono, EStateKind::kBank, true)), "");

    instance.setChannels(2);
    instance.resume(2, 48000.0, true);
    EXPECT_EQ(heard(instance), (std::pair{0.25, 0.5}));

    PlainInstance stereo;
    stereo.start();
    ASSERT_EQ(messageOf(stereo.setState(mono.data(), mono.size(), EStateKind::kBank, true)), "");
    EXPECT_EQ(heard(stereo), (std::pair{0.25, 0.5}));
}

TEST_F(RoutingTest, aUsersRoutingStays) {
    PlainInstance instance;
    instance.start();
    choose(instance, "Stereo Swap");
    instance.deactivate();
    instance.setChannels(1);
    instance.resume(1, 48000.0, true);
    EXPECT_EQ(numbers(instance, "io-params.out-routing"), (std::vector<double>{2, 1, 0, 0, 0, 0, 0, 0}));
    instance.setChannels(2);
    instance.resume(2, 48000.0, true);
    EXPECT_EQ(heard(instance), (std::pair{0.5, 0.25}));

    choose(instance, "Stereo");
    instance.param("io-params.group-names").setString(0, 1, "Drums", nullptr);
    instance.updateDefaultRouting(true);
    EXPECT_EQ(texts(instance, "io-params.group-names", 2).substr(0, 6) == "STEREO", false);
    EXPECT_EQ(texts(instance, "io-params.group-names", 2).find("Drums") != std::string::npos, true);
}

TEST_F(RoutingTest, theHostsLabelsAreOneStepOfTheHistory) {
    PlainInstance instance;
    instance.start();
    instance.param("io-params.in-channel-names").setString(0, 0, "Kick", nullptr);
    instance.importChannelLabels();
    EXPECT_EQ(texts(instance, "io-params.in-channel-names", 2), "L R ");
    CAudioParamUndo* history = nullptr;
    ASSERT_EQ(messageOf(instance.root().findObjectChecked(history, "plugin.interface-base")), "");
    CStringList labels;
    int position = 0;
    history->getHistory(labels, position);
    ASSERT_EQ(labels.count(), 2);
    EXPECT_EQ(text(labels[1]), "Channel label import");
    history->setHistoryPos(0, true);
    EXPECT_EQ(texts(instance, "io-params.in-channel-names", 2), "Kick R ");
}

}  // namespace
}  // namespace brt
