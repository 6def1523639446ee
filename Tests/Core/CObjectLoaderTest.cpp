// SPDX-License-Identifier: LicenseRef-Halyard
// From a document to objects: order of the stages, templates, resources and files, errors on the way.
#include <algorithm>
#include <fstream>

#include "Platform/TemporaryFolder.h"
#include "TreeFixture.h"

namespace brt {
namespace {

using Journal = std::vector<std::string>;

class CObjectLoader : public TreeFixture {
protected:
    // Loads one document, a resource, into the test's root.
    std::string load(const std::function<void(CDocumentWriter&)>& write, ERootStages stages = kLeaveRoot) {
        addResource("Test.xml", document(write));
        start();
        root();
        takeJournal();
        return messageOf(root().loadXMLData("Test.xml", stages));
    }

    // "tag name a=1 b=x (children)", without full names.
    static std::string dump(const CObject& object) {
        std::string result = text(object.tag()) + " " + text(object.getShortName());
        for (const auto& [name, value] : object.attributes()) {
            if (name != "full-name") result += " " + text(name) + "=" + text(value.asString());
        }
        if (object.children().isEmpty()) return result;
        result += " (";
        for (const CObject* const child : object.children())
            result += (child == object.children()[0] ? "" : ", ") + dump(*child);
        return result + ")";
    }
};

TEST_F(CObjectLoader, buildsElementByElement) {
    EXPECT_EQ(load([](CDocumentWriter& writer) {
                  writer.beginElement("test:probe", "p");
                  writer.attribute("a", "1");
                  writer.attribute("b", "2");
                  writer.beginElement("test:probe", "c");
                  writer.endElement();
                  writer.beginElement("test:probe", "c");
                  writer.endElement();
                  writer.endElement();
                  writer.beginElement("test:probe", "q");
                  writer.endElement();
              }),
              "");
    EXPECT_EQ(takeJournal(), (Journal{"init p", "initChilds p", "p.b=2", "p.a=1", "add c to p", "init c",
                                      "initChilds c", "initDone c", "add c#1 to p", "init c#1", "initChilds c#1",
                                      "initDone c#1", "initDone p", "init q", "initChilds q", "initDone q"}));
    EXPECT_EQ(root().findObject("p.c")->state(), CObject::kComplete);
    EXPECT_TRUE(std::any_of(log().begin(), log().end(), [](const std::string& line) {
        return line.starts_with("loadXMLData \"Test.xml\" init time: ") && line.find(" s @ ") != std::string::npos;
    }));
}

TEST_F(CObjectLoader, falseAndEmptyAttributesDoNotExist) {
    EXPECT_EQ(load([](CDocumentWriter& writer) {
                  writer.attribute("of-root", "5");
                  writer.beginElement("core:object", "o");
                  writer.attribute("empty", "");
                  writer.attribute("no", "false");
                  writer.attribute("zero", "0");
                  writer.attribute("twice", "1");
                  writer.attribute("twice", "2");
                  writer.endElement();
              }),
              "");
    EXPECT_EQ(dump(root()), "  of-root=5 (core:object o twice=2 zero=0)");
    EXPECT_FALSE(root().findObject("o")->getAttrBool("no"));
}

TEST_F(CObjectLoader, theRootRunsItsStagesIfAsked) {
    addResource("Empty.xml", document([](CDocumentWriter&) {}));
    start("Empty.xml");
    EXPECT_EQ(CApplication::sharedObject()->state(), CObject::kComplete);
    CObject* window = nullptr;
    ASSERT_EQ(messageOf(CApplication::initRootObject(window, "Empty.xml")), "");
    EXPECT_EQ(window->state(), CObject::kComplete);
    CObject::release(window);
    // Into an object that has its own stages ahead of it, they stay so.
    CObject* child = nullptr;
    ASSERT_EQ(messageOf(root().addChild(child, "test:probe", "p", kClassesOnly)), "");
    takeJournal();
    EXPECT_EQ(messageOf(child->loadXMLData("Empty.xml", kLeaveRoot)), "");
    EXPECT_EQ(child->state(), CObject::kConstructed);
    EXPECT_EQ(messageOf(child->loadXMLData("Empty.xml", kInitRoot)), "");
    EXPECT_EQ(takeJournal(), (Journal{"init p", "initChilds p", "initDone p"}));
    EXPECT_EQ(child->state(), CObject::kComplete);
}

// A template "knob" whose body has an attribute and children, one of them a template of its own.
void writeTemplate(CDocumentWriter& writer) {
    writer.beginTemplate("knob", "test:probe");
    writer.attribute("a", "1");
    writer.attribute("b", "2");
    writer.beginElement("test:probe", "label");
    writer.attribute("text", "a text that is too long to lie within a string");
    writer.endElement();
    writer.beginTemplate("tick", "core:object");
    writer.attribute("inner", "5");
    writer.endElement();
    writer.endElement();
}

TEST_F(CObjectLoader, aTemplateMakesObjects) {
    ASSERT_EQ(load(writeTemplate), "");
    const CObject* const itself = root().findObject("knob");
    EXPECT_EQ(itself->tag(), "template");
    EXPECT_EQ(itself->state(), CObject::kComplete);
    EXPECT_TRUE(itself->children().isEmpty());
    EXPECT_TRUE(takeJournal().empty());

    CObject* const holder = add(root(), "holder");
    EXPECT_TRUE(holder->hasTemplate("knob"));
    EXPECT_FALSE(holder->hasTemplate("tick"));
    CAttrMap overrides;
    overrides.findOrInsert("b").setText("3");
    CProbe* made = nullptr;
    ASSERT_EQ(messageOf(holder->createChild(made, "knob", "k", kTemplateRequired, &overrides)), "");
    EXPECT_EQ(takeJournal(), (Journal{"init k", "initChilds k", "k.b=3", "k.a=1", "add label to k", "init label",
                                      "initChilds label", "initDone label", "add tick to k", "initDone k"}));
    EXPECT_EQ(made->tag(), "test:probe");
    EXPECT_EQ(made->state(), CObject::kChildrenMade);
    EXPECT_EQ(made->findChild("label")->state(), CObject::kComplete);
    EXPECT_EQ(
        dump(*made),
        "test:probe k a=1 b=3 (test:probe label text=a text that is too long to lie within a string, template tick)");

    CObject* inner = nullptr;
    ASSERT_EQ(messageOf(made->findChild("label")->createChild(inner, "tick", "t", kTemplateRequired)), "");
    EXPECT_EQ(inner->getAttrInt("inner"), 5);

    // Templates go with their object; what was made from them stays.
    CObject::release(root().findObject("knob"));
    EXPECT_FALSE(holder->hasTemplate("knob"));
    EXPECT_TRUE(made->hasTemplate("tick"));
    EXPECT_EQ(holder->findChild("k"), made);
}

TEST_F(CObjectLoader, aTagInADocumentIsAClassNotATemplate) {
    ASSERT_EQ(load([](CDocumentWriter& writer) {
                  writer.beginTemplate("test:probe", "core:object");
                  writer.attribute("from-template", "1");
                  writer.endElement();
                  writer.beginElement("test:probe", "p");
                  writer.endElement();
              }),
              "");
    EXPECT_EQ(root().findObject("p")->findAttr("from-template"), nullptr);
    EXPECT_EQ(add(root(), "q", "test:probe")->getAttrInt("from-template"), 1);
    EXPECT_EQ(root().findObject("q")->tag(), "core:object");
}

TEST_F(CObjectLoader, aFileGivesTheSameTreeAsAResource) {
    const auto write = [](CDocumentWriter& writer) {
        writeTemplate(writer);
        writer.beginElement("core:object", "o");
        writer.attribute("\xE9", u"\u0416");
        writer.endElement();
    };
    ASSERT_EQ(load(write), "");
    const TemporaryFolder folder;
    const std::string file = folder.bytes("Test.xml");
    const std::vector<std::uint8_t> bytes = document(write);
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
    CObject* other = nullptr;
    ASSERT_EQ(messageOf(CApplication::initRootObject(other, CString::fromPath(folder.path("Test.xml")))), "");
    std::ofstream(file, std::ios::trunc);  // the templates don't need the file any more
    EXPECT_EQ(dump(*other), dump(root()));
    EXPECT_EQ(dump(*add(*other, "k", "knob")), dump(*add(root(), "k", "knob")));
    CObject::release(other);
}

TEST_F(CObjectLoader, aFailedChildGoesAndThoseBeforeItStay) {
    const std::string message = load([](CDocumentWriter& writer) {
        writer.beginElement("test:probe", "good");
        writer.endElement();
        writer.beginElement("test:probe", "bad");
        writer.attribute("fails-in", "initDone");
        writer.beginElement("test:probe", "inner");
        writer.endElement();
        writer.endElement();
        writer.beginElement("test:probe", "late");
        writer.endElement();
    });
    EXPECT_EQ(message, "Stage initDone fails.");
    EXPECT_EQ(dump(root()), "  (test:probe good)");
    EXPECT_EQ(CProbe::s_alive, 1);
}

TEST_F(CObjectLoader, anErrorTellsEachLevelItPassed) {
    load([](CDocumentWriter& writer) {
        writer.beginElement("core:object", "outer");
        writer.beginElement("test:probe", "inner");
        writer.attribute("fails-in", "init");
        writer.endElement();
        writer.endElement();
    });
    CString lines;
    errorToText(root().loadXMLData("Test.xml", kLeaveRoot), lines, false);
    EXPECT_GE(lines.find(" ) // outer.inner\r\n"), 0) << lines.toUtf8();
    EXPECT_GE(lines.find(" ) // outer\r\n"), 0) << lines.toUtf8();
}

TEST_F(CObjectLoader, aTemplateThatMakesItselfComesToAnEnd) {
    // A class whose objects make a child of a template whose body makes such an object.
    class CNester : public CObject {
    public:
        CError* initDone() override {
            BRT_TRY("", CObject::initDone());
            CObject* child = nullptr;
            return createChild(child, "nest", "n", kTemplateRequired);
        }
    };
    addResource("Test.xml", document([](CDocumentWriter& writer) {
                    writer.beginTemplate("nest", "test:nester");
                    writer.endElement();
                }));
    static constexpr CCreatorRow kTags[] = {creatorRow<CNester>("test:nester")};
    start("", kTags);
    ASSERT_EQ(messageOf(root().loadXMLData("Test.xml", kLeaveRoot)), "");
    CObject* child = nullptr;
    EXPECT_EQ(messageOf(root().createChild(child, "nest", "n", kTemplateRequired)),
              "Child 'n' (tag 'nest') would lie more than 128 levels below the root; does a template contain itself?");
}

TEST_F(CObjectLoader, whatCannotBeReadIsTold) {
    addResource("Damaged.xml", {1, 0, 0, 0});
    start();
    EXPECT_EQ(messageOf(root().loadXMLData("Damaged.xml", kLeaveRoot)),
              "Document 'Damaged.xml' is damaged at byte 4: the table of strings doesn't fit into the document.");
    EXPECT_EQ(messageOf(root().loadXMLData("/nowhere/Missing.xml", kLeaveRoot)),
              "Unable to open file '/nowhere/Missing.xml' for reading (error 2).");
    EXPECT_TRUE(root().children().isEmpty());
}

}  // namespace
}  // namespace brt
