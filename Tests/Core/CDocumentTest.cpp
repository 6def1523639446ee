// SPDX-License-Identifier: LicenseRef-Halyard
// Compiled documents: what is written reads back, and damage of any kind is told with its place.
#include "Core/CDocument.h"

#include <functional>
#include <utility>

#include "Core/CMemoryReader.h"
#include "TreeFixture.h"

namespace brt {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes written(const std::function<void(CDocumentWriter&)>& write) {
    CDocumentWriter writer;
    write(writer);
    Bytes bytes;
    EXPECT_EQ(messageOf(writer.finish(bytes)), "");
    return bytes;
}

std::string opened(const Bytes& bytes) {
    CMemoryReaderStatic stream(bytes.data(), static_cast<int>(bytes.size()));
    const CRef<CDocument> document(new CDocument);
    return messageOf(document->open(stream, "x.xml"));
}

std::string damaged(int position, const char* what) {
    return "Document 'x.xml' is damaged at byte " + std::to_string(position) + ": " + what + ".";
}

// The form by hand: numbers of 1, 2 and 4 bytes.
class CRawDocument {
public:
    CRawDocument& u8(unsigned value) { return put(value, 1); }
    CRawDocument& u16(unsigned value) { return put(value, 2); }
    CRawDocument& u32(std::uint64_t value) { return put(value, 4); }
    CRawDocument& bytes(std::string_view text) {
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        return *this;
    }
    operator const Bytes&() const { return m_bytes; }

private:
    CRawDocument& put(std::uint64_t value, int size) {
        for (int i = 0; i < size; ++i) m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        return *this;
    }
    Bytes m_bytes;
};

// Strings "", "template", then a tree that begins at byte 26.
constexpr int kTree = 26;
CRawDocument withTemplateTag() { return CRawDocument().u32(2).u32(18).u32(8).u32(9).bytes({"\0template\0", 10}); }

TEST(CDocument, isWrittenAsTold) {
    const Bytes bytes = written([](CDocumentWriter& writer) {
        writer.attribute("k", "v");
        writer.beginElement("k", "v");
        writer.endElement();
        writer.beginTemplate("t", "k");
        writer.endElement();
    });
    const Bytes expected = CRawDocument()
                               .u32(5)
                               .u32(20 + 16)
                               .u32(20)
                               .u32(21)
                               .u32(23)
                               .u32(25)
                               .u32(34)
                               .bytes({"\0k\0v\0template\0t\0", 16})
                               .u16(0)
                               .u16(0)
                               .u8(0)
                               .u16(1)
                               .u16(1)
                               .u16(2)
                               .u16(2)  // children
                               .u16(1)
                               .u16(2)
                               .u8(0)
                               .u16(0)
                               .u16(0)
                               .u16(3)
                               .u16(4)
                               .u8(1)
                               .u16(1)
                               .u32(9)
                               .u16(0)
                               .u16(0)
                               .u8(0)
                               .u16(0)
                               .u16(0);
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(opened(bytes), "");
}

TEST(CDocument, decodesItsStrings) {
    const CRawDocument bytes = CRawDocument().u32(4).u32(16 + 13).u32(16).u32(17).u32(20).u32(16).bytes(
        {"\0\xC3\xA9\0\xD0\x96\xFF\xE2\x82\xAC\0\0\0", 13});
    const Bytes document = CRawDocument(bytes).u16(0).u16(0).u8(0).u16(0).u16(0);
    CMemoryReaderStatic stream(document.data(), static_cast<int>(document.size()));
    const CRef<CDocument> opened(new CDocument);
    ASSERT_EQ(messageOf(opened->open(stream, "x.xml")), "");
    EXPECT_EQ(opened->string(1), "\xE9");
    EXPECT_FALSE(opened->string(1).isWide());
    EXPECT_EQ(opened->string(2), u"\u0416\u20AC");  // the byte FF leads nothing
    EXPECT_TRUE(opened->string(2).isWide());
    EXPECT_EQ(opened->string(3), "");
}

TEST(CDocument, tellsWhereItsStringsAreDamaged) {
    EXPECT_EQ(opened({}), damaged(0, "a document has 1 to 65536 strings"));
    EXPECT_EQ(opened({1, 0, 0}), damaged(0, "a document has 1 to 65536 strings"));
    EXPECT_EQ(opened(CRawDocument().u32(0).u32(0)), damaged(0, "a document has 1 to 65536 strings"));
    EXPECT_EQ(opened(CRawDocument().u32(65537).u32(0)), damaged(0, "a document has 1 to 65536 strings"));
    const std::string doesNotFit = damaged(4, "the table of strings doesn't fit into the document");
    EXPECT_EQ(opened(CRawDocument().u32(1).u32(5).u32(4)), doesNotFit);
    EXPECT_EQ(opened(CRawDocument().u32(1).u32(0xFFFFFFFF).u32(4).u8(0)), doesNotFit);
    EXPECT_EQ(opened(CRawDocument().u32(2).u32(7).u32(4).bytes("abc")), doesNotFit);
    const std::string outside = "a string lies outside the table of strings";
    EXPECT_EQ(opened(CRawDocument().u32(1).u32(5).u32(3).u8(0)), damaged(8, outside.c_str()));
    EXPECT_EQ(opened(CRawDocument().u32(1).u32(5).u32(5).u8(0)), damaged(8, outside.c_str()));
    EXPECT_EQ(opened(CRawDocument().u32(1).u32(5).u32(0xFFFFFFFF).u8(0)), damaged(8, outside.c_str()));
    EXPECT_EQ(opened(CRawDocument().u32(2).u32(10).u32(8).u32(9).bytes({"\0x", 2})),
              damaged(17, "a string doesn't end within the table of strings"));
    EXPECT_EQ(opened(CRawDocument().u32(1).u32(6).u32(4).bytes({"x", 2})), damaged(8, "string 0 must be empty"));
}

TEST(CDocument, manyStringsCannotShareOneLongText) {
    // 1,000 offsets to one text of 4,000 characters would unfold to 4 MB.
    CRawDocument bytes;
    bytes.u32(1000).u32(4000 + 4001).u32(8000);
    for (int i = 1; i < 1000; ++i) bytes.u32(4000);
    bytes.bytes(std::string(4000, 'x')).u8(0).u16(0).u16(0).u8(0).u16(0).u16(0);
    EXPECT_EQ(opened(bytes), damaged(16, "the strings together are larger than their table"));
}

TEST(CDocument, tellsWhereItsTreeIsDamaged) {
    const auto tree = [](auto&&... numbers) {
        CRawDocument bytes = withTemplateTag();
        const auto put = [&](std::pair<int, std::uint64_t> number) {
            number.first == 1   ? bytes.u8(static_cast<unsigned>(number.second))
            : number.first == 2 ? bytes.u16(static_cast<unsigned>(number.second))
                                : bytes.u32(number.second);
        };
        (put(numbers), ...);
        return opened(bytes);
    };
    const auto u8 = [](std::uint64_t value) { return std::pair(1, value); };
    const auto u16 = [](std::uint64_t value) { return std::pair(2, value); };
    const auto u32 = [](std::uint64_t value) { return std::pair(4, value); };

    EXPECT_EQ(tree(u16(0), u16(0), u8(0), u16(0), u16(0)), "");
    EXPECT_EQ(tree(u16(99), u16(99), u8(0), u16(0), u16(0)), "");  // tag and name of a root count nothing
    EXPECT_EQ(tree(u16(0), u16(0), u8(1), u16(0), u16(0)),
              damaged(kTree + 4, "the root and the body of a template must be elements"));
    EXPECT_EQ(tree(u16(0), u16(0), u8(0), u16(0), u16(0), u8(7)), damaged(kTree + 9, "bytes behind the root element"));
    EXPECT_EQ(tree(u16(0), u16(0)), damaged(kTree + 4, "the document ends within an element"));
    EXPECT_EQ(tree(u16(0), u16(0), u8(0), u16(1), u16(0)), damaged(kTree + 9, "the document ends within an element"));
    EXPECT_EQ(tree(u16(0), u16(0), u8(0), u16(1), u16(2), u16(0), u16(0)), damaged(kTree + 7, "no such string"));
    EXPECT_EQ(tree(u16(0), u16(0), u8(0), u16(1), u16(0), u16(2), u16(0)), damaged(kTree + 9, "no such string"));
    EXPECT_EQ(tree(u16(0), u16(0), u8(0), u16(0), u16(1)), damaged(kTree + 9, "the document ends within an element"));
    const auto child = [&](auto&&... rest) { return tree(u16(0), u16(0), u8(0), u16(0), u16(1), rest...); };
    const int kChild = kTree + 9;
    EXPECT_EQ(child(u16(2), u16(0), u8(0), u16(0), u16(0)), damaged(kChild, "no such string"));
    EXPECT_EQ(child(u16(0), u16(2), u8(0), u16(0), u16(0)), damaged(kChild + 2, "no such string"));
    EXPECT_EQ(child(u16(0), u16(0), u8(2), u16(0), u16(0)), damaged(kChild + 4, "unknown kind of element"));
    EXPECT_EQ(child(u16(0), u16(0), u8(1), u16(0), u16(0)),
              damaged(kChild + 4, "a template must have the tag 'template'"));
    const std::string past = "the body of a template reaches past the end of what holds it";
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0), u32(10), u16(0), u16(0), u8(0), u16(0), u16(0)),
              damaged(kChild + 7, past.c_str()));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0), u32(0xFFFFFFFF), u16(0)), damaged(kChild + 7, past.c_str()));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0)), damaged(kChild + 7, past.c_str()));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(2), u32(9), u16(0), u16(0), u8(0), u16(0), u16(0)),
              damaged(kChild + 5, "no such string"));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0), u32(9), u16(0), u16(0), u8(1), u16(0), u16(0)),
              damaged(kChild + 15, "the root and the body of a template must be elements"));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0), u32(8), u16(0), u16(0), u8(0), u16(0), u16(0)),
              damaged(kChild + 18, "the document ends within an element"));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0), u32(10), u16(0), u16(0), u8(0), u16(0), u16(0), u8(0)),
              damaged(kChild + 20, "bytes behind the body of a template"));
    EXPECT_EQ(child(u16(1), u16(0), u8(1), u16(0), u32(9), u16(0), u16(0), u8(0), u16(0), u16(0)), "");
}

