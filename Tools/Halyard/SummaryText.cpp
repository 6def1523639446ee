// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/SummaryText.h"

#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

void addLine(std::string& text, const std::string& name, const std::string& content) {
    text += "  " + name + std::string(name.size() < 12 ? 12 - name.size() : 1, ' ') + content + "\n";
}

std::string counted(std::int64_t count, const std::string& thing) {
    return groupedDigits(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string samples(std::int64_t count) { return counted(count, "sample"); }

std::string decibels(double factor) { return formatFixed(factorToDb(factor), 2) + " dBFS"; }

std::string formatLine(const RenderSummary& s) {
    const SoundFormat& in = s.inputFormat;
    const SoundFormat& out = s.outputFormat;
    std::string text =
        std::to_string(in.rateHz) + " Hz, " + counted(in.channelCount, "channel") + ", " + describe(in.sample);
    if (out.sample != in.sample) text += " to " + describe(out.sample);
    return text + ", " + timeText(s.inputFrames, in.rateHz) + " (" + counted(s.inputFrames, "frame") + ")";
}

std::string clippedLine(const RenderSummary& s) {
    const double all = static_cast<double>(s.inputFrames) * s.inputFormat.channelCount;
    const double percent = all > 0 ? 100 * static_cast<double>(s.clippedSamples) / all : 0;
    return samples(s.clippedSamples) + " above full scale behind the input gain (" + formatFixed(percent, 2) + " %)";
}

std::string overLine(std::int64_t count, SampleFormat format) {
    const bool isInteger = integerBits(format) != 0;
    return samples(count) + " above full scale, " +
           (isInteger ? "cut to fit " + describe(format) : "kept by " + describe(format));
}

}  // namespace

std::string groupedDigits(std::int64_t number) {
    const std::string digits = std::to_string(number);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
        text += digits[i];
    }
    return text;
}

std::string timeText(std::int64_t frame, int rateHz) {
    const std::int64_t minute = frame / rateHz / 60;
    const double second = static_cast<double>(frame - minute * 60 * rateHz) / rateHz;
    return std::to_string(minute) + (second < 9.9995 ? ":0" : ":") + formatFixed(second, 3);
}

std::string summaryText(const RenderJob& job, const RenderSummary& s) {
    const double inputFactor = dbToFactor(job.settings.inputGainDb);
    std::string text = quoted(job.input) + " -> " + quoted(job.output) + "\n";
    addLine(text, "sound", formatLine(s));
    std::string peakIn = decibels(s.inputPeak.level);
    if (s.inputPeak.level > 0)
        peakIn += " at " + timeText(s.inputPeak.frame, s.inputFormat.rateHz) + ", channel " +
                  std::to_string(s.inputPeak.channel + 1);
    if (job.settings.inputGainDb != 0) peakIn += "; " + decibels(s.inputPeak.level * inputFactor) + " behind the gain";
    addLine(text, "peak in", peakIn);
    addLine(text, "peak out", decibels(s.outputPeak.level));
    addLine(text, "clipped", clippedLine(s));
    addLine(text, "reduction", formatFixed(s.largestReductionDb, 2) + " dB at most: at the loudest input sample");
    if (s.overSamples) addLine(text, "over", overLine(s.overSamples, s.outputFormat.sample));
    if (s.residueFormat) {
        std::string content = quoted(*job.residueOutput) + ", " + describe(*s.residueFormat);
        if (s.residueOverSamples) content += "; " + overLine(s.residueOverSamples, *s.residueFormat);
        addLine(text, "residue", content);
    }
    if (job.picture) addLine(text, "picture", quoted(*job.picture));
    if (job.keepLatency)
        addLine(text, "latency",
                "kept: the output starts and ends " + counted(s.outputFrames - s.inputFrames, "frame") + " late");
    if (s.invalidSamples)
        addLine(text, "invalid", samples(s.invalidSamples) + " of the input: no number of a sound, taken as silence");
    const double soundSeconds = static_cast<double>(s.inputFrames) / s.inputFormat.rateHz;
    if (s.seconds > 0)
        addLine(text, "speed",
                formatFixed(soundSeconds / s.seconds, 1) + " times real time (" + formatFixed(s.seconds, 2) + " s)");
    return text;
}

}  // namespace brt
