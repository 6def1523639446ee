// SPDX-License-Identifier: LicenseRef-Halyard
// The life of what exists once a process, or once a load of the module: one written order in which it stops.
//
// Hosts load and unload the module many times, C++ gives no order to static objects of several files, and a host may
// call exit while its audio thread is still inside an instance. Therefore all process-wide state is constant
// initialised or made on demand, registers one function that stops it, and only the one CProcessLifetime object of the
// program or module has a destructor that does anything. Nothing here starts a thread.
//
// Threads: any, unless told.
#pragma once

namespace brt {

// What can be stopped, in the order of starting: each may use those above it. It is stopped from the last to the first.
enum class ProcessStage {
    transforms,  // of the signal path
    filterSpectra,
    resources,
    creators,
    stores,
    sharedTree,
    application,
    // From here on stages own threads. They are stopped when the last instance goes, not only at the end: a thread
    // that is joined while the module is being unloaded would wait for the lock that the unloading thread holds.
    workerPool,
    timerQueue,
    messageLoops,
    count
};
constexpr ProcessStage kFirstThreadStage = ProcessStage::workerPool;

using ProcessStop = void (*)();

// [any] Has `stop` called once, in the stage's turn; whoever starts again later registers again. Threads that are being
// stopped may register too. The stop function must not wait for a thread that starts or ends an instance.
// REQUIRES: one stop function a stage.
void registerProcessStop(ProcessStage stage, ProcessStop stop);

// [any] Asked by every entry point before anything else. False, with a line in the log, on a processor that lacks what
// all of this code needs: the entry point then refuses.
[[nodiscard]] bool canRunHere();

// [init] Records which process this is. Done by CProcessLifetime.
void startProcess();

// [init] Stops all stages, logs the benchmark records and the blocks of the allocator that are still held, and gives
// its memory back. If an instance still lives, or in a child that the process forked, it frees and waits for nothing.
// Done by CProcessLifetime.
void stopProcess();

// [any] True in a child that the process forked: its threads don't exist there, its locks may be held for ever.
bool isForkedChild();

// One plug-in instance, or one run of a tool: while any lives, process-wide state stays.
class CProcessInstance {
public:
    CProcessInstance();
    // The last one stops the stages that own threads. Never on one of those threads.
    ~CProcessInstance();
    CProcessInstance(const CProcessInstance&) = delete;
    CProcessInstance& operator=(const CProcessInstance&) = delete;

    // [any]
    static int liveCount() noexcept;
};

// The program or module holds one as its only static object with a destructor.
class CProcessLifetime {
public:
    CProcessLifetime() { startProcess(); }
    ~CProcessLifetime() { stopProcess(); }
    CProcessLifetime(const CProcessLifetime&) = delete;
    CProcessLifetime& operator=(const CProcessLifetime&) = delete;
};

}  // namespace brt
