// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/COutputStream.h"

#include <string>

#include "Core/CError.h"
#include "Core/CString.h"
#include "Core/LittleEndian.h"
#include "Core/StoredString.h"

namespace brt {

CError* COutputStream::writeString(const CString& string) {
    const std::string text = string.toUtf8();
    if (text.size() > kLongestStoredStringBytes) {
        return makeError(
            nullptr, __FILE__, __LINE__, "",
            "@brtstr_COutputStream_writeString_StringDataTooLong String length %1 too long in writeString().",
            text.size());
    }
    std::uint8_t header[4];
    storeLittleEndian32(header, static_cast<std::uint32_t>(text.size()));
    BRT_TRY("", write(header, sizeof header));
    BRT_TRY("", write(text.data(), static_cast<int>(text.size())));
    return nullptr;
}

}  // namespace brt
