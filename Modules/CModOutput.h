// SPDX-License-Identifier: LicenseRef-Halyard
// The end of the graph: whoever drives it prepares this process each block and reads its main port. What arrives there
// is in step, and late by the latency that the environment is told.
// Owner: the instance. Threads: audio.
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessDefBase.h"

namespace brt {

class CModOutputDef : public CAudioProcessDefBase {
public:
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModOutput final : public CAudioProcessBase {
public:
    void update() override;

    // One block: gathers what the graph has delivered. Until `end` the buffers of the main port can be read; a channel
    // without one is silent.
    void begin() { prepare(); }
    void end() { releaseInputs(); }
};

}  // namespace brt
