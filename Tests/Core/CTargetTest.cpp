// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CTarget.h"

#include "EventFixture.h"

namespace brt {
namespace {

class Target : public EventFixture {
protected:
    void SetUp() override {
        EventFixture::SetUp();
        m_owner = &actor("owner");
        m_owner->onEvent = [](const CAttrMap&) { return nullptr; };
    }

    static void fire(CObject& sender) { EXPECT_EQ(messageOf(sender.fireEvent("tick")), ""); }

    CActor* m_owner = nullptr;
};

TEST_F(Target, followsThePathInAnAttribute) {
    CActor& first = actor("first");
    CActor& second = actor("second");
    CTarget<CActor> target;
    EXPECT_EQ(target.get(), nullptr);
    target.addEvent("tick", "on-x");
    target.init(*m_owner, "^first", "on-z", nullptr, "timer");
    EXPECT_EQ(target.getPath(), "^first");
    EXPECT_EQ(target.get(), &first);
    fire(first);
    EXPECT_EQ(takeJournal(), (Journal{"owner on-z - -", "owner on-x tick -"}));

    EXPECT_EQ(messageOf(m_owner->setAttr("timer", "ui.second", kImmediate)), "");
    target.update();
    EXPECT_EQ(target.get(), &second);
    fire(first);
    fire(second);
    EXPECT_EQ(takeJournal(), (Journal{"owner on-z - -", "owner on-x tick -"}));

    target.addEvent("tick", "on-y");
    fire(second);
    EXPECT_EQ(takeJournal(), (Journal{"owner on-y tick -"}));

    EXPECT_EQ(messageOf(m_owner->setAttr("timer", "", kImmediate)), "");
    target.update();
    EXPECT_EQ(target.get(), nullptr);
    EXPECT_EQ(registry().senderCount(), 0);
}

TEST_F(Target, isNullOnceItsObjectHasGoneOrIsAnother) {
    CTarget<CActor> target;
    target.addEvent("tick", "on-x");
    target.init(*m_owner, "ui.late", "", nullptr, "");
    EXPECT_EQ(target.get(), nullptr);
    CActor& late = actor("late");
    EXPECT_EQ(target.get(), &late) << "it may come later than the link";
    fire(late);
    EXPECT_EQ(takeJournal(), (Journal{"owner on-x tick -"}));
    CObject::release(&late);
    EXPECT_EQ(target.get(), nullptr);
    CActor& newcomer = actor("late");
    EXPECT_EQ(target.get(), nullptr);
    target.update();
    EXPECT_EQ(target.get(), &newcomer);

    CTarget<CStdEventBridge> ofAnotherClass;
    ofAnotherClass.init(*m_owner, "ui.late", "", nullptr, "");
    EXPECT_EQ(ofAnotherClass.get(), nullptr);
}

TEST_F(Target, takesItsSubscriptionsBackAndReportsItsEventsErrors) {
    CActor& runner = actor("runner");
    runner.onEvent = [](const CAttrMap&) {
        return makeError(nullptr, __FILE__, __LINE__, "", "@brtstr_CTargetTest_onEvent It fails.");
    };
    {
        CTarget<CActor> target;
        target.addEvent("tick", "on-x");
        target.addEvent("tock", "on-y");
        testing::internal::CaptureStderr();
        target.init(*m_owner, "ui.sender", "on-x", &runner, "");
        EXPECT_NE(testing::internal::GetCapturedStderr().find("It fails."), std::string::npos);
        EXPECT_EQ(registry().senderCount(), 1);

        // The runner may go before the link, and its name to another.
        CObject::release(&runner);
        target.update();
        actor("runner");
        takeJournal();
        target.update();
        EXPECT_EQ(takeJournal(), Journal{});
    }
    EXPECT_EQ(registry().senderCount(), 0);
}

}  // namespace
}  // namespace brt
