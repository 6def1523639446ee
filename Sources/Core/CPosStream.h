// SPDX-License-Identifier: LicenseRef-Halyard
// The position and the size of a stream that has them, and the interfaces that join them with a source or a sink.
// Positions count bytes from the beginning. Threads: one at a time.
#pragma once

#include <cstdint>

#include "Core/CCheckedObject.h"
#include "Core/CInputStream.h"
#include "Core/COutputStream.h"

namespace brt {

class CPosStream : public CCheckedObject {
public:
    // Position and size. On failure the out parameters are unchanged.
    [[nodiscard]] virtual CError* getPosition(std::int64_t& position) = 0;
    [[nodiscard]] virtual CError* setPosition(std::int64_t position) = 0;
    [[nodiscard]] virtual CError* getSize(std::int64_t& size) = 0;

    // The same in 32 bits, for formats that hold no more. They fail from 2 GiB on.
    [[nodiscard]] CError* getPositionInt32(int& position);
    [[nodiscard]] CError* getSizeInt(int& size);
};

class CPosInputStream : public CInputStream, public virtual CPosStream {
public:
    std::int64_t getBytesLeft() override;
};

class CPosOutputStream : public COutputStream, public virtual CPosStream {};

}  // namespace brt
