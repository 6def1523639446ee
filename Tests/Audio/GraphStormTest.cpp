// SPDX-License-Identifier: LicenseRef-Halyard
// Everything changes at random while the graph plays: channels, groups, rates, parameters, meters, resets. Between the
// storms it must stand as if nothing had happened.
//
// The sequence follows from its seed. HALYARD_STORM_SECONDS says how long it goes on (3), HALYARD_STORM_SEED where it
// begins (1).
#include <chrono>
#include <cstdlib>

#include "CollectedRecords.h"
#include "GraphFixture.h"
#include "Modules/CHalyardCore.h"

namespace brt {
namespace {

constexpr int kLatency = 1667;
constexpr int kGroups = 8;
constexpr double kGuardPeak = 1.001e-11;

int settingOr(const char* variable, int otherwise) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::atoi(text) : otherwise;
}

class GraphStormTest : public GraphFixture {
protected:
    // What is set, as a listener would know it.
    struct Group {
        double inGain = 1.0;
        double hardness = 1.0;
        bool isResidue = false;
        double outGain = 1.0;
        bool isSoloed = false;
    };
    struct Meter {
        const char* path;
        int listeners = 0;
    };

    void TearDown() override {
        for (Meter& meter : m_meters)
            for (; meter.listeners > 0; --meter.listeners) m_viz->removeListener(m_viz->getSlot(meter.path));
        GraphFixture::TearDown();
    }

    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    double between(double low, double high) { return low + (high - low) * below(1001) / 1000.0; }

    // Changes.

    void changeLayout() {
        constexpr double kRates[] = {44100.0, 48000.0, 96000.0, 192000.0};
        const int most = below(8) == 0 ? 16 : 4;
        if (below(3) == 0) m_rate = kRates[below(4)];
        m_layout.clear();
        for (int number = below(4); number < 16 && static_cast<int>(m_layout.size()) < most; number += 1 + below(3))
            m_layout.push_back({number, below(below(4) == 0 ? kGroups : 2)});
        if (below(10) == 0) m_layout.clear();
        setInput(m_layout, m_rate);
    }
    void changeParam() {
        const int index = below(kGroups);
        Group& group = m_groups[index];
        switch (below(6)) {
        case 0: return set("plugin.modMain.modHal.ingain", group.inGain = between(1.0, 15.8), index);
        case 1: return set("plugin.modMain.modHal.hardness", group.hardness = between(0.0, 1.0), index);
        case 2: return set("plugin.modMain.modHal.residue", group.isResidue = below(2) == 0, index);
        case 3: return set("plugin.modMain.modHal.outgain", group.outGain = between(0.07, 1.0), index);
        case 4: return set("plugin.modMain.io-params.channel-group-solo", group.isSoloed = below(4) == 0, index);
        default: return set("plugin.modMain.bypass-enable", m_isBypassed = below(2) == 0);
        }
    }
    void changeListeners() {
        Meter& meter = m_meters[below(3)];
        const bool comes = meter.listeners == 0 || (meter.listeners < 3 && below(2) == 0);
        meter.listeners += comes ? 1 : -1;
        if (comes)
            m_viz->addListener(m_viz->getSlot(meter.path));
        else
            m_viz->removeListener(m_viz->getSlot(meter.path));
    }
    void changeSomething() {
        switch (below(12)) {
        case 0: return changeLayout();
        case 1:
        case 2: return changeListeners();
        case 3: return m_graph->reset();
        case 4:
            for (int i = 0; i < 60; ++i) changeParam();
            return;
        case 5: m_graph->makeSpares(); return;
        case 6: collect(); return;
        default: return changeParam();
        }
    }

    // Playing.

    CollectedRecords collect() { return collectFrom(*m_viz, between(10.0, 100.0)); }
    std::vector<Samples> play(const std::vector<Samples>& in, bool isStorm) {
        const std::vector<int> blocks = {1 + below(512), below(64), 512, below(512)};
        return run(in, blocks, [&](int) {
            if (isStorm && below(2) == 0) changeSomething();
        });
    }
    // Sixteen signals: a layout that comes during the play may have as many channels.
    static std::vector<Samples> silence(int length) {
        return std::vector<Samples>(16, Samples(static_cast<std::size_t>(length)));
    }
    std::vector<Samples> sound(int length) {
        std::vector<Samples> in;
        for (int i = 0; i < 16; ++i) {
            const auto start = m_noise.begin() + below(static_cast<int>(m_noise.size()) - length);
            in.emplace_back(start, start + length);
        }
        return in;
    }
    // Until the last fade is over, and one that has waited for it.
    void settle() { play(silence(static_cast<int>(2 * 0.015 * m_rate) + kLatency + 3 * 512), false); }

