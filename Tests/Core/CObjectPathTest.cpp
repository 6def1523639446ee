// SPDX-License-Identifier: LicenseRef-Halyard
#include "TreeFixture.h"

namespace brt {
namespace {

class CObjectPath : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        addResource("Shared.xml", document([](CDocumentWriter& writer) {
                        writer.beginElement("core:object", "font");
                        writer.beginElement("core:object", "base");
                        writer.endElement();
                        writer.endElement();
                    }));
        start("Shared.xml");
        m_plugin = add(root(), "plugin");
        m_main = add(*m_plugin, "modMain");
        m_env = add(*m_plugin, "env", "test:probe");
    }

    CObject* m_plugin = nullptr;
    CObject* m_main = nullptr;
    CObject* m_env = nullptr;
};

TEST_F(CObjectPath, leadsFromTheRootFromHereAndUpwards) {
    CObject* const shared = CApplication::sharedObject();
    const struct {
        const char* path;
        const CObject* object;
    } kCases[] = {
        {"plugin.modMain", m_main},
        {"plugin.modMain.", m_main},
        {"plugin..modMain", m_main},
        {"^env", m_env},
        {"^", m_plugin},
        {"^^", &root()},
        {"^^plugin.env", m_env},
        {"^^^", nullptr},
        {"^^^plugin", nullptr},
        {".", m_main},
        {".x", nullptr},
        {"", nullptr},
        {"/", &root()},
        {"/plugin", m_plugin},
        {"plugin/plugin.env", m_env},
        {"plugin.modMain^", &root()},  // "^" doesn't close a step: "modMain" counts nothing
        {"plugin.modMain.^", m_plugin},
        {"env", nullptr},
        {"plugin.env.x", nullptr},
        {"shared::", shared},
        {"shared::font.base", shared->children()[0]->children()[0]},
        {"shared::font.base.^^", shared},
        {"shared::plugin", nullptr},
        {"shared::font/plugin", m_plugin},
    };
    for (const auto& [path, object] : kCases) EXPECT_EQ(m_main->findObject(path), object) << path;
    EXPECT_EQ(root().findObject(".plugin.env"), m_env);
}

TEST_F(CObjectPath, ofAMessageTellsWhatItLedTo) {
    const auto name = [&](CStringView path) { return text(m_main->getObjectPathName(path)); };
    EXPECT_EQ(name("^env"), "plugin.env");
    EXPECT_EQ(name("^"), "plugin");
    EXPECT_EQ(name("^nobody.x"), "plugin.nobody.x");
    EXPECT_EQ(name("^^nobody"), "nobody");
    EXPECT_EQ(name("^^^x"), "^x");
    EXPECT_EQ(name("plugin.env.x"), "plugin.env.x");
    EXPECT_EQ(name("shared::font.x"), "shared::font.x");
    EXPECT_EQ(name(""), "");
    EXPECT_EQ(name("/"), "");
}

TEST_F(CObjectPath, checkedSearchTellsWhatIsWrong) {
    CProbe* probe = nullptr;
    EXPECT_EQ(messageOf(m_main->findObjectChecked(probe, "^env")), "");
    EXPECT_EQ(probe, m_env);
    EXPECT_EQ(messageOf(m_main->findObjectChecked(probe, "^nobody")),
              "Unable to find object '^nobody' ('plugin.nobody')");
    EXPECT_EQ(probe, nullptr);
    probe = static_cast<CProbe*>(m_env);
    EXPECT_EQ(messageOf(m_main->findObjectChecked(probe, "^")), "Incompatible type of object '^' ('plugin')");
    EXPECT_EQ(probe, nullptr);
}

TEST_F(CObjectPath, searchByAttributeTellsWhatIsWrong) {
    CProbe* probe = static_cast<CProbe*>(m_env);
    EXPECT_EQ(messageOf(m_main->findObjectByAttr("env", probe)), "Object name attribute 'env' cannot be empty.");
    EXPECT_EQ(probe, nullptr);
    const auto search = [&](CStringView path) {
        EXPECT_EQ(messageOf(m_main->setAttr("env", path, kImmediate)), "");
        return messageOf(m_main->findObjectByAttr("env", probe));
    };
    EXPECT_EQ(search("^env"), "");
    EXPECT_EQ(probe, m_env);
    EXPECT_EQ(search("^nobody"), "Name attribute 'env' refers to a non-existent object '^nobody' ('plugin.nobody')");
    EXPECT_EQ(probe, nullptr);
    EXPECT_EQ(search("^"), "Name attribute 'env' refers to object '^' ('plugin') of incompatible type.");
    EXPECT_EQ(probe, nullptr);
}

}  // namespace
}  // namespace brt
