// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/StreamNumbers.h"

#include <bit>

#include "Core/LittleEndian.h"

namespace brt {

CError* writeU32(COutputStream& stream, std::uint32_t value) {
    std::uint8_t bytes[4];
    storeLittleEndian32(bytes, value);
    return stream.write(bytes, sizeof bytes);
}

CError* writeF64(COutputStream& stream, double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    std::uint8_t bytes[8];
    storeLittleEndian32(bytes, static_cast<std::uint32_t>(bits));
    storeLittleEndian32(bytes + 4, static_cast<std::uint32_t>(bits >> 32));
    return stream.write(bytes, sizeof bytes);
}

CError* readU32(CInputStream& stream, std::uint32_t& value) {
    std::uint8_t bytes[4];
    BRT_TRY("", stream.read(bytes, sizeof bytes));
    value = loadLittleEndian32(bytes);
    return nullptr;
}

CError* readF64(CInputStream& stream, double& value) {
    std::uint8_t bytes[8];
    BRT_TRY("", stream.read(bytes, sizeof bytes));
    const std::uint64_t low = loadLittleEndian32(bytes);
    const std::uint64_t high = loadLittleEndian32(bytes + 4);
    value = std::bit_cast<double>(low | high << 32);
    return nullptr;
}

CError* readI32(CInputStream& stream, std::int32_t& value) {
    std::uint32_t bits = 0;
    BRT_TRY("", readU32(stream, bits));
    value = static_cast<std::int32_t>(bits);
    return nullptr;
}

CError* readBool(CInputStream& stream, bool& value) {
    std::uint32_t bits = 0;
    BRT_TRY("", readU32(stream, bits));
    value = bits != 0;
    return nullptr;
}

CError* readCount(CInputStream& stream, int& count, int limit, int bytesEach) {
    std::uint32_t claimed = 0;
    BRT_TRY("", readU32(stream, claimed));
    const std::int64_t left = stream.getBytesLeft();
    const bool fits = left == CInputStream::kUnknownBytesLeft || std::int64_t{claimed} * bytesEach <= left;
    if (claimed > static_cast<std::uint32_t>(limit) || !fits)
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_readCount_TooMany The data is damaged: it claims %1 entries, where up to %2 can be.",
                         claimed, limit);
    count = static_cast<int>(claimed);
    return nullptr;
}

}  // namespace brt
