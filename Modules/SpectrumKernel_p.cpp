// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/SpectrumKernel_p.h"

#include "Modules/Lanes_p.h"

namespace brt::BRT_BUILD {
namespace {

constexpr int W = kLanes;

BRT_LANE_OP void multiply(double* spectrum, const double* kernel, int count) {
    for (int i = 0; i < count; i += W) store(spectrum + i, load(spectrum + i) * load(kernel + i));
}

// Entries 2 j and 2 j + 1 above the middle are the conjugate of those as far below it.
void widen(double* spectrum, const double* kernel, int points) {
    double* upper = spectrum + points;
    const double* upperKernel = kernel + points;
    if constexpr (W == 1) {
        for (int i = 2; i < points; i += 2) {
            upper[i] = spectrum[points - i] * upperKernel[i];
            upper[i + 1] = -spectrum[points - i + 1] * upperKernel[i + 1];
        }
    } else {
        // Real parts stay, imaginary parts turn their sign. The first vector also covers the middle bin, whose mirror
        // image is itself: it is set below.
        const Lanes signs = pairEven(splat(1.0), splat(-1.0));
        for (int i = 0; i < points; i += W) {
            const Lanes mirrored = reversePairs(loadUnaligned(spectrum + points - i - W + 2));
            store(upper + i, mirrored * signs * load(upperKernel + i));
        }
    }
    // The old highest bin, real, is an ordinary bin now; the new highest one repeats bin 0.
    const double middle = spectrum[1], bottom = spectrum[0];
    multiply(spectrum, kernel, points);
    upper[0] = middle * upperKernel[0];
    upper[1] = 0.0;
    spectrum[1] = bottom * kernel[1];
}

void narrow(double* spectrum, const double* kernel, int points) {
    multiply(spectrum, kernel, points);
    spectrum[1] = spectrum[points] * kernel[points];
}

}  // namespace

extern const SpectrumKernel kSpectrumKernel;
const SpectrumKernel kSpectrumKernel = {widen, narrow};

}  // namespace brt::BRT_BUILD
