// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterReal.h"

#include <cmath>

#include "Audio/Converters/ConverterNumber.h"
#include "Core/CClassInfo.h"

namespace brt {

void CAudioParamConverterReal::describeClass(CClassInfo& info) {
    CAudioParamConverter::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::integer("decimals").between(0, 10).byDefault("0").help("that are shown"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamConverterReal::init() {
    BRT_TRY(getFullName(), CAudioParamConverter::init());
    m_decimals = getAttrInt("decimals");
    if (m_decimals >= 0 && m_decimals <= 10) return nullptr;
    return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                     "@brtstr_CAudioParamConverterReal_init_InvalidDecimals Invalid decimals %1 specified.",
                     m_decimals);
}

double CAudioParamConverterReal::parseRaw(const CAudioParamInfo&, int, CStringView text, bool& ok) const {
    return parseNumber(text, ok);
}

void CAudioParamConverterReal::format(CString& text, const CAudioParamInfo&, int, double value, const CAudioParamData&,
                                      EAudioTextMode mode) const {
    const bool isShort = mode == EAudioTextMode::kShort;
    text = numberText(value, !isShort ? m_decimals : roundHalfAway(std::abs(value) * 10.0) < 100.0 ? 1 : 0);
}

}  // namespace brt
