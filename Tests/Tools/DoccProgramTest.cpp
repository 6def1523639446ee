// SPDX-License-Identifier: LicenseRef-Halyard
// The program `docc` as the build runs it, and the table of resources that a build with it has linked into this test.
#include <gmock/gmock.h>

#include <fstream>

#include "Core/CResourceReader.h"
#include "Documents/Resources.h"
#include "Tools/DoccFixture.h"
#include "Tools/HalyardRunner.h"

extern "C" const brt::CResourceRow kTestResources[];

namespace brt {
namespace {

using testing::HasSubstr;

class DoccProgram : public HalyardTest {
protected:
    void writeText(const std::string& name, const std::string& text) const {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    void expectRefusal(const std::string& arguments, int status, const std::string& errors) const {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, status) << arguments;
        EXPECT_THAT(outcome.errors, HasSubstr(errors)) << arguments;
    }
};

TEST_F(DoccProgram, compilesPrintsAndDoesTheSameAgain) {
    writeText("a.xml", "<document><core:object name='x' y='1'>text</core:object></document>");
    runWell("compile a.xml -o a.bin");
    const std::string printed = runWell("dump a.bin");
    EXPECT_EQ(printed,
              "<document>\n    <core:object name=\"x\" y=\"1\">\n"
              "        <content name=\"content\" value=\"text\"/>\n    </core:object>\n</document>\n");
    EXPECT_EQ(runWell("--dump a.bin"), printed);
    writeText("again.xml", printed);
    runWell("compile again.xml -o again.bin");
    EXPECT_EQ(bytes("again.bin"), bytes("a.bin"));

    writeText("b.xml", "<document><ui:ui-event-bridge name='ui' x='{/shared::x y}'/></document>");
    writeText("list", "# a comment\n\n z = a.bin\nb.is= again.bin\r\n");
    runWell("compile b.xml -o b.bin --shared a.bin --resources list");
    runWell("resources list -o r.S --symbol table");
    const std::string table = bytes("r.S");
    runWell("resources list -o r.S --symbol table");
    EXPECT_EQ(bytes("r.S"), table);
    EXPECT_LT(table.find("\"b.is\""), table.find("\"z\""));
}

TEST_F(DoccProgram, tellsWhatIsWrongAndWritesNothing) {
    writeText("bad.xml", "<document>\n  <core:timr name='t'/>\n  <x/></document>");
    writeText("good.xml", "<document/>");
    const std::vector<std::string> before = files();
    expectRefusal("compile bad.xml -o out.bin", 1,
                  "bad.xml:2:4: error: unknown tag 'core:timr'; did you mean 'core:timer'?\n"
                  "bad.xml:3:4: error: unknown tag 'x'\n");
    expectRefusal("compile missing.xml -o out.bin", 1, "docc: error: unable to read 'missing.xml'");
    expectRefusal("compile . -o out.bin", 1, "'.' is a folder, not a file");
    expectRefusal("compile good.xml -o no/out.bin", 1, "Unable to make a file beside 'no/out.bin'");
    expectRefusal("compile good.xml -o out.bin --shared bad.xml", 1, "bad.xml: error: no compiled document: ");
    expectRefusal("dump good.xml", 1,
                  "good.xml: error: no compiled document: Document 'good.xml' is damaged at byte 0");
    expectRefusal("compile good.xml", 2, "--output is required");
    expectRefusal("compil good.xml", 2, "docc: The following arguments were not expected");
    expectRefusal("--dump good.xml compile good.xml -o out.bin", 2, "--dump excludes compile");
    expectRefusal("compile good.xml -o ./good.xml", 1, "the output would replace 'good.xml', which it is made from");
    EXPECT_EQ(bytes("good.xml"), "<document/>");
    expectRefusal("dump /dev/zero", 1, "'/dev/zero' has more than 64 MiB");
    EXPECT_EQ(files(), before);
}

TEST_F(DoccProgram, namesOfAnyBytes) {
    const std::string name = "\xF0\x9F\x8E\xB5 \xFF";
    writeText("a.xml", "<document/>");
    runWell("compile a.xml -o '" + name + "'");
    EXPECT_EQ(runWell("dump '" + name + "'"), "<document/>\n");
}

TEST_F(DoccProgram, tellsThatItsOutputIsLost) {
    writeText("a.xml", "<document/>");
    runWell("compile a.xml -o a.bin");
    expectRefusal("dump a.bin > /dev/full", 1, "cannot write to standard output");
}

TEST_F(DoccProgram, listsOfResourcesThatAreWrong) {
    writeText("list", "a = x\n\nb\n");
    expectRefusal("resources list -o r.S", 1, "list:3: error: this is not \"name = file\"");
    writeText("list", "a = x\na = y\n");
    expectRefusal("resources list -o r.S", 1, "list:2: error: resource 'a' stands here twice");
    writeText("list", "a = x\n");
    expectRefusal("resources list -o r.S", 1, "docc: error: resource 'a': there is no file 'x'");
    writeText("list", "a = list\n");
    expectRefusal("resources list -o list", 1, "the output would replace 'list'");
    writeText("list", "");
    expectRefusal("resources list -o r.S --symbol 3x", 1, "'3x' is no C name");
    EXPECT_EQ(files(), std::vector<std::string>{"list"});
}

class LinkedResources : public TreeFixture {
protected:
    static std::string contentOf(CStringView name) {
        CResourceReader reader;
        EXPECT_EQ(messageOf(reader.open(name)), "");
        EXPECT_NE(CApplication::resources().find(name), nullptr) << "not a file";
        std::int64_t size = 0;
        EXPECT_EQ(messageOf(reader.getSize(size)), "");
        std::string bytes(static_cast<std::size_t>(size), '\0');
        EXPECT_EQ(messageOf(reader.read(bytes.data(), static_cast<int>(size))), "");
        return bytes;
    }
};

TEST_F(LinkedResources, areReadByName) {
    CApplication::start({{}, kTestResources, ""});
    std::ifstream file(TEST_RESOURCE, std::ios::binary);
    const std::string expected{std::istreambuf_iterator<char>(file), {}};
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(contentOf("../../../Gfx/a.is"), expected);
    EXPECT_EQ(contentOf("nothing"), "");
    EXPECT_EQ(contentOf("a name \"b\" \\"), expected);
    EXPECT_EQ(CApplication::resources().resources().count(), 3);
}

TEST_F(LinkedResources, theProductStartsWithItsSharedDocument) {
    CApplication::start({productTags(), kHalyardResources});
    const CObject* const shared = CApplication::sharedObject();
    ASSERT_NE(shared, nullptr);
    const CObject* const project = shared->findChild("project");
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(text(project->getAttrString("app-vendor-code")), "Brtl");
    EXPECT_EQ(project->getAttrInt("plugin-group-count"), 8);
    EXPECT_EQ(project->findAttr("use-sidechain"), nullptr);
    // What instances are made from stands under the name that the audio side gives.
    EXPECT_TRUE(shared->hasTemplate(shared->findChild("audio")->getAttrString("plugin-tag")));
    CObject* const plugin = add(root(), "plugin", "plugin");
    EXPECT_EQ(text(plugin->getAttrString("mod-name")), "plugin.modMain.modHal");
}

}  // namespace
}  // namespace brt
