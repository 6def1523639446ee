// SPDX-License-Identifier: LicenseRef-Halyard
// Numbers in the stored and sent forms of this floor: little-endian, floats as IEEE 754 doubles.
// Threads: one at a time a stream.
#pragma once

#include <cstdint>

#include "Core/CError.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace brt {

[[nodiscard]] CError* writeU32(COutputStream& stream, std::uint32_t value);
[[nodiscard]] CError* writeF64(COutputStream& stream, double value);
[[nodiscard]] inline CError* writeI32(COutputStream& stream, std::int32_t value) {
    return writeU32(stream, static_cast<std::uint32_t>(value));
}
[[nodiscard]] inline CError* writeBool(COutputStream& stream, bool value) { return writeU32(stream, value ? 1 : 0); }

// On failure the out parameter is unchanged.
[[nodiscard]] CError* readU32(CInputStream& stream, std::uint32_t& value);
[[nodiscard]] CError* readF64(CInputStream& stream, double& value);
[[nodiscard]] CError* readI32(CInputStream& stream, std::int32_t& value);
// Any number but 0 is true.
[[nodiscard]] CError* readBool(CInputStream& stream, bool& value);

// A count of things of at least `bytesEach` bytes: refused above `limit`, and where the stream can't hold so many.
[[nodiscard]] CError* readCount(CInputStream& stream, int& count, int limit, int bytesEach);

}  // namespace brt
