// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamConverter.h"

#include "Core/CClassInfo.h"

namespace brt {

void CAudioParamConverter::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("label").help("the unit"),
        attr::flag("is-discrete").byDefault("false").help("controls step by whole numbers"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamConverter::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_label = getAttrString("label");
    m_isDiscrete = getAttrBool("is-discrete");
    return nullptr;
}

double CAudioParamConverter::parseClamped(const CAudioParamInfo& info, int subValue, CStringView text, bool& ok) const {
    const double value = parseRaw(info, subValue, text, ok);
    return ok ? info.limit(value, subValue) : info.minimum(subValue);
}

double CAudioParamConverter::normalToInternal(const CAudioParamInfo& info, int subValue, double normal) const {
    const double a = info.minimum(subValue);
    return a + (info.maximum(subValue) - a) * normal;
}

double CAudioParamConverter::internalToNormal(const CAudioParamInfo& info, int subValue, double value) const {
    const double a = info.minimum(subValue);
    return (value - a) / (info.maximum(subValue) - a);
}

double CAudioParamConverter::normalToDisplay(const CAudioParamInfo& info, int subValue, double normal) const {
    return normalToInternal(info, subValue, normal);
}

double CAudioParamConverter::displayToNormal(const CAudioParamInfo& info, int subValue, double display) const {
    return internalToNormal(info, subValue, info.limit(display, subValue));
}

}  // namespace brt
