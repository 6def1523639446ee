// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CProcessor.h"

#include <algorithm>
#include <array>

#include "Tools/Halyard/Decibels.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {

namespace {

// Nothing in the path depends on the rate but the length of fades, and those are over before the first sample.
constexpr double kAnyRate = 48000.0;

void set(const CPluginInstance& instance, const char* name, double value) {
    const int index = instance.findParameter(name);
    if (index < 0) throw CToolError("the plug-in has no parameter " + std::string(name) + ": it isn't ours");
    instance.setParameter(index, value);
}

}  // namespace

CProcessor::CProcessor(int channelCount, const ProcessorSettings& settings)
    : m_channelCount(channelCount), m_blockFrames(settings.blockFrames) {
    const std::shared_ptr<const CPluginModule> module =
        settings.plugin != nullptr ? settings.plugin : CPluginModule::load({});
    for (int served = 0; served < channelCount;) {
        auto instance = std::make_unique<CPluginInstance>(module);
        const int channels = std::min(channelCount - served, instance->channelCount());
        // Where it can't have fewer, the others are silent.
        if (channels < instance->channelCount()) instance->setChannels(channels);
        instance->resume(kAnyRate, m_blockFrames);
        set(*instance, "Gain", settings.inputGainDb / ProcessorSettings::kMaxInputGainDb);
        set(*instance, "Hardnes", settings.hardnessPercent / 100);
        set(*instance, "Residue", settings.residue ? 1.0 : 0.0);
        set(*instance, "OutGain", 1 - settings.outputGainDb / ProcessorSettings::kMinOutputGainDb);
        instance->settle(kAnyRate, m_blockFrames);
        served += channels;
        m_instances.push_back(std::move(instance));
    }
}

void CProcessor::reset() noexcept {
    for (const auto& instance : m_instances) {
        instance->suspend();
        instance->resume(kAnyRate, m_blockFrames);
    }
}

void CProcessor::process(const double* const* inputs, double* const* outputs, int frameCount) noexcept {
    for (int start = 0; start < frameCount; start += m_blockFrames) {
        int channel = 0;
        for (const auto& instance : m_instances) {
            std::array<double*, ProcessorSettings::kMaxChannels> in{};
            std::array<double*, ProcessorSettings::kMaxChannels> out{};
            for (std::size_t c = 0; static_cast<int>(c) < instance->channelCount() && channel < m_channelCount; ++c) {
                in[c] = const_cast<double*>(inputs[channel]) + start;  // read only
                out[c] = outputs[channel++] + start;
            }
            instance->process(in.data(), out.data(), std::min(m_blockFrames, frameCount - start));
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
