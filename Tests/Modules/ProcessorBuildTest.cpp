// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/ProcessorBuild.h"

#include "Core/Log.h"
#include "Modules/ProcessorBuilds.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace brt {
namespace {

class CLines : public CLogSink {
public:
    CLines() : m_before(setLogSink(this)) {}
    ~CLines() { setLogSink(m_before); }
    void write(std::string_view text, bool) override { lines.emplace_back(text); }
    std::vector<std::string> lines;

private:
    CLogSink* const m_before;
};

TEST(ProcessorBuildTest, PortableRunsEverywhereAndTheChoiceIsSupported) {
    EXPECT_TRUE(isProcessorBuildSupported(ProcessorBuild::kPortable));
    EXPECT_FALSE(isProcessorBuildSupported(static_cast<ProcessorBuild>(7)));
    EXPECT_TRUE(isProcessorBuildSupported(processorBuild()));
    EXPECT_STREQ(processorBuildName(ProcessorBuild::kAvx512), "avx512");
    EXPECT_STREQ(processorBuildName(static_cast<ProcessorBuild>(-1)), "unknown");
}

TEST(ProcessorBuildTest, TakesTheNamedBuild) {
    CLines log;
    for (const ProcessorBuild build : supportedBuilds())
        EXPECT_EQ(chooseProcessorBuild(processorBuildName(build)), build);
    EXPECT_EQ(chooseProcessorBuild(nullptr), supportedBuilds().back());
    EXPECT_TRUE(log.lines.empty());
}

TEST(ProcessorBuildTest, AnUnknownNameIsLoggedAndIgnored) {
    for (const char* name : {"", "AVX2", "avx1024", "portable "}) {
        CLines log;
        EXPECT_EQ(chooseProcessorBuild(name), supportedBuilds().back());
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_NE(log.lines[0].find("'" + std::string(name) + "'"), std::string::npos) << log.lines[0];
    }
}

}  // namespace
}  // namespace brt
