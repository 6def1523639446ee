// SPDX-License-Identifier: LicenseRef-Halyard
// Hosts call on many threads at once.
#include <atomic>
#include <random>
#include <thread>

#include "VstHost.h"

namespace brt {
namespace {

using VstThreads = VstFixture;

class Storm {
public:
    ~Storm() {
        m_isOver = true;
        for (std::thread& thread : m_threads) thread.join();
    }
    // Over and over, with a generator of its own.
    void run(std::function<void(std::mt19937&)> work) {
        m_threads.emplace_back([this, work, seed = m_threads.size()] {
            std::mt19937 random(static_cast<unsigned>(seed));
            while (!m_isOver) work(random);
        });
    }

private:
    std::atomic<bool> m_isOver{false};
    std::vector<std::thread> m_threads;
};

bool isSound(const VstSound<float>& sound) {
    for (const auto& channel : sound)
        for (const float sample : channel)
            if (!std::isfinite(sample) || std::abs(sample) > 4.0f) return false;
    return true;
}

TEST_F(VstThreads, stateAndParametersMayComeAtAnyTime) {
    VstHost host;
    ASSERT_TRUE(host.open());
    host.resume();
    const VstHost::Chunk state = host.chunk();
    {
        Storm storm;
        for (int i = 0; i < 4; ++i)
            storm.run([&host](std::mt19937& random) {
                const auto index = static_cast<std::int32_t>(random() % (kHostParamCount + 1));
                // Gains of at most 0 dB.
                host.set(index, static_cast<float>(random() % 512) / 1023.0f);
                host.get(index);
                host.textOf(effGetParamDisplay, kVstMaxParamStrLen, index);
            });
        storm.run([&](std::mt19937& random) {
            switch (random() % 5) {
            case 0: EXPECT_EQ(host.setChunk(state), 1); break;
            case 1: EXPECT_FALSE(host.chunk(random() % 2 == 0).empty()); break;
            case 2: host.call(effSetProgram, 0, static_cast<std::intptr_t>(random() % 8)); break;
            case 3: host.setProgramName("Name " + std::to_string(random())); break;
            default: host.programName();
            }
        });
        storm.run([&](std::mt19937& random) { host.call(effSetProcessPrecision, 0, random() % 2); });
        const VstSound<float> tone = VstHost::tone<float>(64);
        for (int i = 0; i < 600; ++i) ASSERT_TRUE(isSound(host.play(tone))) << i;
    }
    // The state was taken at the first program.
    host.call(effSetProgram, 0, 0);
    EXPECT_EQ(host.setChunk(state), 1);
    EXPECT_EQ(host.get(kHardness), 1.0f);
    EXPECT_EQ(host.chunk(), state);
}

TEST_F(VstThreads, carelessHostsAreKeptInOrder) {
    VstHost host;
    host.product = "Wavelab";
    ASSERT_TRUE(host.open());
    Storm storm;
    storm.run([&host](std::mt19937& random) {
        if (random() % 2 == 0)
            host.suspend();
        else
            host.resume(random() % 2 == 0 ? 44100.0f : 48000.0f);
    });
    const VstSound<float> tone = VstHost::tone<float>(64);
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(isSound(host.play(tone))) << i;
}

TEST_F(VstThreads, instancesComeAndGoOnSeveralThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([] {
            for (int k = 0; k < 5; ++k) {
                AEffect* const effect =
                    makeEffect([](AEffect*, std::int32_t opcode, std::int32_t, std::intptr_t, void*,
                                  float) -> std::intptr_t { return opcode == audioMasterVersion ? 2400 : 0; });
                ASSERT_NE(effect, nullptr);
                effect->dispatcher(effect, effMainsChanged, 0, 1, nullptr, 0.0f);
                effect->processReplacing(effect, nullptr, nullptr, 64);
                effect->dispatcher(effect, effClose, 0, 0, nullptr, 0.0f);
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(CProcessInstance::liveCount(), 0);
}

// A host that waits, inside of what it is told, for a thread that asks in turn.
TEST_F(VstThreads, theHostMayWaitForAnotherThreadWithinACall) {
    VstHost host;
    ASSERT_TRUE(host.open());
    int asked = 0;
    host.onCall = [&](std::int32_t, std::int32_t) {
        if (asked++ > 0) return;
        std::thread([&host] {
            host.chunk();
            host.set(kHardness, 0.5f);
            host.call(effSetProgram, 0, 1);
        }).join();
    };
    host.setProgramName("New");
    EXPECT_GT(asked, 0);
}

}  // namespace
}  // namespace brt
