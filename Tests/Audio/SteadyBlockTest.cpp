// SPDX-License-Identifier: LicenseRef-Halyard
// Blocks run in a child that the system ends at its first system call: such in which nothing changes, and such in
// which the routing does.
#include "GraphFixture.h"

#include "CollectedRecords.h"
#include "NoSystemCalls.h"

namespace brt {
namespace {

class SteadyBlockTest : public GraphFixture {
protected:
    // In groups as they are told, one a channel.
    void setGroups(std::initializer_list<int> groups) {
        std::vector<Channel> channels;
        for (const int group : groups) channels.push_back({static_cast<int>(channels.size()), group});
        setInput(channels, 48000.0);
    }
    void playBlocks(int count) {
        for (int i = 0; i < count; ++i) m_graph->process(m_inputs, m_outputs, 4, 512);
    }

private:
    const Samples m_in = noise(512, 14);
    std::vector<Samples> m_out = std::vector<Samples>(4, Samples(512));
    const double* m_inputs[4] = {m_in.data(), m_in.data(), m_in.data(), m_in.data()};
    double* m_outputs[4] = {m_out[0].data(), m_out[1].data(), m_out[2].data(), m_out[3].data()};
};

TEST_F(SteadyBlockTest, asksTheSystemForNothing) {
    playBlocks(8);
    expectNoSystemCalls([this] { playBlocks(50); });
}

// Frames as short as they get and nobody who collects: all the room for records is used, and the oldest pushed out.
TEST_F(SteadyBlockTest, asksTheSystemForNothingWhileMetersAreWatched) {
    const std::vector<Samples> in = {noise(1024, 1), noise(1024, 2)};
    for (const char* const meter :
         {"plugin.modMain.modHal.modHalyardMeter", "plugin.modMain.modMeterIODiff", "plugin.modMain.modMeterOut"})
        m_viz->addListener(m_viz->getSlot(meter));
    collectFrom(*m_viz, CAudioEnv::kHighestFrameRate);
    run(in);
    run(in);
    EXPECT_GT(collectFrom(*m_viz, CAudioEnv::kHighestFrameRate).count("plugin.modMain.modMeterOut"), 2 * 1024 / 48);
    expectNoSystemCalls([this] { playBlocks(60); });
}

// A channel gets a group of its own, two channels come, all go back.
TEST_F(SteadyBlockTest, aChangeOfRoutingAsksTheSystemForNothing) {
    const auto changeRouting = [this] {
        for (int i = 0; i < 3; ++i) {
            setGroups({0, 1});
            playBlocks(5);
            setGroups({0, 0, 1, 1});
            playBlocks(5);
            setGroups({0, 0});
            playBlocks(1);
        }
    };
    const auto bigBlocks = [] { return CBrtMemAllocator::liveBlocks(CBrtMemAllocator::kBigBlock); };
    const auto before = bigBlocks();
    expectNoSystemCalls(changeRouting);
    changeRouting();
    EXPECT_EQ(bigBlocks(), before) << "memory of the system's";
}

}  // namespace
}  // namespace brt
