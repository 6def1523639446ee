// SPDX-License-Identifier: LicenseRef-Halyard
// The transform of 2^order real doubles to their spectrum and back, unscaled unless asked otherwise, in place or not.
//
// The packed spectrum of N points has N entries, as the bins 0 and N/2 are always real and share one place:
//   [0] real part of X[0]    [1] real part of X[N/2]
//   [2k], [2k + 1] real and imaginary part of X[k], for k = 1 to N/2 - 1
// with X[k] = sum over n of x[n] * exp(-2 pi i n k / N).
//
// A spec holds the tables of one order, scaling and processor build. It never changes after fftInit, so any number of
// threads may use it at once, each with a work buffer of its own. The caller owns all memory.
// Orders 10 and 11 are the ones that the signal path uses and that the inner loops are tuned for.
#pragma once

#include "Modules/ProcessorBuild.h"

#include <cstddef>

namespace brt {

struct RealFftSpec;

enum FftStatus : int {
    kFftDone = 0,
    kFftNullPointer = -8,
    kFftNoMemory = -9,   // none for the work buffer that the caller left out
    kFftBadOrder = -15,  // below 0 or above kFftMaxOrder
    kFftBadFlag = -16,
    kFftBadSpec = -17,  // the spec was not made by fftInit
};

enum FftFlag : int {
    kFftScaleForward = 1,  // forward divides by N
    kFftScaleInverse = 2,  // inverse divides by N
    kFftScaleBoth = 4,     // each divides by the square root of N
    kFftScaleNone = 8,     // inverse after forward gives N times the input
};

inline constexpr int kFftMaxOrder = 27;

// [any] The sizes in bytes of the blocks that a transform needs: the spec, a buffer that fftInit alone uses (may be 0),
// and the work buffer. Blocks start on a multiple of 64 bytes. The outputs are written on success only.
FftStatus fftGetSize(int order, int flag, int hint, std::size_t* specBytes, std::size_t* initBytes,
                     std::size_t* workBytes, ProcessorBuild build = processorBuild());

// [any] Fills `specMemory` and hands it back as a spec. `hint` is kept and means nothing here. `initBuffer` may be null
// where fftGetSize asked for 0 bytes.
// REQUIRES: the build is supported.
FftStatus fftInit(RealFftSpec** spec, int order, int flag, int hint, void* specMemory, void* initBuffer,
                  ProcessorBuild build = processorBuild());

// [audio] `source` and `destination` hold 2^order doubles each and are either the same or apart. Without a work buffer,
// one is allocated for the call: not for the audio thread.
FftStatus fftForward(const double* source, double* destination, const RealFftSpec* spec, void* workBuffer);
FftStatus fftInverse(const double* source, double* destination, const RealFftSpec* spec, void* workBuffer);

}  // namespace brt
