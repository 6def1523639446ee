// SPDX-License-Identifier: LicenseRef-Halyard
// A sink of bytes: a file, a chain of memory blocks, or a stream that deflates into another one.
//
// Owner: whoever opened it; a stream that writes to another one doesn't own that. Threads: one at a time; no locks.
#pragma once

#include <cstdint>

#include "Core/CCheckedObject.h"
#include "Core/CompressedBlock.h"

namespace brt {

class CByteBuffer;
class CError;
class CString;

class COutputStream : public CCheckedObject {
public:
    // Writing. All `count` bytes, or an error after which nobody knows how many arrived.
    [[nodiscard]] virtual CError* write(const void* buffer, int count) = 0;

    // The string in its stored form. One that could not be read back is refused before anything is written.
    [[nodiscard]] CError* writeString(const CString& string);

    // A compressed block around the bytes of `buffer`, in its zlib or its LZ4 form.
    [[nodiscard]] CError* writeCompressedData(const CByteBuffer& buffer, std::uint32_t tag);
    [[nodiscard]] CError* writeCompressedDataLZ4(const CByteBuffer& buffer, std::uint32_t tag);
};

}  // namespace brt
