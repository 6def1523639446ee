// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/SignalPicture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "Platform/PathText.h"
#include "Tools/Halyard/CChart.h"
#include "Tools/Halyard/CPendingFile.h"
#include "Tools/Halyard/CProgressBar.h"
#include "Tools/Halyard/CSoundReader.h"
#include "Tools/Halyard/CSpectrumAnalyser.h"
#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/SummaryText.h"
#include "Tools/Halyard/ToneMeasurement.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

constexpr int kStretchFrames = 1 << 16;  // around the peak: what the spectrum is of
constexpr int kSettlingFrames = 4096;    // on both sides of it, for the chain's memory
constexpr int kSpectrumOrder = 14;
constexpr double kWaveSeconds = 0.003;  // to each side of the peak
constexpr int kPointsPerFrame = 8;
constexpr int kSincFrames = 24;  // to each side of a point
constexpr Colour kRemoved{0.93, 0.72, 0.66, 0.55};
constexpr Colour kSpectrumBefore{0.85, 0.875, 0.90};

// One channel around the peak, aligned: `before` is what would come out without the clipper.
struct Neighbourhood {
    int rateHz = 0;
    std::vector<double> before;
    std::vector<double> after;
    std::size_t peakIndex = 0;
};

Neighbourhood replay(const std::filesystem::path& input, const ProcessorSettings& settings, const Peak& peak) {
    CSoundReader reader(input);
    const std::int64_t first = std::max<std::int64_t>(0, peak.frame - kStretchFrames / 2 - kSettlingFrames);
    const std::int64_t count =
        std::min<std::int64_t>(reader.frameCount() - first, kStretchFrames + 2 * kSettlingFrames);
    CPlanarBuffer piece(reader.channelCount(), std::max(1, static_cast<int>(count)));
    reader.seek(first);
    const int got = reader.read(piece);

    Neighbourhood result;
    result.rateHz = reader.rateHz();
    result.peakIndex = static_cast<std::size_t>(peak.frame - first);
    const std::vector<double> sound(piece.channel(peak.channel), piece.channel(peak.channel) + got);
    const std::vector<double> output = processAligned(settings, sound);
    // Where the sound goes on beyond the stretch, the chain needs some of it to come to its state there.
    const std::size_t unsettledFront = first > 0 ? kSettlingFrames : 0;
    const std::size_t unsettledBack = first + got < reader.frameCount() ? kSettlingFrames : 0;
    const std::size_t end = sound.size() - unsettledBack;
    const double factor = dbToFactor(settings.inputGainDb + settings.outputGainDb);
    for (std::size_t i = unsettledFront; i < end; ++i) {
        result.before.push_back(sound[i] * factor);
        result.after.push_back(output[i]);
    }
    result.peakIndex -= unsettledFront;
    return result;
}

// The wave between the samples, by a sinc with a raised-cosine window: what a converter makes of them.
std::vector<Point> continuousWave(const std::vector<double>& samples, std::size_t centre, int halfFrames, int rateHz) {
    const auto sampleAt = [&](std::int64_t index) {
        return index < 0 || index >= static_cast<std::int64_t>(samples.size())
                   ? 0.0
                   : samples[static_cast<std::size_t>(index)];
    };
    std::vector<Point> wave;
    for (int step = -halfFrames * kPointsPerFrame; step <= halfFrames * kPointsPerFrame; ++step) {
        const double position = static_cast<double>(step) / kPointsPerFrame;
        const auto nearest = static_cast<std::int64_t>(std::lround(position));
        double sum = 0;
        for (std::int64_t k = nearest - kSincFrames; k <= nearest + kSincFrames; ++k) {
            const double distance = std::numbers::pi * (position - static_cast<double>(k));
            const double sinc = distance == 0 ? 1 : std::sin(distance) / distance;
            sum += sampleAt(static_cast<std::int64_t>(centre) + k) * sinc *
                   (0.5 + 0.5 * std::cos(distance / (kSincFrames + 1)));
        }
        wave.push_back({1000 * position / rateHz, sum});
    }
    return wave;
}