    bool isAnySoloed() const {
        return std::any_of(std::begin(m_groups), std::end(m_groups), [](const Group& group) { return group.isSoloed; });
    }
    // What a channel makes of a signal after silence.
    Samples expected(const Samples& in, const Group& group) const {
        Samples out(in.size());
        if (m_isBypassed) {
            std::copy(in.begin(), in.end() - kLatency, out.begin() + kLatency);
        } else if (!isAnySoloed() || group.isSoloed) {
            CHalyardCore core;
            core.hardness = group.hardness;
            core.residue = group.isResidue;
            Samples gained = in;
            for (double& sample : gained) sample *= group.inGain;
            core.processBlock(gained.data(), out.data(), static_cast<int>(in.size()));
            for (double& sample : out) sample *= group.outGain;
        }
        return out;
    }

    std::mt19937 m_random{static_cast<unsigned>(settingOr("HALYARD_STORM_SEED", 1))};
    const Samples m_noise = noise(50000, static_cast<unsigned>(m_random()));
    std::vector<Channel> m_layout = {{0, 0}, {1, 0}};
    double m_rate = 48000.0;
    Group m_groups[kGroups];
    bool m_isBypassed = false;
    Meter m_meters[3] = {
        {"plugin.modMain.modMeterOut"}, {"plugin.modMain.modMeterIODiff"}, {"plugin.modMain.modHal.modHalyardMeter"}};

    // What must hold between storms.

    static void expectSame(const Samples& heard, const Samples& wanted, double tolerance, std::ptrdiff_t from) {
        const auto [at, other] = std::mismatch(heard.begin() + from, heard.end(), wanted.begin() + from,
                                               [&](double a, double b) { return std::abs(a - b) <= tolerance; });
        if (at != heard.end()) ADD_FAILURE() << *at << " instead of " << *other << " at " << at - heard.begin();
    }

    // Nothing of what was played before a reset is ever heard, whatever changes.
    void expectNoStaleSample() {
        m_graph->reset();
        for (const Samples& out : play(silence(6000), true)) expectSame(out, Samples(out.size()), kGuardPeak, 0);
    }
    // Without a reset the sound is that of the present settings, as soon as what was before has passed.
    void expectPresentSound() {
        settle();
        const std::vector<Samples> in = sound(7000);
        const std::vector<Samples> out = play(in, false);
        for (std::size_t i = 0; i < m_layout.size(); ++i) {
            const Samples wanted = expected(in[i], m_groups[m_layout[i].group]);
            const Samples& heard = out[static_cast<std::size_t>(m_layout[i].number)];
            expectSame(heard, wanted, 1e-7, 4500);
        }
    }
    // After a reset it is that of a fresh instance, from the first sample on.
    void expectFreshSound() {
        settle();
        m_graph->reset();
        const std::vector<Samples> in = sound(4000);
        const std::vector<Samples> out = play(in, false);
        std::vector<bool> isPlayed(16);
        for (std::size_t i = 0; i < m_layout.size(); ++i) {
            const Group& group = m_groups[m_layout[i].group];
            const Samples wanted = expected(in[i], group);
            const std::size_t number = static_cast<std::size_t>(m_layout[i].number);
            const double tolerance = !m_isBypassed && isAnySoloed() && !group.isSoloed ? kGuardPeak : 0.0;
            expectSame(out[number], wanted, tolerance, 0);
            isPlayed[number] = true;
        }
        for (std::size_t number = 0; number < 16; ++number)
            ASSERT_TRUE(isPlayed[number] || out[number] == Samples(4000)) << "channel " << number;
    }
    void expectFramesForListeners() {
        settle();
        collect();
        // The slowest has 6 frames a second.
        play(silence(static_cast<int>(m_rate / 5.0)), false);
        const CollectedRecords records = collect();
        for (const Meter& meter : m_meters)
            EXPECT_EQ(records.count(meter.path) > 0, meter.listeners > 0 && !m_layout.empty()) << meter.path;
    }
    // Whoever holds a buffer then has forgotten it.
    void expectNoBufferHeld() {
        for (Meter& meter : m_meters)
            for (; meter.listeners > 0; --meter.listeners) m_viz->removeListener(m_viz->getSlot(meter.path));
        settle();
        m_graph->reset();
        ASSERT_EQ(graph().pool().heldCount(), 0);
    }
};

TEST_F(GraphStormTest, betweenStormsAllIsAsIfNothingHadHappened) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::seconds(settingOr("HALYARD_STORM_SECONDS", 3));
    constexpr int kChecks = 5;  // each at least once, however slow the machine
    int round = 0;
    for (; (round < kChecks || Clock::now() < end) && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        play(sound(3000), true);
        switch (round % kChecks) {
        case 0: expectNoStaleSample(); break;
        case 1: expectPresentSound(); break;
        case 2: expectFreshSound(); break;
        case 3: expectFramesForListeners(); break;
        default: expectNoBufferHeld(); break;
        }
    }
    RecordProperty("rounds", round);
    for (const std::string& line : log()) EXPECT_EQ(line.find(" // "), std::string::npos) << line;
}

}  // namespace
}  // namespace brt
