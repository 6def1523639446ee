// SPDX-License-Identifier: LicenseRef-Halyard
// The last stage of the cascade: from twice the host's rate to the host's, with an edge at 0.485 of it. 2048 samples
// are convolved with 801 taps at a time, 1248 of them new, and only the bins below the host's half rate are transformed
// back. See CFFTStage.h.
// Owner: the cascade, by value. Threads: one at a time.
#pragma once

#include "Modules/CFFTStage.h"

namespace brt {

class CFFTDownsampler : public CFFTStage {
public:
    // [init] Takes its transforms from the process's pool and starts as after reset().
    explicit CFFTDownsampler(ProcessorBuild build = processorBuild());

    // [audio] Forgets all input.
    void reset() BRT_REALTIME;

    // [audio] Takes `count` samples from `in` and writes count / 2 to `out`, which is apart from `in`. After an odd
    // count the stream is between two outputs: that call writes one more if it began on an even sample of the stream.
    void process(const double* in, int count, double* out) BRT_REALTIME;

    // [audio] The parts of process, for a caller that writes later than it reads. `write` takes at most toGo() samples.
    // `read` gives what falls on the next `count` positions at the higher rate and returns the end of it in `out`. When
    // a whole block has been read and written, nextBlock transforms it and starts another.
    void write(const double* in, int count) BRT_REALTIME;
    double* read(double* out, int count) BRT_REALTIME;
    void nextBlock() BRT_REALTIME;

private:
    double* readEven(int position, int count, double* out) const BRT_REALTIME;
};

}  // namespace brt
