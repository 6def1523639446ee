// SPDX-License-Identifier: LicenseRef-Halyard
// A short piece of music made by arithmetic alone: drums, bass, chords and an arpeggio, ten seconds in stereo, with the
// steep drum hits that a clipper is for. The same at every call; nothing in it reaches half the rate, so that whatever
// stands there later has been put there.
#pragma once

#include <filesystem>

#include "Tools/Halyard/CPlanarBuffer.h"

namespace brt {

struct DemoSignalRequest {
    static constexpr int kMinRateHz = 22050;
    static constexpr int kMaxRateHz = 384000;

    std::filesystem::path output;
    int rateHz = 48000;
    bool mayReplace = false;
};

// Two channels; the loudest sample stands at -0.3 dB of full scale. REQUIRES: a rate within the bounds above.
CPlanarBuffer makeDemoSignal(int rateHz);

// `halyard demo-signal`: writes it with 24 bit. The exit status. Throws CToolError.
int runDemoSignal(const DemoSignalRequest& request);

}  // namespace brt
