// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterText.h"

#include "Audio/Converters/ConverterNumber.h"

namespace brt {

double CAudioParamConverterText::parseClamped(const CAudioParamInfo&, int, CStringView, bool& ok) const {
    ok = true;
    return 0.0;
}

double CAudioParamConverterText::parseRaw(const CAudioParamInfo&, int, CStringView, bool& ok) const {
    ok = true;
    return 0.0;
}

void CAudioParamConverterText::format(CString& text, const CAudioParamInfo&, int, double value,
                                      const CAudioParamData& data, EAudioTextMode) const {
    text = data.text(roundHalfAway(value));
}

}  // namespace brt
