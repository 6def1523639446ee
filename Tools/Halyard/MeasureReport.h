// SPDX-License-Identifier: LicenseRef-Halyard
// Measurements in the forms that people and programs read.
#pragma once

#include <string>
#include <vector>

#include "Modules/ProcessorBuild.h"
#include "Tools/Halyard/Measurements.h"

namespace brt {

class CPendingFile;

struct MeasureReport {
    struct Rate {
        int rateHz;
        std::vector<AliasRow> aliases;
    };

    ProcessorBuild build = processorBuild();
    int latencySamples = 0;
    CImpulseResponse impulse;
    NullMeasurements nulls{};
    std::vector<Rate> rates;
    std::vector<CostMeasurement> costs;
};

std::string reportTable(const MeasureReport& report);

// Levels in dB; null stands for exact silence, or for what was not measured.
std::string reportJson(const MeasureReport& report);

// Frequency response, pass band and a clipped sine's lines. The PNG is written, and left to the caller to commit.
void drawReport(const MeasureReport& report, CPendingFile& png);

}  // namespace brt
