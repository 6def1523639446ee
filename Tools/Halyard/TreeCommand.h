// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard tree`: the shared tree as the product builds it, for those who write documents.
#pragma once

#include <string>

namespace brt {

struct TreeRequest {
    std::string path;  // with "shared::" in front or not; empty: the root
};

// The exit status. Throws CToolError.
int runTree(const TreeRequest& request);

}  // namespace brt
