// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterFreq.h"

#include "Audio/Converters/ConverterNumber.h"

namespace brt {
namespace {

// A "k" at the end means thousands.
double parseHertz(CStringView text, bool& ok) {
    const char16_t last = text.isEmpty() ? u' ' : text[text.length() - 1];
    const bool isThousands = last == 'k' || last == 'K';
    const double number = parseNumber(isThousands ? text.slice(0, text.length() - 1) : text, ok);
    return isThousands ? number * 1000.0 : number;
}

CString kiloText(double kilohertz, int decimals) {
    CString text = numberText(kilohertz, decimals);
    text += "k";
    return text;
}

}  // namespace

double CAudioParamConverterFreq::parseRaw(const CAudioParamInfo& info, int, CStringView text, bool& ok) const {
    double value = 0.0;
    ok = info.matchSwitchName(text, value);
    return ok ? value : parseHertz(text, ok);
}

void CAudioParamConverterFreq::format(CString& text, const CAudioParamInfo& info, int, double value,
                                      const CAudioParamData&, EAudioTextMode mode) const {
    if (info.formatSwitch(text, value) || formatNoNumber(text, value)) return;
    const double tenths = roundHalfAway(10.0 * value);
    if (mode == EAudioTextMode::kPrecise) {
        text = numberText(value, 2);
    } else if (mode == EAudioTextMode::kShort) {
        if (tenths < 10000.0)
            text = numberText(value, tenths < 100.0 ? 1 : 0);
        else
            text = kiloText(value / 1000.0, tenths < 100000.0 ? 1 : 0);
    } else if (tenths < 1000.0) {
        text = numberText(value, 1);
    } else if (roundHalfAway(value) < 1000.0) {
        text = numberText(value, 0);
    } else {
        text = kiloText(value * 0.001, roundHalfAway(0.1 * value) >= 1000.0 ? 1 : 2);
    }
}

}  // namespace brt