void drawWave(CCanvas& canvas, const Rectangle& area, const ProcessorSettings& settings, const Peak& peak,
              const Neighbourhood& sound) {
    // A rate that only a damaged header tells must not make the drawing endless.
    const int halfFrames = std::min(static_cast<int>(kWaveSeconds * sound.rateHz), kStretchFrames / 2);
    const std::vector<Point> before = continuousWave(sound.before, sound.peakIndex, halfFrames, sound.rateHz);
    const std::vector<Point> after = continuousWave(sound.after, sound.peakIndex, halfFrames, sound.rateHz);
    double low = -1.1;
    double high = 1.1;
    for (const auto* wave : {&before, &after})
        for (const Point& point : *wave) {
            low = std::min(low, point.y * 1.08);
            high = std::max(high, point.y * 1.08);
        }
    CChart chart(canvas, area, "Wave around the loudest sample",
                 linearAxis("time from " + timeText(peak.frame, sound.rateHz) + " on, in ms", -1000 * kWaveSeconds,
                            1000 * kWaveSeconds, 12),
                 linearAxis("output, full scale = 1", low, high, 8));
    const double ceiling = dbToFactor(settings.outputGainDb);
    const LineStyle ceilingStyle{.colour = palette::kFaintInk, .width = 0.8, .dash = 4};
    const LineStyle beforeStyle{.colour = palette::kBefore, .width = 1.4};
    const LineStyle afterStyle{.colour = palette::kAfter, .width = 1.7};
    if (!settings.residue) chart.between(before, after, kRemoved);
    chart.horizontal(ceiling, ceilingStyle);
    chart.horizontal(-ceiling, ceilingStyle);
    chart.curve(before, beforeStyle);
    chart.curve(after, afterStyle);
    std::vector<CChart::LegendEntry> entries = {{"before: the gains alone", beforeStyle},
                                                {settings.residue ? "after: the residue" : "after", afterStyle}};
    if (!settings.residue) entries.push_back({"what the clipper removes", {.colour = kRemoved}, CChart::Swatch::kArea});
    entries.push_back({"level of clipping", ceilingStyle});
    chart.legend(entries, CChart::Corner::kTopRight);
}

// A ramp so slow that every filter passes it unchanged, straight through the chain.
std::vector<Point> transferCurve(const ProcessorSettings& settings, double range) {
    constexpr int kSteps = 8192;
    std::vector<double> ramp;
    const auto levelAt = [&](int i) { return range * std::clamp(2.0 * i / kSteps - 1, -1.0, 1.0); };
    for (int i = -kSettlingFrames; i <= kSteps + kSettlingFrames; ++i) ramp.push_back(levelAt(i));
    const std::vector<double> output = processAligned(settings, ramp);
    std::vector<Point> curve;
    for (int i = 0; i <= kSteps; i += 16)
        curve.push_back({levelAt(i), output[static_cast<std::size_t>(i + kSettlingFrames)]});
    return curve;
}

void drawTransfer(CCanvas& canvas, const Rectangle& area, const ProcessorSettings& settings, const Peak& peak) {
    const double gain = dbToFactor(settings.inputGainDb);
    const double factor = gain * dbToFactor(settings.outputGainDb);
    const double range = std::max({1.0, 1.5 / gain, 1.05 * peak.level});
    const std::vector<Point> curve = transferCurve(settings, range);
    double height = 1.2;
    for (const Point& point : curve) height = std::max(height, 1.1 * std::fabs(point.y));
    CChart chart(canvas, area, "Transfer curve", linearAxis("input, full scale = 1", -range, range, 5),
                 linearAxis("output, full scale = 1", -height, height, 6));
    const LineStyle straightStyle{.colour = palette::kBefore, .width = 1.4, .dash = 5};
    const LineStyle curveStyle{.colour = palette::kAfter, .width = 2};
    chart.curve({{-range, -range * factor}, {range, range * factor}}, straightStyle);
    chart.curve(curve, curveStyle);
    if (peak.level > 0) chart.dot({peak.level, steadyOutput(settings, peak.level)}, palette::kAccent);
    chart.legend({{"the gains alone", straightStyle},
                  {settings.residue ? "residue" : "with the clipper", curveStyle},
                  {"loudest sample", {.colour = palette::kAccent}, CChart::Swatch::kDot}},
                 settings.residue ? CChart::Corner::kBottomLeft : CChart::Corner::kTopLeft);
}

// As many points as the picture can show: the loudest bin of each narrow band.
std::vector<Point> spectrumCurve(const std::vector<double>& amplitudes, int rateHz, double fromHz) {
    constexpr double kBandRatio = 1.005;
    const double binHz = 0.5 * rateHz / static_cast<double>(amplitudes.size() - 1);
    std::vector<Point> curve;
    double bandEndHz = 0;
    for (std::size_t k = 1; k < amplitudes.size(); ++k) {
        const double hertz = static_cast<double>(k) * binHz;
        if (hertz < fromHz / 2) continue;
        if (hertz >= bandEndHz) {
            curve.push_back({hertz, amplitudes[k]});
            bandEndHz = hertz * kBandRatio;
        } else {
            curve.back().y = std::max(curve.back().y, amplitudes[k]);
        }
    }
    for (Point& point : curve) point.y = factorToDb(point.y);
    return curve;
}

