// SPDX-License-Identifier: LicenseRef-Halyard
// Histories: steps, merging, what clients gather in open records, and A/B.
#include <functional>
#include <random>

#include "PresetFixture.h"

namespace brt {
namespace {

using Names = std::vector<std::string>;

class PresetUndo : public PresetFixture {
protected:
    // A change as a wheel makes it: with the merge id of its knob.
    void wheel(CAudioParam& param, double value, int mergeId = 5) { edit(param, value, 0, "wheel", true, mergeId); }
};

TEST_F(PresetUndo, aFullHistoryLosesItsOldestStep) {
    for (int i = 1; i <= 33; ++i) edit(mod("gain"), i, 0, std::to_string(i).c_str());
    CStringList labels;
    int position = 0;
    base().getHistory(labels, position);
    EXPECT_EQ(labels.count(), 33);
    EXPECT_EQ(text(labels[0]) + " " + text(labels[1]) + " " + text(labels[32]), "Undo history start 2 33");
    EXPECT_EQ(position, 32);
    base().setHistoryPos(0, true);
    EXPECT_EQ(value("gain"), 1);
    for (const int none : {-1, 33, INT_MIN, INT_MAX}) base().setHistoryPos(none, true);
    EXPECT_EQ(value("gain"), 1);
}

TEST_F(PresetUndo, theCountHasALeast) {
    int index = 0;
    for (const auto& [wanted, kept] :
         {std::pair("2", 4), std::pair("4", 4), std::pair("5", 5), std::pair("", 4), std::pair("-7", 4)}) {
        const std::string path = "wire" + std::to_string(index);
        make<CParamInterfaceBaseConnectorUni>("other:param-interface-base-connector-uni", path.c_str(), {});
        CAttrMap map;
        map.findOrInsert("param-collector").setText("^param-collector");
        map.findOrInsert("viz-collector").setText("^viz-collector");
        map.findOrInsert("base-connector").setText(CStringView("^" + path));
        if (*wanted != 0) map.findOrInsert("undo-count-max").setText(wanted);
        CAudioInterfaceBase* other = nullptr;
        const std::string name = "base" + std::to_string(index++);
        ASSERT_EQ(messageOf(root().createChild(other, "audio:interface-base", CStringView(name), kTemplateOptional,
                                               nullptr, &map)),
                  "");
        for (int i = 0; i < 9; ++i) {
            auto record = std::make_unique<CAudioParamUndoRecord>("step");
            mod("gain").setFloatAt(0, 0, i, nullptr, {.undo = record.get()});
            other->submit(std::move(record));
        }
        CStringList labels;
        int position = 0;
        other->getHistory(labels, position);
        EXPECT_EQ(position, kept) << wanted;
    }
}

TEST_F(PresetUndo, aStepBehindAnUndoneOneTakesItsPlace) {
    edit(mod("gain"), 1, 0, "a"), edit(mod("gain"), 2, 0, "b");
    base().setHistoryPos(1, true);
    edit(mod("gain"), 1, 0, "same");
    EXPECT_EQ(history(), "a|same@2") << "one that changes nothing counts too";
    base().setHistoryPos(0, true);
    mod("gain").setFloat(50, 0, nullptr);
    EXPECT_EQ(history(), "a|same@0") << "nobody recorded that";
    edit(mod("gain"), 3, 0, "c");
    EXPECT_EQ(history(), "c@1");
    edit(mod("plain"), 3, 0, "nothing that can be undone");
    EXPECT_EQ(history(), "c@1");
    base().setHistoryPos(0, true);
    EXPECT_EQ(value("gain"), 50);
    EXPECT_EQ(heard(), state());
}

TEST_F(PresetUndo, wheelStepsMerge) {
    CAudioParam& gain = mod("gain");
    wheel(gain, 1), wheel(gain, 2), wheel(gain, 3);
    EXPECT_EQ(history(), "wheel@1");
    base().setHistoryPos(0, true);
    EXPECT_EQ(value("gain"), 0);
    base().setHistoryPos(1, true);
    EXPECT_EQ(value("gain"), 3);

    edit(gain, 4), wheel(gain, 5), wheel(gain, 6);
    EXPECT_EQ(history(), "wheel|edit|wheel@3") << "another change breaks the chain";
    wheel(gain, 7, 6);
    EXPECT_EQ(history(), "wheel|edit|wheel|wheel@4") << "another id";
    wheel(mod("single"), 1, 6);
    EXPECT_EQ(history(), "wheel|edit|wheel|wheel|wheel@5") << "another parameter";
    edit(mod("single"), 2, 0, "both", true, 6);
    EXPECT_EQ(history(), "wheel|edit|wheel|wheel|wheel@5");

    // With something to redo there is no merging: that would belong to no state.
    base().setHistoryPos(1, true);
    wheel(gain, 8);
    EXPECT_EQ(history(), "wheel|wheel@2");
    base().setHistoryPos(1, true);
    EXPECT_EQ(value("gain"), 3);

    // Of another count or group there is none either, and both stay as they are.
    const auto two = [&](int group) {
        auto record = std::make_unique<CAudioParamUndoRecord>("two", true, 5);
        gain.setFloatAt(group, 1, 9, nullptr, {.undo = record.get()});
        base().submit(std::move(record));
    };
    base().setHistoryPos(2, true);
    two(0), two(1);
    EXPECT_EQ(history(), "wheel|wheel|two|two@4");
    base().setHistoryPos(3, true);
    EXPECT_EQ(gain.control().elementCount(1), 0);
    base().setHistoryPos(2, true);
    EXPECT_EQ(values(gain.control()), std::vector<double>{8});
}

TEST_F(PresetUndo, undoOfAPresetTakesAwayTheGroupsThatItBrought) {
    CAudioPreset preset("qzkd:Three");
    put(preset, "gain", {{1}, {2, 3}, {4}});
    const State before = state();
    EXPECT_EQ(activate(master(), preset), "");
    EXPECT_EQ(mod("gain").control().elementCount(1), 2);
    base().setHistoryPos(0, true);
    EXPECT_EQ(state(), before);
    EXPECT_EQ(mod("gain").control().elementCount(1), 0);
    EXPECT_EQ(value("gain", 1), 10) << "reads defaults";
    EXPECT_EQ(text(master().getCurrentProgramName()), "qzkd:P0");
    EXPECT_EQ(heard(), state());
}

TEST_F(PresetUndo, eachProgramAndEachSideHasItsOwnHistory) {
    edit(mod("gain"), 1, 0, "of 0");
    master().setCurrentProgram(2, nullptr);
    EXPECT_EQ(history(), "@0");
    edit(mod("gain"), 2, 0, "of 2");
    edit(mod("gain"), 3, 0, "of 2");
    base().setHistoryPos(1, true);
    master().setCurrentProgram(0, nullptr);
    EXPECT_EQ(history(), "of 0@1");
    base().setHistoryPos(0, true);
    EXPECT_EQ(value("gain"), 0);
    master().setCurrentProgram(2, nullptr);
    EXPECT_EQ(history(), "of 2|of 2@1");
    base().setHistoryPos(2, true);
    EXPECT_EQ(value("gain"), 3);

    // The first exchange is of two equal sides, each with a copy of the history.
    const State before = state();
    master().exchangeShadowPreset();
    EXPECT_EQ(state(), before);
    EXPECT_EQ(history(), "of 2|of 2@2");
    edit(mod("gain"), 77, 0, "of B");
    mod("persistent").setFloat(7, 0, nullptr);
    master().renamePreset(2, "B", nullptr);
    master().exchangeShadowPreset();
    EXPECT_EQ(value("gain"), 3);
    EXPECT_EQ(value("persistent"), 7) << "stays with the session";
    EXPECT_EQ(text(master().getCurrentProgramName()) + shown("preset-name"), "qzkd:P2P2");
    EXPECT_EQ(history(), "of 2|of 2@2");
    base().setHistoryPos(0, true);
    EXPECT_EQ(value("gain"), 2) << "of this side";
    master().exchangeShadowPreset();
    EXPECT_EQ(value("gain"), 77);
    EXPECT_EQ(text(master().getCurrentProgramName()) + shown("preset-name"), "qzkd:BB");
    EXPECT_EQ(history(), "of 2|of 2|of B|Program name change@4");

    // Now both are as this one.
    master().updateShadowPreset();
    edit(mod("gain"), 88, 0, "later");
    master().exchangeShadowPreset();
    EXPECT_EQ(value("gain"), 77);
    base().setHistoryPos(2, true);
    EXPECT_EQ(value("gain"), 3);
    io().exchangeShadowPreset(), io().updateShadowPreset();
    EXPECT_EQ(heard(), state());
}

// Records that clients gather.
class PresetUndoOpen : public PresetUndo {
protected:
    void SetUp() override {
        PresetUndo::SetUp();
        base().setDataProvider(&m_host);
        m_client = std::make_unique<RawClient>(connector());
        m_client->send(toBase::kListenParam, CStringView("plugin.modMain.gain"), m_client->handle(1));
    }
    void TearDown() override {
        m_client.reset();
        base().setDataProvider(nullptr);
        PresetUndo::TearDown();
    }