TEST(CDocument, isNestedNoDeeperThan64ThroughTemplatesToo) {
    const auto nest = [](int elements, int templates) {
        CDocumentWriter writer;
        for (int i = 0; i < templates; ++i) writer.beginTemplate("t", "x");
        for (int i = 0; i < elements; ++i) writer.beginElement("x", "e");
        for (int i = 0; i < templates + elements; ++i) writer.endElement();
        Bytes bytes;
        const std::string message = messageOf(writer.finish(bytes));
        return message.empty() ? opened(bytes) : message;
    };
    EXPECT_EQ(nest(63, 0), "");
    EXPECT_EQ(nest(1, 31), "");
    const std::string tooDeep = "A document can't be written: its elements are nested more than 64 deep.";
    EXPECT_EQ(nest(64, 0), tooDeep);
    EXPECT_EQ(nest(0, 32), tooDeep);
    EXPECT_EQ(nest(2, 31), tooDeep);

    CRawDocument bytes = withTemplateTag();
    for (int i = 0; i < 100000; ++i) bytes.u16(0).u16(0).u8(0).u16(0).u16(1);
    EXPECT_EQ(opened(bytes), damaged(kTree + 64 * 9 + 5, "elements are nested too deep"));
}

TEST(CDocument, everyPrefixAndEveryFlippedBitIsSurvived) {
    const Bytes good = written([](CDocumentWriter& writer) {
        writer.attribute("one", "1");
        writer.beginElement("test:probe", "a");
        writer.attribute("b", "2");
        writer.beginTemplate("t", "test:probe");
        writer.beginElement("core:object", "c");
        writer.endElement();
        writer.endElement();
        writer.endElement();
    });
    ASSERT_EQ(opened(good), "");
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_NE(opened(Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size))), "") << size;
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (const int change : {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80, 0xFF}) {
            Bytes bad = good;
            bad[i] = static_cast<std::uint8_t>(bad[i] ^ change);
            opened(bad);  // whatever it says, under the sanitizers
        }
    }
}

TEST(CDocumentWriter, refusesWhatTheFormCannotHold) {
    const auto writeMany = [](int attributes, int children) {
        CDocumentWriter writer;
        for (int i = 0; i < attributes; ++i) writer.attribute("a", "b");
        for (int i = 0; i < children; ++i) {
            writer.beginElement("x", "");
            writer.endElement();
        }
        Bytes bytes;
        const std::string message = messageOf(writer.finish(bytes));
        return message.empty() ? opened(bytes) : message;
    };
    EXPECT_EQ(writeMany(65535, 65535), "");
    EXPECT_EQ(writeMany(65536, 0), "A document can't be written: an element has more than 65535 attributes.");
    EXPECT_EQ(writeMany(0, 65536), "A document can't be written: an element has more than 65535 children.");

    CDocumentWriter writer;
    for (int i = 0; i < 40000; ++i) {
        if (i == 20000) writer.beginElement("", "");
        writer.attribute(std::to_string(2 * i), std::to_string(2 * i + 1));
    }
    writer.endElement();
    Bytes bytes;
    EXPECT_EQ(messageOf(writer.finish(bytes)),
              "A document can't be written: it has more than 65536 different strings.");
}

}  // namespace
}  // namespace brt
