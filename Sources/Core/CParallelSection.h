// SPDX-License-Identifier: LicenseRef-Halyard
// A stretch of work that the calling thread shares with threads of the pool:
//
//     CParallelSection section;
//     for (int i = 0; i < helpers; ++i) section.addTask(new CDrawTask(queue));
//     section.start();
//     CError* own = drawUntilEmpty(queue);
//     return section.finish(own);
//
// All tasks have their data before any starts. Tasks and caller work on the same queue until it is empty, so a section
// also gets done when the system gives no helper at all.
// Owner and thread: the caller; lives on its stack.
#pragma once

#include "Core/CPersistentThread.h"
#include "Core/CSmallArray.h"

namespace brt {

class CParallelSection {
public:
    CParallelSection() = default;
    ~CParallelSection();  // finishes, and logs the error that nobody asked for
    CParallelSection(const CParallelSection&) = delete;
    CParallelSection& operator=(const CParallelSection&) = delete;

    // Takes the task. It is dropped if there is no thread for it: that is logged and no error.
    // REQUIRES: not started.
    void addTask(CWorkerThread* task);

    // Threads that will help.
    int helperCount() const noexcept { return m_helpers.count(); }

    // REQUIRES: not started.
    void start();

    // Waits until no helper works any more, gives them back, and returns the first error: `ownError`, the caller's own,
    // which it takes, or else that of the task added first. The others are logged. No task runs or exists afterwards,
    // whatever failed; the section may be used again.
    [[nodiscard]] CError* finish(CError* ownError = nullptr);

private:
    void waitForHelpers();

    CSmallArray<CPersistentThread*> m_helpers;
    bool m_isStarted = false;
};

}  // namespace brt
