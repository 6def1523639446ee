// SPDX-License-Identifier: LicenseRef-Halyard
#include <algorithm>

#include "TreeFixture.h"

namespace brt {
namespace {

using ::testing::Test;

class CObjectChildren : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        start();
    }

    std::string tryAdd(CObject& parent, CStringView name) {
        CObject* child = nullptr;
        return messageOf(parent.addChild(child, "core:object", name, kClassesOnly));
    }
};

TEST_F(CObjectChildren, namesakesGetIndexes) {
    EXPECT_EQ(add(root(), "item")->getFullName(), "item");
    EXPECT_EQ(add(root(), "item")->getFullName(), "item#1");
    EXPECT_EQ(add(root(), "item#5")->getFullName(), "item#5");
    EXPECT_EQ(add(root(), "item")->getFullName(), "item#6");
    EXPECT_EQ(add(root(), "item#5")->getFullName(), "item#7");
    EXPECT_EQ(add(root(), "other#0")->getFullName(), "other");
    EXPECT_EQ(add(root(), "late#3")->getFullName(), "late#3");
    EXPECT_EQ(add(root(), "late")->getFullName(), "late");
    EXPECT_EQ(add(*root().children()[1], "x#007")->getFullName(), "item#1.x#7");

    const auto found = [&](CStringView step) {
        const CObject* const child = root().findChild(step);
        return child ? text(child->getShortName()) : "none";
    };
    EXPECT_EQ(found("item"), "item");
    EXPECT_EQ(found("item#"), "item#7");
    EXPECT_EQ(found("item#5"), "item#5");
    EXPECT_EQ(found("item#05"), "item#5");
    EXPECT_EQ(found("item#+1"), "item#1");
    EXPECT_EQ(found("item#+4"), "item#7");
    EXPECT_EQ(found("item#-1"), "item#6");
    EXPECT_EQ(found("item#-4"), "item");
    EXPECT_EQ(found("late"), "late");
    for (const char* step : {"item#2", "item#+5", "item#-5", "item#x", "item#+", "item#--1", "item#1#2", "nobody", "",
                             "item#99999999999", "item#+99999999999"})
        EXPECT_EQ(found(step), "none") << step;
}

TEST_F(CObjectChildren, aNameThatNoPathFindsIsRefused) {
    for (const char* name : {"item#x", "item#-3", "item#+1", "item#", "item#2147483647", "item#1#2", "#"})
        EXPECT_EQ(tryAdd(root(), name), std::string("A child can't be named '") + name +
                                            "': behind '#' stands a number from 0 to 2147483646.");
    EXPECT_EQ(root().children().count(), 0);

    EXPECT_EQ(add(root(), "item#2147483646")->getFullName(), "item#2147483646");
    EXPECT_EQ(add(root(), "item")->getFullName(), "item");
    EXPECT_EQ(tryAdd(root(), "item"), "No index is left for another child named 'item'.");
    EXPECT_EQ(tryAdd(root(), "item#2147483646"), "No index is left for another child named 'item'.");
    EXPECT_EQ(add(root(), "item#4")->getFullName(), "item#4");
}

TEST_F(CObjectChildren, joinTheTreeOfTheirParent) {
    CObject* const parent = add(root(), "p");
    CObject* const first = add(*parent, "c");
    CObject* const second = add(*parent, "d");
    EXPECT_EQ(second->parent(), parent);
    EXPECT_EQ(second->root(), &root());
    EXPECT_EQ(second->context(), root().context());
    EXPECT_LT(first->id(), second->id());
    EXPECT_EQ(second->tag(), "core:object");
    EXPECT_EQ(second->state(), CObject::kChildrenMade);
    CObject::release(second);
    EXPECT_GT(add(*parent, "d")->id(), first->id() + 1);  // an id never comes back
    EXPECT_EQ(CApplication::sharedObject()->id(), -1);
    EXPECT_EQ(CApplication::sharedObject()->context(), nullptr);
}

TEST_F(CObjectChildren, anUnknownTagMakesAPlainObjectAndSaysSo) {
    CObject* const plain = add(root(), "x", "what:ever");
    EXPECT_EQ(plain->tag(), "what:ever");
    add(*plain, "y", "no:such");
    add(*plain, "z", "content");
    const auto said = [&](const char* line) { return std::count(log().begin(), log().end(), line); };
    EXPECT_EQ(said("Creating CObject 'x' (tag 'what:ever')"), 1);
    EXPECT_EQ(said("Creating CObject 'y' (tag 'no:such') // x"), 1);
    EXPECT_EQ(said("Creating CObject 'z' (tag 'content') // x"), 0);
}

