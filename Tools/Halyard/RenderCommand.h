// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard render`: one file into another, or many files into a folder, on several processors.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "Tools/Halyard/Render.h"

namespace brt {

struct RenderRequest {
    std::vector<std::filesystem::path> files;  // input and output, or inputs only with a folder
    std::optional<std::filesystem::path> outputFolder;
    std::optional<int> jobCount;  // files at a time; nothing: as many as there are processors
    RenderJob common;             // what all jobs share; its paths of input and output are unused
};

// The exit status: 0, or 1 if some of several files failed; their errors are on standard error.
// Throws CToolError if nothing was done, and when interrupted.
int runRender(const RenderRequest& request);

}  // namespace brt
