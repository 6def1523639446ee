// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamFilterDef.h"

#include "Audio/CAudioParamFilter.h"
#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioParamFilterDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("src").required().help("parameters that the filter follows, parted by commas"),
        attr::text("dst").required().help("parameters that the filter writes, parted by commas"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamFilterDef::init() {
    BRT_TRY(getFullName(), CObject::init());
    CString(getAttrString("src")).split(m_sources, u',', true, true);
    if (m_sources.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamFilterDef_init_NoSrcParams No source parameters defined.");
    CString(getAttrString("dst")).split(m_destinations, u',', true, true);
    if (m_destinations.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamFilterDef_init_NoDstParams No destination parameters defined.");
    return nullptr;
}

std::unique_ptr<CAudioParamFilter> CAudioParamFilterBypassGroupSoloDef::createFilter() const {
    return std::make_unique<CAudioParamFilterBypassGroupSolo>();
}

}  // namespace brt