TEST_F(CObjectChildren, aFailedStageLeavesTheChildWithItsParent) {
    CAttrMap attrs;
    for (const char* stage : {"init", "initChilds", "initDone"}) {
        attrs.findOrInsert("fails-in").setText(stage);
        CProbe* child = nullptr;
        EXPECT_EQ(messageOf(root().createChild(child, "test:probe", stage, kTemplateOptional, nullptr, &attrs)),
                  std::string("Stage ") + stage + " fails.");
        ASSERT_NE(child, nullptr);
        EXPECT_EQ(root().findObject(stage), child);
    }
    // The same where the parent refuses it.
    auto* const parent = static_cast<CProbe*>(add(root(), "p", "test:probe"));
    EXPECT_EQ(messageOf(parent->setAttr("fails-in", "onChildAdded", kDeferred)), "");
    CObject* child = nullptr;
    EXPECT_EQ(messageOf(parent->createChild(child, "core:object", "c", kTemplateOptional)),
              "Stage onChildAdded fails.");
    EXPECT_EQ(parent->findChild("c"), child);
    EXPECT_EQ(child->state(), CObject::kConstructed);
}

TEST_F(CObjectChildren, createChildChecksTheClass) {
    CProbe* child = nullptr;
    EXPECT_EQ(messageOf(root().createChild(child, "core:object", "c", kTemplateOptional)),
              "Object of invalid class created (child tag 'core:object', child name 'c').");
    EXPECT_EQ(child, nullptr);
    EXPECT_EQ(root().findChild("c"), nullptr);
    EXPECT_EQ(messageOf(root().createChild(child, "test:probe", "c", kTemplateRequired)),
              "Run-time template 'test:probe' does not exist.");
    EXPECT_EQ(child, nullptr);
}

TEST_F(CObjectChildren, areReleasedLastFirst) {
    CObject* const parent = add(root(), "p", "test:probe");
    CObject* const inner = add(*parent, "a", "test:probe");
    add(*inner, "aa", "test:probe");
    add(*parent, "b", "test:probe");
    add(*parent, "b", "test:probe");
    takeJournal();
    CObject::release(parent->findChild("b"));
    EXPECT_EQ(parent->findChild("b")->getShortName(), "b#1");
    EXPECT_EQ(parent->children().count(), 2);
    CObject::release(parent);
    EXPECT_EQ(takeJournal(), (std::vector<std::string>{"delete b", "delete b#1", "delete aa", "delete a", "delete p"}));
    EXPECT_EQ(root().findObject("p"), nullptr);
    EXPECT_EQ(root().children().count(), 0);
    CObject::release(nullptr);
}

TEST_F(CObjectChildren, oneMayTakeItsSiblingsWithIt) {
    CObject* const parent = add(root(), "p");
    CObject* const first = add(*parent, "a", "test:probe");
    CObject* const second = add(*parent, "b", "test:probe");
    auto* const last = static_cast<CProbe*>(add(*parent, "c", "test:probe"));
    last->whenDetached([=] {
        CObject::release(first);
        CObject::release(second);
    });
    CObject::release(parent);
    EXPECT_EQ(CProbe::s_alive, 0);
}

TEST_F(CObjectChildren, oddNamesHangAndGo) {
    // Dots and empty names can't be reached by a path, but nothing may dangle after them.
    for (const char* name : {"", "a.b", "", "a.b", "5", "true", "full-name", "\xE9", "x/y", "^"}) {
        CObject* const parent = add(root(), name);
        add(*parent, name);
        add(*parent, name);
        CObject::release(parent->children()[0]);
        EXPECT_EQ(parent->children().count(), 1);
    }
    EXPECT_EQ(root().children().last()->getFullName(), "^");
    EXPECT_EQ(root().findChild("true")->getFullName(), "true");
    while (!root().children().isEmpty()) CObject::release(root().children()[0]);
    EXPECT_EQ(add(root(), "a.b")->getFullName(), "a.b");
}

TEST_F(CObjectChildren, aTreeHasItsDepth) {
    CObject* object = &root();
    for (int depth = 1; depth <= CObject::kMaxDepth; ++depth) object = add(*object, "x");
    EXPECT_EQ(
        tryAdd(*object, "y"),
        "Child 'y' (tag 'core:object') would lie more than 128 levels below the root; does a template contain itself?");
}

}  // namespace
}  // namespace brt
