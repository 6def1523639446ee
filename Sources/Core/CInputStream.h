// SPDX-License-Identifier: LicenseRef-Halyard
// A source of bytes: a file, a range of memory, a resource, or a stream that inflates another one.
//
// Owner: whoever opened it; a stream that reads from another one doesn't own that. Threads: one at a time; no locks.
// What comes out of a stream is data of strangers: each size found in it is checked before it is believed, and bad data
// ends in an error, never in a loop, a leak or an allocation out of all proportion.
#pragma once

#include <cstdint>

#include "Core/CCheckedObject.h"
#include "Core/CompressedBlock.h"

namespace brt {

class CByteBuffer;
class CError;
class CString;

class CInputStream : public CCheckedObject {
public:
    static constexpr std::int64_t kUnknownBytesLeft = -1;

    // Direct access. The address of the next byte, where the rest of the stream lies in memory; else null.
    virtual const void* getDirectData();

    // Reading. Every operation moves on behind what it took. A negative count fails.
    // Moves on by `count` bytes without handing them out.
    [[nodiscard]] virtual CError* skip(int count);
    // Exactly `count` bytes, or an error.
    [[nodiscard]] virtual CError* read(void* buffer, int count) = 0;
    // Up to `count` bytes; sets `count` to what came. 0 means the end, which is no error.
    [[nodiscard]] virtual CError* readStreamed(void* buffer, int& count);

    // Size. How many bytes are left, or `kUnknownBytesLeft`: what a size found in the stream is held against.
    virtual std::int64_t getBytesLeft();

    // A string in its stored form. On failure `result` is empty.
    [[nodiscard]] CError* readString(CString& result);

    // The payload of a compressed block whose tag must be `tag`, in its zlib or its LZ4 form. A payload above
    // `limitBytes` is refused before anything is allocated. On failure `buffer` is empty.
    //
    // The zlib form reads ahead: afterwards the position is anywhere from the block's end to 32,767 bytes behind it. So
    // such a block is the last thing in its stream, or the caller knows the position of what follows.
    [[nodiscard]] CError* readCompressedData(CByteBuffer& buffer, std::uint32_t tag,
                                             int limitBytes = kDefaultBlockLimitBytes);
    [[nodiscard]] CError* readCompressedDataLZ4(CByteBuffer& buffer, std::uint32_t tag,
                                                int limitBytes = kDefaultBlockLimitBytes);
};

}  // namespace brt
