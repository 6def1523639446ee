// SPDX-License-Identifier: LicenseRef-Halyard
// Part of every test program above the platform floor: starts the process's life before the first test, stops it after
// the last, and fails the program if a test has left an instance or a block behind. Builds with a sanitizer would also
// find a leak; this one looks into our own allocator, and at the order of stopping.
#include <gtest/gtest.h>

#include <string>

#include "Core/CBrtMemAllocator.h"
#include "Core/CProcess.h"
#include "Core/Log.h"

namespace brt {
namespace {

class LastLines : public CLogSink {
public:
    void write(std::string_view text, bool) override { m_lines.append(text).append("\n"); }
    const std::string& lines() const { return m_lines; }

private:
    std::string m_lines;
};

class ProcessEnvironment : public testing::Environment {
public:
    void SetUp() override { startProcess(); }

    void TearDown() override {
        EXPECT_EQ(CProcessInstance::liveCount(), 0) << "a test has left an instance behind";
        LastLines sink;
        CLogSink* const before = setLogSink(&sink);
        stopProcess();
        setLogSink(before);
        EXPECT_EQ(sink.lines().find("never freed"), std::string::npos) << sink.lines();
    }
};

[[maybe_unused]] testing::Environment* const s_environment =
    testing::AddGlobalTestEnvironment(new ProcessEnvironment);  // owned by the test library

}  // namespace
}  // namespace brt
