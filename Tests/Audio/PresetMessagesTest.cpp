// SPDX-License-Identifier: LicenseRef-Halyard
// Messages about presets, programs and histories: what they do, what comes back, and what bad ones must not do.
#include <functional>

#include "PresetFixture.h"

namespace brt {
namespace {

using Names = std::vector<std::string>;

class PresetMessages : public PresetFixture {
protected:
    void SetUp() override {
        PresetFixture::SetUp();
        m_client = std::make_unique<RawClient>(connector());
        EXPECT_EQ(client().send(toBase::kListenRegistry, CStringView("registry"), registryHandle()), "");
        EXPECT_EQ(client().send(toBase::kListenParam, CStringView("plugin.modMain.gain"), client().handle(1)), "");
        m_first = client().take();
    }
    void TearDown() override {
        m_first.clear();
        m_client.reset();
        PresetFixture::TearDown();
    }

    struct News {
        bool isFactory;
        std::string id;
        int current;
        Names names;
        bool operator==(const News&) const = default;
    };
    static News readNews(Received& message, ParamHandle handle) {
        EXPECT_EQ(text(message.name), "update-registry");
        EXPECT_EQ(message.next<ParamHandle>(), handle);
        News news{message.next<bool>(), text(message.next<CString>()), message.next<int>(), {}};
        CStringList names;
        EXPECT_EQ(messageOf(readField(message.reader(), names)), "");
        for (const CString* const name : names) news.names.push_back(text(*name));
        EXPECT_TRUE(message.isAtEnd());
        return news;
    }
    static std::string readHistory(Received& message) {
        EXPECT_EQ(text(message.name), "update-undo-history");
        std::string result = std::to_string(message.next<int>());
        CStringList labels;
        EXPECT_EQ(messageOf(readField(message.reader(), labels)), "");
        for (const CString* const label : labels) result += "|" + text(*label);
        return result;
    }
    // The last news of that name.
    Received* last(std::deque<Received>& messages, const char* name) {
        Received* found = nullptr;
        for (Received& message : messages)
            if (text(message.name) == name) found = &message;
        return found;
    }

    RawClient& client() { return *m_client; }
    ParamHandle registryHandle() { return client().handle(1); }

