// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessLinkStateDef.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioProcessLinkStateDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("param").required().help("the parameter whose rounded value is the state, from the process on"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioProcessLinkStateDef::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_param = getAttrString("param");
    if (m_param.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioProcessLinkStateDef_init_InvalidParam Invalid parameter name specified.");
    return nullptr;
}

}  // namespace brt
