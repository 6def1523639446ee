// SPDX-License-Identifier: LicenseRef-Halyard
// A named place in the graph. Containers dissolve nodes when they work out their edges; one that runs nevertheless
// hands its channels on. Owner: the graph. Threads: audio.
#pragma once

#include "Audio/CAudioProcessBase.h"
#include "Audio/CAudioProcessDefBase.h"

namespace brt {

class CModNodeDef : public CAudioProcessDefBase {
public:
    std::unique_ptr<CAudioProcessBase> createProcess() const override;
};

class CModNode final : public CAudioProcessBase {
public:
    void update() override;
    void process() override;
};

}  // namespace brt
