// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CompressedBlock.h"

#include <gmock/gmock.h>
#include <lz4.h>
#include <zlib.h>

#include <array>

#include "Core/CMemoryReader.h"
#include "Core/LittleEndian.h"
#include "LimitedMemory.h"
#include "StreamTestTools.h"

namespace brt {
namespace {

constexpr std::uint32_t kTag = blockTag("dstr");
constexpr std::uint32_t kOtherTag = blockTag("adat");

enum class Form { zlib, lz4 };
constexpr std::array kForms = {Form::zlib, Form::lz4};

Bytes block(Form form, const Bytes& payload) {
    CByteBuffer buffer;
    buffer.assign(payload.data(), static_cast<int>(payload.size()));
    CWriteSeqBuffer chain(16384);
    EXPECT_EQ(failure(form == Form::zlib ? chain.writeCompressedData(buffer, kTag)
                                         : chain.writeCompressedDataLZ4(buffer, kTag)),
              "");
    return contentOf(chain);
}

std::string readFrom(CInputStream& stream, Form form, Bytes& result, int limitBytes = kDefaultBlockLimitBytes) {
    CByteBuffer buffer;
    const std::string message = failure(form == Form::zlib ? stream.readCompressedData(buffer, kTag, limitBytes)
                                                           : stream.readCompressedDataLZ4(buffer, kTag, limitBytes));
    EXPECT_TRUE(message.empty() || buffer.isEmpty());
    result = bytesOf(buffer);
    return message;
}

std::string readFailure(Form form, const Bytes& bytes, int limitBytes = kDefaultBlockLimitBytes) {
    CMemoryReaderStatic reader(bytes.data(), static_cast<int>(bytes.size()));
    Bytes result;
    return readFrom(reader, form, result, limitBytes);
}

// A block whose header says so, with a right check, and with any payload.
Bytes forged(Form form, std::uint32_t size, std::uint32_t packedSize, const Bytes& payload) {
    const int sizesBytes = form == Form::zlib ? 4 : 8;
    Bytes bytes(static_cast<std::size_t>(8 + sizesBytes));
    storeLittleEndian32(bytes.data(), kTag);
    storeLittleEndian32(&bytes[4], size);
    if (form == Form::lz4) storeLittleEndian32(&bytes[8], packedSize);
    storeLittleEndian32(bytes.data() + 4 + sizesBytes,
                        static_cast<std::uint32_t>(adler32(1, &bytes[4], static_cast<uInt>(sizesBytes))));
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    return bytes;
}

TEST(CompressedBlock, hasTheHeaderOfItsForm) {
    const Bytes payload = {1, 2, 3, 4, 5, 6, 7, 8};
    const Bytes zlib = block(Form::zlib, payload);
    EXPECT_EQ(Bytes(zlib.begin(), zlib.begin() + 12), (Bytes{'d', 's', 't', 'r', 8, 0, 0, 0, 0x09, 0x00, 0x24, 0x00}));
    Bytes result(8);
    uLongf size = 8;
    EXPECT_EQ(uncompress(result.data(), &size, &zlib[12], static_cast<uLong>(zlib.size() - 12)), Z_OK);
    EXPECT_EQ(result, payload);

    const Bytes lz4 = block(Form::lz4, payload);
    EXPECT_EQ(Bytes(lz4.begin(), lz4.begin() + 12), (Bytes{'d', 's', 't', 'r', 8, 0, 0, 0, 9, 0, 0, 0}));
    EXPECT_EQ(loadLittleEndian32(&lz4[12]), adler32(1, &lz4[4], 8));
    ASSERT_EQ(lz4.size(), 16u + 9u);
    EXPECT_EQ(
        LZ4_decompress_safe(reinterpret_cast<const char*>(&lz4[16]), reinterpret_cast<char*>(result.data()), 9, 8), 8);
    EXPECT_EQ(result, payload);
}

TEST(CompressedBlock, comesBackFromEverySource) {
    for (const Form form : kForms) {
        for (const std::size_t size : {0u, 1u, 64u, 65u, 32753u, 32768u, 32769u, 300000u}) {
            Bytes payload = randomBytes(size, 1);
            if (size > 32769) std::fill(payload.begin(), payload.end() - 40000, 'z');
            const Bytes bytes = block(form, payload);
            const int length = static_cast<int>(bytes.size());
            CMemoryReader memory(bytes.data(), length);
            CMemoryReaderStatic lending(bytes.data(), length);
            CPipeSource pipe(bytes, 1000);
            for (CInputStream* source : std::initializer_list<CInputStream*>{&memory, &lending, &pipe}) {
                Bytes result;
                EXPECT_EQ(readFrom(*source, form, result), "") << size;
                EXPECT_TRUE(result == payload) << size;
            }
        }
    }
}

TEST(CompressedBlock, lz4BlocksFollowEachOther) {
    Bytes bytes = block(Form::lz4, {'a'});
    const Bytes second = block(Form::lz4, {'b'});
    bytes.insert(bytes.end(), second.begin(), second.end());
    CMemoryReaderStatic lending(bytes.data(), static_cast<int>(bytes.size()));
    Bytes result;
    EXPECT_EQ(readFrom(lending, Form::lz4, result), "");
    EXPECT_EQ(readFrom(lending, Form::lz4, result), "");
    EXPECT_EQ(result, Bytes{'b'});
}

TEST(CompressedBlock, aWrongTagOrCheckIsToldInNumbers) {
    for (const Form form : kForms) {
        Bytes bytes = block(form, {'x'});
        bytes[4] ^= 2;
        EXPECT_THAT(readFailure(form, bytes), testing::StartsWith("Invalid CRC encountered when reading compressed"));
        storeLittleEndian32(bytes.data(), kOtherTag);
        CPipeSource source(bytes, 1000);
        Bytes result;
        EXPECT_EQ(readFrom(source, form, result),
                  "Invalid ID encountered when reading compressed data (expected 1920234340, read 1952539745).");
        EXPECT_EQ(source.position(), 4);  // nothing more was looked at
    }
    EXPECT_EQ(readFailure(Form::zlib, {'d', 's', 't', 'r', 8, 0, 0, 0, 1, 0, 0, 0}),
              "Invalid CRC encountered when reading compressed data (expected 1, read 2359305).");
}

// What changes nothing, such as zlib's hint of its level or the bits behind its last code, may pass.
TEST(CompressedBlock, aDamagedZlibBlockIsSeenOrReadsAsItWas) {
    const Bytes payload = randomBytes(40, 2);
    const Bytes good = block(Form::zlib, payload);
    int unseen = 0;
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        Bytes bad = good;
        bad[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        CPipeSource source(bad, 1000);
        Bytes result;
        if (!readFrom(source, Form::zlib, result).empty()) continue;
        EXPECT_EQ(result, payload) << bit;
        ++unseen;
    }
    EXPECT_LT(unseen, 12);
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_NE(readFailure(Form::zlib, Bytes(good.begin(), good.begin() + static_cast<long>(size))), "") << size;
}

// The payload is complete before its check is in zlib's hands.
TEST(CompressedBlock, aDamagedZlibTrailerIsSeenAlsoBehindTheLastByteAskedFor) {
    const Bytes payload = randomBytes(32753, 3);
    const Bytes good = block(Form::zlib, payload);
    ASSERT_EQ(readFailure(Form::zlib, good), "");
    Bytes flipped = good;
    flipped[100] ^= 1;
    EXPECT_EQ(readFailure(Form::zlib, flipped), "zlib inflate error -3 (incorrect data check).");
    EXPECT_EQ(readFailure(Form::zlib, Bytes(good.begin(), good.end() - 4)), "Premature end of file.");
    const Bytes stream(good.begin() + 12, good.end());
    EXPECT_EQ(readFailure(Form::zlib, forged(Form::zlib, 32752, 0, stream)),
              "zlib inflate error -5 (more data than its size tells).");
    EXPECT_EQ(readFailure(Form::zlib, forged(Form::zlib, 32754, 0, stream)), "Premature end of file.");
}

TEST(CompressedBlock, damagedLz4IsAnErrorOrOtherBytes) {
    Bytes payload = randomBytes(60, 4);
    payload.resize(200, 'q');
    const Bytes good = block(Form::lz4, payload);
    const Bytes packed(good.begin() + 16, good.end());
    const auto size = static_cast<std::uint32_t>(packed.size());
    EXPECT_EQ(readFailure(Form::lz4, forged(Form::lz4, 201, size, packed)),
              "Invalid uncompressed data (expected 201 bytes, read 200).");
    EXPECT_THAT(readFailure(Form::lz4, forged(Form::lz4, 199, size, packed)),
                testing::StartsWith("Invalid uncompressed data (expected 199 bytes, read -"));
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        Bytes bad = good;
        bad[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        const bool isSeen = !readFailure(Form::lz4, bad).empty();
        EXPECT_TRUE(isSeen || bit / 8 >= 16) << bit;  // the payload has no check of its own
    }
}

TEST(CompressedBlock, refusesSizesThatCannotBeTrue) {
    const Bytes two = {0, 0};
    // 1,032 times what is left, and 64.
    EXPECT_EQ(readFailure(Form::zlib, forged(Form::zlib, 2129, 0, two)),
              "Invalid size encountered when reading compressed data (at most 2128 bytes, read 2129).");
    EXPECT_EQ(readFailure(Form::zlib, forged(Form::zlib, 2128, 0, two)),
              "zlib inflate error -3 (unknown compression method).");
    // 255 times what is packed, and 64.
    EXPECT_EQ(readFailure(Form::lz4, forged(Form::lz4, 575, 2, two)),
              "Invalid size encountered when reading compressed data (at most 574 bytes, read 575).");
    EXPECT_EQ(readFailure(Form::lz4, forged(Form::lz4, 10, 3, two)),
              "Invalid compressed size encountered when reading compressed data (at most 2 bytes, read 3).");
    EXPECT_EQ(readFailure(Form::lz4, forged(Form::lz4, 10, 0xFFFFFFFF, two)),
              "Invalid compressed size encountered when reading compressed data (at most 2 bytes, read 4294967295).");
    EXPECT_EQ(readFailure(Form::zlib, forged(Form::zlib, 0xFFFFFFFF, 0, two)),
              "Invalid size encountered when reading compressed data (at most 2128 bytes, read 4294967295).");
}

TEST(CompressedBlock, refusesSizesAboveTheLimitAlsoWhereNobodyKnowsWhatIsLeft) {
    constexpr int kNoLimit = std::numeric_limits<int>::max();
    const auto fromPipe = [](Form form, const Bytes& bytes, int limitBytes) {
        CPipeSource source(bytes, 1000);
        Bytes result;
        return readFrom(source, form, result, limitBytes);
    };
    for (const Form form : kForms) {
        const Bytes good = block(form, Bytes(100, 'x'));
        EXPECT_EQ(readFailure(form, good, 99),
                  "Invalid size encountered when reading compressed data (at most 99 bytes, read 100).");
        EXPECT_EQ(readFailure(form, good, 100), "");
        EXPECT_EQ(fromPipe(form, forged(form, 0x80000000, 0x7FFFFFFF, {}), kNoLimit),
                  "Invalid size encountered when reading compressed data (at most 2147483647 bytes, read 2147483648).");
        EXPECT_EQ(fromPipe(form, forged(form, (64 << 20) + 1, 1 << 20, {}), kDefaultBlockLimitBytes),
                  "Invalid size encountered when reading compressed data (at most 67108864 bytes, read 67108865).");
    }
    // A claim that passes, and that the system can't fulfil.
    const LimitedMemory limited;
    EXPECT_EQ(fromPipe(Form::zlib, forged(Form::zlib, 0x7FFFFFFF, 0, {}), kNoLimit),
              "Not enough memory for compressed data of 2147483647 bytes.");
    EXPECT_EQ(fromPipe(Form::lz4, forged(Form::lz4, 100, 0, {}), kNoLimit),
              "Invalid size encountered when reading compressed data (at most 64 bytes, read 100).");
}

TEST(CompressedBlock, passesOnWhatItsSinkRefuses) {
    CByteBuffer buffer;
    buffer.assign("x", 1);
    for (const int room : {0, 12, 16}) {
        CFullSink sink(room);
        EXPECT_EQ(failure(sink.writeCompressedData(buffer, kTag)), "sink is full");
        CFullSink other(room);
        EXPECT_EQ(failure(other.writeCompressedDataLZ4(buffer, kTag)), "sink is full");
    }
    CByteBuffer tooMuch;
    if (!tooMuch.trySetSize(LZ4_MAX_INPUT_SIZE + 1)) GTEST_SKIP() << "needs 2 GiB of address space";
    CFullSink sink(1000);
    EXPECT_EQ(failure(sink.writeCompressedDataLZ4(tooMuch, kTag)),
              "Unable to compress 2113929217 bytes: there is too little memory, or this is too much for one block.");
}

}  // namespace
}  // namespace brt
