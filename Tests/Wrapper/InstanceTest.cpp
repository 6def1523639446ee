// SPDX-License-Identifier: LicenseRef-Halyard
#include "WrapperFixture.h"

namespace brt {
namespace {

using InstanceTest = WrapperFixture;

TEST_F(InstanceTest, aNewOneIsAtTheDefaultsAndPassesSoundOn) {
    PlainInstance instance;
    instance.start();
    ASSERT_EQ(instance.extParamCount(), 5);
    std::string shown;
    for (int i = 0; i < 5; ++i)
        shown += text(instance.extParam(i)->getName()) + "=" + text(instance.extParam(i)->getText()) + " ";
    EXPECT_EQ(shown, "Bypass=Off Gain=0.0 Hardnes=100.0 OutGain=0.0 Residue=Off ");
    EXPECT_EQ(instance.latencySamples(), 1667);
    EXPECT_EQ(instance.value("channel-counts"), 2.0);
    EXPECT_EQ(instance.value("channel-counts", 1), 0.0);

    // Bypassed it delays by the latency; the activation's own sample is ahead of it.
    instance.setExtParam(0, 1.0);
    play(instance, silence(8192));
    Sound input = silence(4096);
    input[0][0] = 0.25;
    input[1][5] = -0.5;
    const Sound output = play(instance, input);
    EXPECT_EQ(output[0][1667], 0.25);
    EXPECT_EQ(output[1][1672], -0.5);
    EXPECT_EQ(std::count(output[0].begin(), output[0].end(), 0.0), 4095);
}

TEST_F(InstanceTest, statesComeBackByteForByte) {
    PlainInstance one;
    PlainInstance two;
    one.start();
    two.start();
    one.setExtParam(1, 0.5);
    one.registry().setCurrentProgram(0, nullptr);
    CByteBuffer state;
    CByteBuffer again;
    EXPECT_EQ(messageOf(one.getState(state, EStateKind::kBank, true)), "");
    EXPECT_EQ(messageOf(two.setState(state.data(), state.size(), EStateKind::kBank, true)), "");
    EXPECT_EQ(two.value("modHal.ingain"), one.value("modHal.ingain"));
    EXPECT_EQ(messageOf(two.getState(again, EStateKind::kBank, true)), "");
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(again.data()), static_cast<std::size_t>(again.size())),
              std::string(reinterpret_cast<const char*>(state.data()), static_cast<std::size_t>(state.size())));
    EXPECT_EQ(messageOf(two.setState(state.data(), 16, EStateKind::kBank, true)), "");
    EXPECT_NE(messageOf(two.setState(state.data(), state.size(), EStateKind::kPreset, true)), "");
}

}  // namespace
}  // namespace brt
