// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterTime.h"

#include <cmath>

#include "Audio/Converters/ConverterNumber.h"
#include "Core/CClassInfo.h"

namespace brt {

void CAudioParamConverterTime::describeClass(CClassInfo& info) {
    CAudioParamConverter::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::flag("is-log").byDefault("false").help("a logarithmic scale"),
        attr::number("scale").required().help("seconds of one unit that is shown; above 0"),
        attr::flag("is-exact").byDefault("false").help("a linear scale, and two decimals always"),
        attr::flag("is-precise").byDefault("false").help("one more decimal"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamConverterTime::init() {
    BRT_TRY(getFullName(), CAudioParamConverter::init());
    m_isLog = getAttrBool("is-log");
    m_scale = getAttrDouble("scale");
    m_isExact = getAttrBool("is-exact");
    m_isPrecise = getAttrBool("is-precise");
    if (m_scale > 0.0) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                     "@brtstr_CAudioParamConverterTime_init_InvalidScale Invalid scale %1 specified.",
                     getAttrString("scale"));
}

double CAudioParamConverterTime::normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const {
    const double a = info.minimum(subValue);
    const double b = info.maximum(subValue);
    if (m_isLog) return std::exp(std::log(b / a) * normal + std::log(a));
    return m_isExact ? a + normal * (b - a) : a + normal * (b - a) * normal;
}

double CAudioParamConverterTime::internalToNormal(const CAudioParamInfo& info, int subValue, double value) const {
    const double a = info.minimum(subValue);
    const double b = info.maximum(subValue);
    if (m_isLog) return std::log(value / a) / std::log(b / a);
    const double part = (value - a) / (b - a);
    return m_isExact ? part : std::sqrt(std::abs(part));
}

double CAudioParamConverterTime::normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const {
    return normalToInternal(info, subValue, normal) / m_scale;
}

double CAudioParamConverterTime::displayToNormal(const CAudioParamInfo& info, int subValue, double display) const {
    return internalToNormal(info, subValue, info.limit(display * m_scale, subValue));
}

double CAudioParamConverterTime::parseRaw(const CAudioParamInfo& info, int, CStringView text, bool& ok) const {
    double value = 0.0;
    ok = info.matchSwitchName(text, value);
    return ok ? value : parseNumber(text, ok) * m_scale;
}

void CAudioParamConverterTime::format(CString& text, const CAudioParamInfo& info, int, double value,
                                      const CAudioParamData&, EAudioTextMode mode) const {
    if (info.formatSwitch(text, value) || formatNoNumber(text, value)) return;
    const double shown = value / m_scale;
    const double whole = roundHalfAway(std::abs(shown));
    const int more = m_isPrecise ? 1 : 0;
    if (mode != EAudioTextMode::kShort) {
        text = numberText(shown, m_isExact || whole < 10.0 ? more + 2 : whole < 100.0 ? more + 1 : more);
    } else if (roundHalfAway(std::abs(shown) * 10.0) <= 0.0) {
        text = numberText(shown, 0);
    } else if (whole < 1000.0) {
        text = numberText(shown, whole < 10.0 ? 1 : 0);
    } else {
        text = numberText(shown * 0.001, whole < 10000.0 ? 1 : 0);
        text += "*";
    }
}

}  // namespace brt
