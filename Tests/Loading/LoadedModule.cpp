// SPDX-License-Identifier: LicenseRef-Halyard
// A shared library of the floors' code that does, when asked, what a plug-in does between its load and its unload.
#include <atomic>
#include <cstring>
#include <memory>

#include "Core/CParallelSection.h"
#include "Core/CProcess.h"
#include "Core/Log.h"
#include "LoadedTree.h"
#include "Platform/CAutoResetEvent.h"
#include "Platform/CLockFreeList.h"
#include "Platform/CTimerQueue.h"
#include "Platform/PathText.h"
#include "Platform/Processor.h"
#include "Platform/SystemFolders.h"

namespace {

brt::CProcessLifetime g_lifetime;
constinit brt::CLockFreeList g_list;
constinit std::atomic<int> g_calls{0};

void signalEvent(void* event) {
    ++g_calls;
    static_cast<brt::CAutoResetEvent*>(event)->signal();
}

class CallTask : public brt::CWorkerThread {
public:
    brt::CError* run() override { return ++g_calls, nullptr; }
};

bool runSection() {
    brt::CParallelSection section;
    for (int i = 0; i < 2; ++i) section.addTask(new CallTask);
    section.start();
    return !brt::discardError(section.finish());  // there is none to be told
}

}  // namespace

// Returns how many calls came since the load, which is 7 in a module that is fresh, or a negative number for a failure.
// Writes the module's path as the system has it. Leaves threads behind for the unload, whose last lines go to the log.
extern "C" __attribute__((visibility("default"))) int exerciseModule(char* path, std::size_t room,
                                                                     const char* logFile) {
    const std::string modulePath = brt::pathToSystem(brt::modulePath());
    if (modulePath.size() >= room) return -1;
    std::strcpy(path, modulePath.c_str());

    brt::CAutoResetEvent called;
    brt::CNativeThread thread;
    if (thread.start(&signalEvent, &called) != 0) return -2;
    called.wait();
    thread.join();

    brt::CTimerQueue timers;
    if (timers.start() != 0) return -3;
    for (int i = 0; i < 2; ++i) {
        timers.add(&signalEvent, &called, 0, 0);
        called.wait();
    }
    alignas(16) static constinit char block[64] = {};
    g_list.push(block);
    if (g_list.pop() != block || g_list.pop() != nullptr) return -4;
    {
        const brt::CProcessInstance instance;
        if (!runSection()) return -6;
    }
    brt::setLogFile(brt::CString::fromUtf8(logFile));
    if (!exerciseTree()) return -7;
    if (!runSection()) return -8;
    // The library's own templates bring static data along, which pins a module that is compiled carelessly.
    const auto shared = std::make_shared<int>(brt::processorCount());
    return *shared > 0 ? g_calls.load() : -5;
}