    void open(int number, const char* label = "drag") {
        EXPECT_EQ(m_client->send(toBase::kCreateUndoData, m_client->handle(number), CStringView(label), false, -1), "");
    }
    void drag(int number, double value) {
        EXPECT_EQ(m_client->send(toBase::kChangeParam, m_client->handle(1), m_client->handle(number),
                                 update(mod("gain"), {&value, &value + 1})),
                  "");
    }
    void submit(int number, const char* label = "") {
        EXPECT_EQ(m_client->send(toBase::kSubmitUndoData, m_client->handle(number), CStringView(label)), "");
    }

    const std::string m_begin = "begin plugin.modMain.gain 0";
    const std::string m_end = "end plugin.modMain.gain 0";
    HostProbe m_host;
    std::unique_ptr<RawClient> m_client;
};

TEST_F(PresetUndoOpen, aDragIsOneStepAndOneGesture) {
    open(1);
    for (const double moved : {1.0, 2.0, 3.0}) drag(1, moved);
    EXPECT_EQ(m_host.take(), Names{m_begin});
    EXPECT_EQ(history(), "@0");
    submit(1, "moved");
    EXPECT_EQ(m_host.take(), Names{m_end});
    EXPECT_EQ(history(), "moved@1");
    base().setHistoryPos(0, true);
    EXPECT_EQ(value("gain"), 0);

    // Handles that nobody knows: the change counts, and there is nothing to submit.
    drag(1, 9);
    submit(1), submit(99);
    EXPECT_EQ(m_client->send(toBase::kRemoveUndoData, m_client->handle(99)), "");
    EXPECT_EQ(value("gain"), 9);
    EXPECT_EQ(history(), "moved@0");
    open(2), submit(2);
    EXPECT_EQ(history(), "moved@0") << "nothing changed";
    EXPECT_EQ(m_host.take(), Names{});
}

TEST_F(PresetUndoOpen, whatEndsARecordEndsItsGestures) {
    open(1), drag(1, 1);
    open(1, "other");
    EXPECT_EQ(m_host.take(), (Names{m_begin, m_end})) << "replaced";
    drag(1, 2), submit(1);
    EXPECT_EQ(history(), "other@1");
    open(1), drag(1, 3);
    EXPECT_EQ(m_client->send(toBase::kRemoveUndoData, m_client->handle(1)), "");
    EXPECT_EQ(m_host.take(), (Names{m_begin, m_end, m_begin, m_end})) << "removed";
    open(1), drag(1, 4);
    RawClient stranger(connector());
    EXPECT_EQ(stranger.send(toBase::kCreateUndoData, stranger.handle(1), CStringView("of another"), false, -1), "");
    m_client.reset();
    EXPECT_EQ(m_host.take(), (Names{m_begin, m_end})) << "the window has gone";
    EXPECT_EQ(history(), "other@1");
    EXPECT_EQ(value("gain"), 4) << "what was heard stays";
}

TEST_F(PresetUndoOpen, aChangeOfSidesEmptiesRecords) {
    CAudioPresetBank bank;
    addProgram(bank, "New", 20);
    const std::function<void()> changes[] = {
        [&] { master().setCurrentProgram(1, nullptr); },
        [&] { master().setCurrentProgram(0, nullptr); },
        [&] { EXPECT_EQ(activateBank(master(), bytesOf(bank)), ""); },
        [&] { master().exchangeShadowPreset(); },
    };
    for (const auto& change : changes) {
        open(1), drag(1, 1);
        change();
        EXPECT_EQ(m_host.take(), (Names{m_begin, m_end}));
        const double before = value("gain");
        const std::string steps = history();
        drag(1, 2);
        EXPECT_EQ(m_host.take(), Names{m_begin}) << "the handle is still good";
        submit(1);
        EXPECT_NE(history(), steps);
        base().setHistoryPos(0, true);
        EXPECT_EQ(value("gain"), before);
        m_host.take();
    }
}

TEST_F(PresetUndoOpen, aResetTakesHoldOfWhatItWrites) {
    const auto reset = [&](int handle, int group, int element, const Names& elements) {
        open(1);
        EXPECT_EQ(
            m_client->send(toBase::kResetParam, m_client->handle(handle), group, element, m_client->handle(1), false),
            "");
        EXPECT_EQ(m_host.take(), elements) << group << " " << element;
        submit(1);
        m_host.take();
    };
    const std::string second = "begin plugin.modMain.gain 1";
    reset(1, 0, 0, {m_begin});
    mod("gain").setFloatAt(0, 3, 1, nullptr);
    reset(1, 0, 1, {second});
    reset(1, 0, 3, {});
    mod("gain").setFloatAt(2, 1, 1, nullptr);
    reset(1, 2, 1, {});
    reset(1, 0, -1, {m_begin, second});
    mod("gain").setFloatAt(0, 1, 1, nullptr);
    reset(1, -1, 5, {m_begin, second});
    reset(1, 31, 0, {});

    const std::string single = "begin plugin.modMain.single 0";
    EXPECT_EQ(m_client->send(toBase::kListenParam, CStringView("plugin.modMain.single"), m_client->handle(2)), "");
    for (const int group : {-1, 0, 4}) {
        mod("single").setFloat(1, 0, nullptr);
        reset(2, group, -1, {single});
    }
    reset(2, 4, 0, {single});
}

// Whatever a user does, each position of the history is a state of its own.
class PresetUndoProperty : public PresetUndo {
protected:
    void TearDown() override {
        m_preset.reset();
        PresetUndo::TearDown();
    }

