// SPDX-License-Identifier: LicenseRef-Halyard
// Presets, histories and programs while windows, a host and the audio thread are at work.
#include <atomic>
#include <barrier>
#include <random>
#include <thread>

#include "PresetFixture.h"

namespace brt {
namespace {

constexpr int kVoices = 4;  // parameters that presets alone write, each with the same value

class PresetThreads : public PresetFixture {
protected:
    void SetUp() override {
        PresetFixture::SetUp();
        for (int i = 0; i < kVoices; ++i) m_voices.push_back(&param(voice(i).c_str(), "modMain.gain"));
        for (const char* const name : {"gain", "single", "source", "doubled", "modHal.hardness"}) {
            m_knobNames.push_back(kMain + std::string(name));
            m_knobs.push_back(&mod(name));
        }
        CAudioPreset preset;
        for (int i = 0; i < 2; ++i) {
            fill(preset, i);
            m_presets.push_back(bytesOf(preset));
        }
        EXPECT_EQ(activate(master(), m_presets[0]), "");
    }

    static std::string voice(int index) { return kMain + ("voice" + std::to_string(index)); }
    static void fill(CAudioPreset& preset, int index) {
        preset.clear();
        preset.setName(CString("qzkd:N").append(CStringView(std::to_string(index))));
        for (int i = 0; i < kVoices; ++i)
            put(preset, ("voice" + std::to_string(i)).c_str(), {{index * 100.0}, {index * 100.0}});
        putText(preset, "preset-name", "N" + std::to_string(index));
        put(preset, "gain", {{index * 10.0}});
    }

    // A window that mirrors the knobs and the programs.
    struct Mirrors : CParamInterfaceRegistryListener {
        Mirrors(CObject*& instance, const std::vector<std::string>& names) : window(instance), mirrors(names.size()) {
            for (std::size_t i = 0; i < names.size(); ++i)
                handles.push_back(window.client().addParamListener(CStringView(names[i]), mirrors[i]));
            registry = window.client().addRegistryListener("registry", *this);
        }
        void onRegistryUpdate(bool isFactory, const CString&, const CStringList& names, int index) override {
            if (isFactory) return;
            current = index;
            programs.clear();
            for (const CString* const name : names) programs.push_back(text(*name));
        }

        Window window;
        std::vector<CParamMirror> mirrors;
        std::vector<ParamHandle> handles;
        ParamHandle registry = 0;
        int current = -1;
        std::vector<std::string> programs;
    };
    void expectTrueValues(Mirrors& mirrors) {
        mirrors.window.tick();
        for (std::size_t i = 0; i < m_knobs.size(); ++i)
            EXPECT_EQ(describe(mirrors.mirrors[i].values()), describe(m_knobs[i]->control())) << m_knobNames[i];
        EXPECT_EQ(mirrors.current, master().getCurrentProgram());
        ASSERT_EQ(mirrors.programs.size(), 7U);
        for (int i = 0; i < 7; ++i)
            EXPECT_EQ(mirrors.programs[static_cast<std::size_t>(i)], text(master().getProgramName(i))) << i;
        CStringList labels;
        int position = 0;
        base().getHistory(labels, position);
        EXPECT_EQ(mirrors.window.client().undoPosition(), position);
        EXPECT_EQ(mirrors.window.client().undoLabels().count(), labels.count());
    }

    // One thread's part, until its rounds are over.
    template <class Round>
    void work(int rounds, unsigned seed, Round round) {
        m_threads.emplace_back([this, rounds, seed, round] {
            std::mt19937 random(seed);
            for (int i = 0; i < rounds; ++i) round(random);
            ++m_finished;
        });
        ++m_started;
    }
    void waitForOthers() {
        while (m_finished < m_started) std::this_thread::yield();
    }

