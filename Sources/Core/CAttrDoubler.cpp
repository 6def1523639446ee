// SPDX-License-Identifier: LicenseRef-Halyard
#include "Core/CAttrDoubler.h"

#include "Core/CClassInfo.h"
#include "Core/CObjectWatch.h"
#include "Core/CStringList.h"
#include "Core/Log.h"

namespace brt {

void CAttrDoubler::describeClass(CClassInfo& info) {
    CObject::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::objects("target").required().help("the objects that the value is copied to"),
        attr::text("attr").required().help("the attribute of theirs that it is copied to"),
        attr::text("value").runs<&CAttrDoubler::attrValue>().help("the value; as a rule a reference"),
    };
    info.addAttributes(kAttributes);
}

CError* CAttrDoubler::init() {
    BRT_TRY(getFullName(), CObject::init());
    m_attrName = getAttrString("attr");
    CStringList paths;
    CString(getAttrString("target")).split(paths, u' ', true, true);
    if (paths.isEmpty())
        return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                         "@brtstr_CAttrDoubler_init_NoTargets No target objects specified.");
    m_targets.clear();
    for (const CString* const path : paths) {
        if (!findObject(*path))
            return makeError(nullptr, __FILE__, __LINE__, getFullName(),
                             "@brtstr_CAttrDoubler_init_TargetNotFound Target object '%1' not found.", *path);
        m_targets.append(new CTarget<CObject>)->init(*this, *path, {}, nullptr, {});
    }
    return nullptr;
}

// A target's handler may assign to this object, or release it and its targets.
CError* CAttrDoubler::attrValue(const CAttrValue& value) {
    if (m_isCopying) {
        logLine("Attribute '%s' of a target leads back to the value that is being copied there. // %s", m_attrName,
                getFullName());
        return nullptr;
    }
    CAttrValue copied;
    copied = value;
    const CString attrName = m_attrName;
    const CObjectWatch watch(*this);
    m_isCopying = true;
    CError* error = nullptr;
    for (int i = 0; watch.isAlive() && !error && i < m_targets.count(); ++i)
        if (CObject* const target = m_targets[i].get()) error = target->setAttrValue(attrName, copied, kImmediate);
    if (watch.isAlive()) m_isCopying = false;
    return error ? makeError(error, __FILE__, __LINE__, watch.fullName(), "") : nullptr;
}

}  // namespace brt
