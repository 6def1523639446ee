// SPDX-License-Identifier: LicenseRef-Halyard
// The clipping function: a hard limit at 1.0, a smooth saturation close to tanh, and the mixture that hardness asks
// for. Both curves are odd. Threads: any. This is the plain form; the vector builds follow the same formulas.
#pragma once

#include "Platform/Annotations.h"

namespace brt {

// From here on a mixture is the hard limit alone.
inline constexpr double kHardOnlyFrom = 0.998;

// The soft curve is x * (n0 + n1 a + n2 a^2 + n3 a^3) / (d0 + (a^2 + d1) * (a + d2 a^2)) with a = |x|. It stays within
// 0.00076 of tanh up to |x| = 40. It is no bound: its largest value, near |x| = 4.67, is 1.00044, and far out it tends
// to n3 / d2 = 1.00219.
inline constexpr double kSoftN0 = 2.395631787739572;
inline constexpr double kSoftN1 = 2.423509618411691;
inline constexpr double kSoftN2 = 0.9403501925936697;
inline constexpr double kSoftN3 = 0.8785524976458703;
inline constexpr double kSoftD0 = 2.397102514234356;
inline constexpr double kSoftD1 = 2.3636579090766805;
inline constexpr double kSoftD2 = 0.8766349762624457;

// What to do with each sample: the settings of a core at one moment.
struct ClipSettings {
    double hardness = 1.0;  // 0 soft to 1 hard; its square weighs the hard limit, the rest the soft curve
    bool residue = false;   // give what clipping takes away (clipped minus original) instead of what it leaves

    bool isHardOnly() const noexcept { return !(hardness < kHardOnlyFrom); }
    bool operator==(const ClipSettings&) const noexcept = default;
};

// [any] A NaN becomes -1, as it does in the vector builds: what is behind the hard limit gets numbers only.
double hardClip(double x) noexcept BRT_REALTIME;
// [any] Beyond 1e150 the squares overflow, and the answer is no number.
double softClip(double x) noexcept BRT_REALTIME;

// [any] Clips `count` samples in place.
void clip(double* samples, int count, const ClipSettings& settings) noexcept BRT_REALTIME;

}  // namespace brt
