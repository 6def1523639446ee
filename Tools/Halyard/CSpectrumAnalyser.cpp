// SPDX-License-Identifier: LicenseRef-Halyard
#include "Tools/Halyard/CSpectrumAnalyser.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <numbers>

namespace brt {

namespace {

// Scaled so that its samples have a mean of 1.
std::vector<double> makeWindow(std::size_t size, SpectrumWindow kind) {
    std::vector<double> window(size, 1.0);
    if (kind == SpectrumWindow::kNone) return window;
    // Albrecht, "A family of cosine-sum windows for high-resolution measurements" (2001).
    constexpr double kTerms[] = {0.27105140069342, 0.43329793923448, 0.21812299954311, 0.06592544638803,
                                 0.01081174209837, 0.00077658482522, 0.00001388721735};
    for (std::size_t i = 0; i < size; ++i) {
        const double phase = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(size);
        double sign = -1;
        for (int k = 1; k < 7; ++k, sign = -sign) window[i] += sign * kTerms[k] / kTerms[0] * std::cos(k * phase);
    }
    return window;
}

}  // namespace

CSpectrumAnalyser::CSpectrumAnalyser(int order, SpectrumWindow window)
    : m_window(makeWindow(std::size_t{1} << order, window)), m_transform(CRealFFTPool::instance().acquire(order)) {
    if (!m_transform || !m_spectrum.allocate(m_window.size())) throw std::bad_alloc();
}

std::vector<double> CSpectrumAnalyser::amplitudes(const double* samples) {
    const std::size_t half = m_window.size() / 2;
    for (std::size_t i = 0; i < m_window.size(); ++i) m_spectrum[i] = samples[i] * m_window[i];
    m_transform->forward(m_spectrum.data(), m_spectrum.data());

    const double scale = 1 / static_cast<double>(half);  // a sine spreads over a bin and its mirror image
    std::vector<double> result(half + 1);
    result[0] = std::fabs(m_spectrum[0]) * scale / 2;
    result[half] = std::fabs(m_spectrum[1]) * scale / 2;
    for (std::size_t k = 1; k < half; ++k) result[k] = std::hypot(m_spectrum[2 * k], m_spectrum[2 * k + 1]) * scale;
    return result;
}

std::vector<double> CSpectrumAnalyser::averageAmplitudes(const std::vector<double>& samples) {
    const std::size_t length = m_window.size();
    std::vector<double> padded = samples;
    padded.resize(std::max(samples.size(), length));
    std::vector<double> mean(length / 2 + 1);
    int count = 0;
    for (std::size_t start = 0; start + length <= padded.size(); start += length / 2, ++count) {
        const std::vector<double> stretch = amplitudes(padded.data() + start);
        for (std::size_t k = 0; k < mean.size(); ++k) mean[k] += stretch[k] * stretch[k];
    }
    for (double& bin : mean) bin = std::sqrt(bin / count);
    return mean;
}

}  // namespace brt
