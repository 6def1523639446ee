// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Wrapper/CMainWindowSize.h"

#include <algorithm>
#include <cmath>

#include "Audio/Converters/ConverterNumber.h"
#include "Core/CAppData.h"

namespace brt {
namespace {

constexpr double kFallbackWidth = 400.0;
constexpr double kFallbackHeight = 300.0;
constexpr double kScaleStep = 0.05;
constexpr double kSmallestScale = 0.8;
constexpr double kLargestScale = 16.0;

bool isTrue(CStringView text) { return text == "1" || text == "true"; }

double readScale(CStringView key) {
    CString text;
    CAppData::local().getString(text, key, "1.0");
    bool isNumber = false;
    const double scale = parseNumber(text, isNumber);
    return isNumber && std::isfinite(scale) ? scale : 1.0;
}

}  // namespace

void CMainWindowSize::attach(CAudioParam& size, const CProductInfo& product) {
    m_size = &size;
    m_product = &product;
}

void CMainWindowSize::update() {
    CString usesUserScale;
    CAppData::local().getString(usesUserScale, "ui-scale-usesr", "true");
    if (isTrue(usesUserScale)) {
        const double steps = std::round(readScale("ui-scale2") / kScaleStep);
        m_scale = std::clamp(steps * kScaleStep, kSmallestScale, kLargestScale);
    } else {
        m_scale = std::clamp(readScale("ui-scale"), kScaleStep, kLargestScale);
    }
    updateSize();
}

int CMainWindowSize::scaled(double length, int minimum) const noexcept {
    return static_cast<int>(std::round(std::max(length, static_cast<double>(minimum)) * m_scale));
}

bool CMainWindowSize::updateSize() {
    const int width = scaled(m_size->getFloat(0, 0, kFallbackWidth), m_product->minWindowWidth);
    const int height = scaled(m_size->getFloat(0, 1, kFallbackHeight), m_product->minWindowHeight);
    const bool isNew = width != m_width || height != m_height;
    m_width = width;
    m_height = height;
    return isNew;
}

}  // namespace brt
