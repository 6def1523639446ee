// SPDX-License-Identifier: LicenseRef-Halyard
#include <gtest/gtest.h>

#include "Core/CMemoryReader.h"
#include "StreamTestTools.h"

namespace brt {
namespace {

TEST(CMemoryReader, aFailureLeavesThePositionWhereItWas) {
    CMemoryReader reader("abcdef", 6);
    char got[8] = {};
    ASSERT_EQ(failure(reader.read(got, 4)), "");
    EXPECT_EQ(std::string(got), "abcd");
    EXPECT_EQ(failure(reader.read(got, 3)), "Premature end of memory resource while reading (pos 4, count 3, size 6).");
    EXPECT_EQ(failure(reader.skip(3)), "Premature end of memory resource while skipping (pos 4, count 3, size 6).");
    EXPECT_EQ(failure(reader.skip(-1)), "Premature end of memory resource while skipping (pos 4, count -1, size 6).");
    EXPECT_EQ(failure(reader.read(got, -1)),
              "Premature end of memory resource while reading (pos 4, count -1, size 6).");
    EXPECT_EQ(failure(reader.setPosition(7)), "Positioning beyond memory resource end (newpos 7, size 6).");
    EXPECT_EQ(failure(reader.setPosition(-1)), "Positioning beyond memory resource end (newpos -1, size 6).");
    int position = 0;
    EXPECT_EQ(failure(reader.getPositionInt32(position)), "");
    EXPECT_EQ(position, 4);
    EXPECT_EQ(reader.getBytesLeft(), 2);
    ASSERT_EQ(failure(reader.skip(1)), "");

    int count = 8;
    ASSERT_EQ(failure(reader.readStreamed(got, count)), "");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(got[0], 'f');
    count = 8;
    EXPECT_EQ(failure(reader.readStreamed(got, count)), "");  // the end is no error
    EXPECT_EQ(count, 0);
    EXPECT_EQ(failure(reader.setPosition(6)), "");
    EXPECT_EQ(failure(reader.read(got, 0)), "");
}

TEST(CMemoryReader, onlyTheStaticOneLendsItsBytes) {
    const char bytes[] = "abc";
    CMemoryReader plain(bytes, 3);
    EXPECT_EQ(plain.getDirectData(), nullptr);
    CMemoryReaderStatic lending(bytes, 3);
    ASSERT_EQ(failure(lending.skip(2)), "");
    EXPECT_EQ(lending.getDirectData(), bytes + 2);
    ASSERT_EQ(failure(lending.skip(1)), "");
    EXPECT_EQ(lending.getDirectData(), nullptr);
}

// Positions of nothing but a number.
class CFarStream : public CPosStream {
public:
    explicit CFarStream(std::int64_t place) : m_place(place) {}
    CError* getPosition(std::int64_t& position) override { return position = m_place, nullptr; }
    CError* setPosition(std::int64_t) override { return nullptr; }
    CError* getSize(std::int64_t& size) override { return size = m_place, nullptr; }

private:
    std::int64_t m_place;
};

TEST(CPosStream, the32BitFormsStopAt2Gib) {
    constexpr std::int64_t kTooFar = std::int64_t{1} << 31;
    int value = 7;
    EXPECT_EQ(failure(CFarStream(kTooFar).getPositionInt32(value)), "The size of the stream is above allowed 2 GB.");
    EXPECT_EQ(failure(CFarStream(kTooFar).getSizeInt(value)), "The size of the stream is above allowed 2 GB.");
    EXPECT_EQ(value, 7);
    EXPECT_EQ(failure(CFarStream(kTooFar - 1).getPositionInt32(value)), "");
    EXPECT_EQ(value, 0x7FFFFFFF);
}

TEST(CInputStream, skipsByReadingWhereTheStreamKnowsNoBetter) {
    CPipeSource source(randomBytes(100000, 1), 7);
    EXPECT_EQ(failure(source.skip(70000)), "");
    EXPECT_EQ(source.position(), 70000);
    EXPECT_EQ(failure(source.skip(0)), "");
    EXPECT_EQ(failure(source.skip(30001)), "pipe ended");
    EXPECT_EQ(failure(source.skip(-1)), "Unable to skip -1 bytes.");
    EXPECT_EQ(source.getBytesLeft(), CInputStream::kUnknownBytesLeft);
    EXPECT_EQ(source.getDirectData(), nullptr);
}

TEST(CByteBuffer, holdsShortContentItself) {
    const auto blocks = [] { return CBrtMemAllocator::liveBlocks(); };
    const std::int64_t before = blocks();
    {
        CByteBuffer buffer;
        buffer.setSize(CByteBuffer::kInlineBytes);
        EXPECT_EQ(blocks(), before);
        const Bytes longer = randomBytes(65, 1);
        buffer.assign(longer.data(), 65);
        EXPECT_EQ(blocks(), before + 1);
        EXPECT_EQ(bytesOf(buffer), longer);
        buffer.assign(longer.data(), 64);
        EXPECT_EQ(blocks(), before);
        EXPECT_TRUE(buffer.trySetSize(5000));
    }
    EXPECT_EQ(blocks(), before);
}

TEST(CWriteSeqBuffer, keepsTheOrderAcrossBlocks) {
    const Bytes expected = randomBytes(50000, 2);
    CWriteSeqBuffer chain(100);
    std::mt19937 generator(3);
    for (std::size_t at = 0; at < expected.size();) {
        const std::size_t count = std::min<std::size_t>(generator() % 1500, expected.size() - at);
        ASSERT_EQ(failure(chain.write(expected.data() + at, static_cast<int>(count))), "");
        at += count;
        ASSERT_EQ(chain.size(), static_cast<int>(at));
    }
    CWriteSeqBuffer copy(16384);
    ASSERT_EQ(failure(chain.writeTo(copy)), "");
    EXPECT_EQ(contentOf(copy), expected);
    EXPECT_EQ(contentOf(chain), expected);

    // Moved from, it starts afresh.
    EXPECT_EQ(chain.size(), 0);
    ASSERT_EQ(failure(chain.write("again", 5)), "");
    EXPECT_EQ(contentOf(chain), (Bytes{'a', 'g', 'a', 'i', 'n'}));
    EXPECT_EQ(contentOf(chain), Bytes());
}

TEST(CWriteSeqBuffer, passesOnWhatItsTargetRefuses) {
    CWriteSeqBuffer chain(2048);
    ASSERT_EQ(failure(chain.write(Bytes(3000).data(), 3000)), "");
    CFullSink sink(2000);
    EXPECT_EQ(failure(chain.writeTo(sink)), "sink is full");
    EXPECT_EQ(chain.size(), 3000);
}

TEST(CWriteSeqBuffer, staysBelowItsLimit) {
    CWriteSeqBuffer chain(16, 10);
    ASSERT_EQ(failure(chain.write("1234567", 7)), "");
    EXPECT_EQ(failure(chain.write("89ab", 4)),
              "Unable to write 4 bytes to a memory buffer that holds 7 of at most 10 bytes.");
    EXPECT_EQ(failure(chain.write("89ab", -1)),
              "Unable to write -1 bytes to a memory buffer that holds 7 of at most 10 bytes.");
    EXPECT_EQ(failure(chain.write("89a", 3)), "");
    EXPECT_EQ(chain.size(), 10);
}

}  // namespace
}  // namespace brt
