// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CSoakLife.h"

#include <chrono>
#include <cmath>
#include <thread>

#include "Tools/Halyard/HeapCount.h"
#include "Tools/Halyard/Interrupt.h"
#include "Tools/Halyard/ToolError.h"

namespace brt {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLongestBlock = 2048;
// Shorter blocks say more of the clock than of the plug-in.
constexpr int kShortestTimedBlock = 64;
// Blocks in which a new instance makes what it needs.
constexpr int kFirstBlocks = 200;
// The loudest sound that full scale can become: 24 dB of gain, and what filters add.
constexpr double kLoudest = 64;
constexpr int kBlocksInARow = 64;
constexpr auto kRest = std::chrono::microseconds(500);
constexpr int kCommonBlocks[] = {1, 16, 55, 64, 128, 256, 512, 1024, 2048};
constexpr double kCommonRates[] = {44100, 48000, 88200, 96000, 192000};

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

int below(std::mt19937& random, int limit) {
    return static_cast<int>(random() % static_cast<std::mt19937::result_type>(limit));
}

template <std::size_t N, class T>
T oneOf(std::mt19937& random, const T (&values)[N]) {
    return values[random() % N];
}

}  // namespace

void SoakFigures::add(const SoakFigures& other) {
    lives += other.lives;
    blocks += other.blocks;
    controlCalls += other.controlCalls;
    heapCalls += other.heapCalls;
    soundSeconds += other.soundSeconds;
    processSeconds += other.processSeconds;
    if (other.worstPart <= worstPart) return;
    worstPart = other.worstPart;
    worstSeconds = other.worstSeconds;
    worstFrames = other.worstFrames;
    worstRateHz = other.worstRateHz;
}

CSoakLife::CSoakLife(std::shared_ptr<const CPluginModule> module, const SoakRequest& request, std::uint32_t seed)
    : m_request(request),
      m_instance(std::move(module)),
      m_audioRandom(seed),
      m_controlRandom(~seed),
      m_floats(static_cast<std::size_t>(kLongestBlock * m_instance.channelCount())),
      m_doubles(m_floats.size()) {
    m_figures.lives = 1;
}

SoakFigures CSoakLife::run(double seconds) {
    if (m_request.isCalm) m_instance.resume(m_rateHz, m_request.blockFrames);
    // Each ends by itself: on a single processor one of them may keep the other from running.
    m_end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    std::jthread audio([this] { processBlocks(); });
    while (!m_request.isCalm && !isOver()) control();
    audio.join();
    if (m_hasFailed) throw CToolError(m_failure);
    return m_figures;
}

bool CSoakLife::isOver() const { return Clock::now() >= m_end || m_hasFailed || interruptSignal() != 0; }

void CSoakLife::fail(const std::string& what) {
    const std::lock_guard lock(m_failureLock);
    if (!m_hasFailed) m_failure = what;
    m_hasFailed = true;
}

// The audio thread.

void CSoakLife::processBlocks() {
    while (!isOver()) {
        if (m_request.isCalm) {
            // Systems stop threads of the highest priority that never rest.
            if (m_figures.blocks % kBlocksInARow == 0) std::this_thread::sleep_for(kRest);
            processBlock(m_request.blockFrames, false);
            continue;
        }
        if (below(m_audioRandom, 64) == 0) changeStream();
        const bool isCommon = below(m_audioRandom, 4) != 0;
        processBlock(isCommon ? oneOf(m_audioRandom, kCommonBlocks) : below(m_audioRandom, kLongestBlock + 1),
                     below(m_audioRandom, 8) == 0);
    }
}

