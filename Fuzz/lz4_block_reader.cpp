// SPDX-License-Identifier: LicenseRef-Halyard
#include "Fuzz/BlockTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace brt;
    fuzz::CBlockTarget(&CInputStream::readCompressedDataLZ4, &COutputStream::writeCompressedDataLZ4, 8, false)
        .run(data, size);
    return 0;
}
