// SPDX-License-Identifier: LicenseRef-Halyard
// The text of a document and its compiled form say the same.
#include <random>

#include "Core/CMemoryReader.h"
#include "Tools/DoccFixture.h"

namespace brt {
namespace {

class DocumentForm : public DoccFixture {
protected:
    Bytes compileWell(const std::string& text) {
        Bytes bytes = compile(text);
        EXPECT_EQ(m_errors, "") << text;
        return bytes;
    }
    static std::string dump(const Bytes& bytes) { return printDocument(*readCompiledDocument(bytes, "x")); }
};

TEST_F(DocumentForm, theLoaderGetsWhatTheTextSays) {
    start();
    const Bytes bytes = compileWell(R"(<!-- A comment. -->
<document scale="2">
    <core:object name="a" number="05" text='"&lt;&amp;&gt;" &#x416;é&#10;.' off="false" none="">
        <core:object name="p">  One line
            of text: &lt;5  &amp; more. </core:object>
        <core:object name="p" ref="{/^ number}"/>
    </core:object>
    <template name="slot"><core:object x="{scale}"><content name="in"/></core:object></template>
</document>)");
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    ASSERT_EQ(messageOf(root().loadDocument(reader, "x", kLeaveRoot)), "");
    EXPECT_EQ(root().getAttrInt("scale"), 2);
    CObject& a = *root().findChild("a");
    EXPECT_EQ(text(a.getAttrString("number")), "05");
    EXPECT_EQ(text(a.getAttrString("text")), "\"<&>\" \u0416\u00E9\n.");
    EXPECT_EQ(a.findAttr("off"), nullptr);
    EXPECT_EQ(a.findAttr("none"), nullptr);
    EXPECT_EQ(a.children().count(), 2);
    EXPECT_EQ(text(root().findObject("a.p.content")->getAttrString("value")), "One line of text: <5 & more.");
    EXPECT_EQ(text(root().findObject("a.p#1")->getAttrString("ref")), "05");
    CObject* const slot = add(root(), "s", "slot");
    EXPECT_EQ(text(slot->getAttrString("x")), "2");
    EXPECT_NE(slot->findChild("in"), nullptr);
}

// Elements, attributes and templates at random, with what needs care in both forms.
class RandomDocument {
public:
    explicit RandomDocument(unsigned seed) : m_random(seed) {}

    std::unique_ptr<CElement> make() {
        auto root = std::make_unique<CElement>();
        root->tag = CElement::kRootTag;
        fill(*root, 0);
        return root;
    }

private:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }

    CString value() {
        static constexpr char16_t kUnits[] = u"ab <>&\"'{}\n\t\r\u0001é\u0416\uFFFD]]>";
        CString result;
        for (int rest = below(12); rest > 0; --rest) result.append(kUnits[below(20)]);
        return result;
    }

    void fill(CElement& element, int depth) {
        static const char* const kNames[] = {"b", "a-1", "_x", "é.:y"};
        for (const char* const name : kNames)
            if (below(2) == 0) element.attributes.push_back({CString::fromUtf8(name), value()});
        if (depth > 4) return;
        for (int rest = below(5); rest > 0; --rest) {
            const bool isTemplate = below(4) == 0;
            CElement& child = element.addChild(isTemplate ? "template" : below(2) == 0 ? "core:object" : "content");
            if (isTemplate || below(2) == 0) child.name = CString("n").append(integerOf(below(3)));
            fill(isTemplate ? child.addChild("core:object") : child, depth + 1);
        }
    }
    static CString integerOf(int number) {
        CString text;
        CString::fromInt(text, number);
        return text;
    }

    std::mt19937 m_random;
};

TEST_F(DocumentForm, aDumpCompilesToTheSameBytes) {
    start();
    std::size_t most = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        const Bytes bytes = compileDocument(*RandomDocument(seed).make());
        const std::string printed = dump(bytes);
        ASSERT_EQ(compileWell(printed), bytes) << "seed " << seed << "\n" << printed;
        ASSERT_EQ(dump(bytes), printed);
        most = std::max(most, bytes.size());
    }
    EXPECT_GT(most, 2000U);
}

TEST_F(DocumentForm, whatIsNoDocumentOrHasNoTextIsRefused) {
    start();
    const auto refusal = [](const Bytes& bytes) -> std::string {
        try {
            dump(bytes);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(refusal({}), "Document 'x' is damaged at byte 0: a document has 1 to 65536 strings.");
    EXPECT_EQ(refusal({'<', 'd', 'o', 'c', 'u', 'm', 'e', 'n', 't', '/', '>'}),
              "Document 'x' is damaged at byte 0: a document has 1 to 65536 strings.");
    EXPECT_EQ(refusal(document([](CDocumentWriter& writer) { writer.attribute("a b", "c"); })),
              "the element '' can't be written as text: 'a b' is no tag and no attribute's name");
    EXPECT_EQ(refusal(document([](CDocumentWriter& writer) { writer.attribute("name", "c"); })),
              "the element '' can't be written as text: it has an attribute 'name'");
    EXPECT_EQ(refusal(document([](CDocumentWriter& writer) {
                  writer.beginElement("template", "t");
                  writer.endElement();
              })),
              "an element has the tag 'template', and is none");
    EXPECT_EQ(refusal(document([](CDocumentWriter& writer) {
                  writer.beginTemplate("t", "template");
                  writer.endElement();
              })),
              "an element has the tag 'template', and is none");
}

}  // namespace
}  // namespace brt
