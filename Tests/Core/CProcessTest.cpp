// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CProcess.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>

#include "Core/CBenchmarkRecord.h"
#include "Core/CBrtMemAllocator.h"
#include "Core/Log.h"
#include "Platform/CAutoResetEvent.h"

namespace brt {
namespace {

std::string s_stopped;

template <char Name>
void stop() {
    s_stopped += Name;
}

// The stores start the worker pool again when they are stopped, as code that releases objects may.
void stopStores() {
    s_stopped += 's';
    registerProcessStop(ProcessStage::workerPool, stop<'w'>);
}

struct Sink : CLogSink {
    void write(std::string_view text, bool) override { lines.append(text).append("|"); }
    std::string lines;
};

class CProcessTest : public testing::Test {
protected:
    void SetUp() override {
        stopProcess();  // what other tests have started
        s_stopped.clear();
        startProcess();
    }

    static void registerAll() {
        registerProcessStop(ProcessStage::stores, stopStores);
        registerProcessStop(ProcessStage::messageLoops, stop<'l'>);
        registerProcessStop(ProcessStage::transforms, stop<'f'>);
        registerProcessStop(ProcessStage::workerPool, stop<'w'>);
        registerProcessStop(ProcessStage::workerPool, stop<'w'>);  // the same one once more
        registerProcessStop(ProcessStage::timerQueue, stop<'t'>);
        registerProcessStop(ProcessStage::application, stop<'a'>);
    }
};

TEST_F(CProcessTest, stopsFromTheLastStageToTheFirstOnce) {
    registerAll();
    stopProcess();
    EXPECT_EQ(s_stopped, "ltwaswf");
    stopProcess();
    EXPECT_EQ(s_stopped, "ltwaswf");
}

TEST_F(CProcessTest, theLastInstanceStopsTheThreads) {
    registerAll();
    {
        const CProcessInstance first;
        { const CProcessInstance second; }
        EXPECT_EQ(s_stopped, "");
        EXPECT_EQ(CProcessInstance::liveCount(), 1);
    }
    EXPECT_EQ(s_stopped, "ltw");
    stopProcess();
    EXPECT_EQ(s_stopped, "ltwaswf");
}

// A loop's thread draws its last frame while it is being stopped, and needs workers for it.
CAutoResetEvent s_hasRegistered;
bool s_registersInTime = false;
std::thread s_loop;

void stopLoop() {
    s_loop = std::thread([] {
        registerProcessStop(ProcessStage::workerPool, stop<'w'>);
        s_hasRegistered.signal();
    });
    s_registersInTime = s_hasRegistered.waitFor(30.0);
}

TEST_F(CProcessTest, aThreadThatIsBeingStoppedMayRegister) {
    registerProcessStop(ProcessStage::messageLoops, stopLoop);
    stopProcess();
    s_loop.join();
    EXPECT_TRUE(s_registersInTime);
    EXPECT_EQ(s_stopped, "w");
}

TEST_F(CProcessTest, logsTheBenchmarkRecordsThatWereUsed) {
    Sink sink;
    CLogSink* before = setLogSink(&sink);
    CBenchmarkRecord::at(0).add(1);
    stopProcess();
    setLogSink(before);
    CBenchmarkRecord::at(0) = {};
    EXPECT_TRUE(sink.lines.starts_with("BENCH 0: ")) << sink.lines;
}

// A host that exits while its audio thread is still inside an instance.
TEST_F(CProcessTest, stopsNothingWhileAnInstanceLives) {
    registerAll();
    {
        const CProcessInstance instance;
        void* block = CBrtMemAllocator::alloc(64);
        stopProcess();
        EXPECT_EQ(s_stopped, "");
        EXPECT_EQ(static_cast<unsigned char*>(block)[-1], 3);  // still there
        CBrtMemAllocator::free(block);
    }
    stopProcess();
}

TEST_F(CProcessTest, stopsNothingInAForkedChild) {
    registerAll();
    auto* instance = new CProcessInstance;
    // The child of a death test is forked: it leaves with 0 if nothing was stopped there.
    EXPECT_EXIT(
        {
            delete instance;
            stopProcess();
            std::_Exit(isForkedChild() && s_stopped.empty() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_FALSE(isForkedChild());
    delete instance;
    EXPECT_EQ(s_stopped, "ltw");
    stopProcess();
}

TEST_F(CProcessTest, tellsOfBlocksThatWereNeverFreed) {
    Sink sink;
    void* small = CBrtMemAllocator::alloc(100);
    void* big = CBrtMemAllocator::alloc(10'000);
    CLogSink* before = setLogSink(&sink);
    // In a child, where the blocks of this process stay.
    EXPECT_EXIT(
        {
            startProcess();
            stopProcess();
            std::_Exit(sink.lines == "1 blocks of 112 bytes were never freed.|1 big blocks were never freed.|" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    setLogSink(before);
    CBrtMemAllocator::free(small);
    CBrtMemAllocator::free(big);
}

}  // namespace
}  // namespace brt
