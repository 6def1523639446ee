// SPDX-License-Identifier: LicenseRef-Halyard
// The signal path as the tool sees it: instances of the plug-in, as many as the channels need. This is the one place of
// the tool that knows how the sound is made.
// Owner: the job that renders or measures. Threads: one at a time. After construction nothing allocates.
#pragma once

#include <memory>
#include <vector>

#include "Tools/Halyard/CPluginInstance.h"

namespace brt {

// Ranges are those of the product's parameters.
struct ProcessorSettings {
    static constexpr double kMaxInputGainDb = 24;
    static constexpr double kMinOutputGainDb = -24;
    static constexpr int kMaxChannels = 16;
    static constexpr int kMaxBlockFrames = 8192;

    double inputGainDb = 0;        // 0 to 24
    double hardnessPercent = 100;  // 0 to 100: smooth saturation to brick wall
    double outputGainDb = 0;       // -24 to 0
    bool residue = false;          // put out what the clipper removes instead of what it leaves
    int blockFrames = 512;         // 1 to 8192: handed to the clipper at a time; changes the speed, never the sound
    std::shared_ptr<const CPluginModule> plugin{};  // null: the one that is linked in
};

class CProcessor {
public:
    // Throws CToolError. REQUIRES: channelCount from 1 to 16, settings within their ranges.
    CProcessor(int channelCount, const ProcessorSettings& settings);

    int channelCount() const noexcept { return m_channelCount; }
    int latencySamples() const noexcept { return m_instances[0]->latencySamples(); }

    // [any] As if the clipper had held silence for ever.
    void reset() noexcept;

    // [any] One array per channel; an output is not an input. The output lags by latencySamples().
    void process(const double* const* inputs, double* const* outputs, int frameCount) noexcept;

private:
    const int m_channelCount;
    const int m_blockFrames;
    std::vector<std::unique_ptr<CPluginInstance>> m_instances;
};

// [any] Plays the settings' answer to one channel: `output[i]` belongs to `input[i]`, the latency is taken out, and
// silence follows the input.
std::vector<double> processAligned(const ProcessorSettings& settings, const std::vector<double>& input);

// [any] Where the output settles when every input sample is `level`: a point of the transfer curve.
double steadyOutput(const ProcessorSettings& settings, double level);

// [any] By how much the clipper's curve lowers a steady input of that level; 0 for silence.
double reductionDb(const ProcessorSettings& settings, double inputLevel);

}  // namespace brt
