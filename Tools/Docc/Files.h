// SPDX-License-Identifier: LicenseRef-Halyard
// Whole files. Errors: std::runtime_error with a text for the user.
// Threads: any.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brt {

std::string readFile(const std::string& path);

// Replaces the file as a whole, or leaves it as it was.
void writeFile(const std::string& path, std::string_view bytes);

}  // namespace brt
