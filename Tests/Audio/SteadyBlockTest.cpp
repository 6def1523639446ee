// SPDX-License-Identifier: LicenseRef-Halyard
// Blocks in which nothing changes run in a child that the system ends at its first system call.
#include "GraphFixture.h"

#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "CollectedRecords.h"

namespace brt {
namespace {

class SteadyBlockTest : public GraphFixture {
protected:
    void expectNoSystemCalls(const std::vector<Samples>& in, int blockCount) {
        std::vector<Samples> out(in.size(), Samples(512));
        const double* const inputs[] = {in[0].data(), in[1].data()};
        double* const outputs[] = {out[0].data(), out[1].data()};
        constexpr int kNotForbidden = 77;
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            if (prctl(PR_SET_SECCOMP, SECCOMP_MODE_STRICT) != 0) syscall(SYS_exit, kNotForbidden);
            for (int i = 0; i < blockCount; ++i) m_graph->process(inputs, outputs, 2, 512);
            syscall(SYS_exit, 0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
        if (WEXITSTATUS(status) == kNotForbidden) GTEST_SKIP() << "this system has no way to forbid system calls";
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
};

TEST_F(SteadyBlockTest, asksTheSystemForNothing) {
    const std::vector<Samples> in = {noise(4096, 14), noise(4096, 15)};
    run(in);
    expectNoSystemCalls(in, 50);
}

// Frames as short as they get and nobody who collects: all the room for records is used, and the oldest pushed out.
TEST_F(SteadyBlockTest, asksTheSystemForNothingWhileMetersAreWatched) {
    const std::vector<Samples> in = {noise(1024, 1), noise(1024, 2)};
    for (const char* const meter :
         {"plugin.modMain.modHal.modHalyardMeter", "plugin.modMain.modMeterIODiff", "plugin.modMain.modMeterOut"})
        m_viz->addListener(m_viz->getSlot(meter));
    collectFrom(*m_viz, CAudioEnv::kHighestFrameRate);
    run(in);
    run(in);
    EXPECT_GT(collectFrom(*m_viz, CAudioEnv::kHighestFrameRate).count("plugin.modMain.modMeterOut"), 2 * 1024 / 48);
    expectNoSystemCalls(in, 60);
}

}  // namespace
}  // namespace brt
