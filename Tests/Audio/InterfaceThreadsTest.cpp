// SPDX-License-Identifier: LicenseRef-Halyard
// Windows, a host and the audio thread at once; and what nobody fetches.
#include <atomic>
#include <random>
#include <thread>

#include "InterfaceFixture.h"

namespace brt {
namespace {

constexpr int kParams = 8;
constexpr int kGroups = 3;
constexpr int kElements = 2;

class InterfaceThreads : public InterfaceFixture {
protected:
    void SetUp() override {
        InterfaceFixture::SetUp();
        for (int i = 0; i < kParams; ++i) {
            m_names.push_back("gain" + std::to_string(i));
            m_params.push_back(&param(m_names.back().c_str(), "gain"));
        }
    }

    // A window that mirrors all parameters.
    struct Mirrors {
        Mirrors(CObject*& instance, const std::vector<std::string>& names) : window(instance), mirrors(names.size()) {
            for (std::size_t i = 0; i < names.size(); ++i)
                handles.push_back(window.client().addParamListener(CStringView(names[i]), mirrors[i]));
        }

        Window window;
        std::vector<CParamMirror> mirrors;
        std::vector<ParamHandle> handles;
    };

    void expectTrueValues(Mirrors& mirrors) {
        mirrors.window.tick();
        for (std::size_t i = 0; i < m_params.size(); ++i)
            for (int group = 0; group < kGroups; ++group)
                EXPECT_EQ(values(mirrors.mirrors[i].values(), group), values(m_params[i]->control(), group))
                    << i << " " << group;
    }

    std::vector<std::string> m_names;
    std::vector<CAudioParam*> m_params;
};

TEST_F(InterfaceThreads, aMillionChangesWithoutAPollKeepTheQueueSmall) {
    Mirrors window(instance(), m_names);
#if defined(__SANITIZE_THREAD__)
    constexpr int kChanges = 50000;  // one thread: nothing to be seen but time
#else
    constexpr int kChanges = 1000000;
#endif
    for (int i = 0; i < kChanges; ++i)
        m_params[static_cast<std::size_t>(i % kParams)]->setFloatAt(i / kParams % kGroups, i % kElements, i, nullptr);
    EXPECT_LE(connector().waitingCount(1), kParams * (kGroups + 1) + 8);
    expectTrueValues(window);
}

TEST_F(InterfaceThreads, everyClientEndsWithTheTrueValues) {
    env().setActive(true);
    std::atomic<bool> isOver{false};
    std::atomic<int> waiting{3};
    const auto write = [this](std::mt19937& random, CAudioParam& target) {
        target.setFloatAt(static_cast<int>(random() % kGroups), static_cast<int>(random() % kElements),
                          static_cast<double>(random() % 1000), nullptr);
    };
    std::thread audio([&] {
        while (!isOver) {
            beginBlock(0.0);
            std::this_thread::yield();
        }
    });
    std::thread host([&] {
        std::mt19937 random(1);
        for (int i = 0; i < 20000; ++i) write(random, *m_params[random() % kParams]);
        --waiting;
    });
    // Stays, drags knobs, and looks when all is over.
    std::thread ui([&] {
        Mirrors mirrors(instance(), m_names);
        std::mt19937 random(2);
        for (int i = 0; i < 3000; ++i) {
            const std::size_t which = random() % kParams;
            const std::vector<double> moved{static_cast<double>(random() % 1000)};
            CAudioInterfaceClient& client = mirrors.window.client();
            client.changeParam(mirrors.handles[which],
                               update(*m_params[which], moved, static_cast<int>(random() % kGroups)), 0);
            if (i % 4 == 0) mirrors.window.tick();
        }
        --waiting;
        while (waiting != 0) std::this_thread::yield();
        expectTrueValues(mirrors);
    });
    // Comes and goes.
    std::thread guest([&] {
        std::mt19937 random(3);
        for (int i = 0; i < 60; ++i) {
            Mirrors mirrors(instance(), m_names);
            CAudioInterfaceClient& client = mirrors.window.client();
            const std::vector<double> moved{static_cast<double>(i)};
            client.changeParam(mirrors.handles[0], update(*m_params[0], moved), 0);
            mirrors.window.tick();
        }
        --waiting;
        while (waiting != 0) std::this_thread::yield();
        Mirrors mirrors(instance(), m_names);
        expectTrueValues(mirrors);
    });
    for (std::thread* const thread : {&host, &ui, &guest}) thread->join();
    isOver = true;
    audio.join();
    env().setActive(false);
    beginBlock(0.0);
    beginBlock(0.0);
    for (CAudioParam* const param : m_params)
        for (int group = 0; group < kGroups; ++group)
            EXPECT_EQ(values(param->audio(), group), values(param->control(), group));
}

}  // namespace
}  // namespace brt