void drawSpectrum(CCanvas& canvas, const Rectangle& area, const ProcessorSettings& settings, const Peak& peak,
                  const Neighbourhood& sound) {
    constexpr double kFromHz = 20;
    constexpr double kBottomDb = -160;
    CSpectrumAnalyser analyser(kSpectrumOrder, SpectrumWindow::kBlackmanHarris);
    const auto before = spectrumCurve(analyser.averageAmplitudes(sound.before), sound.rateHz, kFromHz);
    const auto after = spectrumCurve(analyser.averageAmplitudes(sound.after), sound.rateHz, kFromHz);
    double topDb = 20;  // leaves room for the legend
    for (const Point& point : before) topDb = std::max(topDb, 20 * std::ceil(point.y / 20 + 1));

    const std::string seconds = formatFixed(static_cast<double>(sound.after.size()) / sound.rateHz, 2);
    CChart chart(canvas, area, "Spectrum, mean of " + seconds + " s around the loudest sample",
                 frequencyAxis("frequency in Hz", kFromHz, 0.5 * sound.rateHz),
                 linearAxis("level in dB, full-scale sine = 0", kBottomDb, topDb, 8));
    const LineStyle beforeStyle{.colour = kSpectrumBefore};
    const LineStyle afterStyle{.colour = palette::kAfter, .width = 1.1};
    const LineStyle aliasStyle{.colour = palette::kAccent, .width = 1.2, .dash = 6};
    chart.below(before, kSpectrumBefore);
    chart.curve(after, afterStyle);
    std::vector<CChart::LegendEntry> entries = {{"before: the gains alone", beforeStyle, CChart::Swatch::kArea},
                                                {settings.residue ? "after: the residue" : "after", afterStyle}};
    if (peak.level > 0) {
        const double toneHz = std::min(5000.0, sound.rateHz / 8.0);
        const ToneMeasurement tone = measureTone(settings, peak.level, toneHz, sound.rateHz);
        const double aliasDb = factorToDb(tone.worstLine);
        chart.horizontal(aliasDb, aliasStyle);
        chart.note("worst image of a sine of " + formatFixed(tone.frequencyHz / 1000, 1) +
                       " kHz as loud as the sound: " + formatFixed(aliasDb, 0) + " dB",
                   {kFromHz, aliasDb}, palette::kAccent);
        entries.push_back({"alias floor", aliasStyle});
    }
    chart.legend(entries, CChart::Corner::kTopRight);
}

// The file's name as characters that can be drawn; "?" for bytes that are none.
std::string displayName(const std::filesystem::path& path) {
    std::u16string name = pathFromSystem(path.filename().string());
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isFirstOfPair = name[i] >= 0xD800 && name[i] < 0xDC00;
        if (isFirstOfPair)
            ++i;
        else if (name[i] < 0x20 || (name[i] >= 0xDC00 && name[i] < 0xE000))
            name[i] = u'?';
    }
    return pathToSystem(name);
}

std::string settingsText(const ProcessorSettings& settings) {
    std::string text = "gain " + formatFixed(settings.inputGainDb, 1) + " dB,  hardness " +
                       formatFixed(settings.hardnessPercent, 1) + " %,  output gain " +
                       formatFixed(settings.outputGainDb, 1) + " dB";
    if (settings.residue) text += ",  residue";
    return text;
}

}  // namespace

void checkPictureName(const std::filesystem::path& path) {
    if (path.extension() != ".png" && path.extension() != ".PNG")
        throw CToolError("cannot draw " + quoted(path) + ": pictures are PNG files; give a name that ends in .png");
}

Peak findPeak(const std::filesystem::path& input, CProgressBar& progress) {
    CSoundReader reader(input);
    CPlanarBuffer piece(reader.channelCount(), 1 << 14);
    Peak peak;
    std::int64_t frame = 0;
    while (const int count = reader.read(piece)) {
        throwIfInterrupted();
        peak.include(piece, 0, count, frame);
        frame += count;
        progress.advance(count);
    }
    return peak;
}

void drawSignalPicture(const std::filesystem::path& input, const ProcessorSettings& settings, const Peak& peak,
                       CPendingFile& png) {
    constexpr int kWidth = 1180;
    constexpr int kHeight = 860;
    const Neighbourhood sound = replay(input, settings, peak);
    CCanvas canvas(kWidth, kHeight, palette::kPaper);
    canvas.text(displayName(input), {34, 44}, {.size = 21, .colour = palette::kInk, .isBold = true});
    canvas.text(settingsText(settings), {34, 66}, {.size = 13, .colour = palette::kFaintInk});
    const std::string where = std::to_string(sound.rateHz) + " Hz,  channel " + std::to_string(peak.channel + 1) +
                              ",  loudest sample " + formatFixed(factorToDb(peak.level), 2) + " dBFS,  lowered by " +
                              formatFixed(reductionDb(settings, peak.level), 2) + " dB";
    canvas.text(where, {kWidth - 30, 66}, {.size = 13, .colour = palette::kFaintInk, .anchor = TextAnchor::kEnd});

    drawWave(canvas, {30, 90, kWidth - 60, 350}, settings, peak, sound);
    drawTransfer(canvas, {30, 466, 400, 380}, settings, peak);
    drawSpectrum(canvas, {460, 466, kWidth - 490, 380}, settings, peak, sound);
    canvas.save(png);
}

}  // namespace brt
