// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CRankedLock.h"

#include <utility>

#include "Core/COwnedArray.h"

namespace brt {
namespace {

// Owned calls in order; each links to the next.
struct CWaitingCall : CBrtMemAllocator {
    std::unique_ptr<CDeferredCall> call;
    CWaitingCall* next = nullptr;
};

struct CThreadCalls {
    const CDeferralScope* innermost;
    CWaitingCall* first;
    CWaitingCall* last;
    bool isRunning;
};

// No steady block of an audio thread comes here, so its first use may allocate: room for thread-local data that must
// not is scarce where a host loads many modules.
constinit thread_local CThreadCalls t_calls{};

void runWaitingCalls() {
    if (t_calls.isRunning) return;
    t_calls.isRunning = true;
    while (CWaitingCall* const waiting = t_calls.first) {
        t_calls.first = waiting->next;
        if (t_calls.first == nullptr) t_calls.last = nullptr;
        waiting->call->run();
        delete waiting;
    }
    t_calls.isRunning = false;
}

}  // namespace

void deferCall(std::unique_ptr<CDeferredCall> call) {
    if (t_calls.last != nullptr && t_calls.last->call->absorb(*call)) return;
    auto* const waiting = new CWaitingCall;
    waiting->call = std::move(call);
    (t_calls.last != nullptr ? t_calls.last->next : t_calls.first) = waiting;
    t_calls.last = waiting;
    if (!CDeferralScope::isActive()) runWaitingCalls();
}

bool CRankedSection::isBefore(const CRankedSection& other) const noexcept {
    if (m_rank != other.m_rank) return m_rank < other.m_rank;
    return m_name.compare(other.m_name) < 0;
}

bool CRankedSection::isHeld() const noexcept {
    for (const CDeferralScope* scope = t_calls.innermost; scope != nullptr; scope = scope->m_outer)
        if (scope->m_section == this) return true;
    return false;
}

CDeferralScope::CDeferralScope(const CRankedSection* section) noexcept
    : m_outer(t_calls.innermost), m_section(section) {
#if !defined(NDEBUG)
    if (section != nullptr && !section->isHeld())
        for (const CDeferralScope* scope = m_outer; scope != nullptr; scope = scope->m_outer)
            BRT_ASSERT(scope->m_section == nullptr || scope->m_section->isBefore(*section));
#endif
    t_calls.innermost = this;
}

CDeferralScope::~CDeferralScope() {
    BRT_ASSERT(t_calls.innermost == this);
    t_calls.innermost = m_outer;
    if (m_outer == nullptr && t_calls.first != nullptr) runWaitingCalls();
}

bool CDeferralScope::isActive() noexcept { return t_calls.innermost != nullptr; }

}  // namespace brt
