// SPDX-License-Identifier: LicenseRef-Halyard
#include "Platform/StandardStreams.h"

#include <poll.h>
#include <unistd.h>

#include <string>

#include "Platform/Posix/SystemCalls_p.h"

namespace brt {

void writeStandardError(std::u16string_view text) {
    constexpr int kPatienceMs = 100;  // with a reader that is slow, where the host made the stream non-blocking
    const std::string bytes = pathToSystem(text);
    std::string_view rest = bytes;
    const CBlockedPipeSignal noSignal;
    while (!rest.empty()) {
        const ssize_t written = retried([&] { return ::write(STDERR_FILENO, rest.data(), rest.size()); });
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
            continue;
        }
        pollfd stream{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
        if (written == 0 || errno != EAGAIN || retried([&] { return poll(&stream, 1, kPatienceMs); }) <= 0) return;
    }
}

bool isTerminal(StandardStream stream) noexcept { return isatty(static_cast<int>(stream)) == 1; }

}  // namespace brt
