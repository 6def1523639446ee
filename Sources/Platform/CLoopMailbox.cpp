// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CLoopMailbox_p.h"

#include <algorithm>

#include "Platform/CLoopAddress.h"
#include "Platform/SystemError.h"

namespace brt {

int CLoopMailbox::open() { return m_waiter.open(); }

void CLoopMailbox::close() {
    const CLock lock(m_lock);
    m_targets.clear();
    m_queue = {};
    m_waiter.close();
}

int CLoopMailbox::post(LoopTargetId target, std::uint32_t message, std::int64_t number) {
    const CLock lock(m_lock);
    if (!m_targets.contains(target)) return 0;
    if (m_waiting.load(std::memory_order_relaxed) >= CLoopAddress::kMostWaitingMessages) return kErrorQueueFull;
    m_waiting.fetch_add(1, std::memory_order_relaxed);
    m_queue.push_back({target, ++m_lastSequence, number, message});
    rouse();
    return 0;
}

void CLoopMailbox::wake() {
    const CLock lock(m_lock);
    m_isWakeRequested = true;
    rouse();
}

void CLoopMailbox::quit() {
    const CLock lock(m_lock);
    m_isQuitRequested.store(true, std::memory_order_release);
    rouse();
}

void CLoopMailbox::takeQuit() {
    const CLock lock(m_lock);
    m_isQuitRequested.store(false, std::memory_order_relaxed);
}

// Only a sleeper costs a system call, and only the first who wakes it.
void CLoopMailbox::rouse() {
    if (!m_isAsleep) return;
    m_isAsleep = false;
    m_waiter.wake();
}

LoopTargetId CLoopMailbox::addTarget() {
    const CLock lock(m_lock);
    const LoopTargetId id{++m_lastTarget};
    m_targets.insert(id);
    return id;
}

void CLoopMailbox::removeTarget(LoopTargetId id) {
    const CLock lock(m_lock);
    m_targets.erase(id);
    release(std::erase_if(m_queue, [id](const LoopMessage& waiting) { return waiting.target == id; }));
}

int CLoopMailbox::wait(std::span<LoopWatch> watches, std::int64_t nanoseconds) {
    bool sleeps = false;
    if (nanoseconds != 0) {
        const CLock lock(m_lock);
        sleeps = !m_isWakeRequested && !isQuitRequested() && m_queue.empty();
        m_isAsleep = sleeps;
    }
    if (!sleeps) {
        const bool isAnythingToAsk =
            std::ranges::any_of(watches, [](const LoopWatch& watch) { return watch.descriptor != kNoDescriptor; });
        return isAnythingToAsk ? m_waiter.wait(watches, 0) : 0;
    }
    const int error = m_waiter.wait(watches, nanoseconds);
    const CLock lock(m_lock);
    const bool isWoken = !m_isAsleep;
    m_isAsleep = false;
    if (isWoken) m_waiter.takeWake();
    return error;
}

void CLoopMailbox::collect(LoopQueue& collected) {
    const CLock lock(m_lock);
    m_isWakeRequested = false;  // what it told of is seen by looking after this
    if (collected.empty()) {
        collected.swap(m_queue);
    } else {
        collected.insert(collected.end(), m_queue.begin(), m_queue.end());
        m_queue.clear();
    }
}

}  // namespace brt
