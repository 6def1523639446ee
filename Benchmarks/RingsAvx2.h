// SPDX-License-Identifier: LicenseRef-Halyard
// The plain cascade compiled with the flags of the AVX2 build: what the compiler makes of rings when it may use the
// same instructions. The program itself has no use for it.
#pragma once

#include <memory>

namespace bench {

class RingsAvx2 {
public:
    RingsAvx2();
    ~RingsAvx2();

    // As those of CRingCascade.
    int subBlockLength(int left) const;
    double* input();
    const double* process(int hostSamples, double hardness);

private:
    struct Rings;
    std::unique_ptr<Rings> m_rings;
};

}  // namespace bench
