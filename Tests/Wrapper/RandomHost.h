// SPDX-License-Identifier: LicenseRef-Halyard
// A host that does at random, from a seed, what hosts do: blocks of any length and form, events, automation, programs,
// states, rates, layouts, suspend and resume. After each step it looks whether what must always hold does.
#pragma once

#include <bit>
#include <cmath>
#include <random>

#include "WrapperFixture.h"

namespace brt {

class RandomHost {
public:
    static constexpr int kLongestBlock = 8192;

    explicit RandomHost(PlainInstance& instance, unsigned seed) : m_instance(instance), m_random(seed) {}

    void step() {
        switch (below(24)) {
        case 0: return reopen();
        case 1: return suspendAndResume();
        case 2: return m_instance.registry().setCurrentProgram(below(8), nullptr);
        case 3: return keepState();
        case 4: return restoreState();
        case 5: return setForm();
        case 6: return m_instance.setHostOffline(below(2) == 1);
        case 7: return route();
        case 8: return m_instance.registry().exchangeShadowPreset();
        case 9: return queueEvents();
        case 10: return m_instance.setEnvSampleRate(rate(), true);
        case 11:
        case 12:
        case 13:
        case 14: return m_instance.setExtParam(below(7) - 1, below(120) / 100.0 - 0.1);
        default: return playBlock();
        }
    }

private:
    int below(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }
    double rate() {
        constexpr double kRates[] = {44100.0, 48000.0, 96000.0, 192000.0};
        return kRates[below(4)];
    }

    void reopen() {
        m_instance.deactivate();
        m_channels = 1 + below(2);
        m_instance.setChannels(m_channels);
        m_instance.resume(m_channels, rate(), m_form.isDouble);
        m_form = {m_channels, m_form.isDouble, false};
    }
    void suspendAndResume() {
        if (below(2) == 0) m_instance.deactivate();
        m_instance.activate();
    }
    void setForm() {
        m_form = {m_channels, below(2) == 1, below(2) == 1};
        m_instance.setInputFormat(m_form, true);
        m_instance.setOutputFormat(m_form, true);
    }
    void keepState() {
        m_kind = below(2) == 1 ? EStateKind::kBank : EStateKind::kPreset;
        EXPECT_EQ(messageOf(m_instance.getState(m_state, m_kind, true)), "");
    }
    void restoreState() {
        if (m_state.isEmpty()) return;
        EXPECT_EQ(messageOf(m_instance.setState(m_state.data(), m_state.size(), m_kind, true)), "");
    }
    void route() {
        const char* const names[] = {"io-params.in-routing", "io-params.out-routing", "io-params.grouping"};
        m_instance.param(names[below(3)]).setFloatAt(0, below(3), below(4), nullptr);
    }
    void queueEvents() {
        for (int i = below(20); i > 0; --i)
            m_instance.queueEvent(
                {.frameOffset = below(2 * kLongestBlock) - 10,
                 .kind = below(2) == 1 ? CHostEvent::EKind::kMidi : CHostEvent::EKind::kParam,
                 .fields = {below(7) - 1, std::bit_cast<std::int32_t>(static_cast<float>(below(100)) / 100.0F)}});
    }

    template <class Sample>
    void playAs(int frames) {
        const auto count = static_cast<std::size_t>(frames) * static_cast<std::size_t>(m_channels);
        std::vector<Sample> in(count);
        for (Sample& sample : in) sample = static_cast<Sample>(below(3000) / 1000.0 - 1.5);
        std::vector<Sample> other(count, Sample{9});
        std::vector<Sample>& out = below(2) == 1 ? in : other;
        std::vector<const void*> inputs;
        std::vector<void*> outputs;
        for (int i = 0; i < m_channels; ++i) {
            inputs.push_back(below(16) == 0 && &out != &in ? nullptr
                                                           : in.data() + i * (m_form.isInterleaved ? 0 : frames));
            outputs.push_back(out.data() + i * (m_form.isInterleaved ? 0 : frames));
        }
        m_instance.process(inputs.data(), outputs.data(), frames);
        // What the clipper takes away, which can be heard alone, is the larger part of 1.5 with 24 dB of gain.
        for (const Sample sample : out) ASSERT_TRUE(std::abs(sample) < 64.0) << sample;
    }
    void playBlock() {
        const int frames = below(3) == 0 ? below(kLongestBlock + 1) : below(600);
        m_form.isDouble ? playAs<double>(frames) : playAs<float>(frames);
    }

    PlainInstance& m_instance;
    std::mt19937 m_random;
    int m_channels = 2;
    CHostFormat m_form{2, true, false};
    CByteBuffer m_state;
    EStateKind m_kind = EStateKind::kBank;
};

}  // namespace brt
