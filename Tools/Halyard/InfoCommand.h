// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard info`: what the plug-in tells its hosts.
#pragma once

#include <filesystem>

namespace brt {

struct InfoRequest {
    std::filesystem::path plugin;  // empty: the one that is linked in
    bool asJson = false;
};

// The exit status. Throws CToolError.
int runInfo(const InfoRequest& request);

}  // namespace brt