    CAudioPreset& randomPreset(std::mt19937& random) {
        m_preset->clear();
        m_preset->setName(CString("qzkd:R").append(CStringView(std::to_string(random() % 100))));
        for (const char* const key : {"gain", "modHal.hardness", "source", "doubled", "io-params.grouping", "single"}) {
            if (random() % 3 == 0) continue;
            Groups groups(std::string(key) == "single" ? 1 : random() % 4);
            for (auto& group : groups)
                for (auto i = random() % 3; i > 0; --i) group.push_back(static_cast<double>(random() % 100));
            CAudioParamFormat format;
            format.isSingleGroup = std::string(key) == "single";
            put(*m_preset, key, groups, format);
        }
        return *m_preset;
    }

    // One step: true if it is a new one for sure; others may merge, or change nothing, and have a label of their own.
    bool doSomething(std::mt19937& random, const char* label) {
        CAudioParam& param = *m_params[random() % m_params.size()];
        const auto upTo = [&random](unsigned end) { return static_cast<int>(random() % end); };
        const int choice = upTo(8);
        if (choice == 0) {
            edit(param, upTo(100), upTo(4), label);
        } else if (choice == 1) {
            edit(param, upTo(100), 0, label, true, upTo(2));
        } else if (choice == 2) {
            auto record = std::make_unique<CAudioParamUndoRecord>(label);
            param.resetToDefault(upTo(4) - 1, upTo(3) - 1, {.undo = record.get()}, upTo(2) == 0);
            base().submit(std::move(record));
        } else if (choice == 3) {
            EXPECT_EQ(activate(master(), randomPreset(random)), "");
        } else if (choice == 4) {
            m_preset->clear();
            m_preset->setName("BTIO:R");
            put(*m_preset, "grouping", {{static_cast<double>(upTo(100))}});
            EXPECT_EQ(activate(io(), *m_preset, upTo(3) - 1), "");
        } else if (choice == 5) {
            master().activateFactoryPreset(upTo(7));
        } else if (choice == 6) {
            master().masterReset();
        } else {
            const std::string name = "N" + std::to_string(upTo(100));
            master().renamePreset(master().getCurrentProgram(), CStringView(name), nullptr);
        }
        return choice >= 3;
    }
    std::string lastLabel() {
        CStringList labels;
        int position = 0;
        base().getHistory(labels, position);
        return text(labels[labels.count() - 1]);
    }
    int position() {
        CStringList labels;
        int position = 0;
        base().getHistory(labels, position);
        return position;
    }
    State named() {
        State result = state();
        result["name"] = {text(master().getCurrentProgramName())};
        return result;
    }

