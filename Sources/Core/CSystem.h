// SPDX-License-Identifier: LicenseRef-Halyard
// What the framework asks of the system about its own place in it. Paths use "/" and keep every name of the file system
// unchanged; a folder ends with "/".
// Threads: any.
#pragma once

#include <cstdint>

#include "Core/CString.h"

namespace brt {

class CError;
class CLoopAddress;

class CSystem {
public:
    CSystem() = delete;

    // [any] The full path of the program's own file, links followed; empty if the system doesn't tell.
    static CString modulePath();

    // [any] The folder it lies in.
    static CString moduleDirectory();

    // [any] The folder for the user's settings, made if it is missing; empty if there is none or it can't be made.
    static CString applicationDataFolder();

    // [any] Makes every missing folder of the path; true if the whole path exists at the end.
    static bool makeDirectory(const CString& path);

    // [any] The empty path counts as one.
    static bool isDirectory(const CString& path);

    // [any] Posts to a target of a message loop, which may have gone: then the message is dropped. Fails if too many
    // messages wait there.
    [[nodiscard]] static CError* sendEvent(const CLoopAddress& target, std::uint32_t message, std::int64_t number);
};

}  // namespace brt
