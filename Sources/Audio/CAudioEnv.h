// SPDX-License-Identifier: LicenseRef-Halyard
// What an instance's audio side and everybody else share: the lock under which the audio thread takes and hands back
// lists, and the few numbers that go with it.
//
// Whoever runs blocks tells first where in the stream he is, and exchanges the lists that wait before he applies any:
//
//     env.setStreamSeconds(start);  env.beginBlock(end);
//     slots = viz.takePending();    collector.takeUpdates(updates);
//     viz.applyPending(slots);      collector.applyUpdates(updates);
//     ... the graph ...
//
// So a meter that `applyPending` switches on is in the graph from the block after on.
// Owner: the instance's tree. Threads: any; numbers change under the lock only.
#pragma once

#include <atomic>

#include "Core/CObject.h"
#include "Core/CSwapLock.h"

namespace brt {

class CAudioEnv : public CObject {
public:
    // What a host may ask for; anything else is refused.
    static constexpr double kLowestSampleRate = 1000.0;
    static constexpr double kHighestSampleRate = 1536000.0;

    static void describeClass(CClassInfo& info);
    // Displays have the project's "default-fps" as long as nobody asks for another.
    [[nodiscard]] CError* init() override;

    // Under it nothing is allocated, freed, searched or told: see CSwapLock.
    CPriorityLock& section() const noexcept BRT_RETURN_CAPABILITY(m_section) { return m_section; }

    // [any] Whether somebody takes what waits: the instance processes blocks, or may begin to at any time.
    bool isActive() const noexcept { return m_isActive.load(std::memory_order_relaxed); }
    // True if that is new.
    bool setActive(bool isActive) noexcept;

    // [any] In Hz.
    double sampleRate() const noexcept { return m_sampleRate.load(std::memory_order_relaxed); }
    // [any] False, with nothing changed, for a rate that no signal has.
    bool setSampleRate(double sampleRateHz) noexcept;

    // [any] Of the whole graph, in samples.
    int latencySamples() const noexcept { return m_latencySamples.load(std::memory_order_relaxed); }
    // [audio]
    void setLatency(int samples) noexcept { m_latencySamples.store(samples, std::memory_order_relaxed); }

    // The stream, in seconds since the instance began.
    // [audio] Where the block at hand begins.
    double streamSeconds() const noexcept { return m_streamSeconds.load(std::memory_order_relaxed); }
    void setStreamSeconds(double seconds) noexcept { m_streamSeconds.store(seconds, std::memory_order_relaxed); }
    // [any] Up to where the audio thread has got, or is about to.
    double blockEndSeconds() const noexcept { return m_blockEndSeconds.load(std::memory_order_relaxed); }

    // How many frames of displays a second there are to be: what a window asks for holds from the next block on.
    static constexpr double kLowestFrameRate = 1.0;
    static constexpr double kHighestFrameRate = 1000.0;
    // [any]
    double frameRate() const noexcept { return m_frameRate.load(std::memory_order_relaxed); }
    // [any] Rates beyond the limits are brought within them; what is no rate at all changes nothing.
    void requestFrameRate(double framesPerSecond) noexcept;
    // [audio] A block begins: tells where it ends, and takes over the frame rate that was asked for last.
    void beginBlock(double endSeconds) noexcept BRT_REALTIME;
    // [init] The rate as long as nobody has asked for one.
    void setDefaultFrameRate(double framesPerSecond) noexcept;

private:
    mutable CPriorityLock m_section;
    std::atomic<bool> m_isActive{false};
    std::atomic<double> m_sampleRate{44100.0};
    std::atomic<int> m_latencySamples{0};
    std::atomic<double> m_streamSeconds{0.0};
    std::atomic<double> m_blockEndSeconds{0.0};
    std::atomic<double> m_frameRate{30.0};
    double m_requestedFrameRate BRT_GUARDED_BY(m_section) = 30.0;
};

}  // namespace brt
