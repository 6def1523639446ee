// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/CLoopWaiter_p.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

namespace brt {

struct CLoopWaiter::Buffers {
    std::vector<pollfd> polls;  // kept, so that a round allocates nothing
};

CLoopWaiter::CLoopWaiter() : m_buffers(std::make_unique<Buffers>()) {}

CLoopWaiter::~CLoopWaiter() { close(); }

int CLoopWaiter::open() {
    m_event = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    return m_event >= 0 ? 0 : errno;
}

void CLoopWaiter::close() {
    if (m_event >= 0) ::close(m_event);
    m_event = -1;
}

int CLoopWaiter::wait(std::span<LoopWatch> watches, std::int64_t nanoseconds) {
    constexpr std::int64_t kPerSecond = 1'000'000'000;
    std::vector<pollfd>& polls = m_buffers->polls;
    polls.clear();
    polls.push_back({m_event, POLLIN, 0});
    for (const LoopWatch& watch : watches) polls.push_back({static_cast<int>(watch.descriptor), POLLIN, 0});

    const timespec limit{static_cast<time_t>(nanoseconds / kPerSecond), static_cast<long>(nanoseconds % kPerSecond)};
    if (::ppoll(polls.data(), polls.size(), nanoseconds < 0 ? nullptr : &limit, nullptr) < 0)
        return errno == EINTR ? 0 : errno;

    // A connection that has failed is ready too: its source finds out by reading.
    for (std::size_t i = 0; i < watches.size(); ++i) watches[i].isReady |= polls[i + 1].revents != 0;
    return 0;
}

void CLoopWaiter::wake() {
    const std::uint64_t one = 1;
    while (::write(m_event, &one, sizeof one) < 0 && errno == EINTR) {
    }
}

void CLoopWaiter::takeWake() {
    std::uint64_t count = 0;
    while (::read(m_event, &count, sizeof count) < 0 && errno == EINTR) {
    }
}

}  // namespace brt
