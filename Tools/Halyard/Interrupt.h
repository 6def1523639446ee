// SPDX-License-Identifier: LicenseRef-Halyard
// Ctrl-C and its relatives. A signal only sets a flag; the work looks at it between blocks and leaves by an exception,
// so that every unfinished file is removed on the way out.
#pragma once

namespace brt {

// [init] Ctrl-C, a request to terminate and a closed terminal set the flag; writing to a closed pipe, or
// beyond the size that a file may have, becomes an ordinary error.
void installSignalHandlers() noexcept;

// [any] Throws CInterrupted once the flag is set.
void throwIfInterrupted();

// [any] The signal that set the flag, 0 for none.
int interruptSignal() noexcept;

}  // namespace brt
