// SPDX-License-Identifier: LicenseRef-Halyard
// The shared tree: its place, its freeze, its readers on many threads; resources; start and stop.
#include <algorithm>
#include <atomic>
#include <thread>

#include "Core/CDataSet.h"
#include "Core/CObjectContext.h"
#include "Core/CResourceReader.h"
#include "TreeFixture.h"

namespace brt {
namespace {

class CApplicationTree : public TreeFixture {
protected:
    void startWithSharedTree() {
        if (!hasResources())
            addResource("Shared.xml", document([](CDocumentWriter& writer) {
                            writer.beginElement("core:object", "project");
                            writer.attribute("window-width", "480");
                            writer.attribute("tail", "0.4");
                            writer.attribute("name", "Halyard");
                            writer.attribute("use-routing", "true");
                            writer.endElement();
                            writer.beginTemplate("plugin", "core:object");
                            writer.attribute("a", "7");
                            writer.beginElement("core:object", "env");
                            writer.attribute("tail", "0.5");
                            writer.endElement();
                            writer.beginTemplate("slot", "core:object");
                            writer.attribute("x", "1");
                            writer.endElement();
                            writer.endElement();
                        }));
        start("Shared.xml");
    }
};

TEST_F(CApplicationTree, theSharedTreeIsReadOnly) {
    startWithSharedTree();
    CObject* const project = root().findObject("shared::project");
    ASSERT_NE(project, nullptr);
    EXPECT_TRUE(project->isReadOnly());
    EXPECT_TRUE(CApplication::sharedObject()->isReadOnly());
    EXPECT_EQ(messageOf(project->setAttr("name", "x", kImmediate)), "");
    EXPECT_EQ(messageOf(project->setAttrDouble("new", 1.0, kImmediate)), "");
    EXPECT_EQ(messageOf(project->setAttr("full-name", "x", kImmediate)), "");
    EXPECT_EQ(project->getAttrString("name"), "Halyard");
    EXPECT_EQ(project->findAttr("new"), nullptr);
    CObject* child = nullptr;
    EXPECT_EQ(messageOf(project->addChild(child, "core:object", "x", kClassesOnly)),
              "Error adding child to read-only object.");
    EXPECT_EQ(messageOf(project->createChild(child, "core:object", "x", kTemplateOptional)),
              "Error adding child to read-only object.");
    EXPECT_EQ(child, nullptr);

    CObject* const plugin = add(root(), "plugin", "plugin");
    EXPECT_FALSE(plugin->isReadOnly());
    EXPECT_FALSE(plugin->findChild("env")->isReadOnly());
    EXPECT_FALSE(root().isReadOnly());
}

TEST_F(CApplicationTree, manyThreadsReadItAndBuildFromIt) {
    startWithSharedTree();
    std::atomic<int> built{0};
    const auto work = [&] {
        for (int i = 0; i < 100; ++i) {
            CObject* mine = nullptr;
            if (!messageOf(CApplication::initRootObject(mine, "")).empty()) return;
            CObject* plugin = nullptr;
            CObject* slot = nullptr;
            const bool isBuilt = messageOf(mine->createChild(plugin, "plugin", "plugin", kTemplateRequired)).empty() &&
                                 messageOf(plugin->createChild(slot, "slot", "s", kTemplateRequired)).empty();
            const CObject* const project = mine->findObject("shared::project");
            // Each form, also those that a text doesn't have.
            if (isBuilt && project->getAttrInt("window-width") == 480 &&
                project->getAttrString("window-width") == "480" && project->getAttrDouble("tail") == 0.4 &&
                project->getAttrInt("tail") == 0 && !project->getAttrBool("tail") &&
                project->getAttrDouble("name") == 0.0 && project->getAttrBool("use-routing") &&
                project->getAttrString("use-routing") == "true" && slot->getAttrInt("x") == 1)
                built.fetch_add(1);
            CObject::release(mine);
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(built.load(), 200);
    EXPECT_EQ(CObjectContext::liveCount(), 0);
}

TEST_F(CApplicationTree, aFailedSharedDocumentLeavesNoSharedObject) {
    addResource("Shared.xml", document([](CDocumentWriter& writer) {
                    writer.beginElement("test:probe", "p");
                    writer.attribute("fails-in", "initChilds");
                    writer.endElement();
                }));
    start("Shared.xml");
    EXPECT_EQ(CApplication::sharedObject(), nullptr);
    EXPECT_EQ(CProbe::s_alive, 0);
    EXPECT_TRUE(std::find(log().begin(), log().end(), "Stage initChilds fails.") != log().end());
    CObject* mine = nullptr;
    EXPECT_EQ(messageOf(CApplication::initRootObject(mine, "")), "No shared object created.");
    EXPECT_EQ(mine, nullptr);
}

TEST_F(CApplicationTree, theSharedDocumentMayNameItself) {
    // Elements find what stands before them in the shared tree while it is loaded.
    class CFinder : public CObject {
    public:
        CError* init() override {
            CObject* object = nullptr;
            BRT_TRY("", findObjectChecked(object, "shared::first"));
            return CObject::init();
        }
    };
    addResource("Shared.xml", document([](CDocumentWriter& writer) {
                    writer.beginElement("core:object", "first");
                    writer.endElement();
                    writer.beginElement("test:finder", "second");
                    writer.endElement();
                }));
    static constexpr CCreatorRow kTags[] = {creatorRow<CFinder>("test:finder")};
    start("Shared.xml", kTags);
    ASSERT_NE(CApplication::sharedObject(), nullptr);
    EXPECT_EQ(messageOf(CApplication::initSharedObject("Shared.xml")), "Shared object already exists.");
    EXPECT_TRUE(root().findObject("shared::second")->isReadOnly());
}

TEST_F(CApplicationTree, aTagIsRegisteredOnce) {
    static constexpr CCreatorRow kTags[] = {bagRow("x:a"), creatorRow<CProbe>("test:probe"), bagRow("x:b")};
    start("", kTags);
    const char* const message = "Creator for 'test:probe' has already been registered.";
    EXPECT_EQ(std::count(log().begin(), log().end(), message), 1);
    EXPECT_NE(CApplication::creators().find("x:a"), nullptr);
    EXPECT_EQ(CApplication::creators().find("x:b"), nullptr);
    EXPECT_NE(CApplication::sharedObject(), nullptr);
}

TEST_F(CApplicationTree, startsAndStopsAgain) {
    for (int i = 0; i < 3; ++i) {
        startWithSharedTree();
        EXPECT_NE(CApplication::sharedObject(), nullptr);
        stopProcess();
        EXPECT_EQ(CApplication::sharedObject(), nullptr);
        EXPECT_EQ(CObjectContext::liveCount(), 0);
    }
    EXPECT_EQ(std::count(log().begin(), log().end(), "Initializing application..."), 3);
    EXPECT_EQ(std::count(log().begin(), log().end(), "Finalizing application..."), 3);
}

TEST_F(CApplicationTree, contextsCountInstancesAndIds) {
    start();
    CObject* first = nullptr;
    CObject* second = nullptr;
    ASSERT_EQ(messageOf(CApplication::initRootObject(first, "")), "");
    ASSERT_EQ(messageOf(CApplication::initRootObject(second, "")), "");
    EXPECT_EQ(second->context()->instanceNumber(), first->context()->instanceNumber() + 1);
    EXPECT_EQ(first->id(), 0);
    EXPECT_EQ(add(*first, "x")->id(), 1);
    EXPECT_EQ(second->id(), 0);
    EXPECT_EQ(CObjectContext::liveCount(), 2);
    CObject::release(first);
    CObject::release(second);
}

class CThreeBytes : public CDataSet {
public:
    std::string m_bytes;

private:
    CError* read(CPosInputStream& stream) override {
        char bytes[3];
        BRT_TRY("", stream.read(bytes, 3));
        m_bytes.assign(bytes, 3);
        return nullptr;
    }
};

TEST_F(CApplicationTree, aDataSetReadsItsResource) {
    addResource("../../../Gfx/x.is", {'a', 'b', 'c', 'd'});
    addResource("short", {'a'});
    start();
    CThreeBytes set;
    EXPECT_EQ(messageOf(set.load("../../../Gfx/x.is")), "");
    EXPECT_EQ(set.m_bytes, "abc");
    EXPECT_EQ(messageOf(set.load("short")), "Premature end of memory resource while reading (pos 0, count 3, size 1).");
    EXPECT_EQ(messageOf(set.load("/nowhere/x.is")), "Unable to open file '/nowhere/x.is' for reading (error 2).");
}

TEST_F(CApplicationTree, aResourceReaderForwardsToWhatIsOpen) {
    addResource("r", {'a', 'b', 'c', 'd'});
    start();
    CResourceReader reader;
    char bytes[4] = {};
    std::int64_t number = -1;
    int count = 4;
    const std::string closed = "Neither a resource nor a file is open.";
    EXPECT_EQ(messageOf(reader.read(bytes, 1)), closed);
    EXPECT_EQ(messageOf(reader.getSize(number)), closed);
    EXPECT_EQ(reader.getDirectData(), nullptr);
    ASSERT_EQ(messageOf(reader.open("r")), "");
    EXPECT_EQ(messageOf(reader.getSize(number)), "");
    EXPECT_EQ(number, 4);
    EXPECT_EQ(messageOf(reader.skip(1)), "");
    EXPECT_EQ(*static_cast<const char*>(reader.getDirectData()), 'b');
    EXPECT_EQ(messageOf(reader.setPosition(2)), "");
    EXPECT_EQ(messageOf(reader.getPosition(number)), "");
    EXPECT_EQ(number, 2);
    EXPECT_EQ(messageOf(reader.readStreamed(bytes, count)), "");
    EXPECT_EQ(std::string(bytes, static_cast<std::size_t>(count)), "cd");
    // A failed open leaves nothing open.
    EXPECT_NE(messageOf(reader.open("/nowhere/r")), "");
    EXPECT_EQ(messageOf(reader.skip(1)), closed);
}

}  // namespace
}  // namespace brt
