// SPDX-License-Identifier: LicenseRef-Halyard
// What is wrong with a document is told where it stands, with a guess at what was meant.
#include "Tools/DoccFixture.h"

namespace brt {
namespace {

using DocumentCheck = DoccFixture;

struct Wrong {
    const char* elements;
    const char* errors;
};

TEST_F(DocumentCheck, xmlThatIsNoDocument) {
    start();
    const std::pair<std::string, std::string> cases[] = {
        {"", "1:1: error: no XML: no document element found"},
        {"<document>\n<a>", "2:3: error: no XML: an element isn't closed, or by the wrong end tag"},
        {"<document a=b/>", "1:13: error: no XML: error parsing element attribute"},
        {"<doc/>", "1:2: error: the root element is <document>, not <doc>"},
        {"<document/>\n<document/>", "2:2: error: a second root element; all elements stand within one <document>"},
        {"<document name='x'/>", "1:11: error: the root has no name"},
        {"<!DOCTYPE document SYSTEM 'file:///etc/passwd'>\n<document/>",
         "1:11: error: a DOCTYPE isn't allowed: documents define no entities and include nothing"},
        {"<!DOCTYPE document [<!ENTITY x 'y'>]>\n<document a='&x;'/>",
         "1:11: error: a DOCTYPE isn't allowed: documents define no entities and include nothing\n"
         "doc.xml:2:14: error: unknown entity '&x;'; there are &amp; &lt; &gt; &quot; &apos; and &#NUMBER;"},
        {"<?xml version='1.0' encoding='latin1'?><document/>",
         "1:1: error: the encoding is 'latin1'; documents are UTF-8"},
        {"<?xml version='1.0' encoding='UTF-8'?><?php x?><document/>",
         "1:41: error: a processing instruction isn't allowed"},
        {"<document a='\xE4'/>",
         "1:14: error: no document can hold this byte: a document is UTF-8 text of characters "
         "up to U+FFFF"},
        {"<document>\xF0\x9F\x98\x80</document>",
         "1:11: error: no document can hold this byte: a document is UTF-8 text of characters up to U+FFFF"},
    };
    for (const auto& [text, errors] : cases) {
        EXPECT_TRUE(compile(text).empty()) << text;
        EXPECT_EQ(m_errors, "doc.xml:" + errors + "\n") << text;
    }
    EXPECT_FALSE(compile("\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><document xmlns:core='x'/>").empty());
}

TEST_F(DocumentCheck, theForm) {
    start();
    const Wrong cases[] = {
        // Columns count characters, and continue behind those of several bytes.
        {"<!-- \u00E4\u20AC --><core:objct name='x'/>", "2:13: unknown tag 'core:objct'; did you mean 'core:object'?"},
        {"<core:object a='1'\n  b='2' a='3'/>", "3:9: attribute 'a' stands here twice"},
        {"<core:object name='a' name='b'/>", "2:23: attribute 'name' stands here twice"},
        {"<core:object a='x &nbsp;'/>",
         "2:19: unknown entity '&nbsp;'; there are &amp; &lt; &gt; &quot; &apos; and &#NUMBER;"},
        {"<core:object a='x & y'/>", "2:19: '&' begins an entity; write &amp; for the character"},
        {"<core:object>a &#0;</core:object>",
         "2:16: '&#0;' is no character that a document can hold (&#1; to &#xFFFF;)"},
        {"<core:object a='&#x1F600;'/>",
         "2:17: '&#x1F600;' is no character that a document can hold (&#1; to &#xFFFF;)"},
        {"<core:object a='<'/>", "2:17: '<' within a value: is a quote missing before? Else write &lt;"},
        {"<core:object/>\n >", "3:2: text beside elements; give it an element of its own"},
        {"<core:object><![CDATA[x]]></core:object>", "2:23: a CDATA section isn't allowed; write &lt; and &amp;"},
        {"<core:object><?x y?></core:object>", "2:16: a processing instruction isn't allowed"},
        {"<core:object name='a.b'/>", "2:20: no path leads to the name 'a.b'; leave out . / ^ { } ? and blanks"},
        {"<core:object name='a#-1'/>",
         "2:20: A child can't be named 'a#-1': behind '#' stands a number from 0 to 2147483646."},
        {"<core:object full-name='a'/>", "2:14: 'full-name' is made by the tree; give the element a name"},
        {"<template><core:object/></template>", "2:2: a template must have a name"},
        {"<template name='t' a='1'><core:object/></template>",
         "2:20: a template has a name and nothing else; attribute 'a' belongs to the element in it"},
        {"<template name='t'/>", "2:2: a template holds one element: what is made from it"},
        {"<template name='t'><core:object/><core:object/></template>",
         "2:2: a template holds one element: what is made from it"},
        {"<template name='t'><core:object name='x'/></template>",
         "2:33: the element within a template has no name; it gets one when it is made"},
        {"<template name='t'><template name='u'><core:object/></template></template>",
         "2:21: a template can't make a template"},
        // Several in one run, in the order of the text.
        {"<core:object full-name='a' x='&a;'/>\n<x/>\n<core:timr name='t'/>",
         "2:14: 'full-name' is made by the tree; give the element a name\n"
         "2:31: unknown entity '&a;'; there are &amp; &lt; &gt; &quot; &apos; and &#NUMBER;\n"
         "3:2: unknown tag 'x'\n"
         "4:2: unknown tag 'core:timr'; did you mean 'core:timer'?"},
    };
    for (const Wrong& wrong : cases) EXPECT_EQ(errorsOf(wrong.elements), wrong.errors) << wrong.elements;
    std::string deep;
    for (int i = 0; i < 63; ++i) deep += "<core:object>";
    std::string ends;
    for (int i = 0; i < 63; ++i) ends += "</core:object>";
    EXPECT_EQ(errorsOf(deep + ends), "");
    EXPECT_EQ(errorsOf(deep + "<content/>" + ends), "2:821: elements are nested more than 64 deep");
}

TEST_F(DocumentCheck, attributesAgainstTheClass) {
    start();
    const Wrong cases[] = {
        {"is-onn='1'", "2:20: 'test:rig' has no attribute 'is-onn'; did you mean 'is-on'?"},
        {"label='a' label2='b' label2b='c'", "2:41: 'test:rig' has no attribute 'label2b'; did you mean 'label'?"},
        {"frobnicate='1'", "2:20: 'test:rig' has no attribute 'frobnicate'"},
        {"attribute='speed  dead-zone' speed='1' dead-zone='2' x='3'", "2:73: 'test:rig' has no attribute 'x'"},
        {"attribute='{x}' speed='1'", ""},
        {"is-on='yes'", "2:27: attribute 'is-on': 'yes' is neither true nor false"},
        {"is-on='0' count='16' gain='-6.5' past='-1' storage='group'", ""},
        {"is-on='false'",
         "2:27: attribute 'is-on': \"false\" isn't stored, and without it stands the class's default 'true'; write \"0\""},
        {"count=''",
         "2:27: attribute 'count': \"\" isn't stored, and without it stands the class's default '2'; leave the "
         "attribute out or write another value"},
        {"is-on='{x?false}' count='{/^ y}'", ""},
        {"count='17'", "2:27: attribute 'count': '17' is no whole number from 1 to 16"},
        {"count='1.5'", "2:27: attribute 'count': '1.5' is no whole number from 1 to 16"},
        {"gain='-7'", "2:26: attribute 'gain': '-7' is no number of at least -6.5"},
        {"gain='1,5'", "2:26: attribute 'gain': '1,5' is no number of at least -6.5"},
        {"past='1'", "2:26: attribute 'past': '1' is no number from -1e+300 to 0"},
        {"storage='globl'",
         "2:29: attribute 'storage': 'globl' is none of local, group, global; did you mean 'global'?"},
    };
    for (const Wrong& wrong : cases)
        EXPECT_EQ(errorsOf("<test:rig must='x' " + std::string(wrong.elements) + "/>"), wrong.errors) << wrong.elements;

    EXPECT_EQ(errorsOf("<test:rig/>"), "2:2: 'test:rig' needs the attribute 'must': what it must have");
    EXPECT_EQ(errorsOf("<test:rig must=''/>"), "2:2: 'test:rig' needs the attribute 'must': what it must have");
    // Whoever makes it may give what it needs.
    EXPECT_EQ(errorsOf("<template name='t'><test:rig/></template>"), "");
    // Events are sent by name; a body gets one when it is made.
    EXPECT_EQ(errorsOf("<core:timer interval='1'/><core:object/>"),
              "2:2: an element 'core:timer' must have a name, since its events are sent by name");
    EXPECT_EQ(errorsOf("<template name='t'><core:timer interval='1'/></template>"), "");
}

TEST_F(DocumentCheck, pathsLeadToObjectsOfTheClass) {
    start();
    const auto inTree = [this](const std::string& attributes) {
        return errorsOf("<core:object name='a'><test:rig name='b' must='1'/>\n<test:rig name='c' must='1' " +
                        attributes + "/><core:object name='b'/></core:object>");
    };
    for (const char* const path : {"^b", "a.b", "/a.b", "^^a.b", "shared::a.b", "^b#0", "^c", "{x}"})
        EXPECT_EQ(inTree("target='" + std::string(path) + "'"), "") << path;
    for (const char* const paths : {"^b ^b#1  a /", "{x} y"})
        EXPECT_EQ(inTree("others='" + std::string(paths) + "'"), "") << paths;

    EXPECT_EQ(inTree("target='^bb'"),
              "3:37: attribute 'target': '^bb' leads nowhere: 'a' has no child 'bb'; did you mean 'b'?");
    EXPECT_EQ(inTree("target='aa.b'"),
              "3:37: attribute 'target': 'aa.b' leads nowhere: the document has no child 'aa'; did you mean 'a'?");
    EXPECT_EQ(inTree("target='shared::a.zoom'"),
              "3:37: attribute 'target': 'shared::a.zoom' leads nowhere: 'a' has no child 'zoom'");
    EXPECT_EQ(inTree("target='^^^a'"), "3:37: attribute 'target': '^^^a' leads out of the document");
    EXPECT_EQ(inTree("target='^b#1'"),
              "3:37: attribute 'target': '^b#1' leads to a 'core:object', which is of another class");
    EXPECT_EQ(inTree("others='^b ^q'"), "3:37: attribute 'others': '^q' leads nowhere: 'a' has no child 'q'");
}

// A template's body knows its own inside; what is around it, only in a document whose templates stay in its own tree.
TEST_F(DocumentCheck, pathsInTemplates) {
    start();
    const auto inBody = [this](const std::string& path) {
        return errorsOf("<template name='plugin'><core:object><test:rig name='env' must='1' target='" + path +
                        "'/></core:object></template><test:rig name='top' must='1'/>");
    };
    for (const char* const path : {"^env", "plugin.env", "^^other", "elsewhere.x", "shared::top", "^/top"})
        EXPECT_EQ(inBody(path), "") << path;
    EXPECT_EQ(
        inBody("^emv"),
        "2:76: attribute 'target': '^emv' leads nowhere: the template's element has no child 'emv'; did you mean 'env'?");
    EXPECT_EQ(inBody("plugin.x"),
              "2:76: attribute 'target': 'plugin.x' leads nowhere: the template's element has no child 'x'");

    const Bytes shared =
        compile("<document><test:rig name='font' must='1'/><template name='knob'><content/></template></document>");
    const std::unique_ptr<CElement> tree = readCompiledDocument(shared, "shared");
    m_shared = tree.get();
    for (const char* const path : {"top", "shared::font", "^^other"}) EXPECT_EQ(inBody(path), "") << path;
    EXPECT_NE(inBody("plugin.env"), "");
    EXPECT_EQ(inBody("elsewhere"),
              "2:76: attribute 'target': 'elsewhere' leads nowhere: the document has no child 'elsewhere'");
    EXPECT_EQ(inBody("shared::top"),
              "2:76: attribute 'target': 'shared::top' leads nowhere: the document has no child 'top'");
    EXPECT_EQ(errorsOf("<test:rig must='1' makes='knob'/>"), "");
}

TEST_F(DocumentCheck, templatesAndResourcesExist) {
    start();
    const std::string window =
        "<template name='window'><core:object><template name='inner'><content/></template>"
        "</core:object></template>\n";
    EXPECT_EQ(errorsOf(window + "<test:rig must='1' makes='inner'/>"), "");
    EXPECT_EQ(errorsOf(window + "<test:rig must='1' makes='windw'/>"),
              "3:27: attribute 'makes': there is no template 'windw'; did you mean 'window'?");
    EXPECT_EQ(errorsOf("<test:rig must='1' file='any.is'/>"), "") << "resources aren't known";
    COrderedSet<CString> resources;
    resources.insert("../Gfx/knob.is");
    m_resources = &resources;
    EXPECT_EQ(errorsOf("<test:rig must='1' file='../Gfx/knob.is'/>"), "");
    EXPECT_EQ(errorsOf("<test:rig must='1' file='../Gfx/knb.is'/>"),
              "2:26: attribute 'file': there is no resource '../Gfx/knb.is'; did you mean '../Gfx/knob.is'?");
    // Where no class asks for it, it may come later.
    EXPECT_EQ(errorsOf("<core:object file='key|../Gfx/knob.is'/><core:object file='../Gfx/new.is'/>"), "");
    EXPECT_THAT(m_missing, testing::EndsWith("needs them yet: ../Gfx/new.is\n"));
}

}  // namespace
}  // namespace brt
