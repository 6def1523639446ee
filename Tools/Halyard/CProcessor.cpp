// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CProcessor.h"

#include <algorithm>
#include <array>

#include "Platform/ScopedFlushToZero.h"
#include "Tools/Halyard/Decibels.h"

namespace brt {

CProcessor::CProcessor(int channelCount, const ProcessorSettings& settings)
    : m_channelCount(channelCount), m_blockFrames(settings.blockFrames) {
    // Nothing in the path depends on the rate but the length of fades, and those are over before the first sample.
    constexpr double kAnyRate = 48000.0;
    m_instance.setLayout(channelCount, kAnyRate);
    m_instance.set("plugin.modMain.modHal.ingain", dbToFactor(settings.inputGainDb));
    m_instance.set("plugin.modMain.modHal.hardness", settings.hardnessPercent / 100);
    m_instance.set("plugin.modMain.modHal.residue", settings.residue ? 1.0 : 0.0);
    m_instance.set("plugin.modMain.modHal.outgain", dbToFactor(settings.outputGainDb));
    m_instance.settle();
}

void CProcessor::reset() noexcept { m_instance.reset(); }

void CProcessor::process(const double* const* inputs, double* const* outputs, int frameCount) noexcept {
    const ScopedFlushToZero flushToZero;
    std::array<const double*, ProcessorSettings::kMaxChannels> in;
    std::array<double*, ProcessorSettings::kMaxChannels> out;
    for (int start = 0; start < frameCount; start += m_blockFrames) {
        for (int c = 0; c < m_channelCount; ++c) {
            in[static_cast<std::size_t>(c)] = inputs[c] + start;
            out[static_cast<std::size_t>(c)] = outputs[c] + start;
        }
        m_instance.process(in.data(), out.data(), std::min(m_blockFrames, frameCount - start));
    }
}

std::vector<double> processAligned(const ProcessorSettings& settings, const std::vector<double>& input) {
    CProcessor processor(1, settings);
    std::vector<double> padded = input;
    padded.resize(input.size() + static_cast<std::size_t>(processor.latencySamples()));
    std::vector<double> output(padded.size());
    const double* source = padded.data();
    double* target = output.data();
    processor.process(&source, &target, static_cast<int>(padded.size()));
    output.erase(output.begin(), output.begin() + processor.latencySamples());
    return output;
}

double steadyOutput(const ProcessorSettings& settings, double level) {
    // The filters ring for twice the latency at most; the sample in the middle is clear of both ends.
    constexpr std::size_t kSettledFrames = 4096;
    return processAligned(settings, std::vector<double>(2 * kSettledFrames, level))[kSettledFrames];
}

double reductionDb(const ProcessorSettings& settings, double inputLevel) {
    if (inputLevel == 0) return 0;
    ProcessorSettings clipperOnly = settings;
    clipperOnly.residue = false;
    clipperOnly.outputGainDb = 0;
    return factorToDb(inputLevel) + settings.inputGainDb - factorToDb(steadyOutput(clipperOnly, inputLevel));
}

}  // namespace brt
