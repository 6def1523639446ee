// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioParamAllocDef.h"

#include "Core/CClassInfo.h"
#include "Core/CError.h"

namespace brt {

void CAudioParamAllocDef::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::text("param-name").required().help("name of the parameter, from the process on"),
        attr::integer("index").atLeast(0).byDefault("0").help("slot of the module"),
        attr::flag("use-all-groups").byDefault("false").help("the module reads the values of all channel groups"),
        attr::flag("use-all-elements").byDefault("false").help("the module reads the values of all stack units"),
        attr::flag("is-smooth-update")
            .byDefault("false")
            .help("a change of this parameter is faded in, even if the process updates its modules in place"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioParamAllocDef::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_paramName = getAttrString("param-name");
    m_index = getAttrInt("index");
    m_useAllGroups = getAttrBool("use-all-groups");
    m_useAllElements = getAttrBool("use-all-elements");
    m_isSmoothUpdate = getAttrBool("is-smooth-update");
    if (m_paramName.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamAllocDef_init_InvalidParamName Invalid parameter name specified.");
    if (m_index < 0)
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAudioParamAllocDef_init_InvalidIndex Invalid parameter's '%1' index '%2' specified.",
                         m_paramName, m_index);
    return nullptr;
}

}  // namespace brt
