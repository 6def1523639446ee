// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterGain.h"

#include <cmath>

#include "Audio/Converters/ConverterNumber.h"
#include "Core/CClassInfo.h"

namespace brt {
namespace {

constexpr double kDbOfNeper = 8.685889638065037;  // 20 / ln 10

double factorOf(double db) noexcept { return std::exp(db / kDbOfNeper); }
double dbOf(double factor) noexcept { return std::log(factor) * kDbOfNeper; }

}  // namespace

void CAudioParamConverterGain::describeClass(CClassInfo& info) {
    CAudioParamConverterLog::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::integer("decimals").between(0, 10).byDefault("0").help("of decibels that are shown"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamConverterGain::init() {
    BRT_TRY(getFullName(), CAudioParamConverterLog::init());
    m_decimals = getAttrInt("decimals");
    if (m_decimals >= 0 && m_decimals <= 10) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                     "@brtstr_CAudioParamConverterGain_init_InvalidDecimals Invalid 'decimals' attribute value %1 "
                     "specified.",
                     m_decimals);
}

double CAudioParamConverterGain::parseRaw(const CAudioParamInfo& info, int, CStringView text, bool& ok) const {
    double value = 0.0;
    ok = info.matchSwitchName(text, value);
    return ok ? value : factorOf(parseNumber(text, ok));
}

void CAudioParamConverterGain::format(CString& text, const CAudioParamInfo& info, int, double value,
                                      const CAudioParamData&, EAudioTextMode mode) const {
    if (info.formatSwitch(text, value)) return;
    const double db = dbOf(value);
    int decimals = m_decimals;
    if (mode == EAudioTextMode::kPrecise) decimals = 2;
    if (mode == EAudioTextMode::kShort)
        decimals = roundHalfAway(std::abs(db) * 10.0) < 100.0 && roundHalfAway(std::abs(db) * 100.0) >= 1.0 ? 1 : 0;
    text = numberText(db, decimals);
}

double CAudioParamConverterGain::normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const {
    return dbOf(normalToInternal(info, subValue, normal));
}

double CAudioParamConverterGain::displayToNormal(const CAudioParamInfo& info, int subValue, double display) const {
    return internalToNormal(info, subValue, info.limit(factorOf(display), subValue));
}

}  // namespace brt
