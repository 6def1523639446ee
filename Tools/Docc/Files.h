// SPDX-License-Identifier: LicenseRef-Halyard
// Whole files, by their paths as the system has them. Errors: std::runtime_error with a text for the user.
// Threads: any.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace brt {

// No document, compiled or not, and no list is larger.
inline constexpr std::size_t kMostFileBytes = 64 << 20;

// A file above kMostFileBytes is refused, before more of it is read.
std::string readFile(const std::string& path);

// Replaces the file as a whole, or leaves it as it was.
void writeFile(const std::string& path, std::string_view bytes);

// Throws if the output is one of the files that it is made from, which it would replace. An empty path is no file.
void refuseToReplace(const std::string& output, std::initializer_list<std::string> inputs);

}  // namespace brt
