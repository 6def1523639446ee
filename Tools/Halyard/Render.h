// SPDX-License-Identifier: LicenseRef-Halyard
// One sound file through the clipper into another, a piece at a time, in the same small memory whatever its length.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "Tools/Halyard/CProcessor.h"
#include "Tools/Halyard/Peak.h"
#include "Tools/Halyard/SoundFormat.h"

namespace brt {

class CProgressBar;

struct RenderJob {
    std::filesystem::path input;
    std::filesystem::path output;
    std::optional<std::filesystem::path> residueOutput;
    std::optional<std::filesystem::path> picture;
    std::optional<SampleFormat> sampleFormat;  // nothing: that of the input
    ProcessorSettings settings;
    bool keepLatency = false;  // the output starts late and is longer by the latency; else it lines up with the input
    bool mayReplace = false;
};

struct RenderSummary {
    SoundFormat inputFormat;
    SoundFormat outputFormat;
    std::int64_t inputFrames = 0;
    std::int64_t outputFrames = 0;
    Peak inputPeak;  // in front of the input gain
    Peak outputPeak;
    std::int64_t clippedSamples = 0;  // input samples above full scale behind the input gain
    double largestReductionDb = 0;    // what the curve takes off the loudest input sample
    std::int64_t overSamples = 0;     // output samples above full scale
    std::int64_t residueOverSamples = 0;
    std::optional<SampleFormat> residueFormat;
    std::int64_t invalidSamples = 0;  // of the input; taken as silence
    double seconds = 0;               // that the work took
};

// [any] Throws CToolError; no output exists then that did not exist before. REQUIRES: no output is the input.
RenderSummary render(const RenderJob& job, CProgressBar& progress);

}  // namespace brt
