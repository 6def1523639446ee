// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CompressedBlock.h"

#include <algorithm>

#include <lz4.h>
#include <lz4hc.h>
#include <zlib.h>

#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CInputStream.h"
#include "Core/CInputZipStream.h"
#include "Core/COutputStream.h"
#include "Core/COutputZipStream.h"
#include "Core/LittleEndian.h"

namespace brt {

namespace {

constexpr int kZlibLevel = 5;
constexpr int kLz4Level = 12;  // the smallest form; packing is done once, when the program is built

// What a compressed byte can become at most, by the formats, and room for what is too short to follow that.
constexpr std::int64_t kZlibBytesPerByte = 1032;
constexpr std::int64_t kLz4BytesPerByte = 255;
constexpr std::int64_t kShortBlockBytes = 64;

std::uint32_t checkOf(const std::uint8_t* bytes, int count) noexcept {
    return static_cast<std::uint32_t>(adler32(adler32(0, nullptr, 0), bytes, static_cast<uInt>(count)));
}

// Reads the tag, then `sizesBytes` bytes of sizes and their check. The messages tell expected (%1) and found (%2).
CError* readHeader(CInputStream& stream, std::uint32_t tag, std::uint8_t* sizes, int sizesBytes,
                   CStringView wrongTagMessage, CStringView wrongCheckMessage) {
    std::uint8_t number[4] = {};
    BRT_TRY("", stream.read(number, sizeof number));
    const std::uint32_t foundTag = loadLittleEndian32(number);
    if (foundTag != tag) return makeError(nullptr, __FILE__, __LINE__, "", wrongTagMessage, tag, foundTag);

    BRT_TRY("", stream.read(sizes, sizesBytes));
    BRT_TRY("", stream.read(number, sizeof number));
    const std::uint32_t storedCheck = loadLittleEndian32(number);
    const std::uint32_t check = checkOf(sizes, sizesBytes);
    if (check != storedCheck) return makeError(nullptr, __FILE__, __LINE__, "", wrongCheckMessage, storedCheck, check);
    return nullptr;
}

// What no size in a block can exceed: a size is a signed count of 32 bits, and no more is left than is left.
std::int64_t mostCompressedBytes(CInputStream& stream) {
    constexpr std::int64_t kLargestSize = 0x7FFF'FFFF;
    const std::int64_t left = stream.getBytesLeft();
    return left == CInputStream::kUnknownBytesLeft ? kLargestSize : std::min(left, kLargestSize);
}

// Takes care of the room for a payload whose claimed size has been read, or refuses the claim.
CError* makeRoom(CByteBuffer& buffer, std::uint32_t size, std::int64_t mostBytes) {
    if (size > mostBytes) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputStream_readCompressedData_SizeError Invalid size encountered when reading "
                         "compressed data (at most %1 bytes, read %2).",
                         mostBytes, size);
    }
    if (!buffer.trySetSize(static_cast<int>(size))) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputStream_readCompressedData_NoMemory Not enough memory for compressed data of %1 "
                         "bytes.",
                         size);
    }
    return nullptr;
}

CError* readZlib(CInputStream& stream, CByteBuffer& buffer, std::uint32_t tag, int limitBytes) {
    std::uint8_t sizes[4] = {};
    BRT_TRY("", readHeader(stream, tag, sizes, sizeof sizes,
                           "@brtstr_CInputStream_readCompressedData_InvalidData Invalid ID encountered when reading "
                           "compressed data (expected %1, read %2).",
                           "@brtstr_CInputStream_readCompressedData_HeadCRC Invalid CRC encountered when reading "
                           "compressed data (expected %1, read %2)."));
    const std::int64_t believable = kZlibBytesPerByte * mostCompressedBytes(stream) + kShortBlockBytes;
    BRT_TRY("", makeRoom(buffer, loadLittleEndian32(sizes), std::min<std::int64_t>(limitBytes, believable)));

    CInputZipStream inflated;
    BRT_TRY("", inflated.open(stream));
    BRT_TRY("", inflated.read(buffer.data(), buffer.size()));
    BRT_TRY("", inflated.expectEnd());
    BRT_TRY("", inflated.close());
    return nullptr;
}

