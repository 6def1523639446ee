// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterLog.h"

#include <cmath>
#include <limits>

#include "Core/CClassInfo.h"

namespace brt {

void CAudioParamConverterLog::describeClass(CClassInfo& info) {
    CAudioParamConverter::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::number("scale-power").required().help("bends the scale; above 0, 1 leaves it straight"),
        attr::number("scale-threshold").required().help("the place of 1 on the scale, up to 1; -1 for none"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamConverterLog::init() {
    BRT_TRY(getFullName(), CAudioParamConverter::init());
    m_power = getAttrDouble("scale-power");
    m_threshold = getAttrDouble("scale-threshold");
    if (!(m_power > 0.0))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamConverterLog_init_InvalidScalePower Invalid 'scale-power' attribute value "
                         "%1 specified.",
                         getAttrString("scale-power"));
    if (!(m_threshold <= 1.0))
        return makeError(
            nullptr, __FILE__, __LINE__, getFullName(),
            "@brtstr_CAudioParamConverterLog_init_InvalidScaleThreshold Invalid 'scale-threshold' attribute "
            "value %1 specified.",
            getAttrString("scale-threshold"));
    constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
    m_isPowerOne = (std::abs(m_power) + 1.0) * kEpsilon >= std::abs(m_power - 1.0);
    return nullptr;
}

double CAudioParamConverterLog::normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const {
    const double a = info.minimum(subValue);
    const double b = info.maximum(subValue);
    const bool hasThreshold = m_threshold > 0.0;
    if (hasThreshold && normal >= m_threshold) {
        const double place = m_threshold < 1.0 ? (normal - m_threshold) / (1.0 - m_threshold) : 0.0;
        return std::exp(std::log(b) * place);
    }
    double place = hasThreshold ? normal / m_threshold : normal;
    if (!m_isPowerOne) place = std::pow(place, 1.0 / m_power);
    return std::exp(std::log((hasThreshold ? 1.0 : b) / a) * place + std::log(a));
}

double CAudioParamConverterLog::internalToNormal(const CAudioParamInfo& info, int subValue, double value) const {
    const double a = info.minimum(subValue);
    const double b = info.maximum(subValue);
    const bool hasThreshold = m_threshold > 0.0;
    if (hasThreshold && value >= 1.0) return std::log(value) / std::log(b) * (1.0 - m_threshold) + m_threshold;
    double place = std::log(value / a) / std::log((hasThreshold ? 1.0 : b) / a);
    if (!m_isPowerOne) place = std::pow(place, m_power);
    return hasThreshold ? place * m_threshold : place;
}

}  // namespace brt
