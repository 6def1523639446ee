// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard soak`: what hosts do to instances, at random and all at once, for as long as one likes.
#pragma once

#include <cstdint>
#include <filesystem>

namespace brt {

struct SoakRequest {
    std::filesystem::path plugin;  // empty: the one that is linked in
    double seconds = 10;
    std::uint32_t seed = 1;
    int instanceCount = 2;  // at a time, each with an audio thread and one that changes things
    bool isCalm = false;    // nothing changes: blocks of one size only
    int blockFrames = 64;   // in the calm
};

// The exit status. Throws CToolError where the plug-in fails a host.
int runSoak(const SoakRequest& request);

}  // namespace brt
