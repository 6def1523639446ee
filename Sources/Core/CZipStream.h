// SPDX-License-Identifier: LicenseRef-Halyard
// What an inflating and a deflating stream have in common: zlib's record, whose memory comes from the block allocator,
// and the buffer of compressed bytes between zlib and the other stream.
#pragma once

#include <cstdint>

#include <zlib.h>

namespace brt {

class CString;

class CZipStream {
public:
    CZipStream(const CZipStream&) = delete;
    CZipStream& operator=(const CZipStream&) = delete;

protected:
    static constexpr int kBufferBytes = 32768;

    CZipStream() noexcept;
    ~CZipStream() = default;

    // zlib's own words for its last failure; empty if it has none.
    CString zlibMessage() const;

    z_stream m_zlib{};
    std::uint8_t m_buffer[kBufferBytes];
};

}  // namespace brt