    std::vector<CAudioParam*> m_voices;
    std::vector<CAudioParam*> m_knobs;
    std::vector<std::string> m_knobNames;
    std::vector<Bytes> m_presets;
    std::vector<std::thread> m_threads;
    std::atomic<int> m_started{0};
    std::atomic<int> m_finished{0};
};

TEST_F(PresetThreads, presetsAreHeardWholeAndEverybodyEndsWithTheTrueValues) {
    env().setActive(true);
    std::atomic<bool> isOver{false};
    std::atomic<int> halves{0};
    std::thread audio([&] {
        while (!isOver) {
            beginBlock(0.0);
            for (const CAudioParam* const other : m_voices)
                for (const int group : {0, 1})
                    if (other->audio().value(group, 0, -1.0) != m_voices[0]->audio().value(0, 0, -1.0)) ++halves;
            std::this_thread::yield();
        }
    });
    work(1500, 1, [this](std::mt19937& random) {  // loads
        EXPECT_EQ(activate(master(), m_presets[random() % 2]), "");
        if (random() % 4 == 0) master().exchangeShadowPreset();
        if (random() % 16 == 0) master().updateShadowPreset();
    });
    work(3000, 2, [this](std::mt19937& random) {  // undoes
        base().setHistoryPos(static_cast<int>(random() % 33), true);
        if (random() % 8 == 0) edit(mod("single"), static_cast<double>(random() % 100), 0, "edit", true, 1);
    });
    work(4000, 3, [this](std::mt19937& random) {  // a host that automates
        m_knobs[random() % m_knobs.size()]->setFloat(static_cast<double>(random() % 1000), 0, nullptr);
    });
    work(1000, 4, [this](std::mt19937& random) {  // a host's calls about programs
        EXPECT_TRUE(master().getProgramName(static_cast<int>(random() % 7)).startsWith("qzkd:"));
        EXPECT_TRUE(master().getCurrentProgramName().startsWith("qzkd:"));
        if (random() % 16 == 0) mod("preset-name").setString(0, 0, "Host", nullptr);
        if (random() % 16 == 0) master().renamePreset(static_cast<int>(random() % 7), "Named", nullptr);
        CAudioPreset preset;
        EXPECT_EQ(acquire(master(), preset), "");
    });
    work(40, 5, [this](std::mt19937& random) {  // a window that comes and goes
        Mirrors mirrors(instance(), m_knobNames);
        CAudioInterfaceClient& client = mirrors.window.client();
        const std::vector<double> moved{static_cast<double>(random() % 1000)};
        client.changeParam(mirrors.handles[0], update(*m_knobs[0], moved), client.createUndoData("left open"));
        client.requestBank(mirrors.registry, 1, false);
        mirrors.window.tick();
    });
    std::thread ui([&] {
        Mirrors mirrors(instance(), m_knobNames);
        CAudioInterfaceClient& client = mirrors.window.client();
        std::mt19937 random(6);
        for (int i = 0; i < 1500; ++i) {
            const std::size_t which = random() % m_knobs.size();
            const ParamHandle undo = client.createUndoData("drag");
            const std::vector<double> moved{static_cast<double>(random() % 1000)};
            client.changeParam(mirrors.handles[which], update(*m_knobs[which], moved), undo);
            if (i % 3 != 0) client.submitUndoData(undo);
            if (i % 3 == 0) client.removeUndoData(undo);
            if (i % 50 == 0) client.activateFactoryPreset(mirrors.registry, 0);
            if (i % 100 == 0) client.activateDefaultPreset(mirrors.registry);
            if (i % 4 == 0) mirrors.window.tick();
        }
        waitForOthers();
        expectTrueValues(mirrors);
    });
    for (std::thread& thread : m_threads) thread.join();
    ui.join();
    isOver = true;
    audio.join();
    EXPECT_EQ(halves, 0);
    EXPECT_EQ("qzkd:" + shown("preset-name"), text(master().getCurrentProgramName()));
    env().setActive(false);
    beginBlock(0.0);
    EXPECT_EQ(heard(), state());
}

// Programs come and go while their names are changed from all sides.
TEST_F(PresetThreads, programsAndTheirNames) {
    CAudioPresetBank bank;
    for (int i = 0; i < 3; ++i) addProgram(bank, "Bank" + std::to_string(i), i);
    const Bytes bankBytes = bytesOf(bank);
    work(600, 1, [this](std::mt19937& random) {
        master().setCurrentProgram(static_cast<int>(random() % 7), nullptr);
        EXPECT_NE(text(master().getCurrentProgramName()), "");
    });
    work(600, 2, [this](std::mt19937& random) {
        EXPECT_EQ(activate(master(), m_presets[random() % 2]), "");
        base().setHistoryPos(0, true), base().setHistoryPos(1, true);
    });
    work(2000, 3, [this](std::mt19937& random) {
        mod("preset-name").setString(0, 0, CStringView("T" + std::to_string(random() % 100)), nullptr);
    });
    work(300, 4, [this, &bankBytes](std::mt19937& random) {
        EXPECT_EQ(activateBank(master(), bankBytes), "");
        master().renamePreset(static_cast<int>(random() % 7), "R", nullptr);
        EXPECT_FALSE(sessionBank(master()).empty());
    });
    std::thread ui([&] {
        Mirrors mirrors(instance(), m_knobNames);
        for (int i = 0; i < 300; ++i) {
            mirrors.window.client().setCurrentProgram(mirrors.registry, i % 7);
            mirrors.window.tick();
        }
        waitForOthers();
        expectTrueValues(mirrors);
        EXPECT_EQ("qzkd:" + shown("preset-name"), text(master().getCurrentProgramName()));
    });
    for (std::thread& thread : m_threads) thread.join();
    ui.join();
    EXPECT_EQ(heard(), state());
}

// Two names at one time: whichever is last, it is shown and it is the program's.
TEST_F(PresetThreads, namesThatComeAtOnceEndAsOne) {
    constexpr int kRounds = 600;
    std::barrier<> meet(2);
    work(kRounds, 1, [this, &meet](std::mt19937& random) {
        CAudioParam& name = mod("preset-name");
        const int delay = static_cast<int>(random() % 2000);
        meet.arrive_and_wait();
        for (volatile int i = 0; i < delay;) i = i + 1;
        name.setString(0, 0, "T", nullptr);
        meet.arrive_and_wait();
    });
    for (int round = 0; round < kRounds; ++round) {
        meet.arrive_and_wait();
        master().renamePreset(0, "R", nullptr);
        meet.arrive_and_wait();
        EXPECT_EQ("qzkd:" + shown("preset-name"), text(master().getCurrentProgramName())) << round;
    }
    for (std::thread& thread : m_threads) thread.join();
}

}  // namespace
}  // namespace brt
