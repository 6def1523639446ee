// SPDX-License-Identifier: LicenseRef-Halyard
// The fuzz target of both forms of the compressed block. The first byte of an input chooses, by its bits:
//     0  the source: memory that it lends, or a pipe that knows no size
//     1  the rest is a block as it stands, or sizes and a payload to which tag and check are put: mutations rarely hit
//        a right check by themselves
//     2  the rest is what to pack, behind the place of a bit that is flipped in the packed block
#pragma once

#include <zlib.h>

#include "Core/CByteBuffer.h"
#include "Core/CMemoryReader.h"
#include "Core/LittleEndian.h"
#include "Fuzz/FuzzTarget.h"
#include "Tests/Core/StreamTestTools.h"

namespace brt::fuzz {

class CBlockTarget {
public:
    using Read = CError* (CInputStream::*)(CByteBuffer&, std::uint32_t, int);
    using Write = CError* (COutputStream::*)(const CByteBuffer&, std::uint32_t);

    // `sizesBytes`: of the size fields between tag and check. `isChecked`: the form has a check of its payload.
    CBlockTarget(Read readBlock, Write writeBlock, std::size_t sizesBytes, bool isChecked)
        : m_read(readBlock), m_write(writeBlock), m_sizesBytes(sizesBytes), m_isChecked(isChecked) {}

    void run(const std::uint8_t* data, std::size_t size) const {
        if (size == 0) return;
        m_isPipe = data[0] & 1;
        const Bytes rest(data + 1, data + size);
        if (data[0] & 4)
            packAndDamage(rest);
        else
            readAny(data[0] & 2 ? withHeader(rest) : rest);
    }

private:
    static constexpr std::uint32_t kTag = blockTag("fuzz");
    static constexpr int kLimitBytes = 1 << 20;

    bool read(const Bytes& block, Bytes& result) const {
        CMemoryReaderStatic memory(block.data(), static_cast<int>(block.size()));
        CPipeSource pipe(m_isPipe ? block : Bytes(), 100);
        CInputStream& source = m_isPipe ? static_cast<CInputStream&>(pipe) : memory;
        CByteBuffer buffer;
        const bool isRead = !discardError((source.*m_read)(buffer, kTag, kLimitBytes));
        require(isRead || buffer.isEmpty(), "a failure leaves the buffer empty");
        require(buffer.size() <= kLimitBytes, "the limit holds");
        result = bytesOf(buffer);
        return isRead;
    }

    Bytes pack(const Bytes& payload) const {
        CByteBuffer buffer;
        buffer.assign(payload.data(), static_cast<int>(payload.size()));
        CWriteSeqBuffer chain(CWriteSeqBuffer::kStateBlockBytes);
        require(!discardError((chain.*m_write)(buffer, kTag)), "memory takes any block");
        return contentOf(chain);
    }

    static std::uint32_t checkOf(const Bytes& bytes) {
        return static_cast<std::uint32_t>(adler32(1, bytes.data(), static_cast<uInt>(bytes.size())));
    }

    Bytes withHeader(Bytes block) const {
        if (block.size() < m_sizesBytes) block.resize(m_sizesBytes);
        const Bytes sizes(block.begin(), block.begin() + static_cast<std::ptrdiff_t>(m_sizesBytes));
        std::uint8_t number[4];
        storeLittleEndian32(number, checkOf(sizes));
        block.insert(block.begin() + static_cast<std::ptrdiff_t>(m_sizesBytes), number, number + 4);
        storeLittleEndian32(number, kTag);
        block.insert(block.begin(), number, number + 4);
        return block;
    }

    void readAny(const Bytes& block) const {
        Bytes payload;
        if (!read(block, payload)) return;
        Bytes again;
        require(read(pack(payload), again) && again == payload, "what was read can be written and read again");
    }

    void packAndDamage(const Bytes& rest) const {
        if (rest.size() < 2) return;
        const Bytes payload(rest.begin() + 2, rest.end());
        Bytes block = pack(payload);
        Bytes result;
        require(read(block, result) && result == payload, "what is packed comes back");
        const std::size_t bit = (rest[0] + 256u * rest[1]) % (block.size() * 8);
        block[bit / 8] ^= static_cast<std::uint8_t>(1 << bit % 8);
        const bool isRead = read(block, result);
        // Adler-32 can be the same for two payloads, so equal checks are all that can be asked for.
        require(!isRead || !m_isChecked || checkOf(result) == checkOf(payload), "the check is looked at");
    }

    Read m_read;
    Write m_write;
    std::size_t m_sizesBytes;
    bool m_isChecked;
    mutable bool m_isPipe = false;
};

}  // namespace brt::fuzz
