// SPDX-License-Identifier: LicenseRef-Halyard
// UTF-8 as stored data has it: code points up to U+FFFF, no surrogates. Threads: any.
#pragma once

#include <string_view>

namespace brt {

constexpr int kMaxUtf8Bytes = 3;

// Writes one unit to `bytes`; returns how many bytes it took, 0 to 3: surrogates give none.
// REQUIRES: room for kMaxUtf8Bytes.
int encodeUtf8(char16_t unit, char* bytes) noexcept;

// Reads code points one after another.
class CUtf8Reader {
public:
    explicit CUtf8Reader(std::string_view bytes) noexcept : m_bytes(bytes) {}

    // False at the end of the text: at the last byte, at a NUL, and at a sequence that runs past the last byte. A byte
    // that can't lead a sequence is skipped; those that follow a lead are taken as they are.
    bool next(char32_t& codePoint) noexcept;

private:
    std::string_view m_bytes;
};

}  // namespace brt
