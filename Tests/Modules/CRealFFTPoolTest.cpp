// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CRealFFTPool.h"

#include "Core/CBrtMemAllocator.h"
#include "Core/CProcess.h"
#include "Modules/CFFTDownsampler.h"
#include "Modules/CFFTUpsampler.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace brt {
namespace {

class CRealFFTPoolTest : public ::testing::Test {
protected:
    ~CRealFFTPoolTest() override { m_pool.freeAll(); }
    CRealFFTPool m_pool;
};

TEST_F(CRealFFTPoolTest, LendsWhatCameBack) {
    CRealFFTRef first = m_pool.acquire(10);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->order(), 10);
    EXPECT_EQ(first->size(), 1024);
    EXPECT_EQ(first->invSize(), 1.0 / 1024);

    const CRealFFT* object = first.get();
    CRealFFTRef second = m_pool.acquire(10), other = m_pool.acquire(11);
    EXPECT_NE(second.get(), object);
    EXPECT_EQ(other->size(), 2048);
    first.release();
    EXPECT_FALSE(first);
    EXPECT_NE(m_pool.acquire(11).get(), object);
    EXPECT_EQ(m_pool.acquire(10).get(), object);
    EXPECT_EQ(m_pool.acquire(10).get(), object);
}

TEST_F(CRealFFTPoolTest, KeepsBuildsApart) {
    const CRealFFT* portable = m_pool.acquire(10, ProcessorBuild::kPortable).get();
    for (const ProcessorBuild build : supportedBuilds()) {
        CRealFFTRef fft = m_pool.acquire(10, build);
        ASSERT_TRUE(fft);
        EXPECT_EQ(fft->build(), build);
        EXPECT_EQ(fft.get() == portable, build == ProcessorBuild::kPortable);
    }
}

TEST_F(CRealFFTPoolTest, GivesAnEmptyReferenceForWhatCannotBe) {
    EXPECT_FALSE(m_pool.acquire(-1));
    EXPECT_FALSE(m_pool.acquire(28));
    EXPECT_FALSE(m_pool.acquire(1000));
    EXPECT_FALSE(m_pool.acquire(10, static_cast<ProcessorBuild>(9)));
}

TEST_F(CRealFFTPoolTest, ReferencesMoveAndSurviveFreeAll) {
    CRealFFTRef fft;
    {
        CRealFFTRef inner = m_pool.acquire(3);
        fft = std::move(inner);
    }
    m_pool.freeAll();
    double x[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    fft->forward(x, x);
    EXPECT_EQ(x[0], 8.0);
    fft->inverse(x, x);
    EXPECT_EQ(x[7], 8.0);
    CRealFFTRef moved(std::move(fft));
    EXPECT_FALSE(fft);
    EXPECT_TRUE(moved);
}

TEST_F(CRealFFTPoolTest, ThreadsNeverShareAnObject) {
    const auto work = [this] {
        for (int round = 0; round < 200; ++round) {
            CRealFFTRef a = m_pool.acquire(5), b = m_pool.acquire(5);
            for (CRealFFTRef* fft : {&a, &b}) {
                std::vector<double> x(32, 1.0);
                (*fft)->forward(x.data(), x.data());
                ASSERT_EQ(x[0], 32.0);
                ASSERT_EQ(x[1], 0.0);
            }
        }
    };
    std::thread other(work);
    work();
    other.join();
}

// The process's own pool and store, as the end of the process treats them.
TEST(SignalTablesTest, AreFreedWithTheProcessAndMadeAgain) {
    const std::int64_t before = CBrtMemAllocator::liveBlocks();
    for (int round = 0; round < 2; ++round) {
        {
            const CFFTUpsampler up;
            const CFFTDownsampler down;
            ASSERT_TRUE(up.isReady() && down.isReady());
        }
        EXPECT_GE(CBrtMemAllocator::liveBlocks(), before + 6);
        stopProcess();
        EXPECT_EQ(CBrtMemAllocator::liveBlocks(), before);
    }
}

}  // namespace
}  // namespace brt
