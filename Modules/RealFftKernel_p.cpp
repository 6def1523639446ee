// SPDX-License-Identifier: LicenseRef-Halyard
// The inner loops of the real transform, compiled once per processor build. RealFft_p.h tells the steps.
#include "Modules/Lanes_p.h"
#include "Modules/RealFft_p.h"

namespace brt::BRT_BUILD {
namespace {

constexpr int W = kLanes;

// One complex value in each lane.
struct Complex {
    Lanes re, im;
};

BRT_LANE_OP Complex operator+(Complex a, Complex b) { return {a.re + b.re, a.im + b.im}; }
BRT_LANE_OP Complex operator-(Complex a, Complex b) { return {a.re - b.re, a.im - b.im}; }
BRT_LANE_OP Complex timesMinusI(Complex a) { return {a.im, -a.re}; }
BRT_LANE_OP Complex swapParts(Complex a) { return {a.im, a.re}; }
BRT_LANE_OP Complex multiply(Complex a, Complex b) {
    return {negMulAdd(a.im, b.im, a.re * b.re), mulAdd(a.im, b.re, a.re * b.im)};
}
BRT_LANE_OP Complex multiplyConjugate(Complex a, Complex b) {  // a * conj(b)
    return {mulAdd(a.im, b.im, a.re * b.re), mulSub(a.im, b.re, a.re * b.im)};
}

// ---------------------------------------------------------------- memory

// The work buffer holds vectors of real and of imaginary parts in turn.
BRT_LANE_OP Complex loadParts(const double* p) { return {load(p), load(p + W)}; }
BRT_LANE_OP void storeParts(double* p, Complex a) {
    store(p, a.re);
    store(p + W, a.im);
}
BRT_LANE_OP Complex loadScalar(const double* p) { return {splat(p[0]), splat(p[1])}; }

// Spectra and signals hold complex values one by one. Lanes are in pair order; `Descending` takes the values from the
// last to the first.
BRT_LANE_OP Complex loadPairs(const double* p) {
    const Lanes low = loadUnaligned(p), high = loadUnaligned(p + W);
    return {pairEven(low, high), pairOdd(low, high)};
}
BRT_LANE_OP Complex loadPairsDescending(const double* p) {
    if (W == 1) return {splat(p[0]), splat(p[W])};
    const Lanes low = reversePairs(loadUnaligned(p + W)), high = reversePairs(loadUnaligned(p));
    return {pairEven(low, high), pairOdd(low, high)};
}
BRT_LANE_OP void storePairs(double* p, Complex a) {
    storeUnaligned(p, pairEven(a.re, a.im));
    storeUnaligned(p + W, pairOdd(a.re, a.im));
}
BRT_LANE_OP void storePairsDescending(double* p, Complex a) {
    if (W == 1) return storePairs(p, a);
    storeUnaligned(p + W, reversePairs(pairEven(a.re, a.im)));
    storeUnaligned(p, reversePairs(pairOdd(a.re, a.im)));
}

// ---------------------------------------------------------------- transforms of 2, 4 and 8 values
// In natural order both ways.

BRT_LANE_OP void transform2(Complex& a, Complex& b) {
    const Complex difference = a - b;
    a = a + b;
    b = difference;
}

BRT_LANE_OP void transform4(Complex& a, Complex& b, Complex& c, Complex& d) {
    transform2(a, c);
    transform2(b, d);
    transform2(a, b);
    // c + (-i) d and c - (-i) d, without a sign to turn
    const Complex plus = {c.re + d.im, c.im - d.re}, minus = {c.re - d.im, c.im + d.re};
    c = b;
    b = plus;
    d = minus;
}

BRT_LANE_OP void transform8(Complex* z) {
    transform4(z[0], z[2], z[4], z[6]);
    transform4(z[1], z[3], z[5], z[7]);
    const Lanes half = splat(0.70710678118654752440);
    const Complex one = {(z[3].re + z[3].im) * half, (z[3].im - z[3].re) * half};
    const Complex two = z[5];
    const Complex three = {(z[7].im - z[7].re) * half, (z[7].re + z[7].im) * half};
    const Complex e0 = z[0], e1 = z[2], e2 = z[4], e3 = z[6], o0 = z[1];
    z[0] = e0 + o0;
    z[4] = e0 - o0;
    z[1] = e1 + one;
    z[5] = e1 - one;
    z[2] = {e2.re + two.im, e2.im - two.re};
    z[6] = {e2.re - two.im, e2.im + two.re};
    z[3] = {e3.re + three.re, e3.im - three.im};
    z[7] = {e3.re - three.re, e3.im + three.im};
}

template <int Radix>
BRT_LANE_OP void transformFew(Complex* z) {
    if constexpr (Radix == 2) transform2(z[0], z[1]);
    if constexpr (Radix == 4) transform4(z[0], z[1], z[2], z[3]);
    if constexpr (Radix == 8) transform8(z);
}

// ---------------------------------------------------------------- step 1: the passes

enum class Memory { kWork, kSignal };

// One pass over a run of `length` vectors: value m of part q of the run, q = 0 to Radix - 1, meets those of the other
// parts. Forwards the turns follow the butterfly and parts are taken from natural order to reversed digits; backwards
// they go before it and the digits come back to natural order.
template <int Radix, bool Turned, Memory From>
BRT_LANE_OP void passForward(const double* source, double* work, int length, const double* twiddles) {
    const int part = length / Radix;
    for (int m = 0; m < part; ++m) {
        Complex z[Radix];
        BRT_UNROLL for (int q = 0; q < Radix; ++q) {
            const double* p = source + 2 * W * (m + q * part);
            z[q] = From == Memory::kSignal ? loadPairs(p) : loadParts(p);
        }
        transformFew<Radix>(z);
        storeParts(work + 2 * W * m, z[0]);
        BRT_UNROLL for (int q = 1; q < Radix; ++q) {
            if (Turned) z[q] = multiply(z[q], loadScalar(twiddles + 2 * (q - 1)));
            storeParts(work + 2 * W * (m + q * part), z[q]);
        }
        twiddles += 2 * (Radix - 1);
    }
}

template <int Radix, bool Turned, Memory To>
BRT_LANE_OP void passBackward(const double* work, double* destination, int length, const double* twiddles) {
    const int part = length / Radix;
    for (int m = 0; m < part; ++m) {
        Complex z[Radix];
        z[0] = loadParts(work + 2 * W * m);
        BRT_UNROLL for (int q = 1; q < Radix; ++q) {
            z[q] = loadParts(work + 2 * W * (m + q * part));
            if (Turned) z[q] = multiply(z[q], loadScalar(twiddles + 2 * (q - 1)));
        }
        transformFew<Radix>(z);
        BRT_UNROLL for (int q = 0; q < Radix; ++q) {
            double* p = destination + 2 * W * (m + q * part);
            if (To == Memory::kSignal)
                storePairs(p, swapParts(z[q]));
            else
                storeParts(p, z[q]);
        }
        twiddles += 2 * (Radix - 1);
    }
}

void passesForward(const RealFftSpec& spec, const double* source, double* work) {
    const int last = spec.passCount - 1, length = spec.length;
    if (last == 0) {
        if (spec.radices[0] == 2) return passForward<2, false, Memory::kSignal>(source, work, length, nullptr);
        if (spec.radices[0] == 4) return passForward<4, false, Memory::kSignal>(source, work, length, nullptr);
        return passForward<8, false, Memory::kSignal>(source, work, length, nullptr);
    }
    const double* twiddles = spec.passTwiddles;
    passForward<4, true, Memory::kSignal>(source, work, length, twiddles);
    int run = length / 4;
    for (int pass = 1; pass < last; ++pass, run /= 4) {
        twiddles += 2 * 3 * run;
        for (int i = 0; i < length; i += run) {
            double* p = work + 2 * W * i;
            passForward<4, true, Memory::kWork>(p, p, run, twiddles);
        }
    }
    for (int i = 0; i < length; i += run) {
        double* p = work + 2 * W * i;
        if (run == 2) passForward<2, false, Memory::kWork>(p, p, 2, nullptr);
        if (run == 4) passForward<4, false, Memory::kWork>(p, p, 4, nullptr);
        if (run == 8) passForward<8, false, Memory::kWork>(p, p, 8, nullptr);
    }
}

void passesBackward(const RealFftSpec& spec, double* work, double* destination) {
    const int last = spec.passCount - 1, length = spec.length;
    if (last == 0) {
        if (spec.radices[0] == 2) return passBackward<2, false, Memory::kSignal>(work, destination, length, nullptr);
        if (spec.radices[0] == 4) return passBackward<4, false, Memory::kSignal>(work, destination, length, nullptr);
        return passBackward<8, false, Memory::kSignal>(work, destination, length, nullptr);
    }
    int run = spec.radices[last];
    for (int i = 0; i < length; i += run) {
        double* p = work + 2 * W * i;
        if (run == 2) passBackward<2, false, Memory::kWork>(p, p, 2, nullptr);
        if (run == 4) passBackward<4, false, Memory::kWork>(p, p, 4, nullptr);
        if (run == 8) passBackward<8, false, Memory::kWork>(p, p, 8, nullptr);
    }
    // The turns of pass p begin where those of the longer runs before it end.
    int used = 0;
    for (int longer = length; longer > 4 * run; longer /= 4) used += 2 * 3 * (longer / 4);
    const double* twiddles = spec.passTwiddles + used;
    for (int pass = last - 1; pass > 0; --pass) {
        run *= 4;
        for (int i = 0; i < length; i += run) {
            double* p = work + 2 * W * i;
            passBackward<4, true, Memory::kWork>(p, p, run, twiddles);
        }
        twiddles -= 2 * 3 * run;
    }
    passBackward<4, true, Memory::kSignal>(work, destination, length, spec.passTwiddles);
}

// ---------------------------------------------------------------- steps 2 and 3: across the lanes, and two bins to one

BRT_LANE_OP void transposeParts(Complex* z) {
    Lanes re[W], im[W];
    BRT_UNROLL for (int i = 0; i < W; ++i) re[i] = z[i].re, im[i] = z[i].im;
    transpose(re);
    transpose(im);
    BRT_UNROLL for (int i = 0; i < W; ++i) z[i] = {re[i], im[i]};
}

BRT_LANE_OP void transformAcross(Complex* z) {
    if constexpr (W > 1) transformFew<W>(z);
}

// Half a turn's value for bin k becomes that for bin k + L j: exp(-2 pi i j / (2 W)) times it.
BRT_LANE_OP Complex turnOfBin(Complex halfTurn, int j) {
    constexpr double kEighth[2] = {0.70710678118654752440, 0.70710678118654752440};
    constexpr double kSixteenths[4][2] = {{1.0, 0.0},
                                          {0.92387953251128675613, 0.38268343236508977173},
                                          {0.70710678118654752440, 0.70710678118654752440},
                                          {0.38268343236508977173, 0.92387953251128675613}};
    const bool beyondQuarter = W > 1 && j >= W / 2;
    if (beyondQuarter) {
        j -= W / 2;
        halfTurn = timesMinusI(halfTurn);
    }
    if (j == 0) return halfTurn;
    const double* t = W == 8 ? kSixteenths[j] : kEighth;
    return multiplyConjugate(halfTurn, {splat(t[0]), splat(t[1])});
}

// From Z[k] and Z[M - k] to X[k] and X[M - k], with half the turn of bin k.
BRT_LANE_OP void separate(Complex& a, Complex& b, Complex halfTurn) {
    const Complex sum = {a.re + b.re, a.im - b.im}, difference = {a.re - b.re, a.im + b.im};
    const Complex t = multiply({difference.im, -difference.re}, halfTurn);
    const Lanes half = splat(0.5);
    a = {mulAdd(half, sum.re, t.re), mulAdd(half, sum.im, t.im)};
    b = {mulSub(half, sum.re, t.re), negMulAdd(half, sum.im, t.im)};
}

// From X[k] and X[M - k] to 2 Z[k] and 2 Z[M - k].
BRT_LANE_OP void join(Complex& a, Complex& b, Complex halfTurn) {
    const Complex sum = {a.re + b.re, a.im - b.im}, difference = {a.re - b.re, a.im + b.im};
    const Complex t = multiplyConjugate({-difference.im, difference.re}, halfTurn);
    const Lanes two = splat(2.0);
    a = {mulAdd(two, t.re, sum.re), mulAdd(two, t.im, sum.im)};
    b = {negMulAdd(two, t.re, sum.re), mulSub(two, t.im, sum.im)};
}

// The bins L j, which are their own group: bins 0 and M of the real spectrum, and pairs L j and M - L j.
BRT_LANE_OP void forwardBins0(const RealFftSpec& spec, const double* work, double* destination) {
    const Complex row = loadParts(work);
    Complex z[W];
    BRT_UNROLL for (int lane_ = 0; lane_ < W; ++lane_)
        z[lanePlace(lane_, W)] = {splat(lane(row.re, lane_)), splat(lane(row.im, lane_))};
    transformAcross(z);
    const Complex half = {splat(0.5), splat(0.0)};
    for (int j = 1; j <= W / 2; ++j) {
        Complex a = z[j], b = z[W - j];
        separate(a, b, turnOfBin(half, j));
        double *low = destination + 2 * spec.length * j, *high = destination + 2 * spec.length * (W - j);
        low[0] = lane(a.re, 0);
        low[1] = lane(a.im, 0);
        if (2 * j == W) break;
        high[0] = lane(b.re, 0);
        high[1] = lane(b.im, 0);
    }
    destination[0] = lane(z[0].re + z[0].im, 0);
    destination[1] = lane(z[0].re - z[0].im, 0);
}

BRT_LANE_OP void inverseBins0(const RealFftSpec& spec, const double* source, double* work) {
    Complex z[W];
    z[0] = {splat(source[0] - source[1]), splat(source[0] + source[1])};
    const Complex half = {splat(0.5), splat(0.0)};
    for (int j = 1; j <= W / 2; ++j) {
        Complex a = loadScalar(source + 2 * spec.length * j), b = loadScalar(source + 2 * spec.length * (W - j));
        join(a, b, turnOfBin(half, j));
        z[W - j] = swapParts(b);
        z[j] = swapParts(a);
    }
    transformAcross(z);
    for (int l = 0; l < W; ++l) {
        work[l] = lane(z[lanePlace(l, W)].re, 0);
        work[W + l] = lane(z[lanePlace(l, W)].im, 0);
    }
}

void forward(const RealFftSpec& spec, const double* source, double* destination, double* work) {
    passesForward(spec, source, work);

    const int length = spec.length;
    const double* twiddles = spec.binTwiddles;
    for (int k0 = 0; k0 < length / 2; k0 += W, twiddles += 2 * W * W) {
        // a: bins k0 + 1 .. k0 + W, in lanes. b: bins length - k0 - 1 downwards. Row i of either comes from lane i.
        Complex rows[W], a[W], b[W];
        BRT_UNROLL for (int i = 0; i < W; ++i) rows[i] = loadParts(work + spec.places[k0 + 1 + lanePlace(i, W)]);
        transposeParts(rows);
        BRT_UNROLL for (int i = 0; i < W; ++i) {
            const int l = lanePlace(i, W);
            a[l] = l == 0 ? rows[i] : multiply(rows[i], loadParts(twiddles + 2 * W * l));
        }
        transformAcross(a);
        BRT_UNROLL for (int i = 0; i < W; ++i) rows[i] =
            loadParts(work + spec.places[length - k0 - 1 - lanePlace(i, W)]);
        transposeParts(rows);
        BRT_UNROLL for (int i = 0; i < W; ++i) {
            const int l = lanePlace(i, W);
            b[l] = l == 0 ? rows[i] : multiplyConjugate(rows[i], loadParts(twiddles + 2 * W * l));
        }
        // The conjugate turns give Z[L j - k] in place of Z[L j + L - k].
        transformAcross(b);
        const Complex halfTurn = loadParts(twiddles);
        BRT_UNROLL for (int j = 0; j < W; ++j) {
            Complex &low = a[j], &high = b[(W - j) % W];
            separate(low, high, turnOfBin(halfTurn, j));
            storePairs(destination + 2 * (length * j + k0 + 1), low);
            storePairsDescending(destination + 2 * (length * (W - j) - k0 - W), high);
        }
    }
    forwardBins0(spec, work, destination);
}

void inverse(const RealFftSpec& spec, const double* source, double* destination, double* work) {
    const int length = spec.length;
    const double* twiddles = spec.binTwiddles;
    inverseBins0(spec, source, work);
    for (int k0 = 0; k0 < length / 2; k0 += W, twiddles += 2 * W * W) {
        Complex rows[W], a[W], b[W];
        const Complex halfTurn = loadParts(twiddles);
        BRT_UNROLL for (int j = 0; j < W; ++j) {
            Complex low = loadPairs(source + 2 * (length * j + k0 + 1));
            Complex high = loadPairsDescending(source + 2 * (length * (W - j) - k0 - W));
            join(low, high, turnOfBin(halfTurn, j));
            a[j] = swapParts(low);
            b[(W - j) % W] = swapParts(high);
        }
        transformAcross(a);
        BRT_UNROLL for (int i = 0; i < W; ++i) {
            const int l = lanePlace(i, W);
            rows[i] = l == 0 ? a[l] : multiply(a[l], loadParts(twiddles + 2 * W * l));
        }
        transposeParts(rows);
        BRT_UNROLL for (int i = 0; i < W; ++i) storeParts(work + spec.places[k0 + 1 + lanePlace(i, W)], rows[i]);
        transformAcross(b);
        BRT_UNROLL for (int i = 0; i < W; ++i) {
            const int l = lanePlace(i, W);
            rows[i] = l == 0 ? b[l] : multiplyConjugate(b[l], loadParts(twiddles + 2 * W * l));
        }
        transposeParts(rows);
        BRT_UNROLL for (int i = 0; i < W; ++i)
            storeParts(work + spec.places[length - k0 - 1 - lanePlace(i, W)], rows[i]);
    }
    passesBackward(spec, work, destination);
}

}  // namespace

extern const RealFftKernel kRealFftKernel;
const RealFftKernel kRealFftKernel = {W, forward, inverse};

}  // namespace brt::BRT_BUILD
