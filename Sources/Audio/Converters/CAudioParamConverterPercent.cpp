// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterPercent.h"

#include "Audio/Converters/ConverterNumber.h"

namespace brt {

double CAudioParamConverterPercent::parseRaw(const CAudioParamInfo& info, int, CStringView text, bool& ok) const {
    double value = 0.0;
    ok = info.matchSwitchName(text, value);
    return ok ? value : parseNumber(text, ok) * 0.01;
}

void CAudioParamConverterPercent::format(CString& text, const CAudioParamInfo& info, int, double value,
                                         const CAudioParamData&, EAudioTextMode mode) const {
    if (!info.formatSwitch(text, value)) text = numberText(value * 100.0, mode == EAudioTextMode::kShort ? 0 : 1);
}

double CAudioParamConverterPercent::normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const {
    return normalToInternal(info, subValue, normal) * 100.0;
}

double CAudioParamConverterPercent::displayToNormal(const CAudioParamInfo& info, int subValue, double display) const {
    return internalToNormal(info, subValue, info.limit(display * 0.01, subValue));
}

}  // namespace brt
