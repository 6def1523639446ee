// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CInputStream.h"

#include <algorithm>

#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CString.h"
#include "Core/LittleEndian.h"
#include "Core/StoredString.h"

namespace brt {

const void* CInputStream::getDirectData() { return nullptr; }

CError* CInputStream::skip(int count) {
    constexpr int kPieceBytes = 32768;
    if (count < 0) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputStream_skip_NegativeCount Unable to skip %1 bytes.", count);
    }
    CByteBuffer dropped;
    dropped.setSize(std::min(count, kPieceBytes));
    while (count > 0) {
        const int piece = std::min(count, dropped.size());
        BRT_TRY("", read(dropped.data(), piece));
        count -= piece;
    }
    return nullptr;
}

CError* CInputStream::readStreamed(void* buffer, int& count) {
    BRT_TRY("", read(buffer, count));
    return nullptr;
}

std::int64_t CInputStream::getBytesLeft() { return kUnknownBytesLeft; }

CError* CInputStream::readString(CString& result) {
    result.clear();
    std::uint8_t header[4] = {};
    BRT_TRY("", read(header, sizeof header));
    const int size = static_cast<std::int32_t>(loadLittleEndian32(header));
    if (size > kLongestStoredStringBytes) {
        return makeError(nullptr, __FILE__, __LINE__, "",
                         "@brtstr_CInputStream_readString_StringDataTooLong String length %1 too long in readString().",
                         size);
    }
    if (size <= 0) return nullptr;
    CByteBuffer text;
    text.setSize(size);
    BRT_TRY("", read(text.data(), size));
    result = CString::fromUtf8({reinterpret_cast<const char*>(text.data()), static_cast<std::size_t>(size)});
    return nullptr;
}

}  // namespace brt
