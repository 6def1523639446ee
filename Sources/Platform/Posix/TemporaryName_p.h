// SPDX-License-Identifier: LicenseRef-Halyard
// The names of files that are written beside another one, to be renamed to it: ".NAME." and 12 letters.
#pragma once

#include <string>
#include <string_view>

namespace brt {

// [any] Differs at every call, in this process and most likely in every other; the caller tries until one is free.
std::string temporaryName(std::string_view targetName);

// [any] Whether a file's name has that form.
bool isTemporaryName(std::string_view name) noexcept;

}  // namespace brt
