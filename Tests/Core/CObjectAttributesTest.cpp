// SPDX-License-Identifier: LicenseRef-Halyard
// Attributes: assignment, handlers, the stages of an object's life.
#include <algorithm>

#include "TreeFixture.h"

namespace brt {
namespace {

using Journal = std::vector<std::string>;

class CObjectAttributes : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        start();
    }

    // A probe that has not run its stages.
    CObject& newProbe(CStringView name = "p") {
        CObject* child = nullptr;
        EXPECT_EQ(messageOf(root().addChild(child, "test:probe", name, kClassesOnly)), "");
        takeJournal();
        return *child;
    }
};

TEST_F(CObjectAttributes, handlersWaitForTheirStage) {
    CObject& probe = newProbe();
    EXPECT_EQ(messageOf(probe.setAttr("a", "1", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.setAttr("b", "0.5", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.setAttr("a", "2", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.setAttr("other", "x", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.init()), "");
    EXPECT_EQ(probe.state(), CObject::kAttributesSet);
    EXPECT_EQ(takeJournal(), Journal{"init p"});
    EXPECT_EQ(messageOf(probe.initChilds()), "");
    EXPECT_EQ(probe.state(), CObject::kHandlersRun);
    EXPECT_EQ(takeJournal(), (Journal{"initChilds p", "p.b=0.5", "p.a=2"}));  // the latest assignment first, each once
    EXPECT_EQ(messageOf(probe.setAttr("a", "3", kImmediate)), "");
    EXPECT_EQ(messageOf(probe.setAttrDouble("b", 0.25, kImmediate)), "");
    EXPECT_EQ(takeJournal(), (Journal{"p.a=3", "p.b=0.2500"}));
}

TEST_F(CObjectAttributes, aHandlerMayQueueOthersAndItself) {
    CObject& probe = newProbe();
    EXPECT_EQ(messageOf(probe.setAttr("chained", "7", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.initChilds()), "");
    EXPECT_EQ(takeJournal(), (Journal{"initChilds p", "p.chained=7", "p.a=7"}));

    CObject& endless = newProbe("endless");
    EXPECT_EQ(messageOf(endless.setAttr("endless", "1", kDeferred)), "");
    EXPECT_EQ(messageOf(endless.initChilds()), "");
    EXPECT_EQ(std::count(log().begin(), log().end(),
                         "Attribute handlers of 'endless' queue each other without end; the rest was left."),
              1);
}

TEST_F(CObjectAttributes, aFailedHandlerLeavesTheOthersReadyForTheNextTime) {
    CObject& probe = newProbe();
    EXPECT_EQ(messageOf(probe.setAttr("a", "1", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.setAttr("fails", "x", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.initChilds()), "The handler fails.");
    EXPECT_EQ(takeJournal(), (Journal{"initChilds p"}));
    EXPECT_EQ(messageOf(probe.setAttr("fails", "x", kImmediate)), "The handler fails.");
    EXPECT_EQ(messageOf(probe.setAttr("a", "2", kDeferred)), "");
    EXPECT_EQ(messageOf(probe.initChilds()), "");
    EXPECT_EQ(takeJournal(), (Journal{"initChilds p", "p.a=2"}));
}

TEST_F(CObjectAttributes, aMissingOneReadsAsNothing) {
    CObject& probe = newProbe();
    EXPECT_EQ(probe.getAttrString("x"), "");
    EXPECT_FALSE(probe.getAttrBool("x"));
    EXPECT_EQ(probe.getAttrInt("x"), 0);
    EXPECT_EQ(probe.getAttrDouble("x"), 0.0);
    EXPECT_EQ(probe.getAttrPointer("x"), nullptr);
    EXPECT_EQ(probe.findAttr("x"), nullptr);
    EXPECT_EQ(root().getFullName(), "");
    EXPECT_EQ(root().getShortName(), "");
}

TEST_F(CObjectAttributes, keepTheirNativeForm) {
    CObject& probe = newProbe();
    int window = 0;
    EXPECT_EQ(messageOf(probe.setAttrPointer("w", &window, kImmediate)), "");
    EXPECT_EQ(probe.getAttrPointer("w"), &window);
    EXPECT_EQ(probe.getAttrString("w"), "");
    EXPECT_EQ(messageOf(probe.setAttrDouble("d", 0.5, kImmediate)), "");
    EXPECT_EQ(probe.getAttrString("d"), "0.5000");
    EXPECT_EQ(messageOf(probe.setAttr("t", "0.5", kImmediate)), "");
    EXPECT_EQ(probe.getAttrDouble("t"), 0.5);
    EXPECT_EQ(probe.getAttrString("t"), "0.5");
    EXPECT_EQ(messageOf(probe.setAttrValue("copy", *probe.findAttr("w"), kImmediate)), "");
    EXPECT_EQ(probe.getAttrPointer("copy"), &window);
    EXPECT_EQ(messageOf(probe.setAttrRaw("raw", "{full-name}", kImmediate)), "");
    EXPECT_EQ(probe.getAttrString("raw"), "{full-name}");
    EXPECT_EQ(messageOf(probe.setAttrValue("raw2", *probe.findAttr("raw"), kImmediate)), "");
    EXPECT_EQ(probe.getAttrString("raw2"), "{full-name}");
    EXPECT_TRUE(probe.findAttr("raw2")->isRaw());
    EXPECT_EQ(messageOf(probe.setAttr("", "x", kImmediate)), "");
    EXPECT_EQ(probe.findAttr(""), nullptr);
}

TEST_F(CObjectAttributes, theFullNameBelongsToTheTree) {
    CObject& probe = newProbe();
    const std::string message =
        "Attribute 'full-name' belongs to the object tree; an object's name is given when it is made.";
    EXPECT_EQ(messageOf(probe.setAttr("full-name", "x", kDeferred)), message);
    EXPECT_EQ(messageOf(probe.setAttrDouble("full-name", 1.0, kImmediate)), message);
    EXPECT_EQ(probe.getFullName(), "p");
}

TEST_F(CObjectAttributes, ofCreateChildComeBeforeItsStages) {
    CAttrMap overrides;
    overrides.findOrInsert("a").setText("over");
    CAttrMap attrs;
    attrs.findOrInsert("a").setText("attr");
    attrs.findOrInsert("b").setDouble(0.5);
    CObject* child = nullptr;
    EXPECT_EQ(messageOf(root().createChild(child, "test:probe", "p", kTemplateOptional, &overrides, &attrs)), "");
    EXPECT_EQ(takeJournal(), (Journal{"init p", "initChilds p", "p.b=0.5000", "p.a=over", "initDone p"}));
    // An attribute that fails ends it.
    attrs.findOrInsert("full-name").setText("x");
    EXPECT_NE(messageOf(root().createChild(child, "test:probe", "q", kTemplateOptional, nullptr, &attrs)), "");
    EXPECT_EQ(child->state(), CObject::kConstructed);
}

TEST_F(CObjectAttributes, eventsRunTheirHandlers) {
    CObject* const probe = add(root(), "p", "test:probe");
    takeJournal();
    CAttrMap args;
    args.findOrInsert("what").setText("all");
    EXPECT_EQ(messageOf(probe->runEvent("ping")), "");
    EXPECT_EQ(messageOf(probe->runEvent("tell")), "");
    EXPECT_EQ(messageOf(probe->runEvent("tell", args)), "");
    EXPECT_EQ(takeJournal(), (Journal{"ping p", "told nothing", "told all"}));
    EXPECT_EQ(messageOf(probe->runEvent("sing")), "Unknown event 'sing'.");
    EXPECT_EQ(messageOf(root().runEvent("ping")), "Unknown event 'ping'.");
}

TEST_F(CObjectAttributes, theClassTableIsTheSchema) {
    const CClassInfo& probe = CApplication::creators().find("test:probe")->info;
    EXPECT_TRUE(probe.isNameRequired());
    EXPECT_FALSE(probe.isAnyAttributeAccepted());
    ASSERT_NE(probe.findAttribute("target"), nullptr);
    EXPECT_EQ(probe.findAttribute("target")->kind, EAttrKind::kObject);
    EXPECT_TRUE(probe.findAttribute("target")->isOfClass(add(root(), "p", "test:probe")));
    EXPECT_FALSE(probe.findAttribute("target")->isOfClass(&root()));
    EXPECT_EQ(probe.findAttribute("targe"), nullptr);
    EXPECT_EQ(probe.findAttribute("target1"), nullptr);
    EXPECT_NE(probe.findEvent("release-child-bridged"), nullptr);

    const CClassInfo& bag = CApplication::creators().find("core:object")->info;
    EXPECT_FALSE(bag.isNameRequired());
    EXPECT_TRUE(bag.isAnyAttributeAccepted());
    EXPECT_TRUE(root().classInfo().isAnyAttributeAccepted());
}

TEST(CClassInfo, derivedRowsReplaceThoseOfTheBase) {
    static constexpr CAttrInfo kBase[] = {attr::text("b").help("base"), attr::object("converter").numbered(),
                                          attr::integer("a").between(1, 8).required()};
    static constexpr CAttrInfo kDerived[] = {attr::number("b").byDefault("0.5"), attr::flag("c")};
    CClassInfo info;
    info.addAttributes(kBase);
    info.addAttributes(kDerived);
    std::vector<std::string> names;
    for (const CAttrInfo* const row : info.attributes()) names.push_back(text(row->name));
    EXPECT_EQ(names, (std::vector<std::string>{"a", "b", "c", "converter"}));
    EXPECT_EQ(info.findAttribute("b")->defaultText, "0.5");
    EXPECT_EQ(info.findAttribute("converter12"), info.findAttribute("converter"));
    EXPECT_EQ(info.findAttribute("converter1x"), nullptr);
    EXPECT_EQ(info.findAttribute("a2"), nullptr);
    EXPECT_EQ(info.findAttribute("12"), nullptr);
    EXPECT_EQ(info.findAttribute("a")->highest, 8.0);
}

}  // namespace
}  // namespace brt
