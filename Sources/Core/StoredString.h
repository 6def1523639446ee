// SPDX-License-Identifier: LicenseRef-Halyard
// The stored form of a string: 4 bytes, little-endian and signed, that count the bytes of its UTF-8 text, and that text
// without a terminator. `COutputStream::writeString` writes it, `CInputStream::readString` reads it; Core/Utf8.h tells
// which UTF-8.
#pragma once

namespace brt {

// A longer one is refused by the writer as well as by the reader: what is written can be read back.
inline constexpr int kLongestStoredStringBytes = 61440;

}  // namespace brt
