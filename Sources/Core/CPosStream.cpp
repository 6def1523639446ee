// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CPosStream.h"

#include <algorithm>
#include <limits>

#include "Core/CError.h"

namespace brt {

namespace {

constexpr std::int64_t kLargestInt = std::numeric_limits<int>::max();

}  // namespace

CError* CPosStream::getPositionInt32(int& position) {
    std::int64_t wide = 0;
    BRT_TRY("", getPosition(wide));
    if (wide > kLargestInt) {
        return makeError(
            nullptr, __FILE__, __LINE__, "",
            "@brtstr_CPosStream_getPositionInt32_Greater2GB The size of the stream is above allowed 2 GB.");
    }
    position = static_cast<int>(wide);
    return nullptr;
}

CError* CPosStream::getSizeInt(int& size) {
    std::int64_t wide = 0;
    BRT_TRY("", getSize(wide));
    if (wide > kLargestInt) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CPosStream_getSizeInt_Greater2GB The size of the stream is above allowed 2 GB.");
    }
    size = static_cast<int>(wide);
    return nullptr;
}

std::int64_t CPosInputStream::getBytesLeft() {
    std::int64_t position = 0;
    std::int64_t size = 0;
    // Pipes and devices have neither: that is an answer here, not a failure.
    if (discardError(getPosition(position)) || discardError(getSize(size))) return kUnknownBytesLeft;
    return std::max<std::int64_t>(size - position, 0);
}

}  // namespace brt
