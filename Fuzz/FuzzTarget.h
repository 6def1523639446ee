// SPDX-License-Identifier: LicenseRef-Halyard
// What every fuzz target shares: the entry that libFuzzer and replay.cpp call, and a check that ends the program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

// Runs one input. Returns 0; whatever is wrong ends the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace brt::fuzz {

// What must hold for any input.
inline void require(bool condition, const char* promise) {
    if (condition) return;
    std::fprintf(stderr, "Broken promise: %s\n", promise);
    std::abort();
}

}  // namespace brt::fuzz
