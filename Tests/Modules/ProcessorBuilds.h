// SPDX-License-Identifier: LicenseRef-Halyard
// For tests that run once per processor build:
//   INSTANTIATE_TEST_SUITE_P(Builds, MyTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);
#pragma once

#include "Modules/ProcessorBuild.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brt {

inline std::vector<ProcessorBuild> supportedBuilds() {
    std::vector<ProcessorBuild> builds;
    for (int i = 0; i < kProcessorBuildCount; ++i)
        if (const auto build = static_cast<ProcessorBuild>(i); isProcessorBuildSupported(build))
            builds.push_back(build);
    return builds;
}

inline std::string buildOfTest(const ::testing::TestParamInfo<ProcessorBuild>& info) {
    return processorBuildName(info.param);
}

}  // namespace brt
