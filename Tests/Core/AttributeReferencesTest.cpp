// SPDX-License-Identifier: LicenseRef-Halyard
// References in the texts of attributes.
#include "EventFixture.h"

namespace brt {
namespace {

class References : public EventFixture {
protected:
    void SetUp() override {
        EventFixture::SetUp();
        m_view = &actor("view", *add(root(), "window"));
    }

    CObject& window() { return *m_view->parent(); }
    CObject& view() { return *m_view; }

    static void set(CObject& object, CStringView name, CStringView value) {
        EXPECT_EQ(messageOf(object.setAttr(name, value, kImmediate)), "");
    }
    static void setRaw(CObject& object, CStringView name, CStringView value) {
        EXPECT_EQ(messageOf(object.setAttrRaw(name, value, kImmediate)), "");
    }

    // What the text gives in an attribute of the view.
    std::string expand(CStringView reference, CStringView name = "test") {
        set(view(), name, reference);
        return text(view().getAttrString(name));
    }

private:
    CObject* m_view = nullptr;
};

TEST_F(References, findAttributesHereAboveAndByPath) {
    set(window(), "tone", "warm");
    set(window(), "height", "20");
    set(root(), "tone", "cold");
    set(*add(root(), "other"), "tone", "other");
    EXPECT_EQ(expand("{full-name}"), "window.view");
    EXPECT_EQ(expand("{tone}"), "warm");
    EXPECT_EQ(expand("{@tone}"), "");
    EXPECT_EQ(expand("{@full-name}"), "window.view");
    EXPECT_EQ(expand("{/^ tone}"), "warm");
    EXPECT_EQ(expand("{/^^ tone}"), "cold");
    EXPECT_EQ(expand("{/other tone}"), "other");
    EXPECT_EQ(expand("{/other height}"), "") << "the root has none";
    EXPECT_EQ(expand("{/nowhere tone?none}"), "none");
    EXPECT_EQ(expand("{/^}", "height"), "20");
    EXPECT_EQ(expand("{/^?Panel}", "style"), "Panel");
    EXPECT_EQ(expand("{?shared::font.base}", "font"), "shared::font.base");
    EXPECT_EQ(expand("{?5}", "tone"), "warm") << "the one above, before this one has any";
    EXPECT_EQ(expand("<{?5}>", "tone"), "<warm>") << "and then its own";
}

TEST_F(References, giveTheirDefaultWhereThereIsNothing) {
    EXPECT_EQ(expand("{missing}"), "");
    EXPECT_EQ(expand("{x?}"), "");
    EXPECT_EQ(expand("{x?a?b}"), "a?b");
    EXPECT_EQ(expand("{}", "fresh"), "");
    EXPECT_EQ(expand("[{x?1}, {y?2}]"), "[1, 2]");
    set(view(), "empty", "");
    EXPECT_EQ(expand("{empty?7}"), "") << "present, with nothing in it";
}

TEST_F(References, areExpandedFromTheInside) {
    set(view(), "b", "x");
    set(view(), "axc", "found");
    set(window(), "home", "window");
    EXPECT_EQ(expand("{a{b}c}"), "found");
    EXPECT_EQ(expand("{/{home} home}"), "window");
    EXPECT_EQ(expand("{missing?{b}}"), "x");
    EXPECT_EQ(expand("{missing?{other?{home}}}"), "window");
    for (const char* plain : {"5{", "}5", "}{", "{b} {", "", "5"}) EXPECT_EQ(expand(plain), plain);
    // The result of one may be a part of another.
    set(view(), "half", "{b");
    EXPECT_EQ(expand("{half}}"), "x");
    set(view(), "wide", u"\u0416");
    EXPECT_EQ(expand("{wide}{b}"), "\xD0\x96x");
}

TEST_F(References, takeTheTextOfUsersAsItIs) {
    set(view(), "secret", "1234");
    setRaw(view(), "name", "{secret}");
    EXPECT_EQ(expand("{name}"), "{secret}");
    EXPECT_TRUE(view().findAttr("test")->isRaw());
    EXPECT_EQ(expand("{test}", "again"), "{secret}") << "at every further step";
    EXPECT_EQ(expand("{name} {secret}"), "{secret} 1234");
    EXPECT_EQ(expand("{missing?{name}}"), "{secret}");
    EXPECT_EQ(expand("{*/^^ x}"), "");
    setRaw(view(), "word", "secret");
    EXPECT_EQ(expand("{{word}}"), "1234") << "as a name";
    EXPECT_FALSE(view().findAttr("test")->isRaw());
    setRaw(view(), "open", "{secret");
    EXPECT_EQ(expand("{open}}"), "{secret}");
    // A name may be a user's too.
    CObject& named = *add(window(), "{tone}");
    set(window(), "tone", "warm");
    set(named, "test", "{full-name}");
    EXPECT_EQ(named.getAttrString("test"), "window.{tone}");
}

TEST_F(References, thatNeverEndAreKeptAsFarAsTheyCame) {
    std::string many = "{loop}";
    for (int i = 0; i < CObject::kMaxExpansions; ++i) many += "{missing}";
    EXPECT_EQ(expand(many, "loop"), "{loop}");
    EXPECT_TRUE(
        isLogged("References in attribute 'loop' were followed no further: 1000 done, 6 characters. // "
                 "window.view"));
    EXPECT_EQ(expand("<{loop}>"), "<{loop}>");
    EXPECT_TRUE(isLogged("References in attribute 'test' were followed no further"));
}

TEST_F(References, growNoFurtherThanTheirLimit) {
    set(view(), "a0", "0123456789");
    for (int i = 1; i <= 30; ++i) {
        const std::string last = "{a" + std::to_string(i - 1) + "}";
        set(view(), "a" + std::to_string(i), last + last);
    }
    EXPECT_TRUE(isLogged("References in attribute 'a13' were followed no further"));
    for (int i = 1; i <= 30; ++i)
        EXPECT_LE(view().getAttrString("a" + std::to_string(i)).length(), CObject::kMaxExpandedUnits);
    EXPECT_EQ(view().getAttrString("a12").length(), 40960);
    EXPECT_TRUE(view().getAttrString("a13").startsWith("{a12}01234"));
}

}  // namespace
}  // namespace brt
