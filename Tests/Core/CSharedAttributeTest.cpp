// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CSharedAttribute.h"

#include <thread>

#include "AppDataFixture.h"
#include "Core/CAttrDoubler.h"

namespace brt {
namespace {

class SharedAttribute : public AppDataFixture {
protected:
    CSharedAttribute& add(CObject& parent, CStringView name, Attributes attributes) {
        attributes.emplace_back("storage-type", "global");
        attributes.emplace_back("attribute", "shown");
        EXPECT_EQ(make(parent, name, "core:shared-attribute", attributes), "");
        return dynamic_cast<CSharedAttribute&>(*parent.findChild(name));
    }
    static std::string shown(CObject& object) { return text(object.getAttrString("shown")); }
};

TEST_F(SharedAttribute, followsItsSettingOnTheThreadOfTheTree) {
    CSharedAttribute& speed = add(ui(), "speed", {{"def-value", "40"}});
    CSharedAttribute& again = add(ui(), "again", {{"data-name", "speed"}, {"def-value", "x"}});
    CSharedAttribute& bridgeless = add(root(), "speed", {{"def-value", "none"}});
    ASSERT_EQ(make(ui(), "follower", "test:actor", {{"x", "{*/^speed shown}"}}), "");
    EXPECT_EQ(shown(speed), "40");
    EXPECT_EQ(speed.key(), "speed");

    std::thread([&] { CAppData::global().setString("speed", "50"); }).join();
    EXPECT_EQ(shown(speed), "40") << "nobody has pumped yet";
    pump();
    EXPECT_EQ(shown(speed), "50");
    EXPECT_EQ(shown(again), "50");
    EXPECT_EQ(ui().findChild("follower")->getAttrInt("x"), 50);

    again.setValue("{full-name}");
    EXPECT_EQ(shown(again), "50") << "the change comes by the notification";
    pump();
    EXPECT_EQ(shown(speed), "{full-name}") << "a user's braces are characters";
    EXPECT_EQ(text(ui().findChild("follower")->getAttrString("x")), "{full-name}");
    EXPECT_EQ(shown(bridgeless), "none");

    CByteBuffer noText;
    noText.assign("?", 1);
    CAppData::global().setData("speed", noText, nullptr, appDataTag::kString);
    pump();
    EXPECT_EQ(shown(speed), "");
}

TEST_F(SharedAttribute, asksForAStoreAndAnAttribute) {
    EXPECT_EQ(make(ui(), "a", "core:shared-attribute", {{"storage-type", "attic"}, {"attribute", "x"}}),
              "Invalid storage type \"attic\" specified.");
    EXPECT_EQ(make(ui(), "b", "core:shared-attribute", {{"attribute", "x"}}), "Invalid storage type \"\" specified.");
    EXPECT_EQ(make(ui(), "c", "core:shared-attribute", {{"storage-type", "local"}}),
              "No attached attribute name specified.");
    EXPECT_EQ(messageOf(ui().findChild("a")->runEvent("update")), "") << "it hangs there without a store";
    EXPECT_EQ(shown(add(ui(), "no key", {{"def-value", "default"}})), "default");
}

TEST_F(SharedAttribute, doublerCopiesToItsTargets) {
    CActor& top = actor("top");
    CActor& middle = actor("middle", top);
    CActor& late = actor("late", middle);
    ASSERT_EQ(make(middle, "doubler", "core:attr-doubler",
                   {{"target", "^^  ^ ^late"}, {"attr", "x"}, {"value", "{*/^ height}"}}),
              "");
    takeJournal();
    EXPECT_EQ(messageOf(middle.setAttr("height", "12.5", kImmediate)), "");
    EXPECT_EQ(takeJournal(), (Journal{"top.x=12.5", "middle.x=12.5", "late.x=12.5"}));

    CObject::release(&late);
    actor("late", middle);
    top.onSet = [] { return makeError(nullptr, __FILE__, __LINE__, "", "top fails"); };
    EXPECT_EQ(messageOf(middle.setAttr("height", "13", kImmediate)), "top fails");
    EXPECT_EQ(takeJournal(), (Journal{"top.x=13"})) << "the first error ends the pass";
    // A target's handler releases the doubler; another one leads back to it.
    top.onSet = [&] { return middle.setAttr("height", "15", kImmediate); };
    EXPECT_EQ(messageOf(middle.setAttr("height", "14", kImmediate)), "");
    EXPECT_EQ(takeJournal(), (Journal{"top.x=14", "middle.x=14"})) << "a newcomer is no target";
    top.onSet = [&] { return CObject::release(middle.findChild("doubler")), nullptr; };
    EXPECT_EQ(messageOf(middle.setAttr("height", "16", kImmediate)), "");
    EXPECT_EQ(takeJournal(), (Journal{"top.x=16"}));
}

TEST_F(SharedAttribute, doublerAsksForTargets) {
    EXPECT_EQ(make(ui(), "a", "core:attr-doubler", {{"target", "  "}, {"attr", "x"}}), "No target objects specified.");
    EXPECT_EQ(make(ui(), "b", "core:attr-doubler", {{"target", "^ ^gone"}, {"attr", "x"}}),
              "Target object '^gone' not found.");
}

}  // namespace
}  // namespace brt
