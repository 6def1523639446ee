// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/LaneProbe.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

namespace brt {
namespace {

const LaneProbe& probeOf(ProcessorBuild build) {
    switch (build) {
    case ProcessorBuild::kBaseline: return baseline::kLaneProbe;
    case ProcessorBuild::kAvx2: return avx2::kLaneProbe;
    case ProcessorBuild::kAvx512: return avx512::kLaneProbe;
    default: return portable::kLaneProbe;
    }
}

class LanesTest : public ::testing::TestWithParam<ProcessorBuild> {
protected:
    using Operation = void (*)(const double*, double*);
    // What `operation` makes of the vectors 0, 1, 2 ... and 100, 101, 102 ...
    std::vector<double> run(Operation operation) const {
        std::vector<double> in, out(size());
        for (std::size_t i = 0; i < size(); ++i) in.push_back(static_cast<double>(i));
        for (std::size_t i = 0; i < size(); ++i) in.push_back(100.0 + static_cast<double>(i));
        operation(in.data(), out.data());
        return out;
    }
    std::size_t size() const { return static_cast<std::size_t>(m_probe.lanes); }
    const LaneProbe& m_probe = probeOf(GetParam());
};

TEST_P(LanesTest, MoveValuesBetweenLanes) {
    const int w = m_probe.lanes;
    const auto reversed = run(m_probe.reverse), rotated = run(m_probe.rotateUp), replaced = run(m_probe.withLane0);
    const auto even = run(m_probe.even), odd = run(m_probe.odd);
    const auto low = run(m_probe.zipLow), high = run(m_probe.zipHigh);
    // Value `place` of the two vectors in a row, and of the two interleaved.
    const auto inRow = [w](int place) { return place < w ? place : 100.0 + place - w; };
    const auto zipped = [](int place) { return place % 2 == 0 ? place / 2 : 100.0 + place / 2; };
    for (int i = 0; i < w; ++i) {
        const auto at = static_cast<std::size_t>(i);
        EXPECT_EQ(reversed[at], w - 1 - i);
        EXPECT_EQ(rotated[at], (i + w - 1) % w);
        EXPECT_EQ(replaced[at], i == 0 ? 100.0 : i);
        EXPECT_EQ(even[at], inRow(2 * i));
        EXPECT_EQ(odd[at], inRow(2 * i + 1));
        EXPECT_EQ(low[at], zipped(i));
        EXPECT_EQ(high[at], zipped(w + i));
    }
}

TEST_P(LanesTest, TransposeSwapsRowsAndColumns) {
    const std::size_t w = size();
    std::vector<double> in(w * w), out(w * w);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = static_cast<double>(i);
    m_probe.transpose(in.data(), out.data());
    for (std::size_t i = 0; i < w; ++i)
        for (std::size_t j = 0; j < w; ++j) EXPECT_EQ(out[i * w + j], in[j * w + i]);
}

TEST_P(LanesTest, MinAndMaxTakeTheSecondOneBesideNaN) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double cases[][4] = {// a, b, smaller, larger
                               {-1.0, 2.0, -1.0, 2.0},
                               {5.0, -3.0, -3.0, 5.0},
                               {nan, 1.0, 1.0, 1.0},
                               {1.0, nan, nan, nan},
                               {HUGE_VAL, -HUGE_VAL, -HUGE_VAL, HUGE_VAL}};
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    for (const auto& [a, b, smaller, larger] : cases) {
        std::vector<double> in(size(), a), out(size());
        in.resize(2 * size(), b);
        m_probe.minOf(in.data(), out.data());
        for (const double x : out) EXPECT_TRUE(same(x, smaller)) << a << " " << b << " gave " << x;
        m_probe.maxOf(in.data(), out.data());
        for (const double x : out) EXPECT_TRUE(same(x, larger)) << a << " " << b << " gave " << x;
        m_probe.absOf(in.data(), out.data());
        for (const double x : out) EXPECT_TRUE(same(x, std::fabs(a)) && !std::signbit(x));
    }
}

// The rest of a loop, done one by one, must not be heard beside the part done in vectors.
TEST_P(LanesTest, VectorsAndDoublesRoundAlike) {
    constexpr std::size_t count = 800;
    std::vector<double> in(3 * count), vectors(3 * count), doubles(3 * count);
    std::srand(1);
    for (double& x : in) x = std::rand() / static_cast<double>(RAND_MAX) - 0.5;
    m_probe.mulAdds(in.data(), vectors.data(), doubles.data(), static_cast<int>(count));
    EXPECT_EQ(vectors, doubles);
    for (std::size_t i = 0; i < count; ++i) EXPECT_NEAR(doubles[i], in[i] * in[i + count] + in[i + 2 * count], 1e-15);
}

INSTANTIATE_TEST_SUITE_P(Builds, LanesTest, ::testing::ValuesIn(supportedBuilds()), buildOfTest);

}  // namespace
}  // namespace brt
