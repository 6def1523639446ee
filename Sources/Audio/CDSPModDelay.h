// SPDX-License-Identifier: LicenseRef-Halyard
// Delays one channel by whole samples, so that parallel paths of different latency meet in step.
//
// The ring consists of pooled blocks, taken when they are first touched. When the delay changes, the line reads at the
// old and at the new place and fades between them along a raised cosine; a change that comes meanwhile waits, and only
// the last one counts.
// Owner: a link of the graph. Threads: audio.
#pragma once

#include "Audio/CAudioBuffer.h"
#include "Core/COwnedArray.h"

namespace brt {

// The weights of a fade from an old signal to a new one: a raised cosine, by recurrence.
class CRaisedCosine {
public:
    explicit CRaisedCosine(int lengthSamples) noexcept;

    // Of the old signal; that of the new one is 1 less this.
    double next() noexcept {
        const double weight = 0.5 + m_current;
        const double following = m_factor * m_current - m_previous;
        m_previous = m_current;
        m_current = following;
        return weight;
    }

private:
    double m_current = 0.5;
    double m_previous;
    double m_factor;
};

class CDSPModDelay : public CBrtMemAllocator {
public:
    static constexpr double kFadeSeconds = 0.015;

    CDSPModDelay(CAudioBufferPool& pool, double sampleRate, int delaySamples);

    // The delay from now on. REQUIRES: delaySamples >= 0.
    void setDelay(int delaySamples);
    int delaySamples() const noexcept { return m_pending >= 0 ? m_pending : m_delay; }
    // It delays nothing, and fades from nothing: it need not run.
    bool isTransparent() const noexcept { return m_delay == 0 && m_fadeLeft == 0 && m_pending < 0; }

    // `in` and `out` may be the same.
    void process(const double* in, double* out, int count);
    // To silence. A fade that runs is over.
    void reset();

private:
    static constexpr int kBlockSamples = 1024;
    static constexpr int kStepSamples = 256;

    struct CBlock : CBrtMemAllocator {
        CAudioBufferRef buffer;  // empty: nobody has touched it
    };

    int ringSamples() const noexcept { return m_blocks.count() * kBlockSamples; }
    void growRing();
    double* at(int position);
    int readPosition(int delaySamples) const noexcept;
    void startFade(int delaySamples);
    void processStep(const double* in, double* out, int count);

    CAudioBufferPool& m_pool;
    const int m_fadeSamples;
    COwnedArray<CBlock> m_blocks;  // the ring
    int m_write = 0;
    int m_delay;
    int m_oldDelay = 0;  // faded from
    int m_fadeLeft = 0;  // samples
    int m_pending = -1;  // the delay after the fade that runs; -1 if it stays
    CRaisedCosine m_fade;
};

}  // namespace brt