    std::optional<CAudioPreset> m_preset{std::in_place};
    std::vector<CAudioParam*> m_params;
};

// The states that a history may lead to, by program and side.
TEST_F(PresetUndoProperty, everyPositionIsItsOwnState) {
    for (const char* const name : {"gain", "single", "source", "doubled", "modHal.hardness", "io-params.grouping"})
        m_params.push_back(&mod(name));
    std::mt19937 random(11);
    std::vector<State> programs[7];
    for (auto& states : programs) states.resize(1);
    programs[0] = {named()};
    std::vector<State>* live = &programs[0];
    std::vector<State> shadow;
    for (int round = 0; round < 1500; ++round) {
        const int choice = static_cast<int>(random() % 40);
        if (choice == 0) {
            const int index = static_cast<int>(random() % 7);
            (*live)[static_cast<std::size_t>(position())] = named();
            master().setCurrentProgram(index, nullptr);
            live = &programs[index];
            State& arrived = (*live)[static_cast<std::size_t>(position())];
            if (arrived.empty()) arrived = named();
            EXPECT_EQ(named(), arrived);
        } else if (choice == 1) {
            if (shadow.empty()) shadow = *live;
            master().exchangeShadowPreset();
            live->swap(shadow);
        } else if (choice == 2) {
            master().updateShadowPreset();
            shadow = *live;
        } else if (choice < 10) {
            base().setHistoryPos(static_cast<int>(random() % live->size()), true);
        } else {
            const int before = position();
            const std::string label = std::to_string(round);
            if (doSomething(random, label.c_str()) || lastLabel() == label) {
                live->resize(static_cast<std::size_t>(before) + 1);
                live->push_back(named());
                if (live->size() > 33) live->erase(live->begin());
            } else if (before > 0 && before + 1 == static_cast<int>(live->size())) {
                live->back() = named();
            }
        }
        ASSERT_EQ(named(), (*live)[static_cast<std::size_t>(position())]) << round << " " << choice << " " << history();
        ASSERT_EQ(heard(), state()) << round;
    }
    for (int i = static_cast<int>(live->size()) - 1; i >= 0; --i) {
        base().setHistoryPos(i, true);
        EXPECT_EQ(named(), (*live)[static_cast<std::size_t>(i)]) << i;
    }
    base().setHistoryPos(static_cast<int>(live->size()) - 1, true);
    EXPECT_EQ(named(), live->back());
    base().setHistoryPos(0, true);
    EXPECT_EQ(named(), live->front());
}

}  // namespace
}  // namespace brt
