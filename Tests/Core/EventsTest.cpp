// SPDX-License-Identifier: LicenseRef-Halyard
// Events between objects of one thread.
#include "EventFixture.h"

namespace brt {
namespace {

using Events = EventFixture;

CError* failure() { return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_EventsTest_failure It fails."); }

TEST_F(Events, reachListenersInTheOrderOfTheirIds) {
    CActor& sender = actor("sender");
    CActor& first = actor("first");
    CActor& second = actor("second");
    CActor& third = actor("third");
    third.listenObject("ui.sender", "x", "on-x");
    first.listenObject("ui.sender", "x", "on-x");
    second.listenObject("ui.sender", "x", "on-z");  // a handler without arguments
    first.onEvent = [](const CAttrMap& args) {
        EXPECT_EQ(argText(args, "sender"), "ui.sender");
        EXPECT_EQ(argText(args, "event-name"), "x");
        return nullptr;
    };
    CAttrMap args;
    EXPECT_EQ(messageOf(sender.fireEvent("x", withText(args, "what", "news"))), "");
    EXPECT_EQ(takeJournal(), (Journal{"first on-x x news", "second on-z - -", "third on-x x news"}));
    EXPECT_EQ(args.count(), 1) << "the caller's arguments stay as they are";
    EXPECT_EQ(messageOf(sender.fireEvent("y")), "");
    EXPECT_EQ(takeJournal(), Journal{});

    // Another handler takes the place of the earlier one.
    first.listenObject("ui.sender", "x", "on-y");
    second.unlistenObject("ui.sender", "x");
    third.unlistenObject("ui.sender", "y");
    EXPECT_EQ(messageOf(sender.fireEvent("x")), "");
    EXPECT_EQ(takeJournal(), (Journal{"first on-y x -", "third on-x x -"}));
}

TEST_F(Events, keepTheirOwnArgumentsWhenAHandlerFiresAgain) {
    CActor& sender = actor("sender");
    for (const char* name : {"a", "b", "c"}) actor(name).listenObject("ui.sender", "x", "on-x");
    CActor& other = actor("other");
    other.listenObject("ui.sender", "y", "on-y");
    dynamic_cast<CActor*>(ui().findChild("a"))->onEvent = [&](const CAttrMap&) {
        CAttrMap args;
        return sender.fireEvent("y", withText(args, "what", "inner"));
    };
    CAttrMap args;
    EXPECT_EQ(messageOf(sender.fireEvent("x", withText(args, "what", "outer"))), "");
    EXPECT_EQ(takeJournal(), (Journal{"a on-x x outer", "b on-x x outer", "c on-x x outer", "other on-y y inner"}));
}

TEST_F(Events, subscriptionsMadeAndTakenBackInAHandler) {
    CActor& sender = actor("sender");
    CActor& a = actor("a");
    CActor& b = actor("b");
    CActor& c = actor("c");
    a.listenObject("ui.sender", "x", "on-x");
    b.listenObject("ui.sender", "x", "on-x");
    a.onEvent = [&](const CAttrMap&) {
        b.unlistenObject("ui.sender", "x");
        c.listenObject("ui.sender", "x", "on-x");
        return nullptr;
    };
    EXPECT_EQ(messageOf(sender.fireEvent("x")), "");
    EXPECT_EQ(takeJournal(), (Journal{"a on-x x -"}));

    // The last one leaves and comes back while its sender's event is under way.
    a.unlistenObject("ui.sender", "x");
    c.onEvent = [&](const CAttrMap&) {
        c.unlistenObject("ui.sender", "x");
        c.listenObject("ui.sender", "x", "on-y");
        return nullptr;
    };
    EXPECT_EQ(messageOf(sender.fireEvent("x")), "");
    EXPECT_EQ(messageOf(sender.fireEvent("x")), "");
    EXPECT_EQ(takeJournal(), (Journal{"c on-x x -", "c on-y x -"}));
    EXPECT_EQ(registry().senderCount(), 1);
    c.unlistenObject("ui.sender", "x");
    EXPECT_EQ(registry().senderCount(), 0);
}

TEST_F(Events, anErrorLeavesTheRestToTheNextEvent) {
    CActor& sender = actor("sender");
    CActor& a = actor("a");
    CActor& b = actor("b");
    CActor& c = actor("c");
    for (CActor* listener : {&a, &b, &c}) listener->listenObject("ui.sender", "x", "on-x");
    a.onEvent = [](const CAttrMap&) { return failure(); };
    CAttrMap args;
    EXPECT_EQ(messageOf(sender.fireEvent("x", withText(args, "what", "1"))), "It fails.");
    EXPECT_EQ(takeJournal(), (Journal{"a on-x x 1"}));
    CObject::release(&b);
    EXPECT_EQ(messageOf(sender.fireEvent("unheard")), "");
    EXPECT_EQ(takeJournal(), (Journal{"c on-x x 1"}));

    // Handlers that always fail don't pile up calls for ever.
    c.onEvent = a.onEvent;
    for (int i = 0; i < 3000; ++i) EXPECT_EQ(messageOf(sender.fireEvent("x")), "It fails.");
    EXPECT_TRUE(isLogged("event calls that followed failed ones were dropped. // ui.sender"));
}

TEST_F(Events, areByTheNameOfTheSender) {
    CActor& listener = actor("listener");
    listener.listenObject("ui.sender", "x", "on-x");
    listener.listenObject("ui.sender#1", "x", "on-y");
    for (int i = 0; i < 2; ++i) {
        CActor& sender = actor("sender");
        EXPECT_EQ(messageOf(sender.fireEvent("x")), "");
        EXPECT_EQ(takeJournal(), (Journal{"listener on-x x -"}));
        CObject::release(&sender);
    }
    EXPECT_EQ(registry().senderCount(), 2);
    CObject::release(&listener);
    EXPECT_EQ(registry().senderCount(), 0);
    EXPECT_EQ(messageOf(actor("sender").fireEvent("x")), "");
    EXPECT_EQ(takeJournal(), Journal{});
}

TEST_F(Events, needAHandlerABridgeAndAContext) {
    CActor& sender = actor("sender");
    sender.listenObject("ui.sender", "x", "on-nothing");
    EXPECT_TRUE(isLogged("Event handler 'on-nothing' not found in listenObject(). // ui.sender"));
    EXPECT_EQ(messageOf(sender.runEvent("on-nothing")), "Unknown event 'on-nothing'.");
    EXPECT_EQ(messageOf(sender.runEvent("on-x")), "");
    EXPECT_EQ(takeJournal(), (Journal{"sender on-x - -"}));

    CActor& outside = actor("outside", root());
    outside.listenObject("ui.sender", "x", "on-x");
    EXPECT_EQ(messageOf(sender.fireEvent("x")), "");
    outside.postEvent("test", "on-x", {});
    EXPECT_FALSE(pump());
    EXPECT_EQ(takeJournal(), Journal{});

    CActor rootless;
    rootless.listenObject("ui.sender", "x", "on-x");
    rootless.postEvent("test", "on-x", {});
    EXPECT_EQ(messageOf(rootless.fireEvent("x")), "");
}

TEST_F(Events, aHandlerMayReleaseWhatItLikes) {
    CActor& sender = actor("sender");
    CActor& a = actor("a");
    CActor& b = actor("b");
    CActor& c = actor("c");
    for (CActor* listener : {&a, &b, &c}) listener->listenObject("ui.sender", "x", "on-x");
    a.onEvent = [&](const CAttrMap&) { return CObject::release(&b), nullptr; };
    c.onEvent = [&](const CAttrMap&) { return CObject::release(&c), CObject::release(&sender), failure(); };
    EXPECT_EQ(messageOf(sender.fireEvent("x")), "It fails.");
    EXPECT_EQ(takeJournal(), (Journal{"a on-x x -", "c on-x x -"}));

    // All that is below the bridge, with the bridge, and calls that still wait.
    CActor& newSender = actor("sender");
    actor("d").listenObject("ui.sender", "x", "on-x");
    a.onEvent = [&](const CAttrMap&) { return CObject::release(&ui()), nullptr; };
    EXPECT_EQ(messageOf(newSender.fireEvent("x")), "");
    EXPECT_EQ(takeJournal(), (Journal{"a on-x x -"}));
    EXPECT_EQ(registry().senderCount(), 0);

    // The whole tree, with the registry that the event goes through.
    CObject* other = nullptr;
    EXPECT_EQ(messageOf(CApplication::initRootObject(other, "")), "");
    CActor& last = actor("last", *add(*other, "ui", "ui:ui-event-bridge"));
    for (CActor* listener : {&last, &actor("more", *last.parent())}) listener->listenObject("ui.last", "x", "on-x");
    last.onEvent = [&](const CAttrMap&) { return CObject::release(other), failure(); };
    EXPECT_EQ(messageOf(last.fireEvent("x")), "It fails.");
    EXPECT_EQ(takeJournal(), (Journal{"last on-x x -"}));
}

TEST_F(Events, thatFireEachOtherComeToAnEnd) {
    CActor& a = actor("a");
    CActor& b = actor("b");
    a.listenObject("ui.b", "x", "on-x");
    b.listenObject("ui.a", "x", "on-x");
    a.onEvent = [&](const CAttrMap&) { return a.fireEvent("x"); };
    b.onEvent = [&](const CAttrMap&) { return b.fireEvent("x"); };
    EXPECT_EQ(messageOf(a.fireEvent("x")), "");
    EXPECT_TRUE(isLogged("Event 'x' was dropped: events fire each other without end. // ui.a"));
    EXPECT_EQ(takeJournal().size(), std::size_t{CEventRegistry::kMaxNesting}) << "of all senders together";
}

}  // namespace
}  // namespace brt
