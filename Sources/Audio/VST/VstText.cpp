// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/VST/VstText.h"

#include <algorithm>
#include <cstring>

namespace brt {

bool writeVstText(void* buffer, CStringView text, int room) noexcept {
    if (buffer == nullptr) return false;
    char* const bytes = static_cast<char*>(buffer);
    const int length = std::min(text.length(), room - 1);
    for (int i = 0; i < length; ++i) bytes[i] = text[i] <= 0xff ? static_cast<char>(text[i]) : '?';
    bytes[length] = 0;
    return true;
}

CStringView readVstText(const void* text, int limit) noexcept {
    if (text == nullptr) return {};
    const char* const bytes = static_cast<const char*>(text);
    const void* const end = std::memchr(bytes, 0, static_cast<std::size_t>(limit));
    const auto length = end != nullptr ? static_cast<const char*>(end) - bytes : limit;
    return std::string_view(bytes, static_cast<std::size_t>(length));
}

}  // namespace brt
