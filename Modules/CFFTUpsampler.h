// SPDX-License-Identifier: LicenseRef-Halyard
// The first stage of the cascade: doubles the host's rate, with an edge at half the host's rate. 1024 samples with
// zeros between them are convolved with 801 taps at a time; 624 of each block are new. See CFFTStage.h. Owner: the
// cascade, by value. Threads: one at a time.
#pragma once

#include "Modules/CFFTStage.h"

namespace brt {

class CFFTUpsampler : public CFFTStage {
public:
    // [init] Takes its transforms from the process's pool and starts as after reset().
    explicit CFFTUpsampler(ProcessorBuild build = processorBuild());

    // [audio] Forgets all input.
    void reset() BRT_REALTIME;

    // [audio] Takes `count` samples from `in` and writes 2 * count to `out`, which is apart from `in`.
    void process(const double* in, int count, double* out) BRT_REALTIME;

    // [audio] The parts of process, for a caller that reads later than it writes. `write` takes at most toGo() / 2
    // samples. `read` gives the next `count` at the higher rate, up to two for each one written in this block; the
    // first read of a block transforms it. When a whole block has been written and read, nextBlock starts another.
    void write(const double* in, int count) BRT_REALTIME;
    void read(double* out, int count) BRT_REALTIME;
    void nextBlock() BRT_REALTIME;

private:
    void transform() BRT_REALTIME;

    bool m_isTransformDue = false;  // of the finished block
};

}  // namespace brt
