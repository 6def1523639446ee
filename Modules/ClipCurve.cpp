// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/ClipCurve.h"

#include <cmath>

namespace brt {

double hardClip(double x) noexcept {
    const double raised = x > -1.0 ? x : -1.0;
    return raised < 1.0 ? raised : 1.0;
}

double softClip(double x) noexcept {
    const double a = std::abs(x), square = x * x;
    const double numerator = (kSoftN1 * a + kSoftN0 + (kSoftN3 * a + kSoftN2) * square) * x;
    const double denominator = (square + kSoftD1) * std::abs(x + a * kSoftD2 * x) + kSoftD0;
    return numerator / denominator;
}

void clip(double* samples, int count, const ClipSettings& settings) noexcept {
    const double hard = settings.hardness * settings.hardness, soft = 1.0 - hard;
    // Four loops without a branch inside.
    const auto replaceEach = [=](auto curve) {
        for (int i = 0; i < count; ++i) samples[i] = curve(samples[i]);
    };
    if (settings.isHardOnly()) {
        if (settings.residue)
            replaceEach([](double x) { return hardClip(x) - x; });
        else
            replaceEach([](double x) { return hardClip(x); });
    } else {
        if (settings.residue)
            replaceEach([=](double x) { return hardClip(x) * hard + softClip(x) * soft - x; });
        else
            replaceEach([=](double x) { return hardClip(x) * hard + softClip(x) * soft; });
    }
}

}  // namespace brt
