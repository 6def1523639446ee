// SPDX-License-Identifier: LicenseRef-Halyard
#include "Modules/CRealFFT.h"

#include "Modules/RealFft.h"

namespace brt {

// With a valid spec and a work buffer of its size, which the pool sees to, the operations cannot fail.

void CRealFFT::forward(const double* source, double* destination) {
    fftForward(source, destination, m_spec, m_workStore.data());
}

void CRealFFT::inverse(const double* source, double* destination) {
    fftInverse(source, destination, m_spec, m_workStore.data());
}

}  // namespace brt
