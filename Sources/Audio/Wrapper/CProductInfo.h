// SPDX-License-Identifier: LicenseRef-Halyard
// What the shared document says of the product. Owner: each instance has a copy. Threads: any; only read once it is
// complete.
#pragma once

#include <array>
#include <cstdint>

#include "Core/CString.h"

namespace brt {

class CError;
class CObject;

struct CProductInfo {
    // The attributes of "shared::project".
    [[nodiscard]] CError* read(const CObject& project);

    CString appName;
    CString vendorName;
    std::uint32_t pluginCode = 0;  // four characters, the first one uppermost
    std::array<int, 3> version{};  // major, minor, patch
    int internalChannelCount = 1;  // of the graph: 1 to 16
    int groupCount = 1;            // 1 to 8
    bool hasTail = false;
    double tailSeconds = 0.0;
    int autoOversamplingMode = 0;  // in real time; counts from 1
    bool isVizAlwaysActive = false;
    bool isSymmetricIo = false;
    bool usesHostBpm = false;
    bool usesHostRecording = false;
    bool usesRouting = false;
    bool usesWindowResizing = false;
    int minWindowWidth = 0;  // at a scale of 1; 0: any
    int minWindowHeight = 0;

private:
    [[nodiscard]] CError* readNames(const CObject& project);
    [[nodiscard]] CError* readCounts(const CObject& project);
    [[nodiscard]] CError* acquirePluginCode(CStringView text);
    [[nodiscard]] CError* parseVersion(CStringView text);
};

}  // namespace brt
