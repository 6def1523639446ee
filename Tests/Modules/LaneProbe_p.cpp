// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/LaneProbe.h"

#include "Modules/Lanes_p.h"

namespace brt::BRT_BUILD {
namespace {

template <Lanes (*Operation)(Lanes)>
void unary(const double* in, double* out) {
    storeUnaligned(out, Operation(loadUnaligned(in)));
}

template <Lanes (*Operation)(Lanes, Lanes)>
void binary(const double* in, double* out) {
    storeUnaligned(out, Operation(loadUnaligned(in), loadUnaligned(in + kLanes)));
}

void probeWithLane0(const double* in, double* out) { storeUnaligned(out, withLane0(loadUnaligned(in), in[kLanes])); }

void probeTranspose(const double* in, double* out) {
    Lanes rows[kLanes];
    for (int i = 0; i < kLanes; ++i) rows[i] = loadUnaligned(in + i * kLanes);
    transpose(rows);
    for (int i = 0; i < kLanes; ++i) storeUnaligned(out + i * kLanes, rows[i]);
}

void probeMulAdds(const double* in, double* vectors, double* doubles, int count) {
    const double *a = in, *b = in + count, *c = in + 2 * count;
    for (int i = 0; i + kLanes <= count; i += kLanes) {
        const Lanes va = loadUnaligned(a + i), vb = loadUnaligned(b + i), vc = loadUnaligned(c + i);
        storeUnaligned(vectors + i, mulAdd(va, vb, vc));
        storeUnaligned(vectors + count + i, mulSub(va, vb, vc));
        storeUnaligned(vectors + 2 * count + i, negMulAdd(va, vb, vc));
    }
    for (int i = 0; i < count; ++i) {
        doubles[i] = mulAdd(a[i], b[i], c[i]);
        doubles[count + i] = mulSub(a[i], b[i], c[i]);
        doubles[2 * count + i] = negMulAdd(a[i], b[i], c[i]);
    }
}

}  // namespace

extern const LaneProbe kLaneProbe;
const LaneProbe kLaneProbe = {kLanes,       unary<reverse>, unary<rotateUp>, probeWithLane0, binary<even>,
                              binary<odd>,  binary<zipLow>, binary<zipHigh>, binary<minOf>,  binary<maxOf>,
                              unary<absOf>, probeTranspose, probeMulAdds};

}  // namespace brt::BRT_BUILD
