// SPDX-License-Identifier: LicenseRef-Halyard
// How a path of the system, which is bytes, is written as text of the framework, and back.
//
// The bytes are read as UTF-8. Characters from U+10000 on travel as two surrogate units, and each byte that belongs to
// no well-formed UTF-8 sequence (80 to FF) as U+DC80 to U+DCFF. So every name that a file system holds, whatever its
// encoding, comes back byte for byte. The separator is "/"; "\" is a letter like any other.
// Threads: any.
#pragma once

#include <string>
#include <string_view>

namespace brt {

// [any]
[[nodiscard]] std::u16string pathFromSystem(std::string_view bytes);

// [any] Surrogates that are neither a pair nor an escaped byte become the three bytes of their number; no path that
// came from the system has any.
[[nodiscard]] std::string pathToSystem(std::u16string_view path);

}  // namespace brt
