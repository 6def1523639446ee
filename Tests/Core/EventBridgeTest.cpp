// SPDX-License-Identifier: LicenseRef-Halyard
// Events that come over a bridge: to another thread, or later on the same one.
#include <sys/resource.h>

#include <atomic>
#include <thread>

#include "EventFixture.h"
#include "Platform/SystemError.h"

namespace brt {
namespace {

class EventBridge : public EventFixture {
protected:
    // Runs on another thread, to its end.
    template <class Action>
    static void elsewhere(Action action) {
        std::thread(action).join();
    }
};

TEST_F(EventBridge, carriesAnEventWithACopyOfItsArguments) {
    CActor& sender = actor("sender");
    CActor& listener = actor("listener");
    listener.listenObject("ui.sender", "x", "on-x");
    const auto thread = std::this_thread::get_id();
    listener.onEvent = [&](const CAttrMap& args) {
        EXPECT_EQ(std::this_thread::get_id(), thread);
        EXPECT_EQ(argText(args, "sender"), "ui.sender");
        EXPECT_EQ(argText(args, "listener"), "ui.listener");
        EXPECT_EQ(args.find("listener-id")->asInteger(), listener.id());
        EXPECT_EQ(argText(args, "listener-proc"), "on-x");
        return nullptr;
    };
    const CRef<CObjectAddress> address = sender.address();
    elsewhere([&] {
        CAttrMap args;
        EXPECT_EQ(messageOf(address->fire("x", withText(args, "what", "1"))), "");
        EXPECT_EQ(messageOf(address->fire("x", withText(args, "what", "2"))), "");
        EXPECT_EQ(messageOf(address->fire("unheard")), "");
    });
    EXPECT_EQ(takeJournal(), Journal{});
    EXPECT_TRUE(pump());
    EXPECT_EQ(takeJournal(), (Journal{"listener on-x x 1", "listener on-x x 2"}));

    listener.onEvent = nullptr;
    CAttrMap args;
    listener.postEvent("test", "on-z", withText(args, "what", "3"));
    EXPECT_EQ(takeJournal(), Journal{});
    EXPECT_TRUE(pump());
    EXPECT_EQ(takeJournal(), (Journal{"listener on-z - -"}));
}

TEST_F(EventBridge, dropsWhatIsForAnObjectThatHasGone) {
    CActor& old = actor("view");
    const CRef<CObjectAddress> address = old.address();
    old.postEvent("test", "on-x", {});
    CObject::release(&old);
    actor("view");
    address->post("test", "on-x");
    EXPECT_TRUE(pump());
    EXPECT_EQ(takeJournal(), Journal{});

    // The whole tree, with its bridge and its loop; what is posted then is dropped too.
    CActor& view = actor("view");
    const CRef<CObjectAddress> last = view.address();
    view.postEvent("test", "on-x", {});
    CObject::release(&ui());
    elsewhere([&] { last->post("test", "on-x"); });
    EXPECT_EQ(CMessageLoop::current(), nullptr);
    actor("view");
    pump();
    EXPECT_EQ(takeJournal(), Journal{});
}

TEST_F(EventBridge, releasesAnObjectOnceAndNoNewcomer) {
    CActor& window = actor("window");
    window.onEvent = [&](const CAttrMap&) {
        window.releaseBridged();
        window.releaseBridged();
        EXPECT_FALSE(pump()) << "a host that calls idle in here doesn't get it released below its own handler";
        EXPECT_EQ(ui().findChild("window"), &window);
        return nullptr;
    };
    window.postEvent("test", "on-x", {});
    pump();
    EXPECT_EQ(ui().findChild("window"), &window);
    EXPECT_TRUE(pump());
    EXPECT_EQ(ui().findChild("window"), nullptr);
    EXPECT_FALSE(pump());

    CActor& closed = actor("window");
    closed.releaseBridged();
    CObject::release(&closed);
    CActor& reopened = actor("window");
    EXPECT_TRUE(pump());
    EXPECT_EQ(ui().findChild("window"), &reopened);

    actor("outside", root()).releaseBridged();
    EXPECT_TRUE(isLogged("'outside' can't be released by an event: there is no event bridge above it."));
    ui().releaseBridged();
    EXPECT_TRUE(isLogged("'ui' can't be released"));
}

TEST_F(EventBridge, aHandlerMayReleaseTheBridgeItself) {
    CActor& view = actor("view");
    const auto loop = CMessageLoop::current();
    view.onEvent = [&](const CAttrMap&) { return CObject::release(&ui()), nullptr; };
    view.postEvent("test", "on-x", {});
    view.postEvent("test", "on-x", {});
    EXPECT_TRUE(loop->pump());
    EXPECT_EQ(takeJournal(), (Journal{"view on-x - -"}));
    EXPECT_FALSE(loop->pump());
}

TEST_F(EventBridge, anObjectBelongsToTheNearestBridge) {
    actor("outer");
    CObject* inner = nullptr;
    CRef<CObjectAddress> address;
    CActor* listener = nullptr;
    std::atomic<int> step{0};
    std::thread other([&] {
        // The rest of the tree stands still meanwhile.
        inner = add(ui(), "inner", "ui:ui-event-bridge");
        listener = &actor("view", *inner);
        listener->listenObject("ui.outer", "x", "on-x");
        address = listener->address();
        step = 1;
        while (step != 2) std::this_thread::yield();
        pump();
        CObject::release(inner);
    });
    while (step != 1) std::this_thread::yield();
    EXPECT_EQ(messageOf(ui().findChild("outer")->fireEvent("x")), "");
    EXPECT_FALSE(pump());
    EXPECT_EQ(takeJournal(), Journal{});
    step = 2;
    other.join();
    EXPECT_EQ(takeJournal(), (Journal{"view on-x x -"}));
}

bool s_isWindowAsked = false;

TEST_F(EventBridge, whatFailsIsShownOnALoopsThreadAlone) {
    CActor& view = actor("view");
    const CRef<CObjectAddress> address = view.address();
    s_isWindowAsked = false;
    setErrorWindow([](const ErrorReport&) { return s_isWindowAsked = true; });
    view.postEvent("test", "on-nothing", {});
    pump();
    EXPECT_TRUE(std::exchange(s_isWindowAsked, false));
    EXPECT_TRUE(isLogged("Unknown event 'on-nothing'."));

    // A loop that is hopelessly behind.
    struct CIdler final : CLoopTarget {
        void handleMessage(std::uint32_t, std::int64_t) override {}
    } idler;
    const auto loop = CMessageLoop::current();
    const CLoopAddress idle = loop->addressOf(loop->addTarget(idler));
    while (idle.post(0, 0) == 0) {
    }
    elsewhere([&] { address->post("test", "on-x"); });
    EXPECT_FALSE(s_isWindowAsked);
    const std::string message = "Post message error " + std::to_string(idle.post(0, 0)) + ".";
    EXPECT_TRUE(isLogged(message));
    view.postEvent("test", "on-x", {});
    EXPECT_TRUE(s_isWindowAsked);
    view.releaseBridged();
    setErrorWindow(nullptr);

    CActor& sender = actor("sender");
    view.listenObject("ui.sender", "x", "on-x");
    const CRef<CObjectAddress> senderAddress = sender.address();
    elsewhere([&] { EXPECT_EQ(messageOf(senderAddress->fire("x")), message); });
    loop->removeTarget(idle.target());
    EXPECT_FALSE(pump()) << "an event that was refused doesn't wait here";
    view.releaseBridged();
    EXPECT_TRUE(pump());
    EXPECT_EQ(ui().findChild("view"), nullptr) << "a release that was refused may be asked for again";
}

TEST_F(EventBridge, withoutALoopFailsAndDropsWhatItIsSent) {
    CObject& top = root();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    rlimit none = before;
    none.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &none);
    CObject* bridge = nullptr;
    const std::string message = messageOf(top.createChild(bridge, "ui:ui-event-bridge", "ui", kTemplateOptional));
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(message, "Message loop creation error " + std::to_string(EMFILE) + ".");
    actor("view", *bridge).postEvent("test", "on-x", {});
    EXPECT_FALSE(pump());
}

}  // namespace
}  // namespace brt
