// SPDX-License-Identifier: LicenseRef-Halyard
// Processor builds as the benchmarks name them.
#pragma once

#include "Modules/ProcessorBuild.h"

#include <string>
#include <vector>

namespace bench {

inline std::vector<brt::ProcessorBuild> supportedBuilds() {
    std::vector<brt::ProcessorBuild> builds;
    for (int i = 0; i < brt::kProcessorBuildCount; ++i)
        if (const auto build = static_cast<brt::ProcessorBuild>(i); brt::isProcessorBuildSupported(build))
            builds.push_back(build);
    return builds;
}

inline std::string nameOf(brt::ProcessorBuild build) { return brt::processorBuildName(build); }

}  // namespace bench
