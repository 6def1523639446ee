// SPDX-License-Identifier: LicenseRef-Halyard
#include <algorithm>
#include <cmath>

#include "Tools/Halyard/CChart.h"
#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/MeasureReport.h"

namespace brt {

namespace {

const LineStyle kCurveStyle{.colour = palette::kAfter, .width = 1.6};
const LineStyle kMarkStyle{.colour = palette::kAccent, .width = 1.1, .dash = 5};

std::vector<Point> responseCurve(const CImpulseResponse& impulse, double from, double to) {
    constexpr int kPoints = 400;
    std::vector<Point> curve;
    for (int i = 0; i <= kPoints; ++i) {
        const double fraction = from + (to - from) * i / kPoints;
        curve.push_back({fraction, factorToDb(impulse.gainAt(fraction))});
    }
    return curve;
}

void drawEdge(CCanvas& canvas, const Rectangle& area, const CImpulseResponse& impulse) {
    CChart chart(canvas, area, "Edge of the pass band", linearAxis("fraction of the sample rate", 0.46, 0.5, 8),
                 linearAxis("gain in dB", -180, 10, 10));
    chart.curve(responseCurve(impulse, 0.46, 0.5), kCurveStyle);
    const double half = impulse.halfGainFraction();
    chart.vertical(half, kMarkStyle);
    chart.legend({{"linear path", kCurveStyle}, {"-6.02 dB at " + formatFixed(half, 4), kMarkStyle}},
                 CChart::Corner::kBottomLeft);
}

void drawPassBand(CCanvas& canvas, const Rectangle& area, const CImpulseResponse& impulse) {
    std::vector<Point> curve = responseCurve(impulse, 0, kPassBandEnd);
    double range = 1e-3;
    for (Point& point : curve) {
        point.y *= 1e6;
        range = std::max(range, 1.3 * std::fabs(point.y));
    }
    CChart chart(canvas, area, "Pass band", linearAxis("fraction of the sample rate", 0, kPassBandEnd, 8),
                 linearAxis("gain in millionths of a dB", -range, range, 6));
    chart.curve(curve, kCurveStyle);
}

void drawLines(CCanvas& canvas, const Rectangle& area, const AliasRow& row, int rateHz) {
    constexpr double kBottomDb = -180;
    const ToneMeasurement& tone = row.tone;
    const double binHz = tone.binHz(rateHz);
    const std::string khz = formatFixed(tone.frequencyHz / 1000, 2);
    CChart chart(canvas, area,
                 "Sine of " + khz + " kHz and amplitude " + formatFixed(row.amplitude, 1) + ", clipped hard, at " +
                     std::to_string(rateHz) + " Hz",
                 linearAxis("frequency in kHz", 0, 0.5e-3 * rateHz, 12),
                 linearAxis("level in dB, full scale = 0", kBottomDb, 20, 10));
    const LineStyle imageStyle{.colour = palette::kBefore, .width = 1.2};
    const LineStyle harmonicStyle{.colour = palette::kAfter, .width = 2.4};
    for (const bool wantsHarmonics : {false, true})
        for (std::size_t bin = 0; bin < tone.lineAmplitudes.size(); ++bin) {
            const double hertz = static_cast<double>(bin) * binHz;
            const bool isHarmonic = bin != 0 && std::fabs(std::remainder(hertz, tone.frequencyHz)) < binHz / 2;
            const double db = factorToDb(tone.lineAmplitudes[bin]);
            if (isHarmonic != wantsHarmonics || db < kBottomDb) continue;
            const double khzOfLine = hertz / 1000;
            chart.curve({{khzOfLine, kBottomDb}, {khzOfLine, db}}, isHarmonic ? harmonicStyle : imageStyle);
        }
    const double worstDb = factorToDb(tone.worstLine);
    chart.horizontal(worstDb, kMarkStyle);
    chart.legend({{"harmonics: what clipping adds", harmonicStyle},
                  {"images: what is folded back", imageStyle},
                  {"worst image: " + formatFixed(worstDb, 1) + " dB", kMarkStyle}},
                 CChart::Corner::kTopRight);
}

}  // namespace

void drawReport(const MeasureReport& report, CPendingFile& png) {
    constexpr int kWidth = 1180;
    constexpr int kHeight = 860;
    CCanvas canvas(kWidth, kHeight, palette::kPaper);
    canvas.text("What the chain does", {34, 44}, {.size = 21, .colour = palette::kInk, .isBold = true});
    canvas.text("measured on this machine,  build " + std::string(processorBuildName(report.build)) + ",  latency " +
                    std::to_string(report.latencySamples) + " samples",
                {34, 66}, {.size = 13, .colour = palette::kFaintInk});
    drawPassBand(canvas, {30, 90, 545, 350}, report.impulse);
    drawEdge(canvas, {605, 90, 545, 350}, report.impulse);
    const MeasureReport::Rate& rate = report.rates.front();
    const auto row = std::find_if(rate.aliases.begin(), rate.aliases.end(), [](const AliasRow& r) {
        return std::fabs(r.tone.frequencyHz - 5000) < 100 && r.hardnessPercent == 100;
    });
    if (row != rate.aliases.end()) drawLines(canvas, {30, 466, kWidth - 60, 380}, *row, rate.rateHz);
    canvas.save(png);
}

}  // namespace brt
