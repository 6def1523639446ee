// SPDX-License-Identifier: LicenseRef-Halyard
// Locks of which a thread holds several at once, in one order for the whole program, and calls that wait until it holds
// none of them.
//
// A CRankedSection is a recursive lock with a place in the order of ELockRank. Builds with assertions end the program
// where a thread takes a section that belongs before one that it holds already: two threads that took them in opposite
// orders could wait for each other. Entering again what the thread holds is always allowed.
//
// What runs outside code (a host, a file, another instance) must not run under a lock of ours. So such calls are
// deferred: they wait in a list of the thread and run, in order, when its last ranked lock goes.
//
// Threads: any. Locks are left in the reverse order of entering.
#pragma once

#include <cstdint>
#include <memory>

#include "Core/CCheckedObject.h"
#include "Core/CString.h"
#include "Platform/CCriticalSection.h"

namespace brt {

// In the order in which they may be taken.
enum class ELockRank : std::uint8_t {
    kConnector,       // between a window and its instance: one message at a time
    kMessage,         // handling of messages at either end
    kProgram,         // presets and programs
    kUndo,            // histories
    kRegistryParams,  // which parameters a registry covers
    kPendingParams,   // those that wait to be covered
    kParam,           // one parameter's values; several in the order of their names
    kDependentParam,  // parameters that others write into: destinations of filters, names of presets
    kNews,            // what a window is told of presets, in the order in which it happened
    kLeaf,            // lists and maps; under it no other lock is taken
};

class BRT_CAPABILITY("lock") CRankedSection {
public:
    // `name` orders the sections of one rank; the text outlives the section. Of those without a name a thread holds one
    // at a time.
    explicit CRankedSection(ELockRank rank, CStringView name = {}) noexcept : m_rank(rank), m_name(name) {}

    ELockRank rank() const noexcept { return m_rank; }
    // [init] REQUIRES: nobody holds it.
    void setRank(ELockRank rank) noexcept { m_rank = rank; }
    // Whether a thread that holds this section may wait for `other`.
    bool isBefore(const CRankedSection& other) const noexcept;
    // Whether the calling thread holds it.
    bool isHeld() const noexcept;

private:
    friend class CRankedLock;

    CCriticalSection m_section;
    ELockRank m_rank;
    const CStringView m_name;
};

// A call that waits. Made by the block allocator, deleted once it has run.
class CDeferredCall : public CCheckedObject, public CBrtMemAllocator {
public:
    virtual void run() = 0;
    // Asked of the last call in the list when `later` comes: true if this one has taken it in, so that `later` goes.
    virtual bool absorb(const CDeferredCall& later) { return static_cast<void>(later), false; }
};

// [any] Runs the call as soon as this thread holds no ranked lock, which may be now. A call that is made while deferred
// calls run waits behind them.
void deferCall(std::unique_ptr<CDeferredCall> call);

// Holds the deferred calls of this thread back for the life of a scope, as a ranked lock does.
class CDeferralScope {
public:
    CDeferralScope() noexcept : CDeferralScope(nullptr) {}
    ~CDeferralScope();
    CDeferralScope(const CDeferralScope&) = delete;
    CDeferralScope& operator=(const CDeferralScope&) = delete;

    // [any] Whether the calling thread is inside any.
    static bool isActive() noexcept;

private:
    friend class CRankedLock;
    friend class CRankedSection;
    explicit CDeferralScope(const CRankedSection* section) noexcept;

    const CDeferralScope* const m_outer;
    const CRankedSection* const m_section;  // null: none
};

// Holds a section for the life of a scope.
class BRT_SCOPED_CAPABILITY CRankedLock : public CBrtMemAllocator {
public:
    explicit CRankedLock(CRankedSection& section) noexcept BRT_ACQUIRE(section)
        : m_scope(&section), m_section(section.m_section) {
        m_section.enter();
    }
    ~CRankedLock() BRT_RELEASE() { m_section.leave(); }
    CRankedLock(const CRankedLock&) = delete;
    CRankedLock& operator=(const CRankedLock&) = delete;

private:
    const CDeferralScope m_scope;  // ends after the section has been left
    CCriticalSection& m_section;
};

}  // namespace brt
