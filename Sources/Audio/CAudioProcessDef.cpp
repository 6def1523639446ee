// SPDX-License-Identifier: LicenseRef-Halyard
#include "Audio/CAudioProcessDef.h"

#include "Audio/CAudioProcess.h"
#include "Audio/CAudioProcessBypassStateDef.h"
#include "Audio/CAudioProcessLinkDef.h"
#include "Audio/CAudioProcessLinkStateDef.h"
#include "Core/CClassInfo.h"

namespace brt {

void CAudioProcessDef::describeClass(CClassInfo& info) {
    CAudioProcessDefBase::describeClass(info);
    static constexpr CAttrInfo kAttributes[] = {
        attr::flag("is-auto-links").byDefault("false").help("each process is fed by the one before it"),
    };
    info.addAttributes(kAttributes);
}

CError* CAudioProcessDef::init() {
    BRT_TRY(getFullName(), CAudioProcessDefBase::init());
    m_isAutoLinks = getAttrBool("is-auto-links");
    return nullptr;
}

CError* CAudioProcessDef::initDone() {
    BRT_TRY(getFullName(), CAudioProcessDefBase::initDone());
    for (const CObject* const child : children()) sortChild(*child);
    return nullptr;
}

void CAudioProcessDef::sortChild(const CObject& child) {
    if (const auto* const process = dynamic_cast<const CAudioProcessDefBase*>(&child))
        m_childProcesses.append(process);
    else if (const auto* const link = dynamic_cast<const CAudioProcessLinkDef*>(&child))
        m_links.findOrInsert(link->stateId()).append(link);
    else if (const auto* const linkState = dynamic_cast<const CAudioProcessLinkStateDef*>(&child))
        m_linkStates.append(linkState);
    else if (const auto* const bypassState = dynamic_cast<const CAudioProcessBypassStateDef*>(&child))
        m_bypassStates.append(bypassState);
}

std::unique_ptr<CAudioProcessBase> CAudioProcessDef::createProcess() const { return std::make_unique<CAudioProcess>(); }

}  // namespace brt
