// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CHalyardCore.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

namespace brt {
namespace {

class CHalyardCoreTest : public ::testing::TestWithParam<ProcessorBuild> {
protected:
    CHalyardCore m_core{GetParam()};
};

TEST_P(CHalyardCoreTest, impulseComesAfterTheLatency) {
    EXPECT_EQ(m_core.latencySamples(), 1667);
    std::vector<double> in(4000), out(4000);
    in[0] = 0.5;
    m_core.processBlock(in.data(), out.data(), 4000);
    const auto peak =
        std::max_element(out.begin(), out.end(), [](double a, double b) { return std::abs(a) < std::abs(b); });
    EXPECT_EQ(peak - out.begin(), 1667);
    EXPECT_TRUE(std::all_of(out.begin(), out.begin() + 1248, [](double x) { return x == 0.0; }));
}

INSTANTIATE_TEST_SUITE_P(Builds, CHalyardCoreTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

}  // namespace
}  // namespace brt
