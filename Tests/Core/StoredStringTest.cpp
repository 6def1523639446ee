// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/StoredString.h"

#include <gtest/gtest.h>

#include "Core/CMemoryReader.h"
#include "Core/CString.h"
#include "Core/LittleEndian.h"
#include "PrintText.h"
#include "StreamTestTools.h"

namespace brt {
namespace {

Bytes stored(const CString& text) {
    CWriteSeqBuffer chain(CWriteSeqBuffer::kStringBlockBytes);
    EXPECT_EQ(failure(chain.writeString(text)), "");
    return contentOf(chain);
}

// What the bytes read as behind a count of `count`.
std::string readFailure(CString& text, int count, const Bytes& utf8) {
    Bytes bytes(4);
    storeLittleEndian32(bytes.data(), static_cast<std::uint32_t>(count));
    bytes.insert(bytes.end(), utf8.begin(), utf8.end());
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    return failure(reader.readString(text));
}

TEST(StoredString, hasAByteCountAndUtf8) {
    EXPECT_EQ(stored(""), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(stored("\xE9"), (Bytes{2, 0, 0, 0, 0xC3, 0xA9}));
    EXPECT_EQ(stored(u"a\u0416\u20AC"), (Bytes{6, 0, 0, 0, 'a', 0xD0, 0x96, 0xE2, 0x82, 0xAC}));
}

TEST(StoredString, readsBackInItsForm) {
    CString euros;
    for (int i = 0; i < 200; ++i) euros.append(u'\u20AC');
    EXPECT_EQ(stored(euros).size(), 604u);
    for (const CString& text : {CString(), CString("\xE9"), CString("plain"), CString(u"\u0416 wide"), euros}) {
        const Bytes bytes = stored(text);
        CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
        CString result = "before";
        EXPECT_EQ(failure(reader.readString(result)), "");
        EXPECT_EQ(result, text);
        EXPECT_EQ(result.isWide(), text.isWide());
    }
}

TEST(StoredString, whatCanBeWrittenCanBeRead) {
    const CString longest(std::string(kLongestStoredStringBytes, 'x'));
    const Bytes bytes = stored(longest);
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    CString result;
    EXPECT_EQ(failure(reader.readString(result)), "");
    EXPECT_EQ(result, longest);

    CWriteSeqBuffer chain(CWriteSeqBuffer::kStringBlockBytes);
    CString tooLong = longest;
    tooLong.append("x");
    EXPECT_EQ(failure(chain.writeString(tooLong)), "String length 61441 too long in writeString().");
    EXPECT_EQ(chain.size(), 0);
}

TEST(StoredString, damageIsAnErrorOrAnEmptyText) {
    CString text = "before";
    EXPECT_EQ(readFailure(text, kLongestStoredStringBytes + 1, Bytes(70000, 'x')),
              "String length 61441 too long in readString().");
    EXPECT_EQ(text, "");
    for (const int count : {0, -5, std::numeric_limits<int>::min()}) {
        text = "before";
        EXPECT_EQ(readFailure(text, count, {'a'}), "");
        EXPECT_EQ(text, "");
    }
    text = "before";
    EXPECT_EQ(readFailure(text, 3, {'a', 'b'}),
              "Premature end of memory resource while reading (pos 4, count 3, size 6).");
    EXPECT_EQ(text, "");
    CMemoryReader shortHeader("abc", 3);
    EXPECT_EQ(failure(shortHeader.readString(text)),
              "Premature end of memory resource while reading (pos 0, count 4, size 3).");
}

}  // namespace
}  // namespace brt
