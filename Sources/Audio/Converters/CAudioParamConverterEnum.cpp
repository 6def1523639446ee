// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/Converters/CAudioParamConverterEnum.h"

#include <algorithm>

#include "Audio/Converters/ConverterNumber.h"
#include "Core/CClassInfo.h"
#include "Core/NumberText.h"

namespace brt {
namespace {

// Letters of ASCII in one case.
CString folded(CStringView text) {
    CString result;
    CString(text).toUpper(result);
    return result;
}

int indexOf(const CStringList& names, CStringView text) {
    for (int i = 0; i < names.count(); ++i)
        if (folded(names[i]) == text) return i;
    return -1;
}

}  // namespace

void CAudioParamConverterEnum::describeClass(CClassInfo& info) {
    CAudioParamConverterRound::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("state-names").help("as \"Off;On\" or \"Stereo|St;Mono|Mo\"; empty: those of the parameter"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamConverterEnum::init() {
    BRT_TRY(getFullName(), CAudioParamConverterRound::init());
    BRT_TRY(getFullName(), m_names.parseStateNames(getAttrString("state-names"), getFullName()));
    return nullptr;
}

// The state of that name, counted from 0; -1 if there is none.
int CAudioParamConverterEnum::findName(const CAudioParamInfo& names, const CAudioParamInfo& info, CStringView text) {
    constexpr int kShortLength = 7;
    const CString wanted = folded(text.trimmed());
    const CStringView shortened = wanted.slice(0, kShortLength).trimmed();
    int index = indexOf(names.longStateNames, wanted);
    if (index < 0) index = indexOf(info.longStateNames, wanted);
    if (index < 0) index = indexOf(names.shortStateNames, shortened);
    if (index < 0) index = indexOf(info.shortStateNames, shortened);
    return index;
}

double CAudioParamConverterEnum::parseClamped(const CAudioParamInfo& info, int subValue, CStringView text,
                                              bool& ok) const {
    std::int64_t number = 0;
    ok = true;
    if (parseInteger(text.trimmed(), number)) return info.limit(static_cast<double>(number), subValue);
    const int index = findName(m_names, info, text);
    ok = index >= 0;
    return ok ? info.limit(roundHalfAway(info.minimum(subValue)) + index, subValue) : info.minimum(subValue);
}

double CAudioParamConverterEnum::parseRaw(const CAudioParamInfo& info, int, CStringView text, bool& ok) const {
    std::int64_t number = 0;
    ok = true;
    if (parseInteger(text.trimmed(), number)) return static_cast<double>(number);
    const int index = findName(m_names, info, text);
    ok = index >= 0;
    return std::max(index, 0);
}

void CAudioParamConverterEnum::format(CString& text, const CAudioParamInfo& info, int subValue, double value,
                                      const CAudioParamData&, EAudioTextMode mode) const {
    if (formatNoNumber(text, value)) return;
    const bool hasNames = !m_names.longStateNames.isEmpty() || !info.longStateNames.isEmpty();
    if (!hasNames) {
        text = numberText(value, 0);
        return;
    }
    const double state = roundHalfAway(value) - roundHalfAway(info.minimum(subValue));
    text.clear();
    if (state < 0.0) return;
    const CAudioParamInfo& names = state < m_names.longStateNames.count() ? m_names : info;
    if (state >= names.longStateNames.count()) {
        text = mode == EAudioTextMode::kShort ? "Rsv" : "Reserve";
        return;
    }
    const int index = static_cast<int>(state);
    constexpr int kNarrowLength = 3;
    if (mode == EAudioTextMode::kShort)
        text = names.shortStateNames[index].slice(0, kNarrowLength);
    else
        text = mode == EAudioTextMode::kMedium ? names.shortStateNames[index] : names.longStateNames[index];
}

}  // namespace brt
