// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CModOutput.h"

#include "Audio/CAudioEnv.h"

namespace brt {

std::unique_ptr<CAudioProcessBase> CModOutputDef::createProcess() const { return std::make_unique<CModOutput>(); }

void CModOutput::update() {
    if (isUpdateInProgress()) context().env.setLatency(largestLatencySamples());
}

}  // namespace brt