void CSoakLife::changeStream() {
    m_rateHz = oneOf(m_audioRandom, kCommonRates);
    switch (below(m_audioRandom, 5)) {
    case 0: return m_instance.suspend();
    case 1:  // some hosts never resume
        m_instance.call(effSetSampleRate, 0, 0, nullptr, static_cast<float>(m_rateHz));
        return;
    case 2: m_instance.setChannels(1 + below(m_audioRandom, m_instance.channelCount())); [[fallthrough]];
    case 3: m_instance.suspend(); [[fallthrough]];
    default: m_instance.resume(m_rateHz, kLongestBlock);
    }
}

void CSoakLife::processBlock(int frameCount, bool isDouble) {
    if (isDouble)
        processSamples(m_doubles, frameCount);
    else
        processSamples(m_floats, frameCount);
}

template <class Sample>
void CSoakLife::processSamples(std::vector<Sample>& samples, int frameCount) {
    constexpr int kMostChannels = 16;
    Sample* channels[kMostChannels] = {};
    for (int c = 0; c < m_instance.channelCount(); ++c) {
        channels[c] = samples.data() + c * kLongestBlock;
        // A sine of full scale, at another frequency now and then.
        const double step = 0.001 * (1 + static_cast<double>(m_figures.blocks / 64 % 1000));
        for (int i = 0; i < frameCount; ++i) channels[c][i] = static_cast<Sample>(std::sin(step * i));
    }
    const std::int64_t heapBefore = heapCalls();
    const Clock::time_point start = Clock::now();
    m_instance.process(channels, channels, frameCount);
    const double seconds = secondsSince(start);
    const std::int64_t heap = heapCalls() - heapBefore;

    const double length = frameCount / m_rateHz;
    m_figures.soundSeconds += length;
    m_figures.processSeconds += seconds;
    if (++m_figures.blocks > kFirstBlocks) {
        m_figures.heapCalls += heap;
        if (frameCount >= kShortestTimedBlock && seconds / length > m_figures.worstPart) {
            m_figures.worstPart = seconds / length;
            m_figures.worstSeconds = seconds;
            m_figures.worstFrames = frameCount;
            m_figures.worstRateHz = m_rateHz;
        }
    }
    for (int c = 0; c < m_instance.channelCount(); ++c)
        for (int i = 0; i < frameCount; ++i)
            if (!(std::abs(static_cast<double>(channels[c][i])) < kLoudest))
                return fail("block " + std::to_string(m_figures.blocks) + " has samples that are no sound");
}

// The thread that changes things.

void CSoakLife::control() {
    ++m_figures.controlCalls;
    const int index = below(m_controlRandom, m_instance.effect().numParams + 1);
    switch (below(m_controlRandom, 64)) {
    case 0: return bringStateBack();
    case 1: m_instance.call(effSetProgram, 0, below(m_controlRandom, m_instance.effect().numPrograms + 1)); return;
    case 2: {
        std::string name = "Name " + std::to_string(m_controlRandom());
        m_instance.call(effSetProgramName, 0, 0, name.data());
        return;
    }
    case 3: m_instance.call(effSetProcessPrecision, 0, below(m_controlRandom, 3)); return;
    case 4: m_instance.text(effGetProgramName, kVstMaxProgNameLen); return;
    case 5: m_instance.text(effGetParamDisplay, kVstMaxParamStrLen, index); return;
    case 6: std::this_thread::sleep_for(std::chrono::milliseconds(below(m_controlRandom, 10))); return;
    default: break;
    }
    m_instance.setParameter(index, below(m_controlRandom, 1200) / 1000.0 - 0.1);
    const double value = m_instance.parameter(index);
    if (!(value >= 0 && value <= 1)) fail("parameter " + std::to_string(index) + " is " + std::to_string(value));
}

void CSoakLife::bringStateBack() {
    const bool isPreset = below(m_controlRandom, 2) == 0;
    std::vector<std::uint8_t> chunk = m_instance.chunk(isPreset);
    if (chunk.empty()) return fail("no state can be had");
    if (!m_instance.setChunk(std::move(chunk), isPreset)) fail("the plug-in refuses its own state");
}

}  // namespace brt
