// SPDX-License-Identifier: LicenseRef-Halyard
// Attributes that follow attributes of other objects.
#include "EventFixture.h"

namespace brt {
namespace {

class Bindings : public EventFixture {
protected:
    static void set(CObject& object, CStringView name, CStringView value) {
        EXPECT_EQ(messageOf(object.setAttr(name, value, kImmediate)), "");
    }
    // An actor whose attribute follows.
    CActor& follower(CStringView name, CStringView reference, CStringView attrName = "x") {
        CActor& made = actor(name);
        set(made, attrName, reference);
        return made;
    }
    CError* setOn(CStringView name, CStringView value) { return ui().findChild(name)->setAttr("x", value, kImmediate); }
};

TEST_F(Bindings, takeThePresentValueAndEveryLaterOne) {
    CActor& source = actor("source");
    set(source, "x", "1");
    CActor& a = follower("a", "{*/ui.source x}", "y");
    CActor& b = follower("b", "{*source x}");  // a child of the nearest above that has one of that name
    EXPECT_EQ(a.getAttrString("y"), "1");
    EXPECT_EQ(b.getAttrString("x"), "1");
    takeJournal();

    set(source, "x", "2");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=2", "a.y=2", "b.x=2"}));
    EXPECT_EQ(messageOf(source.setAttrDouble("x", 0.5, kImmediate)), "");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=0.5000", "a.y=0.5000", "b.x=0.5000"}));
    EXPECT_EQ(a.findAttr("y")->type(), CAttrValue::EType::kDouble);
    set(source, "y", "3");
    EXPECT_EQ(takeJournal(), (Journal{"source.y=3"})) << "nobody follows that one";

    // Followers of followers; text out of a document is expanded once, at its source.
    follower("c", "{*/ui.b x}", "z");
    takeJournal();
    EXPECT_EQ(messageOf(source.setAttrRaw("x", "{y}", kImmediate)), "");
    EXPECT_EQ(takeJournal(), (Journal{"source.x={y}", "a.y={y}", "b.x={y}", "c.z={y}"}));

    // Both attributes of an object, and no attribute twice.
    set(a, "z", "{*/ui.source x}");
    set(a, "z", "{*/ui.source x}");
    takeJournal();
    set(source, "x", "4");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=4", "a.y=4", "a.z=4", "b.x=4", "c.z=4"}));
}

TEST_F(Bindings, needASourceThatMayChange) {
    CActor& source = actor("source");
    set(source, "x", "1");
    set(source, "scheme", "dark");
    CActor& a = actor("a");
    for (const char* none : {"{*}", "{*source}", "{*/ui.source}", "{*/nowhere x}", "{*nobody x}", "{*/^.a y}",
                             "{*shared:: x}", "{*/shared:: x}", "{*/ui.source nothing}", "{*/ui.source x}5{*}"}) {
        set(a, "y", none);
        EXPECT_EQ(a.getAttrString("y"), CStringView(none).endsWith("5{*}") ? "15" : "") << none;
    }
    set(a, "z", "{*/ui.source scheme}");
    EXPECT_EQ(a.getAttrString("z"), "") << "its present value isn't taken";
    set(source, "scheme", "light");
    EXPECT_EQ(a.getAttrString("z"), "light");
}

TEST_F(Bindings, areCutWithEitherEnd) {
    CActor& source = actor("source");
    set(source, "x", "1");
    CActor& a = follower("a", "{*/ui.source x}");
    follower("b", "{*/ui.source x}");
    CObject::release(&a);
    takeJournal();
    set(source, "x", "2");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=2", "b.x=2"}));
    CObject::release(&source);
    set(actor("source"), "x", "3");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=3"}));
}

TEST_F(Bindings, inACircleStopWhereTheyBegan) {
    follower("a", "");
    follower("b", "{*/ui.a x}");
    set(*ui().findChild("a"), "x", "{*/ui.b x}");
    takeJournal();
    set(*ui().findChild("a"), "x", "1");
    EXPECT_EQ(takeJournal(), (Journal{"a.x=1", "b.x=1", "a.x=1"}));
    set(*ui().findChild("b"), "x", "2");
    EXPECT_EQ(takeJournal(), (Journal{"b.x=2", "a.x=2", "b.x=2"}));
    set(*ui().findChild("b"), "x", "3");
    int lines = 0;
    for (const std::string& line : log()) lines += line.find("follows itself in a circle") != std::string::npos;
    EXPECT_EQ(lines, 2) << "one for each object that it began with";
    EXPECT_TRUE(isLogged("Attribute 'x' follows itself in a circle of objects; it was set once. // ui.a"));

    follower("d", "");
    follower("e", "{*/ui.d x}");
    follower("f", "{*/ui.e x}");
    set(*ui().findChild("d"), "x", "{*/ui.f x}");
    takeJournal();
    set(*ui().findChild("e"), "x", "4");
    EXPECT_EQ(takeJournal(), (Journal{"e.x=4", "f.x=4", "d.x=4", "e.x=4"}));
}

TEST_F(Bindings, aHandlerMayReleaseWhatItLikes) {
    CActor& source = actor("source");
    CActor& a = follower("a", "{*/ui.source x}");
    CActor& b = follower("b", "{*/ui.source x}");
    follower("c", "{*/ui.source x}");
    takeJournal();
    // The next one and itself.
    a.onSet = [&] { return CObject::release(&b), CObject::release(&a), nullptr; };
    set(source, "x", "1");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=1", "a.x=1", "c.x=1"}));

    // One bound meanwhile has the value already.
    CActor& c = dynamic_cast<CActor&>(*ui().findChild("c"));
    c.onSet = [&] { return follower("late", "{*/ui.source x}"), nullptr; };
    set(source, "x", "2");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=2", "c.x=2", "late.x=2"}));

    // The source, in the middle of its walk.
    c.onSet = [&] { return CObject::release(&source), nullptr; };
    set(source, "x", "3");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=3", "c.x=3"}));
    EXPECT_EQ(ui().findChild("source"), nullptr);
}

TEST_F(Bindings, anErrorStopsTheWalk) {
    CActor& source = actor("source");
    CActor& a = follower("a", "{*/ui.source x}");
    follower("b", "{*/ui.source x}");
    takeJournal();
    a.onSet = [&] {
        CObject::release(&a);
        return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_BindingsTest_onSet It fails.");
    };
    EXPECT_EQ(messageOf(source.setAttr("x", "1", kImmediate)), "It fails.");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=1", "a.x=1"}));
    set(source, "x", "2");
    EXPECT_EQ(takeJournal(), (Journal{"source.x=2", "b.x=2"}));
}

}  // namespace
}  // namespace brt
