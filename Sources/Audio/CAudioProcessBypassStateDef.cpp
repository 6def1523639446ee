// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessBypassStateDef.h"

#include <cmath>

#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioProcessBypassStateDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::integer("id").byDefault("0").help("what processes and links name in \"bypass-state-id\""),
        attr::text("param").required().help("the parameter that is tested, from the process on"),
        attr::text("range").help("values for which the state holds, as \"[0;1)\""),
        attr::number("value").byDefault("0").help("the value for which the state holds, if there is no range"),
        attr::text("and-param").help("a second parameter, whose condition must hold too"),
        attr::text("and-range").help("as \"range\", of the second parameter"),
        attr::number("and-value").byDefault("0").help("as \"value\", of the second parameter"),
        attr::flag("is-inverted").byDefault("false").help("the state holds when the conditions do not"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioProcessBypassStateDef::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_id = getAttrInt("id");
    m_first.param = getAttrString("param");
    if (m_first.param.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioProcessBypassStateDef_init_InvalidParam Invalid parameter name specified.");
    BRT_TRY(getFullName(),
            parseCondition(m_first, "range", "value",
                           "@brtstr_CAudioProcessBypassStateDef_init_InvalidRange Invalid 'range' attribute value '%1' "
                           "specified."));
    m_second.param = getAttrString("and-param");
    BRT_TRY(getFullName(),
            parseCondition(m_second, "and-range", "and-value",
                           "@brtstr_CAudioProcessBypassStateDef_init_InvalidAndRange Invalid 'and-range' attribute "
                           "value '%1' specified."));
    m_isInverted = getAttrBool("is-inverted");
    return nullptr;
}

CError* CAudioProcessBypassStateDef::parseCondition(CCondition& condition, CStringView rangeName, CStringView valueName,
                                                    CStringView failure) {
    const CStringView range = getAttrString(rangeName);
    if (range.isEmpty())
        condition.value = getAttrDouble(valueName);
    else if (!condition.range.parse(range))
        return makeError(nullptr, __FILE__, __LINE__, getFullName(), failure, range);
    return nullptr;
}

bool CAudioProcessBypassStateDef::isActive(double a, double b) const noexcept {
    const bool isMet = m_first.holds(a) && (m_second.param.isEmpty() || m_second.holds(b));
    return isMet != m_isInverted;
}

bool CAudioProcessBypassStateDef::CCondition::holds(double current) const noexcept {
    return range.valid ? range.contains(current) : std::fabs(current - value) <= kTolerance;
}

}  // namespace brt
