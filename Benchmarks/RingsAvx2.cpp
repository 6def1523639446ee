// SPDX-License-Identifier: LicenseRef-Halyard
// Compiled, like the cascade's own sources beside it, with `brt` renamed: the plain build of the same names is linked
// too.
#include "RingsAvx2.h"

#include "Modules/CRingCascade.h"

namespace bench {

struct RingsAvx2::Rings {
    brt::CRingCascade cascade{brt::kCascadeStages};
};

RingsAvx2::RingsAvx2() : m_rings(std::make_unique<Rings>()) {}
RingsAvx2::~RingsAvx2() = default;

int RingsAvx2::subBlockLength(int left) const { return m_rings->cascade.subBlockLength(left); }
double* RingsAvx2::input() { return m_rings->cascade.input(); }
const double* RingsAvx2::process(int hostSamples, double hardness) {
    return m_rings->cascade.process(hostSamples, {hardness, false});
}

}  // namespace bench
