// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/StandardStreams.h"

#include <limits.h>
#include <poll.h>
#include <unistd.h>

#include <string>

#include "Platform/Posix/SystemCalls_p.h"

namespace brt {

void writeStandardError(std::u16string_view text) {
    constexpr int kPatienceMs = 100;
    const std::string bytes = pathToSystem(text);
    std::string_view rest = bytes;
    const CBlockedPipeSignal noSignal;
    while (!rest.empty()) {
        // Asked first, and then no more than a pipe that is ready takes at once: a write could wait for ever.
        pollfd stream{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
        if (retried([&] { return poll(&stream, 1, kPatienceMs); }) <= 0) return;
        const std::string_view piece = rest.substr(0, PIPE_BUF);
        const ssize_t written = retried([&] { return ::write(STDERR_FILENO, piece.data(), piece.size()); });
        if (written <= 0) return;
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool isTerminal(StandardStream stream) noexcept { return isatty(static_cast<int>(stream)) == 1; }

}  // namespace brt
