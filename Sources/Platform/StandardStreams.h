// SPDX-License-Identifier: LicenseRef-Halyard
// The process's standard streams. They belong to the host or the shell: nothing here opens or closes one.
// Threads: any.
#pragma once

#include <string_view>

namespace brt {

enum class StandardStream { input = 0, output = 1, error = 2 };

// [any] Writes the text to standard error as UTF-8, in one piece where the system does that. A failure is dropped:
// there is nobody left to tell. A reader that has gone away doesn't raise SIGPIPE; one that has stopped reading loses
// what it leaves no room for within a moment.
void writeStandardError(std::u16string_view text);

// [any] True if a person looks at it: the stream is open and a terminal.
bool isTerminal(StandardStream stream) noexcept;

}  // namespace brt
