// SPDX-License-Identifier: LicenseRef-Halyard
// `halyard render`: one file into another, or many files into a folder, on several processors.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Tools/Halyard/Render.h"

namespace brt {

struct RenderRequest {
    // What was asked for; nothing: what the preset says, or else the definitions of the parameters.
    struct Given {
        std::optional<double> inputGainDb;
        std::optional<double> hardnessPercent;
        std::optional<double> outputGainDb;
        bool residue = false;
    };

    std::vector<std::filesystem::path> files;  // input and output, or inputs only with a folder
    std::optional<std::filesystem::path> outputFolder;
    std::optional<int> jobCount;  // files at a time; nothing: as many as there are processors
    std::string preset;           // a preset of the factory bank, or a file with one; empty: none
    Given given;
    std::filesystem::path plugin;  // empty: the one that is linked in
    RenderJob
        common;  // what all jobs share; unused are its paths of input and output, and its settings but for the block
};

// The exit status: 0, or 1 if some of several files failed; their errors are on standard error.
// Throws CToolError if nothing was done, and when interrupted.
int runRender(const RenderRequest& request);

}  // namespace brt
