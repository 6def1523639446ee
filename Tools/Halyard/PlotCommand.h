// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard plot`: the picture of a sound and settings, without rendering the whole of it.
#pragma once

#include <filesystem>

#include "Tools/Halyard/CProcessor.h"

namespace brt {

struct PlotRequest {
    std::filesystem::path input;
    std::filesystem::path output;
    ProcessorSettings settings;
    std::filesystem::path plugin;  // empty: the one that is linked in
    bool mayReplace = false;
};

// The exit status. Throws CToolError.
int runPlot(const PlotRequest& request);

}  // namespace brt