    std::unique_ptr<RawClient> m_client;
    std::deque<Received> m_first;
};

TEST_F(PresetMessages, aListenerHearsOfProgramsAndTheirNames) {
    const Names names{"qzkd:P0", "qzkd:P1", "qzkd:P2", "qzkd:P3", "qzkd:P4", "qzkd:P5", "qzkd:P6"};
    ASSERT_GE(m_first.size(), 2U);
    EXPECT_EQ(readNews(m_first[0], registryHandle()), (News{false, "qzkd", 0, names}));
    EXPECT_EQ(readNews(m_first[1], registryHandle()), (News{true, "qzkd", 0, names}));
    EXPECT_EQ(client().send(toBase::kListenRegistry, CStringView("registry"), registryHandle()), "") << "known";
    EXPECT_EQ(client().send(toBase::kListenRegistry, CStringView("registry-io"), client().handle(2)), "");
    std::deque<Received> messages = client().take();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(readNews(messages[0], client().handle(2)), (News{false, "BTIO", -1, {}}));

    Names renamed = names;
    EXPECT_EQ(client().send(toBase::kSetCurrentProgram, registryHandle(), 4), "");
    renamed[1] = "qzkd:Own";
    EXPECT_EQ(client().send(toBase::kRenamePreset, registryHandle(), 1, CStringView("Own")), "");
    messages = client().take();
    Received* const news = last(messages, "update-registry");
    ASSERT_NE(news, nullptr);
    EXPECT_EQ(readNews(*news, registryHandle()), (News{false, "qzkd", 4, renamed}));
    Received* const steps = last(messages, "update-undo-history");
    ASSERT_NE(steps, nullptr);
    EXPECT_EQ(readHistory(*steps), "0|Undo history start");

    EXPECT_EQ(client().send(toBase::kUnlistenRegistry, registryHandle()), "");
    master().setCurrentProgram(1, nullptr);
    messages = client().take();
    EXPECT_EQ(last(messages, "update-registry"), nullptr);
}

TEST_F(PresetMessages, presetsGoAndCome) {
    CAudioPreset preset("qzkd:Sent");
    put(preset, "gain", {{5}, {6}});
    const auto send = [&](CStringView name, auto... fields) {
        CParamMessage message(name, fields...);
        message.keep(preset.save(message.stream()));
        return client().send(message);
    };
    EXPECT_EQ(send(toBase::kActivatePreset, registryHandle(), -1), "");
    EXPECT_EQ(value("gain", 1), 6);
    EXPECT_EQ(history(), "Master preset activate@1");
    EXPECT_EQ(client().send(toBase::kSetUndoHistoryPos, 0), "");
    EXPECT_EQ(value("gain"), 0);
    EXPECT_EQ(client().send(toBase::kActivateFactoryPreset, registryHandle(), 3), "");
    EXPECT_EQ(send(toBase::kSetDefaultPreset, registryHandle()), "");
    EXPECT_EQ(value("gain"), 3);
    EXPECT_EQ(client().send(toBase::kActivateDefaultPreset, registryHandle()), "");
    EXPECT_EQ(value("gain"), 5);
    EXPECT_EQ(client().send(toBase::kUpdateShadowPreset, registryHandle()), "");
    mod("gain").setFloat(8, 0, nullptr);
    EXPECT_EQ(client().send(toBase::kExchangeShadowPreset, registryHandle()), "");
    EXPECT_EQ(value("gain"), 5);

    client().take();
    EXPECT_EQ(client().send(toBase::kRequestPreset, registryHandle(), 77, true, 2, -1), "");
    EXPECT_EQ(client().send(toBase::kRequestBank, registryHandle(), 78, false), "");
    EXPECT_EQ(client().send(toBase::kRequestPreset, registryHandle(), 79, false, 7, -1),
              "Invalid preset index 7 specified.");
    std::deque<Received> messages = client().take();
    ASSERT_EQ(messages.size(), 2U) << "nothing comes for a program that there isn't";
    for (Received& message : messages) {
        EXPECT_EQ(text(message.name), "registry-data");
        EXPECT_EQ(message.next<ParamHandle>(), registryHandle());
    }
    EXPECT_EQ(messages[0].next<int>(), 77);
    EXPECT_EQ(messages[0].next<int>(), 1);
    EXPECT_EQ(messageOf(preset.load(messages[0].reader())), "");
    EXPECT_EQ(text(preset.name()), "qzkd:P2");
    EXPECT_EQ(messages[1].next<int>(), 78);
    EXPECT_EQ(messages[1].next<int>(), 0);
    CAudioPresetBank bank;
    EXPECT_EQ(messageOf(bank.load(messages[1].reader())), "");
    EXPECT_EQ(bank.count(), 7);
    EXPECT_TRUE(messages[0].isAtEnd() && messages[1].isAtEnd());
}

TEST_F(PresetMessages, handlesThatNobodyKnowsAreErrors) {
    EXPECT_EQ(client().send(toBase::kListenRegistry, CStringView("no-registry"), client().handle(3)), "");
    const State before = state();
    const ParamHandle unknown = client().handle(9);
    const ParamHandle null = client().handle(3);
    const std::string unknownText = "No param registry object '" + std::to_string(unknown) + "' found.";
    const std::string nullText = "Param registry object '" + std::to_string(null) + "' is NULL.";
    for (const auto& [handle, wanted] : {std::pair(unknown, unknownText), std::pair(null, nullText)}) {
        EXPECT_EQ(client().send(toBase::kSetCurrentProgram, handle, 1), wanted);
        EXPECT_EQ(client().send(toBase::kRenamePreset, handle, 0, CStringView("x")), wanted);
        EXPECT_EQ(client().send(toBase::kActivateFactoryPreset, handle, 1), wanted);
        EXPECT_EQ(client().send(toBase::kActivatePreset, handle, -1), wanted);
        EXPECT_EQ(client().send(toBase::kRequestPreset, handle, 1, false, 0, -1), wanted);
        EXPECT_EQ(client().send(toBase::kRequestBank, handle, 1, false), wanted);
        for (const CStringView name : {toBase::kSetDefaultPreset, toBase::kActivateDefaultPreset,
                                       toBase::kExchangeShadowPreset, toBase::kUpdateShadowPreset})
            EXPECT_EQ(client().send(name, handle), wanted);
    }
    for (const ParamHandle handle : {ParamHandle{0}, makeHandle(client().id() + 1, 1)}) {
        EXPECT_EQ(client().send(toBase::kListenRegistry, CStringView("registry"), handle), "");
        EXPECT_EQ(client().send(toBase::kSetCurrentProgram, handle, 1).substr(0, 8), "No param");
    }
    EXPECT_EQ(client().send(toBase::kSetUndoHistoryPos, 5), "");
    EXPECT_EQ(client().send(toBase::kRequestUndoHistory, 99), "");
    EXPECT_EQ(state(), before);
    EXPECT_EQ(history(), "@0");
    EXPECT_EQ(client().takeNames(), Names{});
    const ParamHandle own = registryHandle();
    EXPECT_EQ(client().send(toBase::kUnlistenRegistry, null), "");
    EXPECT_EQ(client().send(toBase::kSetCurrentProgram, null, 1).substr(0, 8), "No param");
    EXPECT_EQ(client().send(toBase::kSetCurrentProgram, own, 1), "");
}

// Every message, cut off after each of its bytes, is an error that changes nothing.
TEST_F(PresetMessages, shortMessagesAreErrors) {
    CAudioPreset preset("qzkd:Sent");
    put(preset, "gain", {{5}});
    const ParamHandle handle = registryHandle();
    const CStringView word("abc");
    CParamMessage withPreset(toBase::kActivatePreset, handle, -1);
    withPreset.keep(preset.save(withPreset.stream()));
    CParamMessage messages[] = {
        CParamMessage(toBase::kCreateUndoData, handle, word, false, 1),
        CParamMessage(toBase::kRemoveUndoData, handle),
        CParamMessage(toBase::kSubmitUndoData, handle, word),
        CParamMessage(toBase::kRequestUndoHistory, client().id()),
        CParamMessage(toBase::kSetUndoHistoryPos, 0),
        CParamMessage(toBase::kListenRegistry, word, client().handle(2)),
        CParamMessage(toBase::kUnlistenRegistry, handle),
        CParamMessage(toBase::kSetCurrentProgram, handle, 1),
        CParamMessage(toBase::kRenamePreset, handle, 0, word),
        CParamMessage(toBase::kActivateFactoryPreset, handle, 1),
        CParamMessage(toBase::kRequestPreset, handle, 1, false, 0, -1),
        CParamMessage(toBase::kRequestBank, handle, 1, false),
        CParamMessage(toBase::kActivateDefaultPreset, handle),
        CParamMessage(toBase::kExchangeShadowPreset, handle),
        CParamMessage(toBase::kUpdateShadowPreset, handle),
    };
    std::vector<CParamMessage*> all{&withPreset};
    for (CParamMessage& message : messages) all.push_back(&message);
    const State before = state();
    for (CParamMessage* const message : all) {
        std::unique_ptr<CParamPacket> packet;
        ASSERT_EQ(messageOf(message->finish(packet)), "");
        for (int size = 0; size < packet->bytes.size(); ++size) {
            CByteBuffer bytes;
            bytes.assign(packet->bytes.data(), size);
            EXPECT_NE(messageOf(connector().processClientData(bytes)), "") << size;
        }
    }
    // A default preset that can't be read is ignored; it has no answer.
    CParamMessage half(toBase::kSetDefaultPreset, handle, 4);
    EXPECT_EQ(client().send(half), "");
    EXPECT_EQ(state(), before);
    EXPECT_EQ(history(), "@0");
    EXPECT_EQ(client().takeNames(), Names{});
}

// Through the real client of a window.
TEST_F(PresetMessages, aWindowFollowsProgramsPresetsAndTheHistory) {
    struct Listener : CParamInterfaceRegistryListener {
        void onRegistryUpdate(bool isFactory, const CString& id, const CStringList& names, int index) override {
            lines.push_back(text(id) + (isFactory ? " ROM " : " ") + text(names[0]) + " " + std::to_string(index));
        }
        void onPresetData(int cookie, std::unique_ptr<CAudioPreset> preset) override {
            lines.push_back(std::to_string(cookie) + " " + text(preset->name()));
            if (whenCome) whenCome();
        }
        void onBankData(int cookie, std::unique_ptr<CAudioPresetBank> bank) override {
            lines.push_back(std::to_string(cookie) + " " + std::to_string(bank->count()));
        }
        Names lines;
        std::function<void()> whenCome;
    };
    Listener listener;
    auto window = std::make_unique<Window>(instance());
    CAudioInterfaceClient& ui = window->client();
    const ParamHandle handle = ui.addRegistryListener("registry", listener);
    window->tick();
    EXPECT_EQ(listener.lines, (Names{"qzkd qzkd:P0 0", "qzkd ROM qzkd:P0 0"}));
    listener.lines.clear();

    ui.renamePreset(handle, 0, "Mine");
    ui.activateFactoryPreset(handle, 6);
    ui.requestPreset(handle, 5, false, 2, -1);
    ui.requestBank(handle, 6, true);
    window->tick();
    EXPECT_EQ(listener.lines.back(), "6 7");
    ASSERT_GE(listener.lines.size(), 3U);
    EXPECT_EQ(*(listener.lines.end() - 2), "5 qzkd:P2");
    EXPECT_EQ(listener.lines.front(), "qzkd qzkd:P6 0");
    EXPECT_EQ(ui.undoPosition(), 2);
    EXPECT_EQ(text(ui.undoLabels()[1]) + "|" + text(ui.undoLabels()[2]), "Program name change|ROM preset activate");
    ui.setUndoHistoryPos(1);
    window->tick();
    EXPECT_EQ(ui.undoPosition(), 1);
    EXPECT_EQ(listener.lines.back(), "qzkd qzkd:Mine 0");

    // What comes behind may find that the listener or the window has gone.
    ui.requestPreset(handle, 7, false, 0, -1);
    ui.requestPreset(handle, 8, false, 0, -1);
    listener.whenCome = [&] { ui.removeRegistryListener(handle); };
    window->tick();
    EXPECT_EQ(listener.lines.back(), "7 qzkd:Mine");
    const ParamHandle next = ui.addRegistryListener("registry", listener);
    ui.requestPreset(next, 9, false, 0, -1);
    ui.requestPreset(next, 10, false, 0, -1);
    listener.whenCome = [&] { window.reset(); };
    window->connector().poll();
    Window::pump();
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(listener.lines.back(), "9 qzkd:Mine");
}

}  // namespace
}  // namespace brt
