// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/MeasureCommand.h"

#include <cstdio>

#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/MeasureReport.h"
#include "Tools/Halyard/SignalPicture.h"

namespace brt {

int runMeasure(const MeasureRequest& request) {
    std::optional<CPendingFile> png;
    if (request.picture) {
        checkPictureName(*request.picture);
        png.emplace(*request.picture, request.mayReplace);
    }
    MeasureReport report;
    report.latencySamples = CProcessor(1, {}).latencySamples();
    report.nulls = measureNulls();
    for (const int rateHz : request.ratesHz) report.rates.push_back({rateHz, measureAliases(rateHz)});
    for (const double hardness : {100.0, 50.0}) {
        throwIfInterrupted();
        report.costs.push_back(measureCost(hardness));
    }
    if (png) {
        drawReport(report, *png);
        png->commit();
    }
    std::fputs((request.asJson ? reportJson(report) : reportTable(report)).c_str(), stdout);
    return 0;
}

}  // namespace brt
