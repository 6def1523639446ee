// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CProcessor.h"

#include <algorithm>
#include <new>

#include "Platform/ScopedFlushToZero.h"
#include "Tools/Halyard/Decibels.h"

namespace brt {

namespace {

void scale(const double* input, double* output, int count, double factor) {
    for (int i = 0; i < count; ++i) output[i] = input[i] * factor;
}

}  // namespace

CProcessor::CProcessor(int channelCount, const ProcessorSettings& settings)
    : m_settings(settings),
      m_inputFactor(dbToFactor(settings.inputGainDb)),
      m_outputFactor(dbToFactor(settings.outputGainDb)),
      m_amplified(static_cast<std::size_t>(settings.blockFrames)) {
    for (int c = 0; c < channelCount; ++c) {
        m_cores.push_back(std::make_unique<CHalyardCore>());
        if (!m_cores.back()->isReady()) throw std::bad_alloc();
        m_cores.back()->hardness = settings.hardnessPercent / 100;
        m_cores.back()->residue = settings.residue;
    }
}

void CProcessor::reset() noexcept {
    for (const auto& core : m_cores) core->reset();
}

void CProcessor::process(const double* const* inputs, double* const* outputs, int frameCount) noexcept {
    const ScopedFlushToZero flushToZero;
    // A factor of 1 leaves every sample as it is, so it needs no shortcut.
    for (int start = 0; start < frameCount; start += m_settings.blockFrames) {
        const int count = std::min(m_settings.blockFrames, frameCount - start);
        for (std::size_t c = 0; c < m_cores.size(); ++c) {
            double* output = outputs[c] + start;
            scale(inputs[c] + start, m_amplified.data(), count, m_inputFactor);
            m_cores[c]->processBlock(m_amplified.data(), output, count);
            scale(output, output, count, m_outputFactor);
        }
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
