// SPDX-License-Identifier: LicenseRef-Halyard
// Stored forms of presets and banks in compressed blocks: files, and what hosts keep. Threads: one at a time a stream.
#pragma once

#include "Core/CAppData.h"
#include "Core/CByteBuffer.h"
#include "Core/CError.h"
#include "Core/CInputStream.h"
#include "Core/CMemoryReader.h"
#include "Core/COutputStream.h"
#include "Core/CWriteSeqBuffer.h"

namespace brt {

constexpr std::uint32_t kBankTag = blockTag("abnk");

// Fails where something is left behind what was to be all.
[[nodiscard]] inline CError* expectEnd(CInputStream& stream) {
    const std::int64_t bytesLeft = stream.getBytesLeft();
    if (bytesLeft == 0) return nullptr;
    return makeError(
        nullptr, __FILE__, __LINE__, "",
        "@brtstr_PresetStream_expectEnd_BytesLeft The preset data is damaged: %1 bytes are left behind its "
        "end.",
        bytesLeft);
}

template <class Stored>
[[nodiscard]] CError* packStored(const Stored& stored, COutputStream& stream, std::uint32_t tag) {
    CWriteSeqBuffer plain(CWriteSeqBuffer::kStateBlockBytes);
    BRT_TRY("", stored.save(plain));
    CByteBuffer bytes;
    plain.moveTo(bytes);
    BRT_TRY("", stream.writeCompressedData(bytes, tag));
    return nullptr;
}

template <class Stored>
[[nodiscard]] CError* unpackStored(Stored& stored, CInputStream& stream, std::uint32_t tag) {
    CByteBuffer bytes;
    BRT_TRY("", stream.readCompressedData(bytes, tag));
    CMemoryReader plain(bytes.data(), bytes.size());
    BRT_TRY("", stored.load(plain));
    BRT_TRY("", expectEnd(plain));
    return nullptr;
}

}  // namespace brt
