// SPDX-License-Identifier: LicenseRef-Halyard
// What a host sends with a block: events, each due at a frame of it.
// Owner: the wrapper. Threads: audio. Grows only where a block brings more events than any before; a host that sends
// events and plays no blocks gets no further than a limit, beyond which they are dropped.
#pragma once

#include <algorithm>
#include <cstdint>

#include "Core/CSmallArray.h"

namespace brt {

struct CHostEvent {
    enum class EKind : std::int32_t { kMidi = 0, kParam = 1 };

    std::int32_t frameOffset = 0;  // from the block's start; before the position: due at once
    EKind kind = EKind::kMidi;
    // Midi: status, channel, data 1, data 2. Parameter: its number for the host, then the bits of a float, 0 to 1.
    std::int32_t fields[4] = {};
};

class CHostEventQueue {
public:
    static constexpr int kMostEvents = 4096;

    void append(const CHostEvent& event) {
        if (m_events.count() < kMostEvents) m_events.append(event);
    }
    bool isEmpty() const noexcept { return m_events.isEmpty(); }

    // A block: sorts, events of one frame in the order in which they came. Hosts send them sorted.
    void begin() {
        m_next = 0;
        const auto isEarlier = [](const CHostEvent& a, const CHostEvent& b) { return a.frameOffset < b.frameOffset; };
        if (std::is_sorted(m_events.begin(), m_events.end(), isEarlier)) return;
        std::stable_sort(m_events.begin(), m_events.end(), isEarlier);
    }
    // The next event, if it is due at that frame; null otherwise.
    const CHostEvent* takeDue(int frame) noexcept {
        if (m_next >= m_events.count() || m_events[m_next].frameOffset > frame) return nullptr;
        return &m_events[m_next++];
    }
    // The frame of the next event, at most `limit`.
    int nextFrame(int limit) const noexcept {
        return m_next < m_events.count() ? std::min<int>(m_events[m_next].frameOffset, limit) : limit;
    }
    // What is left is dropped; the room stays.
    void end() noexcept { m_events.setCount(0); }

private:
    CSmallArray<CHostEvent> m_events;
    int m_next = 0;
};

}  // namespace brt
