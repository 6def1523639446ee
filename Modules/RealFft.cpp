// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/RealFft.h"

#include "Modules/CAlignedBlock.h"
#include "Modules/ProcessorBuild_p.h"
#include "Modules/RealFft_p.h"

#include <cmath>
#include <numbers>

namespace brt {

BRT_TABLE_PER_BUILD(RealFftKernel, kRealFftKernel, realFftKernel)

namespace {

constexpr std::int32_t kIdentifier = 9;

struct Turn {
    double re, im;
};

// exp(-2 pi i k / n), 0 <= k < n, n a multiple of 8 or k * 8 / n exact enough: the angle is folded into the first
// eighth of a turn, where both functions round best and the eight-fold symmetry of the circle holds exactly.
Turn turn(std::int64_t k, std::int64_t n) {
    const std::int64_t octant = 8 * k / n;
    const std::int64_t within = 8 * k - octant * n;  // in units of 1 / (8 n) of a turn
    const bool backwards = octant % 2 != 0;
    const double angle =
        2 * std::numbers::pi * static_cast<double>(backwards ? n - within : within) / (8.0 * static_cast<double>(n));
    double c = std::cos(angle), s = std::sin(angle);
    if (backwards) std::swap(c, s);
    switch (octant / 2) {
    case 0: return {c, -s};
    case 1: return {-s, -c};
    case 2: return {-c, s};
    default: return {s, c};
    }
}

// How a transform of an order is cut up, and what its tables need.
struct Plan {
    const RealFftKernel* kernel = nullptr;
    std::int32_t length = 0, passCount = 0;
    std::int32_t radices[kFftMaxPasses] = {};
    std::size_t places = 0, passTwiddles = 0, binTwiddles = 0;  // entries

