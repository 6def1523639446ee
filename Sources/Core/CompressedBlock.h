// SPDX-License-Identifier: LicenseRef-Halyard
// The compressed block, in which every stored format of the program keeps its payload. Numbers are little-endian.
//
//     zlib form                                     LZ4 form
//      0  4  tag: four characters                    0  4  tag
//      4  4  size of the payload                     4  4  size of the payload
//      8  4  Adler-32 of bytes 4 to 7                8  4  size of the compressed payload
//     12  -  a zlib stream, to its own end          12  4  Adler-32 of bytes 4 to 11
//                                                   16  -  one LZ4 block
//
// The tag tells what the payload is. The Adler-32 covers the sizes only; a zlib stream brings a check of its payload,
// an LZ4 block has none. Blocks are written by `COutputStream` and read by `CInputStream`.
#pragma once

#include <cstdint>

namespace brt {

// The tag that reads as `characters` in a hex dump: blockTag("dstr").
consteval std::uint32_t blockTag(const char (&characters)[5]) {
    std::uint32_t tag = 0;
    for (int i = 0; i < 4; ++i) tag |= static_cast<std::uint32_t>(static_cast<unsigned char>(characters[i])) << (8 * i);
    return tag;
}

// Far above every payload of the program, the largest of which are images, and far below what would hurt a host. Who
// knows the format of a payload gives a limit of its own.
inline constexpr int kDefaultBlockLimitBytes = 64 << 20;

}  // namespace brt
