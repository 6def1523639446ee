// SPDX-License-Identifier: LicenseRef-Halyard
// The life of one instance in a host that does what hosts do, in no order: one thread processes and, between blocks,
// suspends and changes rates; another changes parameters, programs and state meanwhile.
// Owner: a thread of the soak. Threads: two of its own, from `run` on until it returns.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <random>

#include "Tools/Halyard/CPluginInstance.h"
#include "Tools/Halyard/SoakCommand.h"

namespace brt {

// What the audio thread has seen.
struct SoakFigures {
    std::int64_t lives = 0;
    std::int64_t blocks = 0;
    std::int64_t controlCalls = 0;
    std::int64_t heapCalls = 0;  // of the audio thread within blocks, behind the first ones of a life
    double soundSeconds = 0;
    double processSeconds = 0;
    // The block of 64 frames or more that took the largest part of its own length.
    double worstPart = 0;
    double worstSeconds = 0;
    int worstFrames = 0;
    double worstRateHz = 0;

    void add(const SoakFigures& other);
};

class CSoakLife {
public:
    CSoakLife(std::shared_ptr<const CPluginModule> module, const SoakRequest& request, std::uint32_t seed);

    // [any] Until that many seconds are over, or an interruption. Throws CToolError for what no host may see.
    SoakFigures run(double seconds);

private:
    void processBlocks();
    void processBlock(int frameCount, bool isDouble);
    template <class Sample>
    void processSamples(std::vector<Sample>& samples, int frameCount);
    void changeStream();
    void control();
    void bringStateBack();
    void fail(const std::string& what);
    bool isOver() const;

    const SoakRequest& m_request;
    CPluginInstance m_instance;
    std::mt19937 m_audioRandom;
    std::mt19937 m_controlRandom;
    double m_rateHz = 48000;
    std::vector<float> m_floats;
    std::vector<double> m_doubles;
    std::chrono::steady_clock::time_point m_end;
    SoakFigures m_figures;  // of the audio thread, but for controlCalls
    std::atomic<bool> m_hasFailed{false};
    std::mutex m_failureLock;
    std::string m_failure;  // of whoever failed first
};

}  // namespace brt
