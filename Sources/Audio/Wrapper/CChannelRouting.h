// SPDX-License-Identifier: LicenseRef-Halyard
// Which host inputs feed the channels of the graph, and which host outputs these go to. Several channels on one output
// are averaged. A change fades from the old connections to the new ones; a channel that goes runs until it has faded.
//
//     routing.setTarget(table, sampleRate, true);     // then give the graph `listChannels`
//     routing.beginChunk(frames);
//     routing.mixInput(channel, ...);  ... the graph ...  routing.mixOutput(output, ...);
//     if (routing.endChunk()) ...                     // channels have gone: `listChannels` again
//
// Owner: the wrapper of an instance. Threads: audio.
#pragma once

#include <array>

#include "Audio/CAudioLink.h"
#include "Audio/Wrapper/CHostAudio.h"

namespace brt {

// What users and hosts have asked for.
struct CRoutingTable {
    struct CChannel {
        bool exists = false;
        int input = -1;   // of the host; -1: silence
        int output = -1;  // of the host; -1: nowhere
        int group = 0;
        bool operator==(const CChannel&) const noexcept = default;
    };
    std::array<CChannel, kAudioChannelLimit> channels{};
    bool operator==(const CRoutingTable&) const noexcept = default;
};

class CChannelRouting {
public:
    static constexpr double kFadeSeconds = 0.015;

    // `mayFade`: else the new connections hold at once.
    void setTarget(const CRoutingTable& table, double sampleRateHz, bool mayFade);
    // The channels that run now, in the order of their numbers; returns how many.
    int listChannels(std::array<CAudioChannel, kAudioChannelLimit>& channels) const;

    // A chunk of at most kAudioBlockLimit samples, which begin at `first` in the host's block.
    void beginChunk(int frameCount) noexcept;
    void mixInput(int channel, const CHostFormat& format, const void* const* inputs, int first,
                  double* samples) noexcept;
    // `channels`: what the graph has delivered, by channel number; null: silence. The sum lies in `samples` or in one
    // of the channels; null for silence.
    const double* mixOutput(int output, const std::array<const double*, kAudioChannelLimit>& channels,
                            double* samples) const noexcept;
    // True if channels have come to their end.
    bool endChunk() noexcept;

private:
    using CGains = std::array<std::array<double, kAudioChannelLimit>, kAudioChannelLimit>;
    // How much of one thing is in another, from where the fade began to where it ends.
    struct CMatrix {
        CGains from{};
        CGains to{};
        // Begins a fade to `target` from what holds now.
        void fadeTo(const CGains& target, double weight);
    };

    bool isFading() const noexcept { return m_fadePosition < m_fadeLength; }
    double weightAt(int position) const noexcept;
    void addWeighted(double from, double to, const double* source, double* sum) const noexcept;
    bool isLeaving(int channel) const noexcept;

    CRoutingTable m_table;
    CMatrix m_inputs;   // by channel, then host input
    CMatrix m_outputs;  // by host output, then channel
    int m_fadePosition = 0;
    int m_fadeLength = 0;
    int m_frameCount = 0;
    std::array<double, kAudioBlockLimit> m_weights{};  // of the chunk, while it fades
    std::array<double, kAudioBlockLimit> m_hostSamples{};
};

}  // namespace brt
