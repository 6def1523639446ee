// SPDX-License-Identifier: LicenseRef-Halyard
#include <gtest/gtest.h>

#include "Core/CInputZipStream.h"
#include "Core/CMemoryReader.h"
#include "Core/COutputZipStream.h"
#include "StreamTestTools.h"

namespace brt {
namespace {

constexpr int kBestLevel = 9;

Bytes deflated(const Bytes& bytes) {
    CWriteSeqBuffer chain(16384);
    COutputZipStream zip;
    EXPECT_EQ(failure(zip.open(chain, kBestLevel)), "");
    EXPECT_EQ(failure(zip.write(bytes.data(), static_cast<int>(bytes.size()))), "");
    EXPECT_EQ(failure(zip.close()), "");
    return contentOf(chain);
}

// zlib's record in the hands of the test, to bring about what zlib only does when it is broken.
template <class Zip>
class CTampered : public Zip {
public:
    void refuseMemory() {
        this->m_zlib.zalloc = [](void*, unsigned, unsigned) -> void* { return nullptr; };
    }
    void breakRecord() { std::swap(this->m_zlib.zfree, m_zfree); }
    void repairRecord() { breakRecord(); }
    z_stream& record() { return this->m_zlib; }

private:
    free_func m_zfree = nullptr;
};

TEST(ZipStreams, anyCutOfReadsAndWritesGivesTheSameBytes) {
    Bytes expected = randomBytes(100000, 1);
    std::fill(expected.begin() + 20000, expected.begin() + 60000, 0);
    std::mt19937 generator(2);

    CWriteSeqBuffer chain(16384);
    COutputZipStream zip;
    ASSERT_EQ(failure(zip.open(chain, 5)), "");
    for (std::size_t at = 0; at < expected.size();) {
        const std::size_t count = std::min<std::size_t>(generator() % 40000, expected.size() - at);
        ASSERT_EQ(failure(zip.write(expected.data() + at, static_cast<int>(count))), "");
        at += count;
    }
    ASSERT_EQ(failure(zip.close()), "");

    CPipeSource source(contentOf(chain), 1000);
    CInputZipStream unzip;
    ASSERT_EQ(failure(unzip.open(source)), "");
    Bytes result(expected.size());
    for (std::size_t at = 0; at < result.size();) {
        const std::size_t count = std::min<std::size_t>(generator() % 3000, result.size() - at);
        ASSERT_EQ(failure(unzip.read(result.data() + at, static_cast<int>(count))), "");
        at += count;
    }
    EXPECT_EQ(failure(unzip.expectEnd()), "");
    EXPECT_EQ(failure(unzip.close()), "");
    EXPECT_TRUE(result == expected);
}

TEST(ZipStreams, areReusableAndSayWhenTheyAreClosed) {
    char byte = 0;
    CInputZipStream unzip;
    EXPECT_EQ(failure(unzip.read(&byte, 1)), "Input stream not specified.");
    EXPECT_EQ(failure(unzip.expectEnd()), "Input stream not specified.");
    EXPECT_EQ(failure(unzip.close()), "");
    const Bytes first = deflated({'1'});
    const Bytes second = deflated({'2'});
    CMemoryReader reader(first.data(), static_cast<int>(first.size()));
    ASSERT_EQ(failure(unzip.open(reader)), "");
    CMemoryReader other(second.data(), static_cast<int>(second.size()));
    ASSERT_EQ(failure(unzip.open(other)), "");
    EXPECT_EQ(failure(unzip.read(&byte, 1)), "");
    EXPECT_EQ(byte, '2');
    EXPECT_EQ(failure(unzip.read(&byte, -1)), "zlib inflate error -2 (negative count).");
    EXPECT_EQ(failure(unzip.read(&byte, 1)), "Premature end of file.");

    COutputZipStream zip;
    EXPECT_EQ(failure(zip.write("x", 1)), "Output stream not specified.");
    EXPECT_EQ(failure(zip.close()), "");
    CWriteSeqBuffer chain(2048);
    EXPECT_EQ(failure(zip.open(chain, 10)), "zlib deflateInit error -2 ().");
    EXPECT_EQ(failure(zip.write("x", 1)), "Output stream not specified.");
}

TEST(ZipStreams, anIncompleteStreamIsNeverFinishedByTheDestructor) {
    CWriteSeqBuffer chain(2048);
    {
        COutputZipStream zip;
        ASSERT_EQ(failure(zip.open(chain, 5)), "");
        ASSERT_EQ(failure(zip.write("x", 1)), "");
    }
    EXPECT_EQ(chain.size(), 0);
}

TEST(CInputZipStream, everyDamageEndsInAnError) {
    const Bytes text(1000, 'a');
    const Bytes good = deflated(text);
    const auto result = [&](const Bytes& bytes, int count) {
        CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
        CInputZipStream unzip;
        Bytes room(static_cast<std::size_t>(count));
        std::string message = failure(unzip.open(reader));
        if (message.empty()) message = failure(unzip.read(room.data(), count));
        if (message.empty()) message = failure(unzip.expectEnd());
        return message;
    };
    EXPECT_EQ(result(good, 1000), "");
    EXPECT_EQ(result(good, 999), "zlib inflate error -5 (more data than its size tells).");
    EXPECT_EQ(result(good, 1001), "Premature end of file.");
    EXPECT_EQ(result({}, 1000), "Premature end of file.");
    EXPECT_EQ(result({0xFF, 0xFF}, 1), "zlib inflate error -3 (incorrect header check).");
    // A stream that is packed with a dictionary which nobody has.
    EXPECT_EQ(result({0x78, 0xBB, 0, 0, 0, 1, 3, 0}, 1), "zlib inflate error 2 ().");
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_EQ(result(Bytes(good.begin(), good.begin() + static_cast<long>(size)), 1000), "Premature end of file.");
    Bytes wrongCheck = good;
    wrongCheck.back() ^= 1;
    EXPECT_EQ(result(wrongCheck, 1000), "zlib inflate error -3 (incorrect data check).");
    // What follows the stream is somebody else's.
    Bytes followed = good;
    followed.push_back('x');
    EXPECT_EQ(result(followed, 1000), "");
}

TEST(CInputZipStream, tellsWhatZlibRefuses) {
    const Bytes bytes = deflated({'x'});
    CMemoryReader reader(bytes.data(), static_cast<int>(bytes.size()));
    CTampered<CInputZipStream> starved;
    starved.refuseMemory();
    EXPECT_EQ(failure(starved.open(reader)), "zlib inflateInit error -4 ().");

    ASSERT_EQ(failure(reader.setPosition(0)), "");
    CTampered<CInputZipStream> broken;
    ASSERT_EQ(failure(broken.open(reader)), "");
    broken.breakRecord();
    EXPECT_EQ(failure(broken.close()), "zlib inflateEnd error -2 ().");
    EXPECT_EQ(failure(broken.close()), "");  // closed all the same
    broken.repairRecord();
    EXPECT_EQ(inflateEnd(&broken.record()), Z_OK);
}

TEST(COutputZipStream, tellsWhatZlibRefuses) {
    CWriteSeqBuffer chain(2048);
    CTampered<COutputZipStream> zip;
    ASSERT_EQ(failure(zip.open(chain, 5)), "");
    EXPECT_EQ(failure(zip.write("x", -1)), "zlib deflate error -2 (negative count).");

    ASSERT_EQ(failure(zip.open(chain, 5)), "");
    zip.breakRecord();
    EXPECT_EQ(failure(zip.write("x", 1)), "zlib deflate error -2 ().");
    zip.repairRecord();
    EXPECT_EQ(deflateEnd(&zip.record()), Z_OK);

    ASSERT_EQ(failure(zip.open(chain, 5)), "");
    zip.breakRecord();
    EXPECT_EQ(failure(zip.close()), "zlib deflate error -2 ().");
    zip.repairRecord();
    EXPECT_EQ(deflateEnd(&zip.record()), Z_OK);

    // Broken between the last byte and the release.
    class CBreaker : public COutputStream {
    public:
        explicit CBreaker(CTampered<COutputZipStream>& zipStream) : m_zip(zipStream) {}
        CError* write(const void*, int) override { return m_zip.breakRecord(), nullptr; }

    private:
        CTampered<COutputZipStream>& m_zip;
    };
    CBreaker breaker(zip);
    ASSERT_EQ(failure(zip.open(breaker, 5)), "");
    EXPECT_EQ(failure(zip.close()), "zlib deflateEnd error -2 ().");
    zip.repairRecord();
    EXPECT_EQ(deflateEnd(&zip.record()), Z_OK);
}

TEST(COutputZipStream, passesOnWhatItsSinkRefuses) {
    const Bytes bytes = randomBytes(100000, 4);
    CFullSink sink(40000);
    COutputZipStream zip;
    ASSERT_EQ(failure(zip.open(sink, 1)), "");
    EXPECT_EQ(failure(zip.write(bytes.data(), 100000)), "sink is full");
    EXPECT_EQ(failure(zip.write("x", 1)), "Output stream not specified.");  // it can't be repaired

    CFullSink nothing(0);
    ASSERT_EQ(failure(zip.open(nothing, 1)), "");
    ASSERT_EQ(failure(zip.write("x", 1)), "");
    EXPECT_EQ(failure(zip.close()), "sink is full");
    EXPECT_EQ(failure(zip.close()), "");
}

}  // namespace
}  // namespace brt
