// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard measure`: what the chain does on this machine, as a table, as JSON, and as a picture.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace brt {

struct MeasureRequest {
    static constexpr int kMinRateHz = 8000;
    static constexpr int kMaxRateHz = 768000;

    std::vector<int> ratesHz = {48000};
    bool asJson = false;
    std::optional<std::filesystem::path> picture;
    bool mayReplace = false;  // an existing picture
};

// The exit status. Throws CToolError.
int runMeasure(const MeasureRequest& request);

}  // namespace brt