    Plan(int order, ProcessorBuild build) {
        if (order < 2) return;
        kernel = &realFftKernel(build);
        // The vectors' form needs two groups of lanes along L.
        const std::int64_t points = std::int64_t{1} << (order - 1);
        if (points < 2 * kernel->lanes * kernel->lanes) kernel = &realFftKernel(ProcessorBuild::kPortable);
        length = static_cast<std::int32_t>(points / kernel->lanes);
        chooseRadices();
        places = static_cast<std::size_t>(length);
        binTwiddles = static_cast<std::size_t>(length / 2 * kernel->lanes) * 2;
    }

private:
    // Radix 4 throughout, and an 8 or a 2 last, where no turns follow and registers suffice.
    void chooseRadices() {
        for (std::int32_t rest = length; rest > 1;) {
            const std::int32_t radix = rest == 8 || rest == 2 ? rest : 4;
            radices[passCount++] = radix;
            if (rest > radix) passTwiddles += static_cast<std::size_t>(rest / radix * (radix - 1)) * 2;
            rest /= radix;
        }
    }
};

std::size_t aligned(std::size_t bytes) { return (bytes + kCacheLineBytes - 1) / kCacheLineBytes * kCacheLineBytes; }

std::size_t specBytesOf(const Plan& plan) {
    return aligned(sizeof(RealFftSpec)) + aligned(plan.places * sizeof(std::uint32_t)) +
           aligned(plan.passTwiddles * sizeof(double)) + aligned(plan.binTwiddles * sizeof(double));
}

std::size_t workBytesOf(const Plan& plan) {
    return plan.kernel == nullptr ? 0 : static_cast<std::size_t>(plan.length * plan.kernel->lanes) * 2 * sizeof(double);
}

void fillPlaces(std::uint32_t* places, const Plan& plan) {
    for (std::int32_t k = 0; k < plan.length; ++k) {
        std::int32_t place = 0, block = plan.length, digits = k;
        for (std::int32_t pass = 0; pass < plan.passCount; ++pass) {
            block /= plan.radices[pass];
            place += digits % plan.radices[pass] * block;
            digits /= plan.radices[pass];
        }
        places[k] = static_cast<std::uint32_t>(place * 2 * plan.kernel->lanes);
    }
}

void fillPassTwiddles(double* out, const Plan& plan) {
    std::int32_t block = plan.length;
    for (std::int32_t pass = 0; pass + 1 < plan.passCount; ++pass) {
        const std::int32_t radix = plan.radices[pass];
        for (std::int32_t m = 0; m < block / radix; ++m)
            for (std::int32_t r = 1; r < radix; ++r) {
                const Turn t = turn(std::int64_t{m} * r, block);
                *out++ = t.re;
                *out++ = t.im;
            }
        block /= radix;
    }
}

void fillBinTwiddles(double* out, const Plan& plan) {
    const int lanes = plan.kernel->lanes;
    const std::int64_t points = std::int64_t{plan.length} * lanes;
    for (std::int32_t k0 = 0; k0 < plan.length / 2; k0 += lanes)
        for (int l = 0; l < lanes; ++l, out += 2 * lanes)
            for (int lane = 0; lane < lanes; ++lane) {
                const std::int64_t k = k0 + 1 + lanePlace(lane, lanes);
                const Turn t = l == 0 ? turn(k, 2 * points) : turn(l * k, points);
                const double factor = l == 0 ? 0.5 : 1.0;
                out[lane] = factor * t.re;
                out[lanes + lane] = factor * t.im;
            }
}

FftStatus check(int order, int flag) {
    if (order < 0 || order > kFftMaxOrder) return kFftBadOrder;
    if (flag != kFftScaleForward && flag != kFftScaleInverse && flag != kFftScaleBoth && flag != kFftScaleNone)
        return kFftBadFlag;
    return kFftDone;
}

// One or two points: the sum and the difference.
void transformFew(const double* source, double* destination, int order) {
    const double a = source[0];
    if (order == 0) {
        destination[0] = a;
        return;
    }
    const double b = source[1];
    destination[0] = a + b;
    destination[1] = a - b;
}

using Transform = void (*)(const RealFftSpec&, const double*, double*, double*);

FftStatus run(const double* source, double* destination, const RealFftSpec* spec, void* workBuffer,
              Transform RealFftKernel::*transform, bool RealFftSpec::*scales) {
    if (source == nullptr || destination == nullptr || spec == nullptr) return kFftNullPointer;
    if (spec->identifier != kIdentifier) return kFftBadSpec;

    if (spec->kernel == nullptr) {
        transformFew(source, destination, spec->order);
    } else {
        CAlignedBlock<std::byte> ownWork;
        if (workBuffer == nullptr) {
            if (!ownWork.allocate(spec->workBytes)) return kFftNoMemory;
            workBuffer = ownWork.data();
        }
        (spec->kernel->*transform)(*spec, source, destination, static_cast<double*>(workBuffer));
    }
    if (spec->*scales) {
        const std::size_t size = std::size_t{1} << spec->order;
        for (std::size_t i = 0; i < size; ++i) destination[i] *= spec->scale;
    }
    return kFftDone;
}

}  // namespace

FftStatus fftGetSize(int order, int flag, int, std::size_t* specBytes, std::size_t* initBytes, std::size_t* workBytes,
                     ProcessorBuild build) {
    if (specBytes == nullptr || initBytes == nullptr || workBytes == nullptr) return kFftNullPointer;
    if (const FftStatus status = check(order, flag); status != kFftDone) return status;

    const Plan plan(order, build);
    *specBytes = specBytesOf(plan);
    *initBytes = 0;
    *workBytes = workBytesOf(plan);
    return kFftDone;
}

FftStatus fftInit(RealFftSpec** spec, int order, int flag, int hint, void* specMemory, void*, ProcessorBuild build) {
    if (spec == nullptr || specMemory == nullptr) return kFftNullPointer;
    if (const FftStatus status = check(order, flag); status != kFftDone) return status;

    const Plan plan(order, build);
    auto* memory = static_cast<std::byte*>(specMemory) + aligned(sizeof(RealFftSpec));
    auto* places = reinterpret_cast<std::uint32_t*>(memory);
    memory += aligned(plan.places * sizeof(std::uint32_t));
    auto* passTwiddles = reinterpret_cast<double*>(memory);
    memory += aligned(plan.passTwiddles * sizeof(double));
    auto* binTwiddles = reinterpret_cast<double*>(memory);
    if (plan.kernel != nullptr) {
        fillPlaces(places, plan);
        fillPassTwiddles(passTwiddles, plan);
        fillBinTwiddles(binTwiddles, plan);
    }

    const double size = std::ldexp(1.0, order);
    auto* made = new (specMemory) RealFftSpec{};
    made->identifier = kIdentifier;
    made->order = order;
    made->scalesForward = flag == kFftScaleForward || flag == kFftScaleBoth;
    made->scalesInverse = flag == kFftScaleInverse || flag == kFftScaleBoth;
    made->scale = flag == kFftScaleBoth ? 1.0 / std::sqrt(size) : 1.0 / size;
    made->hint = hint;
    made->workBytes = workBytesOf(plan);
    made->kernel = plan.kernel;
    made->length = plan.length;
    made->passCount = plan.passCount;
    for (std::int32_t i = 0; i < plan.passCount; ++i) made->radices[i] = plan.radices[i];
    made->places = places;
    made->passTwiddles = passTwiddles;
    made->binTwiddles = binTwiddles;
    *spec = made;
    return kFftDone;
}

FftStatus fftForward(const double* source, double* destination, const RealFftSpec* spec, void* workBuffer) {
    return run(source, destination, spec, workBuffer, &RealFftKernel::forward, &RealFftSpec::scalesForward);
}

FftStatus fftInverse(const double* source, double* destination, const RealFftSpec* spec, void* workBuffer) {
    return run(source, destination, spec, workBuffer, &RealFftKernel::inverse, &RealFftSpec::scalesInverse);
}

}  // namespace brt
