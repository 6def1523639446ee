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

private:
    void completeBlock() BRT_REALTIME;
    void read(int position, int count, double* out) const BRT_REALTIME;
};

}  // namespace brt
