// SPDX-License-Identifier: LicenseRef-Halyard
// How a failure of the tool travels: as an exception whose text is the one line that the user reads, without the
// leading "halyard: ". The text says what was tried, on what, and what to do. Only main() turns it into an exit status.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace brt {

class CToolError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The command line itself is wrong: nothing was tried.
class CUsageError : public CToolError {
public:
    using CToolError::CToolError;
};

// The user or the system asked the program to end.
class CInterrupted : public CToolError {
public:
    CInterrupted() : CToolError("interrupted; no unfinished file is left behind") {}
};

// [any] The text for one line of a terminal: control characters are shown as "?".
std::string printable(std::string text);

// [any] The path in single quotes, printable.
std::string quoted(const std::filesystem::path& path);

}  // namespace brt
