// SPDX-License-Identifier: LicenseRef-Halyard
// A window's client: what it learns, what it asks, and what its listeners may do.
#include <functional>

#include "Core/EventFixture.h"
#include "InterfaceFixture.h"

namespace brt {
namespace {

// A mirror that does what a test wants when it hears.
class Listener final : public CParamMirror {
public:
    void onParamInfo(std::unique_ptr<CAudioParamInfo> info) override {
        ++infoCount;
        CParamMirror::onParamInfo(std::move(info));
        if (whenInfo) std::exchange(whenInfo, {})();
    }
    void onParamUpdate(const CAudioParamUpdate& update) override {
        ++updateCount;
        CParamMirror::onParamUpdate(update);
        if (whenUpdate) std::exchange(whenUpdate, {})();
    }

    int infoCount = 0;
    int updateCount = 0;
    std::function<void()> whenInfo;
    std::function<void()> whenUpdate;
};

class VizProbe final : public CAudioInterfaceVizProcessor {
public:
    void onStopViz() override { journal.push_back("stop"); }
    void onClearClient() override { journal.push_back("clear"); }
    void onStartViz() override { journal.push_back("start"); }
    CError* processVizData(CInputStream& stream) override {
        BRT_TRY("", readF64(stream, position));
        return journal.push_back("data"), nullptr;
    }
    CError* processExportSlots(CInputStream&) override { return journal.push_back("slots"), nullptr; }

    double position = -1.0;
    std::vector<std::string> journal;
};

class InterfaceClient : public InterfaceFixture {
protected:
    std::span<const CCreatorRow> tags() override {
        const std::span<const CCreatorRow> tags = InterfaceFixture::tags();
        m_tags.assign(tags.begin(), tags.end());
        m_tags.push_back(creatorRow<CActor>("test:actor"));
        return m_tags;
    }

private:
    std::vector<CCreatorRow> m_tags;
};

TEST_F(InterfaceClient, learnsWhatTheInstanceIsLike) {
    HostProbe host;
    base().setDataProvider(&host);
    Window window(instance());
    auto* const actor = static_cast<CActor*>(add(window.bridge(), "actor", "test:actor"));
    actor->listenObject(window.client().getFullName(), "update-sample-rate", "on-x");
    EXPECT_EQ(window.client().sampleRate(), 0.0);
    EXPECT_EQ(window.client().getGroupName(2), "3");
    window.tick();
    CAudioInterfaceClient& client = window.client();
    EXPECT_EQ(client.internalChannelCount(), 6);
    EXPECT_EQ(client.groupCount(), 8);
    EXPECT_EQ(client.inputChannelCount(), 4);
    EXPECT_EQ(client.outputChannelCount(), 2);
    EXPECT_EQ(client.sidechainChannelCount(), 1);
    EXPECT_EQ(client.sampleRate(), 96000.0);
    EXPECT_EQ(std::exchange(CActor::s_journal, {}), (std::vector<std::string>{"actor on-x update-sample-rate -"}));

    // Names of groups come from a parameter, once it has a definition.
    CAudioParam& names = param("names");
    window.tick();
    EXPECT_EQ(client.getGroupName(1), "b");
    names.setString(0, 1, "drums", nullptr);
    window.tick();
    EXPECT_EQ(client.getGroupName(1), "drums");
    base().setDataProvider(nullptr);
}

TEST_F(InterfaceClient, mirrorsFollowWhoeverChanges) {
    CAudioParam& gain = param("gain");
    Window one(instance());
    Window two(instance());
    Listener first;
    Listener second;
    const ParamHandle handle = one.client().addParamListener("gain", first);
    two.client().addParamListener("gain", second);
    EXPECT_EQ(handle, 0x00010002U) << "the first is that of the names of groups";
    const std::vector<double> moved{42};
    one.client().changeParam(handle, update(gain, moved), 0);
    EXPECT_EQ(gain.getFloat(0, 0, -1), 42) << "at once";
    EXPECT_EQ(first.infoCount, 0) << "at the next tick";
    one.tick(), two.tick();
    EXPECT_EQ(first.values().value(0, 0, -1), 42);
    EXPECT_EQ(second.values().value(0, 0, -1), 42);
    EXPECT_EQ(second.values().value(3, 5, -1), 10);
    ASSERT_NE(second.info(), nullptr);
    EXPECT_EQ(second.info()->name, "audio.gain");

    one.client().resetParam(handle, -1, -1, 0, false);
    one.tick(), two.tick();
    EXPECT_EQ(first.values().value(0, 0, -1), 10);
    EXPECT_EQ(second.values().value(0, 0, -1), 10);
    one.client().removeParamListener(handle);
}

TEST_F(InterfaceClient, listenersMayLeaveOrEndTheWindowWhileTheyAreTold) {
    CAudioParam& gain = param("gain");
    auto window = std::make_unique<Window>(instance());
    Listener leaver;
    Listener closer;
    Listener witness;
    ParamHandle handle = window->client().addParamListener("gain", leaver);
    leaver.whenInfo = [&] { window->client().removeParamListener(handle); };
    window->tick();
    EXPECT_EQ(leaver.infoCount, 1);
    EXPECT_EQ(leaver.updateCount, 0);

    window->client().addParamListener("gain", closer);
    window->client().addParamListener("gain", witness);
    window->tick();
    const int updates = witness.updateCount;
    gain.setFloat(5, 0, nullptr);
    closer.whenUpdate = [&] { window.reset(); };
    window->connector().poll();
    Window::pump();
    EXPECT_EQ(window, nullptr);
    EXPECT_EQ(witness.updateCount, updates) << "it has gone with the window";
}

TEST_F(InterfaceClient, aMessageThatFailsLosesNoneBehindIt) {
    CAudioParam& gain = param("gain");
    Window window(instance());
    Listener listener;
    window.client().addParamListener("gain", listener);
    CParamMessage broken(toClient::kUpdateSampleRate);
    std::unique_ptr<CParamPacket> packet;
    EXPECT_EQ(messageOf(broken.finish(packet)), "");
    connector().sendToClient(kAllClients, std::move(packet));
    gain.setFloat(5, 0, nullptr);
    window.tick();
    EXPECT_EQ(listener.values().value(0, 0, -1), 5);
}

TEST_F(InterfaceClient, displaysComeThroughTheProcessor) {
    Window window(instance());
    VizProbe probe;
    window.client().setVizProcessor(&probe);
    const ParamHandle handle = window.client().addVizListener(-1, "meter");
    window.client().addVizListener(-1, "meter");
    beginBlock(2.5);
    EXPECT_EQ(viz().getSlot("meter").listenerCount, 2);
    window.client().requestVizData(40.0);
    window.client().requestExportSlotNames();
    base().sendStartViz(), base().sendClearClient(), base().sendStopViz();
    window.tick();
    EXPECT_EQ(probe.journal, (std::vector<std::string>{"data", "slots", "start", "clear", "stop"}));
    EXPECT_EQ(probe.position, 2.5);
    window.client().removeVizListener(handle);
    beginBlock(3.0);
    EXPECT_EQ(viz().getSlot("meter").listenerCount, 1);
}

TEST_F(InterfaceClient, aWindowLeavesNothingBehind) {
    CAudioParam& gain = param("gain");
    Listener listener;
    {
        Window window(instance());
        window.client().addParamListener("gain", listener);
        window.tick();
    }
    const int updates = listener.updateCount;
    gain.setFloat(77, 0, nullptr);
    EXPECT_EQ(listener.updateCount, updates);
    EXPECT_FALSE(connector().isConnected(1));
}

}  // namespace
}  // namespace brt
