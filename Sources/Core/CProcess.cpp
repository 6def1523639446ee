// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CProcess.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <utility>

#include "Core/CBenchmarkRecord.h"
#include "Core/CBrtMemAllocator.h"
#include "Core/Log.h"
#include "Platform/CCriticalSection.h"
#include "Platform/CLockFreeList.h"
#include "Platform/ProcessId.h"

namespace brt {

namespace {

constexpr int kStageCount = static_cast<int>(ProcessStage::count);

constinit std::atomic<std::int64_t> s_processId{0};
constinit std::atomic<int> s_instances{0};

// Held while stages stop, so that an instance that starts meanwhile waits until they have.
constinit CCriticalSection s_lifeLock;

// Never held while a stop function runs: a thread that it joins may be registering another stage.
constinit CCriticalSection s_stopsLock BRT_ACQUIRED_AFTER(s_lifeLock);
constinit std::array<ProcessStop, kStageCount> s_stops BRT_GUARDED_BY(s_stopsLock){};

// The last that is registered, which is not any more; null if there is none from the last stage down to `first`.
ProcessStop takeLastStop(ProcessStage first) {
    const CLock lock(s_stopsLock);
    for (int stage = kStageCount - 1; stage >= static_cast<int>(first); --stage) {
        ProcessStop& registered = s_stops[static_cast<std::size_t>(stage)];
        if (registered != nullptr) return std::exchange(registered, nullptr);
    }
    return nullptr;
}

// Stops what is registered from the last stage down to `first`; also what a stop function itself starts again.
void stopDownTo(ProcessStage first) BRT_REQUIRES(s_lifeLock) {
    while (const ProcessStop stop = takeLastStop(first)) stop();
}

void logLiveBlocks() {
    for (int number = 0; number <= CBrtMemAllocator::kBigBlock; ++number) {
        const std::int64_t live = CBrtMemAllocator::liveBlocks(number);
        if (live == 0) continue;
        if (number == CBrtMemAllocator::kBigBlock)
            logLine("%i big blocks were never freed.", live);
        else
            logLine("%i blocks of %i bytes were never freed.", live, (number + 1) * 16);
    }
}

}  // namespace

void registerProcessStop(ProcessStage stage, ProcessStop stop) {
    const CLock lock(s_stopsLock);
    ProcessStop& registered = s_stops[static_cast<std::size_t>(stage)];
    BRT_ASSERT(registered == nullptr || registered == stop);
    registered = stop;
}

bool canRunHere() {
    if (CLockFreeList::isSupported()) return true;
    logLine("This processor can't swap 16 bytes at once (cmpxchg16b).");
    return false;
}

void startProcess() { s_processId.store(processId(), std::memory_order_relaxed); }

bool isForkedChild() {
    const std::int64_t started = s_processId.load(std::memory_order_relaxed);
    return started != 0 && started != processId();
}

void stopProcess() {
    if (isForkedChild() || CProcessInstance::liveCount() > 0) return;
    {
        const CLock lock(s_lifeLock);
        stopDownTo(ProcessStage{0});
    }
    logBenchmarkRecords();
    logLiveBlocks();
    CBrtMemAllocator::teardown();
    setLogFile({});
}

CProcessInstance::CProcessInstance() {
    const CLock lock(s_lifeLock);
    s_instances.fetch_add(1, std::memory_order_relaxed);
}

CProcessInstance::~CProcessInstance() {
    if (isForkedChild()) return;
    const CLock lock(s_lifeLock);
    if (s_instances.fetch_sub(1, std::memory_order_relaxed) == 1) stopDownTo(kFirstThreadStage);
}

int CProcessInstance::liveCount() noexcept { return s_instances.load(std::memory_order_relaxed); }

}  // namespace brt
