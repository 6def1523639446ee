// SPDX-License-Identifier: LicenseRef-Halyard
// A unit of work for a thread of the pool: derive, give it its data, write `run`.
// Owner: the CPersistentThread that it was handed to. Threads: run by that thread; before its start and after its end
// the thread that handed it over.
#pragma once

#include <utility>

#include "Core/CBrtMemAllocator.h"
#include "Core/CCheckedObject.h"
#include "Core/CError.h"

namespace brt {

class CWorkerThread : public CCheckedObject, public CBrtMemAllocator {
public:
    CWorkerThread() = default;
    ~CWorkerThread() override { discardError(m_result); }  // nobody has asked for it

    virtual CError* run() = 0;

    // Runs it and keeps the result, in place of an earlier one.
    void runAndKeepResult() {
        discardError(m_result);  // of a run that nobody has asked for
        m_result = run();
    }

    // The result of the last run, which is the caller's from now on; null afterwards.
    [[nodiscard]] CError* takeResult() noexcept { return std::exchange(m_result, nullptr); }

private:
    CError* m_result = nullptr;
};

}  // namespace brt