CError* readLz4(CInputStream& stream, CByteBuffer& buffer, std::uint32_t tag, int limitBytes) {
    std::uint8_t sizes[8] = {};
    BRT_TRY("", readHeader(stream, tag, sizes, sizeof sizes,
                           "@brtstr_CInputStream_readCompressedDataLZ4_InvalidData Invalid ID encountered when reading "
                           "compressed data (expected %1, read %2).",
                           "@brtstr_CInputStream_readCompressedDataLZ4_HeadCRC Invalid CRC encountered when reading "
                           "compressed data (expected %1, read %2)."));
    const std::uint32_t size = loadLittleEndian32(sizes);
    const std::uint32_t packedSize = loadLittleEndian32(sizes + 4);
    const std::int64_t mostPacked = std::min(mostCompressedBytes(stream), std::int64_t{size} + size / 255 + 16);
    if (packedSize > mostPacked) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputStream_readCompressedDataLZ4_PackedSizeError Invalid compressed size "
                         "encountered when reading compressed data (at most %1 bytes, read %2).",
                         mostPacked, packedSize);
    }
    const std::int64_t believable = kLz4BytesPerByte * packedSize + kShortBlockBytes;
    BRT_TRY("", makeRoom(buffer, size, std::min<std::int64_t>(limitBytes, believable)));

    CByteBuffer copy;
    const void* packed = stream.getBytesLeft() >= packedSize ? stream.getDirectData() : nullptr;
    if (packed != nullptr) {
        BRT_TRY("", stream.skip(static_cast<int>(packedSize)));
    } else {
        BRT_TRY("", makeRoom(copy, packedSize, mostPacked));
        BRT_TRY("", stream.read(copy.data(), copy.size()));
        packed = copy.data();
    }
    const int unpacked = LZ4_decompress_safe(static_cast<const char*>(packed), reinterpret_cast<char*>(buffer.data()),
                                             static_cast<int>(packedSize), buffer.size());
    if (unpacked != buffer.size()) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputStream_readCompressedDataLZ4_InvalidData2 Invalid uncompressed data (expected "
                         "%1 bytes, read %2).",
                         buffer.size(), unpacked);
    }
    return nullptr;
}

// Whoever fails leaves nothing half-done behind.
CError* emptiedOnFailure(CByteBuffer& buffer, CError* error) {
    if (error == nullptr) return nullptr;
    buffer.clear();
    return makeError(error, __FILE__, __LINE__, "", "");
}

}  // namespace

CError* CInputStream::readCompressedData(CByteBuffer& buffer, std::uint32_t tag, int limitBytes) {
    buffer.clear();
    return emptiedOnFailure(buffer, readZlib(*this, buffer, tag, limitBytes));
}

CError* CInputStream::readCompressedDataLZ4(CByteBuffer& buffer, std::uint32_t tag, int limitBytes) {
    buffer.clear();
    return emptiedOnFailure(buffer, readLz4(*this, buffer, tag, limitBytes));
}

CError* COutputStream::writeCompressedData(const CByteBuffer& buffer, std::uint32_t tag) {
    std::uint8_t header[12];
    storeLittleEndian32(header, tag);
    storeLittleEndian32(header + 4, static_cast<std::uint32_t>(buffer.size()));
    storeLittleEndian32(header + 8, checkOf(header + 4, 4));
    BRT_TRY("", write(header, sizeof header));

    COutputZipStream deflated;
    BRT_TRY("", deflated.open(*this, kZlibLevel));
    BRT_TRY("", deflated.write(buffer.data(), buffer.size()));
    BRT_TRY("", deflated.close());
    return nullptr;
}

CError* COutputStream::writeCompressedDataLZ4(const CByteBuffer& buffer, std::uint32_t tag) {
    const int bound = LZ4_compressBound(buffer.size());  // 0: more than LZ4 takes
    CByteBuffer packed;
    int packedSize = 0;
    if (bound > 0 && packed.trySetSize(bound)) {
        packedSize = LZ4_compress_HC(reinterpret_cast<const char*>(buffer.data()),
                                     reinterpret_cast<char*>(packed.data()), buffer.size(), bound, kLz4Level);
    }
    if (packedSize <= 0) {
        return makeError(
            nullptr, __FILE__, __LINE__, "",
            "@brtstr_COutputStream_writeCompressedDataLZ4_CompressError Unable to compress %1 bytes: there "
            "is too little memory, or this is too much for one block.",
            buffer.size());
    }
    std::uint8_t header[16];
    storeLittleEndian32(header, tag);
    storeLittleEndian32(header + 4, static_cast<std::uint32_t>(buffer.size()));
    storeLittleEndian32(header + 8, static_cast<std::uint32_t>(packedSize));
    storeLittleEndian32(header + 12, checkOf(header + 4, 8));
    BRT_TRY("", write(header, sizeof header));
    BRT_TRY("", write(packed.data(), packedSize));
    return nullptr;
}

}  // namespace brt
